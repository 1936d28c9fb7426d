// zlib compression of one piece of data after the other.
#include "conversion/Deflater.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

namespace varnpdf {
namespace {

constexpr int kTextLevel = Z_DEFAULT_COMPRESSION;
// Of the levels this one has by far the best ratio of time to size for samples: the higher ones look longer for matches
// that scans do not have.
constexpr int kImageLevel = 3;
constexpr std::size_t kChoiceBytes = std::size_t{2} << 20U;
constexpr std::size_t kTrialBytes = std::size_t{32} << 10U;
constexpr std::size_t kFirstRoom = std::size_t{64} << 10U;

void open(z_stream& stream, int level, int strategy) {
    if (deflateInit2(&stream, level, Z_DEFLATED, MAX_WBITS, 8, strategy) != Z_OK) throw std::bad_alloc();
}

Bytef* bytes(std::string_view data) { return reinterpret_cast<Bytef*>(const_cast<char*>(data.data())); }

uInt chunk(std::size_t size) {
    return static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
}

}  // namespace

Deflater::Deflater() {
    open(stream_, kTextLevel, Z_DEFAULT_STRATEGY);
    try {
        open(trial_, kImageLevel, Z_DEFAULT_STRATEGY);
    } catch (...) {
        deflateEnd(&stream_);
        throw;
    }
}

Deflater::~Deflater() {
    deflateEnd(&stream_);
    deflateEnd(&trial_);
}

void Deflater::reset(int level) {
    size_ = 0;
    untilChoice_ = 0;
    deflateReset(&stream_);
    deflateParams(&stream_, level, Z_DEFAULT_STRATEGY);  // writes nothing yet
    level_ = level;
    strategy_ = Z_DEFAULT_STRATEGY;
}

void Deflater::setStrategy(int strategy) {
    if (strategy == strategy_) return;
    // What was given before is compressed first, as it was meant to be; afterwards there is room for what the change
    // itself writes.
    run({}, Z_BLOCK);
    const uInt room = stream_.avail_out;
    if (deflateParams(&stream_, level_, strategy) != Z_OK) throw std::logic_error("deflateParams");
    size_ += room - stream_.avail_out;
    strategy_ = strategy;
}

void Deflater::run(std::string_view data, int flush) {
    do {
        const std::string_view now = data.substr(0, chunk(data.size()));
        data.remove_prefix(now.size());
        stream_.next_in = bytes(now);
        stream_.avail_in = static_cast<uInt>(now.size());
        do {
            if (out_.size() - size_ < kFirstRoom) out_.resize(std::max(out_.size() * 2, 2 * kFirstRoom));
            stream_.next_out = reinterpret_cast<Bytef*>(out_.data() + size_);
            stream_.avail_out = chunk(out_.size() - size_);
            const uInt room = stream_.avail_out;
            deflate(&stream_, data.empty() ? flush : Z_NO_FLUSH);
            size_ += room - stream_.avail_out;
        } while (stream_.avail_out == 0);
    } while (!data.empty());
}

std::string_view Deflater::whole(std::string_view data) {
    reset(kTextLevel);
    run(data, Z_FINISH);
    return std::string_view(out_).substr(0, size_);
}

void Deflater::startImage() { reset(kImageLevel); }

// Photographs and large areas of one colour gain next to nothing from matches farther back than one byte, and looking
// for them takes twice the time; patterns gain much. A page may hold both.
void Deflater::addSamples(std::string_view samples) {
    while (!samples.empty()) {
        if (untilChoice_ == 0) {
            setStrategy(repeats(samples) ? Z_DEFAULT_STRATEGY : Z_RLE);
            untilChoice_ = kChoiceBytes;
        }
        const std::size_t now = std::min(untilChoice_, samples.size());
        run(samples.substr(0, now), Z_NO_FLUSH);
        samples.remove_prefix(now);
        untilChoice_ -= now;
    }
}

// Tried on a part of the samples: whether matches make the result smaller by more than a quarter.
bool Deflater::repeats(std::string_view samples) {
    samples = samples.substr(0, kTrialBytes);
    trialOut_.resize(compressBound(samples.size()) + 64);
    const auto tried = [&](int strategy) {
        deflateReset(&trial_);
        deflateParams(&trial_, kImageLevel, strategy);
        trial_.next_in = bytes(samples);
        trial_.avail_in = static_cast<uInt>(samples.size());
        trial_.next_out = reinterpret_cast<Bytef*>(trialOut_.data());
        trial_.avail_out = static_cast<uInt>(trialOut_.size());
        deflate(&trial_, Z_FINISH);
        return trial_.total_out;
    };
    return tried(Z_DEFAULT_STRATEGY) * 4 < tried(Z_RLE) * 3;
}

std::string_view Deflater::finish() {
    run({}, Z_FINISH);
    return std::string_view(out_).substr(0, size_);
}

}  // namespace varnpdf
