// Arrays of references as text.
#include "writer/RefArray.h"

#include <algorithm>

#include "support/Text.h"

namespace varnpdf {

std::string appendToRefArray(std::string_view array, std::string_view item) {
    constexpr std::string_view kNull = "null";
    std::string kept;
    kept.reserve(array.size() + item.size());
    for (std::size_t at = 0; at < array.size();) {
        const std::size_t hit = std::min(array.find(kNull, at), array.size());
        kept.append(array.substr(at, hit - at));
        at = hit + kNull.size();
        if (at < array.size() && array[at] == ' ') ++at;
    }
    const std::size_t open = kept.find('[');
    const std::size_t close = kept.rfind(']');
    const bool bracketed = open != std::string::npos && close != std::string::npos && open < close;
    return kept.insert(bracketed ? close : kept.size(), item);
}

}  // namespace varnpdf
