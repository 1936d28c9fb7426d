// zlib compression (RFC 1950) of one piece of data after the other.
#pragma once

#include <string>
#include <string_view>

#include <zlib.h>

namespace varnpdf {

/// A compressor that is set up once and used for many streams.
class Deflater {
public:
    Deflater();
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;
    ~Deflater();

    /// Text: compressed as `compress` does.
    std::string_view whole(std::string_view data);

    /// Samples of an image, in any number of pieces.
    void startImage();
    void addSamples(std::string_view samples);
    /// The compressed stream, valid until the next one is begun.
    std::string_view finish();
    /// Bytes compressed so far.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

private:
    void reset(int level);
    void setStrategy(int strategy);
    void run(std::string_view data, int flush);
    bool repeats(std::string_view samples);

    z_stream stream_{};
    z_stream trial_{};
    std::string out_;
    std::string trialOut_;
    std::size_t size_ = 0;
    std::size_t untilChoice_ = 0;
    int level_ = Z_DEFAULT_COMPRESSION;
    int strategy_ = Z_DEFAULT_STRATEGY;
};

}  // namespace varnpdf
