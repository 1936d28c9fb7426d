// What a signature covers of its file.
#include "inspection/Coverage.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <set>

#include "inspection/SignatureValue.h"
#include "syntax/CharClass.h"
#include "syntax/Dictionary.h"
#include "syntax/Reference.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

bool isInside(std::string_view part, std::string_view whole) {
    const std::less_equal<> notBehind;
    return notBehind(whole.data(), part.data()) && notBehind(part.data() + part.size(), whole.data() + whole.size());
}

std::vector<long long> numbersOfRange(std::string_view array) {
    constexpr std::size_t kLongest = 4096;
    std::vector<long long> numbers;
    if (array.size() > kLongest) return numbers;
    for (const std::string_view item : itemsOf(array).value_or(std::vector<std::string_view>{})) {
        long long number = -1;
        const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), number);
        if (error != std::errc() || end != item.data() + item.size() || number < 0) return {};
        numbers.push_back(number);
    }
    return numbers.size() == 4 ? numbers : std::vector<long long>{};
}

// Zeros, or the bytes 0x31 with which `CPdfSign::SaveSignature` fills a room; both at once nobody writes.
bool isPadding(std::string_view digits) {
    if (digits.find_first_not_of('0') == std::string_view::npos) return true;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i] != (i % 2 == 0 ? '3' : '1')) return false;
    }
    return true;
}

// What stands between "<" and ">" is not signed, and readers of strings pass over what is no digit there: an object
// could hide in it.
PdfCoverage roomFinding(std::string_view room) {
    const std::string_view digits = room.substr(1, room.size() - 2);
    if (!std::ranges::all_of(digits, [](char c) { return isClass(c, kIsHexDigit); })) return PdfCoverage::NoDigits;
    if (digits.size() % 2 != 0) return PdfCoverage::OddDigits;
    // What is no DER has no end to look behind; its digits are digits all the same.
    const auto size = elementSize(digits);
    return !size || isPadding(digits.substr(2 * *size)) ? PdfCoverage::Complete : PdfCoverage::NoPadding;
}

bool endsRevision(std::string_view document, std::size_t end) {
    return end == document.size() || trimRight(document.substr(0, end)).ends_with("%%EOF");
}

// A companion stream belongs to the table that names it.
std::vector<std::size_t> sectionPlaces(const Document& document) {
    std::set<std::size_t> places;
    std::set<std::size_t> companions;
    const auto add = [&](const CPdfTrailer* section) {
        if (section == nullptr) return;
        if (section->GetXRef() > 0) places.insert(static_cast<std::size_t>(section->GetXRef()));
        if (section->GetXRefStmAddr() > 0) companions.insert(static_cast<std::size_t>(section->GetXRefStmAddr()));
    };
    add(document.newest.get());
    for (const auto& section : document.sections) add(section.get());
    for (const std::size_t companion : companions) places.erase(companion);
    return {places.begin(), places.end()};
}

}  // namespace

PdfCoverage CoverageReader::find(const CPdfObj& holder, std::string_view dictionary, Coverage& out) const {
    if (out.range.empty()) return PdfCoverage::NoRange;
    if (out.range[0] != 0) return PdfCoverage::NotFromStart;
    const std::string_view all = document_.view();
    const auto first = static_cast<std::size_t>(out.range[1]);
    const auto second = static_cast<std::size_t>(out.range[2]);
    const auto rest = static_cast<std::size_t>(out.range[3]);
    if (first > second || second > all.size() || rest > all.size() - second) return PdfCoverage::OutsideFile;
    out.end = second + rest;
    out.laterUpdates = static_cast<int>(sections_.end() - std::ranges::lower_bound(sections_, out.end));
    const std::string_view room = valueOf(dictionary, "/Contents");
    const bool isHexadecimal = room.starts_with('<') && !room.starts_with("<<");
    const auto place = isHexadecimal ? placeInFile(document_, holder, room) : std::nullopt;
    if (!place || *place != first || room.size() != second - first) return PdfCoverage::NotItsValue;
    // The file's own bytes: the object may have been given another text.
    const PdfCoverage finding = roomFinding(all.substr(first, second - first));
    if (finding != PdfCoverage::Complete) return finding;
    return endsRevision(all, out.end) ? PdfCoverage::Complete : PdfCoverage::InsideRevision;
}

std::optional<std::size_t> placeInFile(const Document& document, const CPdfObj& holder, std::string_view part) {
    const std::string_view all = document.view();
    if (isInside(part, all)) return offsetIn(all, part);
    const std::string_view text = holder.content();
    if (!isInside(part, text)) return std::nullopt;
    // A copy of its own, made since the document was opened.
    const int from = holder.GetFromPos();
    if (holder.GetIsCompressed() || from < 0 || static_cast<std::size_t>(from) > all.size()) return std::nullopt;
    const auto begin = static_cast<std::size_t>(from);
    return all.substr(begin).starts_with(text) ? std::optional(begin + offsetIn(text, part)) : std::nullopt;
}

CoverageReader::CoverageReader(Values& values)
    : values_(values), document_(values.document()), sections_(sectionPlaces(document_)) {}

Coverage CoverageReader::read(const CPdfObj& holder, std::string_view dictionary) {
    Coverage out;
    out.range = numbersOfRange(values_.resolved(valueOf(dictionary, "/ByteRange")));
    out.finding = find(holder, dictionary, out);
    out.wholeFile = out.finding == PdfCoverage::Complete && out.end == document_.length;
    return out;
}

}  // namespace varnpdf

const char* varnpdf_coverage_message(PdfCoverage coverage) noexcept {
    switch (coverage) {
        case PdfCoverage::Complete:
            return "its byte range leaves out nothing but its own value";
        case PdfCoverage::NoRange:
            return "it has no byte range of four numbers";
        case PdfCoverage::NotFromStart:
            return "its byte range does not begin at the start of the file";
        case PdfCoverage::OutsideFile:
            return "its byte range lies outside of the file";
        case PdfCoverage::NotItsValue:
            return "its byte range leaves out something else than its own value";
        case PdfCoverage::NoDigits:
            return "something else than hexadecimal digits stands in the room of its value";
        case PdfCoverage::OddDigits:
            return "its value has an odd number of hexadecimal digits";
        case PdfCoverage::NoPadding:
            return "something else than padding stands behind its value";
        case PdfCoverage::InsideRevision:
            return "its byte range ends inside of a revision";
    }
    return "";
}
