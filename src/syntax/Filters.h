// The filters of streams that hold bytes rather than pictures (ISO 32000-2 7.4).
#pragma once

#include <cstddef>
#include <string_view>

#include "support/Inflate.h"

namespace varnpdf {

enum class Filter { Flate, Lzw, AsciiHex, Ascii85, RunLength, Unknown };

/// The filter that a name ("/FlateDecode", or "/Fl" as inline images have it) means.
Filter filterOf(std::string_view name);

/// The entries of /DecodeParms that bytes are decoded by (ISO 32000-2 tables 8 and 10), with their defaults.
struct FilterParms {
    int predictor = 1;
    int colors = 1;
    int bits = 8;
    int columns = 1;
    bool earlyChange = true;
};

/// What came out of data that may be damaged: at most `bound` bytes, predicted rows as they are meant. Not whole when
/// the data is damaged, ends too early or holds more.
using Filtered = Inflated;
/// Undoes one filter; nothing comes out of one that is unknown. `produced` grows by the bytes that came out.
Filtered unfilter(Filter filter, const FilterParms& parms, std::string_view data, std::size_t bound,
                  std::size_t* produced = nullptr);

/// Undoes PNG or TIFF prediction in place. False when the data does not fit the parameters; what was good before stays.
bool undoPrediction(Bytes& data, const FilterParms& parms);

}  // namespace varnpdf
