// Signature values: CMS SignedData (RFC 5652) over bytes that stand elsewhere, made and checked.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "keys.h"
#include "openssl.h"

namespace cli {

/// The bytes that are signed, in pieces, so that nobody has to join them.
using Pieces = std::span<const std::string_view>;

/// Digest of the pieces as one text; nothing when OpenSSL refuses.
std::optional<std::string> digestOf(const EVP_MD* digest, Pieces pieces);

/// Signed attributes of a value. Neither kind has a signing-time: PAdES baseline forbids it beside /M (ETSI EN 319 142-1
/// 6.3), and for the other one /M says it as well.
enum class ValueKind {
    kCades,  ///< content-type, message-digest, signing-certificate-v2 (ETSI EN 319 122-1, level B-B)
    kPkcs7,  ///< content-type, message-digest
};

/// Makes values with one key.
class ValueMaker {
public:
    /// Nothing after a complaint: a key that cannot sign here, or PSS without an RSA key. `identity` must outlive it.
    static std::optional<ValueMaker> create(const Identity& identity, ValueKind kind, bool pss);

    /// The digest that the signed bytes are to be hashed with.
    [[nodiscard]] const EVP_MD* digest() const { return digest_; }
    /// Length that a value can be made with. ECDSA values vary by a few bytes; then it is a frequent one.
    std::optional<std::size_t> length();
    /// A value for this digest of the signed bytes that is exactly `length` bytes long.
    std::optional<std::string> make(std::string_view messageDigest, std::size_t length);

private:
    ValueMaker(const Identity& identity, ValueKind kind, bool pss) : identity_(&identity), kind_(kind), pss_(pss) {}
    bool choose();
    bool chooseDigest();
    bool describe();
    DigestPtr begin(EVP_PKEY_CTX** context) const;
    [[nodiscard]] std::optional<std::string> sign(std::string_view attributes) const;
    [[nodiscard]] std::string attributes(std::string_view messageDigest) const;
    [[nodiscard]] std::string signingCertificate() const;
    [[nodiscard]] std::string assemble(std::string_view attributes, std::string_view signature) const;

    const Identity* identity_;
    ValueKind kind_;
    bool pss_;
    bool varying_ = false;  // ECDSA: two integers without leading zeros
    const EVP_MD* digest_ = nullptr;
    const EVP_MD* inner_ = nullptr;  // what the key hashes with; null for Ed25519, which does it by itself
    std::string signatureAlgorithm_;
    std::string signerId_;  // IssuerAndSerialNumber
    std::string certificateHash_;
    std::string certificates_;  // CertificateSet, [0] IMPLICIT
};

/// What checking a value came to.
enum class ValueState {
    kIntact,
    kUnreadable,      ///< no CMS SignedData, or not one with exactly one signer
    kNoSigner,        ///< the signer's certificate is not in it
    kDigestDiffers,   ///< other bytes were signed
    kSignatureWrong,  ///< not made by the signer's key
    kUnsupported,     ///< an algorithm that cannot be checked here
};

struct ValueReport {
    ValueState state = ValueState::kUnreadable;
    std::string digest;  ///< name of the digest, "SHA256"
    CertificatePtr signer;
    CertificatesPtr certificates;
};

/// What the value was made over.
enum class ValueContent {
    kBytes,      ///< the pieces
    kSha1,       ///< the SHA-1 digest of the pieces, which the value carries (adbe.pkcs7.sha1)
    kTimeStamp,  ///< a time-stamp token (RFC 3161) with the digest of the pieces (ETSI.RFC3161)
};

/// Checks a value that begins at `value`; what stands behind it (padding) is not looked at.
ValueReport checkValue(std::string_view value, Pieces pieces, ValueContent content);
/// A sentence for a state.
const char* sentenceOf(ValueState state);
/// Bytes that the value takes; 0 when it is no CMS SignedData.
std::size_t valueLength(std::string_view value);

/// Every certificate of a PEM file as trust anchor; null after a complaint.
StorePtr trustedCertificates(const std::string& path);
/// Why the signer's certificate does not lead to an anchor; nothing when it does.
std::optional<std::string> chainProblem(const ValueReport& report, X509_STORE* anchors);

}  // namespace cli
