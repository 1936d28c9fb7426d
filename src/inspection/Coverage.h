// What a signature covers of its file (ISO 32000-2 12.8.1): the one answer that every face gives.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "inspection/Values.h"
#include "varnpdf/PdfCoverage.h"

namespace varnpdf {

/// Where a part of an object's text stands in the file; nothing inside an object stream.
std::optional<std::size_t> placeInFile(const Document& document, const CPdfObj& holder, std::string_view part);

struct Coverage {
    PdfCoverage finding = PdfCoverage::NoRange;
    std::vector<long long> range;  ///< the four numbers of /ByteRange; empty when it has not four
    /// The rest is known of a range that lies inside the file.
    std::size_t end = 0;     ///< of the second range
    bool wholeFile = false;  ///< complete, and the file ends there
    int laterUpdates = 0;    ///< revisions that begin at `end` or behind it
};

class CoverageReader {
public:
    explicit CoverageReader(Values& values);
    /// @param dictionary  the signature dictionary, which is the value of `holder` or stands in it
    Coverage read(const CPdfObj& holder, std::string_view dictionary);

private:
    PdfCoverage find(const CPdfObj& holder, std::string_view dictionary, Coverage& out) const;

    Values& values_;
    const Document& document_;
    std::vector<std::size_t> sections_;  // where they begin, ascending
};

}  // namespace varnpdf
