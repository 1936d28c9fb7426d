// Inflating: bounds, and what refused data costs.
#include "support/Inflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

namespace {

std::string packed(const std::string& text) {
    uLongf size = compressBound(static_cast<uLong>(text.size()));
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
             static_cast<uLong>(text.size()));
    out.resize(size);
    return out;
}

TEST(Inflate, BoundsAndWork) {
    const std::string text(100'000, 'x');
    const std::string good = packed(text);
    std::string wrongSum = good;
    wrongSum.back() = static_cast<char>(wrongSum.back() ^ 1);
    const struct {
        const char* name;
        std::string data;
        std::size_t bound;
        bool fits;
        std::size_t produced;  // at least; refused data has cost its work too
    } rows[] = {
        {"Whole", good, 100'000, true, 100'000},
        {"BytesBehind", good + "endstream", 100'000, true, 100'000},
        {"OneTooLong", good, 99'999, false, 99'999},
        {"WrongChecksum", wrongSum, 100'000, false, 100'000},
        {"CutOff", good.substr(0, good.size() - 6), 100'000, false, 1},
        {"NoStream", "no zlib data", 100'000, false, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::size_t produced = 0;
        const auto result = varnpdf::inflateAll(row.data, row.bound, &produced);
        EXPECT_EQ(result.has_value(), row.fits);
        if (result) {
            EXPECT_EQ(result->view(), text);
        }
        EXPECT_GE(produced, row.produced);
        EXPECT_LE(produced, row.bound + 1);
    }
}

}  // namespace
