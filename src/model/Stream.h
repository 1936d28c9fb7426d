// Streams (ISO 32000-2 7.3.8): where the data is, how it is packed, what it says.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "model/Document.h"
#include "syntax/Filters.h"

namespace varnpdf {

/// One stream object taken apart. The views are those of the object's text and of the document.
struct Stream {
    std::string_view dictionary;  ///< "<<" through ">>"
    std::string_view data;        ///< as it is in the file
    bool lengthHolds = false;     ///< the data is as long as /Length says
};

/// Nothing for an object that is no stream. /Length decides where the data ends when "endstream" stands there, else the
/// last "endstream" of the object's text. The data may reach beyond that text, which ends at the first "endobj":
/// packed data may hold any keyword.
std::optional<Stream> streamOf(const Document& document, const CPdfObj& object);

struct StreamFilter {
    Filter filter = Filter::Unknown;
    FilterParms parms;
};
/// The filters in the order in which they are undone, none for data that stands as it is. More than
/// `limits::kStreamFilters` count as one unknown.
std::vector<StreamFilter> filtersOf(const Document& document, std::string_view dictionary);

/// For edits that pack again as it was before: Flate is /FlateDecode alone and without prediction.
enum class Packing { None, Flate, Other };
Packing packingOf(const Document& document, std::string_view dictionary);

/// The bytes that a stream stands for: those of the file where no filter is, else bytes of its own.
class StreamBytes {
public:
    explicit StreamBytes(std::string_view borrowed) : borrowed_(borrowed) {}
    explicit StreamBytes(Bytes bytes) : owned_(std::move(bytes)), isOwned_(true) {}
    [[nodiscard]] std::string_view view() const noexcept { return isOwned_ ? owned_.view() : borrowed_; }

private:
    std::string_view borrowed_;
    Bytes owned_;
    bool isOwned_ = false;
};

/// The whole content. Nothing when a filter is unknown, the data is damaged, or it is longer than `bound` (as is what a
/// filter in between gives, if that is also longer than the stream). `produced`, when given, grows by all bytes that came out, also where nothing is given back: work that
/// a caller's budget has to pay for.
std::optional<StreamBytes> decoded(const Document& document, const Stream& stream, std::size_t bound,
                                   std::size_t* produced = nullptr);
/// The same, paid for from a budget: longer than that the content cannot be either.
std::optional<StreamBytes> decodedWithin(const Document& document, const Stream& stream, std::size_t bound,
                                         std::size_t& budget);

struct PartlyDecoded {
    StreamBytes bytes;
    bool whole = false;
};
/// What can be had of the content, as viewers show it: of damaged data what came out before, of long content the first
/// `bound` bytes. Nothing when a filter is unknown.
std::optional<PartlyDecoded> decodedPart(const Document& document, const Stream& stream, std::size_t bound,
                                         std::size_t* produced = nullptr);

}  // namespace varnpdf
