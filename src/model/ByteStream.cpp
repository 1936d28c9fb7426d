// The growable output buffer of an update.
#include "varnpdf/ByteStream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace {

constexpr unsigned int kHeadroom = 20000;

}  // namespace

CByteStream::CByteStream() : data_(std::make_unique<unsigned char[]>(kHeadroom)), capacity_(kHeadroom) {}

CByteStream::~CByteStream() = default;

void CByteStream::init(unsigned int oldSize) {
    data_ = std::make_unique_for_overwrite<unsigned char[]>(kHeadroom);
    size_ = 0;
    capacity_ = kHeadroom;
    oldContentSize_ = oldSize;
}

int CByteStream::append(unsigned char* p, unsigned int n) {
    const std::size_t needed = std::size_t{size_} + n;
    if (needed > capacity_) {
        if (needed > std::numeric_limits<unsigned int>::max() - kHeadroom) throw std::length_error("CByteStream");
        const auto grown = static_cast<unsigned int>(needed) + kHeadroom;
        auto data = std::make_unique_for_overwrite<unsigned char[]>(grown);
        std::memcpy(data.get(), data_.get(), std::min(size_, capacity_));
        data_ = std::move(data);
        capacity_ = grown;
    }
    if (n > 0) std::memcpy(data_.get() + size_, p, n);
    size_ += n;
    return 0;
}

int CByteStream::print(char* s) {
    return append(reinterpret_cast<unsigned char*>(s), static_cast<unsigned int>(std::strlen(s)));
}

void CByteStream::setseekend(unsigned int /*n*/) {}
