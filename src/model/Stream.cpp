// Streams taken apart and decoded.
#include "model/Stream.h"

#include <algorithm>

#include "model/Lookup.h"
#include "support/Limits.h"
#include "syntax/Cursor.h"
#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kEndStream = "endstream";

// The text from the object's first byte to the end of the document; only the object itself when it lies elsewhere.
std::string_view fromObjectOn(const Document& document, std::string_view text) {
    const std::string_view whole = document.view();
    const bool inside = text.data() >= whole.data() && text.data() < whole.data() + whole.size();
    return inside ? whole.substr(offsetIn(whole, text)) : text;
}

bool endsStream(std::string_view text, std::size_t at) {
    if (at > text.size()) return false;
    Cursor cursor(text.substr(at, limits::kBlanksBehindStream + kEndStream.size()));
    while (isWhite(cursor.peek()) || (cursor.peek() == '\0' && !cursor.atEnd())) cursor.advance();
    return cursor.rest().starts_with(kEndStream);
}

// Where the data ends by its keyword; the line end in front of that is not part of it.
std::size_t endByKeyword(std::string_view text, std::size_t from) {
    std::size_t end = text.rfind(kEndStream);
    if (end == kNone || end < from) end = std::min(text.rfind("endobj"), text.size());
    end = std::max(end, from);
    if (end > from && text[end - 1] == '\n') --end;
    if (end > from && text[end - 1] == '\r') --end;
    return end;
}

FilterParms parmsOf(const Document& document, std::string_view value) {
    FilterParms parms;
    const Dictionary dictionary(resolved(document, value));
    const auto read = [&](const char* key, int& number) {
        number = integerOf(document, dictionary.find(key)).value_or(number);
    };
    int earlyChange = 1;
    read("/Predictor", parms.predictor);
    read("/Colors", parms.colors);
    read("/BitsPerComponent", parms.bits);
    read("/Columns", parms.columns);
    read("/EarlyChange", earlyChange);
    parms.earlyChange = earlyChange != 0;
    return parms;
}

// A value that stands alone or in an array of its kind.
std::vector<std::string_view> listOf(const Document& document, std::string_view value) {
    value = resolved(document, value);
    if (auto items = itemsOf(value)) return std::move(*items);
    return value.empty() ? std::vector<std::string_view>{} : std::vector{value};
}

}  // namespace

std::optional<Stream> streamOf(const Document& document, const CPdfObj& object) {
    constexpr std::string_view kKeyword = "stream";
    const std::string_view text = object.content();
    Stream stream;
    stream.dictionary = objectValue(text);
    if (!stream.dictionary.starts_with("<<")) return std::nullopt;
    const Token keyword = Lexer(text, offsetIn(text, stream.dictionary) + stream.dictionary.size()).next();
    // Data may follow without a line end, and then it belongs to the same token.
    if (!keyword.text.starts_with(kKeyword)) return std::nullopt;
    const std::size_t from = streamDataBegin(text, keyword.begin);
    const std::string_view whole = fromObjectOn(document, text);
    const int stated = integerOf(document, valueOf(stream.dictionary, "/Length")).value_or(-1);
    stream.lengthHolds = stated >= 0 && endsStream(whole, from + static_cast<std::size_t>(stated));
    stream.data = stream.lengthHolds ? whole.substr(from, static_cast<std::size_t>(stated))
                                     : text.substr(from, endByKeyword(text, from) - from);
    return stream;
}

std::vector<StreamFilter> filtersOf(const Document& document, std::string_view dictionary) {
    const Dictionary entries(dictionary);
    const auto names = listOf(document, entries.find("/Filter"));
    if (names.size() > limits::kStreamFilters) return {StreamFilter{}};
    const auto parms = listOf(document, entries.find("/DecodeParms"));
    std::vector<StreamFilter> filters;
    for (std::size_t i = 0; i < names.size(); ++i) {
        filters.push_back(
            {filterOf(resolved(document, names[i])), i < parms.size() ? parmsOf(document, parms[i]) : FilterParms{}});
    }
    return filters;
}

Packing packingOf(const Document& document, std::string_view dictionary) {
    const auto filters = filtersOf(document, dictionary);
    if (filters.empty()) return Packing::None;
    const StreamFilter& first = filters.front();
    const bool plain = filters.size() == 1 && first.filter == Filter::Flate && first.parms.predictor == 1;
    return plain ? Packing::Flate : Packing::Other;
}

std::optional<PartlyDecoded> decodedPart(const Document& document, const Stream& stream, std::size_t bound,
                                         std::size_t* produced) {
    const auto filters = filtersOf(document, stream.dictionary);
    const bool known =
        std::ranges::none_of(filters, [](const StreamFilter& filter) { return filter.filter == Filter::Unknown; });
    if (!known) return std::nullopt;
    PartlyDecoded result{StreamBytes(stream.data.substr(0, bound)), stream.data.size() <= bound};
    if (filters.empty()) return result;
    result.bytes = StreamBytes(stream.data);
    result.whole = true;
    for (std::size_t i = 0; i < filters.size(); ++i) {
        // What is still packed may be longer than the content, but costs no more than the stream itself.
        const std::size_t most = i + 1 == filters.size() ? bound : std::max(bound, stream.data.size());
        Filtered step = unfilter(filters[i].filter, filters[i].parms, result.bytes.view(), most, produced);
        result.whole = result.whole && step.whole;
        result.bytes = StreamBytes(std::move(step.bytes));
    }
    return result;
}

std::optional<StreamBytes> decoded(const Document& document, const Stream& stream, std::size_t bound,
                                   std::size_t* produced) {
    auto result = decodedPart(document, stream, bound, produced);
    return result && result->whole ? std::optional(std::move(result->bytes)) : std::nullopt;
}

std::optional<StreamBytes> decodedWithin(const Document& document, const Stream& stream, std::size_t bound,
                                         std::size_t& budget) {
    std::size_t produced = 0;
    auto result = decoded(document, stream, std::min(bound, budget), &produced);
    budget -= std::min(budget, std::max(produced, result ? result->view().size() : 0));
    return result;
}

}  // namespace varnpdf
