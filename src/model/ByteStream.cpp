// The growable output buffer of an update.
#include "varnpdf/ByteStream.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "support/Guarded.h"

namespace {

constexpr unsigned int kHeadroom = 20000;

}  // namespace

CByteStream::CByteStream()
    : data_(std::make_unique<unsigned char[]>(kHeadroom)), allocated_(kHeadroom), capacity_(kHeadroom) {}

CByteStream::~CByteStream() = default;

unsigned char* CByteStream::data() { return data_.get(); }
const unsigned char* CByteStream::data() const { return data_.get(); }
unsigned int CByteStream::tell() const { return size_; }
void CByteStream::setseek(unsigned int n) { size_ = n; }
void CByteStream::setoldcontentsize(unsigned int n) { oldContentSize_ = n; }
unsigned int CByteStream::getoldcontentsize() const { return oldContentSize_; }
unsigned int CByteStream::capacity() const { return capacity_; }

void CByteStream::init(unsigned int oldSize) {
    data_ = std::make_unique_for_overwrite<unsigned char[]>(kHeadroom);
    size_ = 0;
    allocated_ = capacity_ = kHeadroom;
    oldContentSize_ = oldSize;
}

int CByteStream::append(unsigned char* p, unsigned int n) {
    return varnpdf::guarded([&]() -> int {
        const std::size_t needed = std::size_t{size_} + n;
        if (needed > capacity_) {
            if (needed > std::numeric_limits<unsigned int>::max() - kHeadroom) return VARNPDF_PDF_MEMORY_ALLOCATION;
            makeRoom(needed + kHeadroom);
        }
        if (n > 0) std::memcpy(data_.get() + size_, p, n);
        size_ += n;
        return VARNPDF_OK;
    });
}

// The capacity that is told grows by the headroom; what is allocated doubles, so that many small appends to a large
// stream stay linear.
void CByteStream::makeRoom(std::size_t capacity) {
    if (capacity > allocated_) {
        const std::size_t grown = std::max(capacity, allocated_ * 2);
        auto data = std::make_unique_for_overwrite<unsigned char[]>(grown);
        std::memcpy(data.get(), data_.get(), std::min(size_, capacity_));
        data_ = std::move(data);
        allocated_ = grown;
    }
    capacity_ = static_cast<unsigned int>(capacity);
}

int CByteStream::print(char* s) {
    return append(reinterpret_cast<unsigned char*>(s), static_cast<unsigned int>(std::strlen(s)));
}

void CByteStream::setseekend(unsigned int /*n*/) {}
