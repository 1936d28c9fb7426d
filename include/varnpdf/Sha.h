// Digests (FIPS 180-4) and Base64 (RFC 4648 section 4).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "varnpdf/export.h"

/// A message digest that is fed piece by piece.
class VARNPDF_EXPORT IMessageDigest {
public:
    IMessageDigest();
    IMessageDigest(const IMessageDigest&);
    IMessageDigest& operator=(const IMessageDigest&);
    virtual ~IMessageDigest();

    /// Feeds `len` bytes; null or a length below 1 feeds nothing.
    virtual void AddData(const char* data, int len) = 0;
    /// Writes the digest as raw bytes and starts a new message.
    virtual void FinalDigest(char* out) = 0;
    /// Starts a new message.
    virtual void Reset() = 0;
    /// Compresses the current block into the chaining values.
    virtual void Transform() = 0;
};

/// A word of SHA-384 and SHA-512.
struct SUI64 {
    std::uint64_t value;
};

/// SHA-1, SHA-256, SHA-384 or SHA-512. One thread at a time; different objects are independent.
class VARNPDF_EXPORT CSHA : public IMessageDigest {
public:
    /// @param type  1 SHA-256, 2 SHA-384, 3 SHA-512, anything else SHA-1
    explicit CSHA(int type);
    CSHA(const CSHA&);
    CSHA& operator=(const CSHA&);
    ~CSHA() override;

    void AddData(const char* data, int len) override;
    /// Writes 20, 32, 48 or 64 bytes to `out`; null only starts a new message.
    void FinalDigest(char* out) override;
    void Reset() override;
    void Transform() override;

    /// The functions sigma 0 and sigma 1 of the message schedule of SHA-384 and SHA-512 (FIPS 180-4 4.1.3).
    static SUI64 SIG0(const SUI64& word);
    static SUI64 SIG1(const SUI64& word);

private:
    static constexpr std::size_t kLargestBlock = 128;

    int type_;
    std::size_t used_ = 0;            // bytes in the block
    std::uint64_t bits_[2] = {0, 0};  // length of the message: high and low word
    std::array<std::uint32_t, 8> narrow_{};
    std::array<std::uint64_t, 8> wide_{};
    std::array<unsigned char, kLargestBlock> block_{};
};

/// Base64 of `len` bytes, padded with "=", without line breaks. This and `base64_decode` throw std::bad_alloc without
/// memory.
VARNPDF_EXPORT std::string base64_encode(const unsigned char* data, unsigned int len);
/// The bytes of a Base64 text. The first character outside of the alphabet ends it, a line break as well as "=".
VARNPDF_EXPORT std::vector<unsigned char> base64_decode(const std::string& text);
