// Runs of black and white as zlib streams.
#include "conversion/RunDeflater.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "support/Inflate.h"

using namespace varnpdf;

namespace {

// Rows of all kinds of runs, among them those around the longest match, and more tokens than a block has.
TEST(RunDeflater, InflatesToTheSamples) {
    std::mt19937 random(7);
    RunDeflater deflater;
    for (const std::uint32_t width : {1U, 2U, 7U, 8U, 63U, 65U, 86U, 87U, 88U, 1000U, 200'000U}) {
        for (const unsigned longest : {1U, 2U, 90U, 5000U}) {
            for (const unsigned char one : {std::uint8_t{0}, std::uint8_t{255}}) {
                std::vector<unsigned char> row((width + 7) / 8 + 8, 0xA5);
                std::string samples;
                deflater.start();
                bool bit = false;
                std::uint32_t left = 0;
                for (int y = 0; y < 5; ++y) {
                    for (std::uint32_t x = 0; x < width; ++x) {
                        if (left == 0) bit = !bit;
                        if (left == 0) left = 1 + static_cast<std::uint32_t>(random()) % longest;
                        --left;
                        const auto mask = static_cast<unsigned char>(0x80U >> x % 8);
                        row[x / 8] = static_cast<unsigned char>(bit ? row[x / 8] | mask : row[x / 8] & ~mask);
                        samples.append(3, static_cast<char>(bit ? one : 255 - one));
                    }
                    deflater.addRow(row.data(), width, one);
                }
                const auto inflated = inflateAll(deflater.finish(), samples.size() + 1);
                ASSERT_TRUE(inflated) << width << ' ' << longest;
                ASSERT_TRUE(inflated->view() == samples) << width << ' ' << longest;
            }
        }
    }
}

}  // namespace
