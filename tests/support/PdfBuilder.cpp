// Builds PDF files as readable text.
#include "support/PdfBuilder.h"

#include <zlib.h>

#include <algorithm>
#include <stdexcept>

namespace varnpdf::test {
namespace {

constexpr std::string_view kBlankRange = "/ByteRange [                                   ]";

std::string padded(long long value, std::size_t width) {
    std::string digits = std::to_string(value);
    return digits.insert(0, width - std::min(width, digits.size()), '0');
}

void appendField(std::string& row, long long value, int width) {
    for (int i = width - 1; i >= 0; --i) row.push_back(i > 7 ? '\0' : static_cast<char>(value >> (8 * i)));
}

/// Rows of `columns` bytes, each as its difference to the row above (PNG filter type 2).
std::string upPredicted(std::string_view rows, std::size_t columns) {
    std::string out;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i % columns == 0) out.push_back('\2');
        out.push_back(static_cast<char>(i < columns ? rows[i] : rows[i] - rows[i - columns]));
    }
    return out;
}

template <typename Entries>
void forEachRun(const Entries& entries, auto&& run) {
    for (auto begin = entries.begin(); begin != entries.end();) {
        auto end = std::next(begin);
        int count = 1;
        for (; end != entries.end() && end->first == begin->first + count; ++end) ++count;
        run(begin, end, count);
        begin = end;
    }
}

}  // namespace

std::string deflated(std::string_view data) {
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(data.data()),
             static_cast<uLong>(data.size()));
    out.resize(size);
    return out;
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    if (at == std::string::npos) throw std::logic_error("not in the document: " + std::string(from));
    return text.replace(at, from.size(), to);
}

std::string withStartxref(std::string document, long long offset) {
    const std::size_t at = document.rfind("startxref") + 10;
    const std::size_t end = document.find_first_not_of("0123456789", at);
    return document.replace(at, end - at, std::to_string(offset));
}

std::string withByteRanges(std::string document) {
    for (std::size_t at = 0; (at = document.find(kBlankRange, at)) != std::string::npos;) {
        const std::size_t open = document.find("/Contents ", at) + 10;
        const std::size_t close = document.find('>', open) + 1;
        std::string range = "/ByteRange [0 " + std::to_string(open) + ' ' + std::to_string(close) + ' ' +
                            std::to_string(document.size() - close);
        range.resize(kBlankRange.size() - 1, ' ');
        document.replace(at, kBlankRange.size(), range + ']');
    }
    return document;
}

PdfBuilder::PdfBuilder(std::string lineEnd, std::string_view header) : eol_(std::move(lineEnd)), bytes_(header) {
    bytes_ += eol_;
}

PdfBuilder& PdfBuilder::raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
}

PdfBuilder& PdfBuilder::object(int number, std::string_view body, int generation) {
    entry(number, 'n', static_cast<long long>(bytes_.size()), generation);
    bytes_ += std::to_string(number) + ' ' + std::to_string(generation) + " obj" + eol_;
    bytes_.append(body).append(eol_ + "endobj" + eol_);
    return *this;
}

PdfBuilder& PdfBuilder::stream(int number, std::string_view entries, std::string_view data, const StreamForm& form) {
    const std::string stored = form.deflate ? deflated(data) : std::string(data);
    std::string body = "<< " + std::string(entries) + " /Length " +
                       (form.length.empty() ? std::to_string(stored.size()) : form.length);
    if (form.deflate) body += " /Filter " + form.filter;
    // A lone CR may not end the keyword (ISO 32000-2 7.3.8.1).
    body += " >>" + eol_ + "stream" + (eol_ == "\r" ? "\r\n" : eol_) + stored + eol_ + "endstream";
    return object(number, body);
}

PdfBuilder& PdfBuilder::objectStream(int number, const std::vector<std::pair<int, std::string>>& members,
                                     const StreamForm& form) {
    std::string head;
    std::string texts;
    for (int index = 0; const auto& [member, text] : members) {
        entry(member, 'c', number, index++);
        head += std::to_string(member) + ' ' + std::to_string(texts.size()) + ' ';
        texts += text + '\n';
    }
    return stream(number,
                  "/Type /ObjStm /N " + std::to_string(members.size()) + " /First " + std::to_string(head.size()),
                  head + texts, form);
}

PdfBuilder& PdfBuilder::signature(int number, std::string_view contents, std::string_view entries) {
    return object(number, "<< /Type /Sig " + std::string(entries) + ' ' + std::string(kBlankRange) + " /Contents " +
                              std::string(contents) + " >>");
}

PdfBuilder& PdfBuilder::entry(int number, char type, long long first, int second) {
    entries_[number] = {type, first, second};
    size_ = std::max(size_, number + 1);
    return *this;
}

PdfBuilder& PdfBuilder::table(const Closing& closing) {
    writeTable(closing, "");
    return *this;
}

PdfBuilder& PdfBuilder::crossReferenceStream(int number, const Closing& closing) {
    const std::size_t at = bytes_.size();
    entry(number, 'n', static_cast<long long>(at), 0);
    writeStreamSection(number, closing, entries_);
    section_ = at;
    finish();
    return *this;
}

PdfBuilder& PdfBuilder::hybrid(int number, const Closing& closing) {
    const std::size_t companion = bytes_.size();
    Entries hidden;
    for (auto& [member, known] : entries_) {
        if (known.type != 'c') continue;
        hidden[member] = known;
        known = {'f', 0, 65535};
    }
    const Entries visible = entries_;
    writeStreamSection(number, closing, hidden);
    entries_ = visible;
    entry(number, 'n', static_cast<long long>(companion), 0);
    writeTable(closing, " /XRefStm " + std::to_string(companion));
    return *this;
}

std::string PdfBuilder::sizeAndPrev(const Closing& closing) const {
    const std::string size = closing.size.value_or(std::to_string(size_));
    const std::string prev = closing.prev.value_or(section_ == 0 ? "" : std::to_string(section_));
    return (size.empty() ? "" : " /Size " + size) + (prev.empty() ? "" : " /Prev " + prev);
}

void PdfBuilder::writeTable(const Closing& closing, std::string_view more) {
    if (section_ == 0) entries_.try_emplace(0, Entry{'f', 0, 65535});
    const std::size_t at = bytes_.size();
    const std::string entryEnd = eol_.size() == 2 ? eol_ : ' ' + eol_;  // always 20 bytes (ISO 32000-2 7.5.4)
    bytes_ += "xref" + eol_;
    forEachRun(entries_, [&](auto begin, auto end, int count) {
        bytes_ += std::to_string(begin->first) + ' ' + std::to_string(count) + eol_;
        for (; begin != end; ++begin) {
            const auto& [type, first, second] = begin->second;
            bytes_ += padded(first, 10) + ' ' + padded(second, 5) + ' ' + type + entryEnd;
        }
    });
    bytes_ += "trailer" + eol_ + "<< " + closing.entries + sizeAndPrev(closing) + std::string(more) + " >>" + eol_;
    section_ = at;
    finish();
}

void PdfBuilder::writeStreamSection(int number, const Closing& closing, const Entries& entries) {
    Entries listed = entries;
    if (!closing.index) {
        for (int i = 0; i < size_; ++i) listed.try_emplace(i, Entry{'f', 0, 0});
    }
    const auto& [typeWidth, firstWidth, secondWidth] = closing.widths;
    std::string rows;
    for (const auto& item : listed) {
        const auto& [type, first, second] = item.second;
        appendField(rows, type == 'f' ? 0 : type == 'n' ? 1 : 2, typeWidth);
        appendField(rows, first, firstWidth);
        appendField(rows, second, secondWidth);
    }
    std::string more = "/Type /XRef " + closing.entries + sizeAndPrev(closing) + " /W [" + std::to_string(typeWidth) +
                       ' ' + std::to_string(firstWidth) + ' ' + std::to_string(secondWidth) + ']';
    if (closing.index) {
        std::string pairs;
        forEachRun(listed, [&](auto begin, auto, int count) {
            pairs += (pairs.empty() ? "" : " ") + std::to_string(begin->first) + ' ' + std::to_string(count);
        });
        more += " /Index [" + pairs + ']';
    }
    if (closing.predictor != 1) {
        const int columns = typeWidth + firstWidth + secondWidth;
        rows = upPredicted(rows, static_cast<std::size_t>(columns));
        more += " /DecodeParms << /Columns " + std::to_string(columns) + " /Predictor " +
                std::to_string(closing.predictor) + " >>";
    }
    stream(number, more, rows, closing.form);
}

void PdfBuilder::finish() {
    bytes_ += "startxref" + eol_ + std::to_string(section_) + eol_ + "%%EOF" + eol_;
    entries_.clear();
}

PdfBuilder smallDocument(std::string lineEnd) {
    PdfBuilder builder(std::move(lineEnd));
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R >>")
        .object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
        .object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] >>");
    return builder;
}

}  // namespace varnpdf::test
