// The texts of an appended update.
#include "writer/SectionTexts.h"

#define ZLIB_CONST  // zlib reads its input through a pointer to const
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <span>

#include "support/Text.h"
#include "syntax/Cursor.h"

namespace varnpdf {
namespace {

int bytesFor(unsigned value) {
    int bytes = 0;
    for (; value > 0; value >>= 8U) ++bytes;
    return bytes;
}

void appendField(std::string& out, unsigned value, int width) {
    for (int shift = (width - 1) * 8; shift >= 0; shift -= 8) {
        out.push_back(static_cast<char>(shift >= 32 ? 0 : (value >> static_cast<unsigned>(shift)) & 0xffU));
    }
}

// The state of a deflation takes 268 kB. Each thread keeps its own for the next stream: giving it back to the system and
// fetching it again would cost more than the few hundred bytes that a signature compresses.
class Deflater {
public:
    Deflater() : usable_(deflateInit(&stream_, Z_DEFAULT_COMPRESSION) == Z_OK) {}
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;
    ~Deflater() {
        if (usable_) deflateEnd(&stream_);
    }

    // False when zlib cannot do it. `out` has room for whatever comes.
    bool run(std::string_view bytes, std::string& out) {
        constexpr std::size_t kMost = std::numeric_limits<uInt>::max();
        if (!usable_ || out.size() > kMost || deflateReset(&stream_) != Z_OK) return false;
        stream_.next_in = reinterpret_cast<const Bytef*>(bytes.data());
        stream_.avail_in = static_cast<uInt>(bytes.size());
        stream_.next_out = reinterpret_cast<Bytef*>(out.data());
        stream_.avail_out = static_cast<uInt>(out.size());
        if (deflate(&stream_, Z_FINISH) != Z_STREAM_END) return false;
        out.resize(stream_.total_out);
        return true;
    }

private:
    z_stream stream_{};
    bool usable_;
};

template <typename Visit>
void forEachEntry(const CPdfXRefContainer& xrefs, Visit&& visit) {
    for (int i = 0; i < xrefs.GetXRefNum(); ++i) {
        const CPdfXRef& run = xrefs.GetXRef()[i];
        for (int k = 0; k < run.GetRefNum(); ++k) visit(run.GetRefEntry()[k]);
    }
}

struct TokenValue {
    std::string_view name;
    std::string value;
};

/// The lines of a template with their tokens replaced; one whose value is empty is left out.
std::string filled(std::string_view lines, std::span<const TokenValue> values, std::string_view lineEnd) {
    constexpr std::string_view kLineEnd = "@@NL@@";
    constexpr std::string_view kMark = "@@";
    std::string out;
    while (!lines.empty()) {
        const std::size_t length = std::min(lines.find(kLineEnd), lines.size());
        const std::string_view line = lines.substr(0, length);
        lines.remove_prefix(std::min(length + kLineEnd.size(), lines.size()));
        const std::size_t open = line.find(kMark);
        const std::size_t close = open == std::string_view::npos ? open : line.find(kMark, open + kMark.size());
        if (close == std::string_view::npos) {
            append(out, line, lineEnd);
            continue;
        }
        const std::string_view name = line.substr(open + kMark.size(), close - open - kMark.size());
        const auto value = std::find_if(values.begin(), values.end(), [&](const auto& it) { return it.name == name; });
        if (value == values.end() || value->value.empty()) continue;
        append(out, line.substr(0, open), value->value, line.substr(close + kMark.size()), lineEnd);
    }
    return out;
}

}  // namespace

void addObjectEntry(CPdfXRefContainer& xrefs, int number, int generation, std::size_t offset) {
    CPdfXRefEntry entry;
    entry.SetPos(static_cast<int>(offset));
    entry.SetGenNumber(generation);
    CPdfXRef run;
    run.AddEntry(entry);
    run.SetRefStart(number);
    run.SetIsFree(0);
    xrefs.AddXRef(&run);
}

std::string crossReferenceTable(const CPdfXRefContainer& xrefs) {
    std::string out;
    append(out, "xref\r\n");
    for (int i = 0; i < xrefs.GetXRefNum(); ++i) {
        const CPdfXRef& run = xrefs.GetXRef()[i];
        append(out, run.GetRefStart(), ' ', run.GetRefNum(), " \r\n");
        for (int k = 0; k < run.GetRefNum(); ++k) {
            const CPdfXRefEntry& entry = run.GetRefEntry()[k];
            append(out, Digits{entry.GetOffset(), 10}, ' ', Digits{entry.GetGenNumber(), 5}, ' ',
                   entry.GetIsFree() == 1 ? 'f' : 'n', "\r\n");
        }
    }
    return out;
}

std::string trailerText(const CPdfTrailer& trailer, std::size_t section) {
    std::string out;
    append(out, "trailer\r\n", "<<\r\n");
    append(out, "/Size ", trailer.GetSize(), "\r\n");
    if (!trailer.encrypt().empty()) append(out, "/Encrypt ", trailer.encrypt(), "\r\n");
    if (!trailer.id().empty()) append(out, "/ID ", trailer.id(), "\r\n");
    if (!trailer.info().empty()) append(out, "/Info ", trailer.info(), "\r\n");
    append(out, "/Root ", trailer.root(), "\r\n");
    append(out, "/Prev ", trailer.GetPrev(), "\r\n");
    append(out, ">>\r\n", "startxref\r\n", section, "\r\n", "%%EOF\r\n");
    return out;
}

StreamFields fieldsFor(const CPdfXRefContainer& xrefs, std::string_view oldWidths) {
    StreamFields fields{1, 1, 1};
    Cursor cursor(oldWidths);
    cursor.take('[');
    constexpr int kWidest = 8;
    for (int* const width : {&fields.type, &fields.second, &fields.third}) {
        if (const auto number = cursor.takeInt()) *width = std::clamp(*number, 0, kWidest);
    }
    fields.type = std::max(fields.type, 1);
    forEachEntry(xrefs, [&](const CPdfXRefEntry& entry) {
        fields.second = std::max(fields.second, bytesFor(static_cast<unsigned>(entry.GetOffset())));
        fields.third = std::max(fields.third, bytesFor(static_cast<unsigned>(entry.GetGenNumber())));
    });
    return fields;
}

std::string indexText(const CPdfXRefContainer& xrefs) {
    std::string out = "[";
    for (int i = 0; i < xrefs.GetXRefNum(); ++i) {
        const CPdfXRef& run = xrefs.GetXRef()[i];
        append(out, i == 0 ? "" : " ", run.GetRefStart(), ' ', run.GetRefNum());
    }
    return out + ']';
}

std::optional<std::string> crossReferenceStream(const CPdfXRefContainer& xrefs, const CPdfTrailer& trailer, int number,
                                                const StreamFields& fields, std::size_t section,
                                                const StreamLayout& layout) {
    std::string rows;
    forEachEntry(xrefs, [&](const CPdfXRefEntry& entry) {
        appendField(rows, entry.GetIsFree() == 1 ? 0 : 1, fields.type);
        appendField(rows, static_cast<unsigned>(entry.GetOffset()), fields.second);
        appendField(rows, static_cast<unsigned>(entry.GetGenNumber()), fields.third);
    });
    const auto data = deflated(rows);
    if (!data) return std::nullopt;
    const TokenValue values[] = {
        {"NR", text(number)},
        {"SIZE", text(trailer.GetSize())},
        {"INFO", std::string(trailer.info())},
        {"ROOT", std::string(trailer.root())},
        {"ID", std::string(trailer.id().empty() ? layout.emptyId : trailer.id())},
        {"INDEX", indexText(xrefs)},
        {"W", text("[", fields.type, ' ', fields.second, ' ', fields.third, "]")},
        {"LENGTH", text(data->size())},
        {"PREV", text(trailer.GetPrev())},
    };
    const std::string_view end = layout.lineEnd;
    std::string out = filled(layout.head, values, end);
    // A lone CR behind "stream" would leave open whether a line feed in the data belongs to it (ISO 32000-2 7.3.8.1).
    append(out, "stream", end.ends_with('\n') ? end : "\r\n", *data);
    append(out, end, "endstream", end, "endobj", end);
    append(out, "startxref", end, section, end, "%%EOF", end);
    return out;
}

std::optional<std::string> deflated(std::string_view bytes) {
    thread_local Deflater deflater;
    std::string out(compressBound(static_cast<uLong>(bytes.size())), '\0');
    if (!deflater.run(bytes, out)) return std::nullopt;
    return out;
}

std::string objectText(int number, int generation, std::string_view content) {
    Cursor header(content);
    header.skip(kIsCSpace);
    content = header.rest();
    header = Cursor(content);
    const auto oldNumber = header.takeInt();
    const auto oldGeneration = header.takeInt();
    header.skip(kIsCSpace);
    const bool hasHeader = oldNumber && oldGeneration && header.rest().starts_with("obj");
    std::string out;
    out.reserve(content.size() + 32);
    const bool isSet = number > 0 && generation >= 0;
    if (!hasHeader || !isSet || (oldNumber == number && oldGeneration == generation)) {
        append(out, content);
    } else {
        append(out, number, ' ', generation, ' ', header.rest());
    }
    if (out.empty() || !isEol(out.back())) append(out, "\r\n");
    return out;
}

}  // namespace varnpdf
