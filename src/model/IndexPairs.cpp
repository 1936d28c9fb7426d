// The /Index array of a cross-reference stream.
#include "model/IndexPairs.h"

#include "syntax/Cursor.h"

namespace varnpdf {

std::vector<IndexPair> indexPairs(std::string_view text) {
    std::vector<int> numbers;
    Cursor cursor(text);
    while (!cursor.atEnd()) {
        if (const auto number = cursor.takeInt()) {
            numbers.push_back(*number);
        } else {
            cursor.skip(kIsCSpace);
            cursor.advance();
        }
    }
    std::vector<IndexPair> pairs;
    for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) pairs.push_back({numbers[i], numbers[i + 1]});
    return pairs;
}

}  // namespace varnpdf
