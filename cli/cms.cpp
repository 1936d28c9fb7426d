// Making of signature values.
//
// OpenSSL 3.0 puts a signing-time into every CMS signature that has signed attributes and cannot make one with Ed25519.
// The value is therefore put together here; only digest, signature and the parts of certificates are OpenSSL's.
#include "cms.h"

#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/rsa.h>

#include <algorithm>
#include <array>
#include <vector>

#include "command.h"
#include "der.h"

namespace {

using cli::der::element;
using cli::der::objectIdentifier;

constexpr int kTries = 2000;  // a length that every fourth ECDSA signature has is missed once in 10^250 runs

std::string attribute(int nid, std::string_view value) {
    return element(cli::der::kSequence, objectIdentifier(nid) + element(cli::der::kSet, value));
}

/// A digest's AlgorithmIdentifier without parameters, as RFC 5754 2 asks for.
std::string digestIdentifier(const EVP_MD* digest) {
    return element(cli::der::kSequence, objectIdentifier(EVP_MD_get_type(digest)));
}

const EVP_MD* digestForCurve(int bits) {
    if (bits <= 256) return EVP_sha256();
    return bits <= 384 ? EVP_sha384() : EVP_sha512();
}

bool complainOfKey(const std::string& sentence) {
    cli::complain("key", sentence);
    return false;
}

}  // namespace

std::optional<std::string> cli::digestOf(const EVP_MD* digest, Pieces pieces) {
    const DigestPtr context(EVP_MD_CTX_new());
    if (!context || digest == nullptr || EVP_DigestInit_ex(context.get(), digest, nullptr) != 1) return std::nullopt;
    for (const std::string_view piece : pieces) {
        if (EVP_DigestUpdate(context.get(), piece.data(), piece.size()) != 1) return std::nullopt;
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> out{};
    unsigned int length = 0;
    if (EVP_DigestFinal_ex(context.get(), out.data(), &length) != 1) return std::nullopt;
    return std::string(reinterpret_cast<const char*>(out.data()), length);
}

std::optional<cli::ValueMaker> cli::ValueMaker::create(const Identity& identity, ValueKind kind, bool pss) {
    ValueMaker maker(identity, kind, pss);
    if (!maker.choose()) return std::nullopt;
    return maker;
}

bool cli::ValueMaker::choose() {
    const EVP_PKEY* key = identity_->key.get();
    if (pss_ && EVP_PKEY_is_a(key, "RSA") != 1 && EVP_PKEY_is_a(key, "RSA-PSS") != 1) {
        return complainOfKey("RSA-PSS needs an RSA key");
    }
    if (!chooseDigest()) return false;
    if (!describe()) return complainOfKey("OpenSSL does not sign with this key");
    return true;
}

bool cli::ValueMaker::chooseDigest() {
    EVP_PKEY* key = identity_->key.get();
    if (EVP_PKEY_is_a(key, "ED25519") == 1) {
        digest_ = EVP_sha512();  // RFC 8419 3.1
        return true;
    }
    if (EVP_PKEY_is_a(key, "EC") == 1) {
        varying_ = true;
        digest_ = digestForCurve(EVP_PKEY_get_bits(key));
    } else if (EVP_PKEY_is_a(key, "RSA") == 1) {
        digest_ = EVP_sha256();
    } else if (EVP_PKEY_is_a(key, "RSA-PSS") == 1) {
        // Such a key may be bound to one digest (RFC 4055 1.2).
        char name[64] = "";
        const bool bound = EVP_PKEY_get_default_digest_name(key, name, sizeof name) == 2;
        digest_ = bound ? EVP_get_digestbyname(name) : EVP_sha256();
        if (digest_ == nullptr || EVP_MD_get_size(digest_) < 32) {
            return complainOfKey(std::string("it may only be used with ") + name + ", which is too weak");
        }
    } else {
        const char* type = EVP_PKEY_get0_type_name(key);
        return complainOfKey(std::string("keys of the type ") + (type != nullptr ? type : "unknown") +
                             " cannot sign here; RSA, RSA-PSS, ECDSA and Ed25519 can");
    }
    inner_ = digest_;
    return true;
}

/// What of a value is the same every time.
bool cli::ValueMaker::describe() {
    EVP_PKEY_CTX* context = nullptr;
    const DigestPtr signing = begin(&context);
    std::array<unsigned char, 256> algorithm{};
    OSSL_PARAM wanted[] = {
        OSSL_PARAM_construct_octet_string(OSSL_SIGNATURE_PARAM_ALGORITHM_ID, algorithm.data(), algorithm.size()),
        OSSL_PARAM_construct_end()};
    if (!signing || EVP_PKEY_CTX_get_params(context, wanted) != 1) return false;
    signatureAlgorithm_.assign(reinterpret_cast<const char*>(algorithm.data()), wanted[0].return_size);

    const X509* certificate = identity_->certificate.get();
    const std::string whole = der::encoded(certificate, i2d_X509);
    signerId_ = der::encoded(X509_get_issuer_name(certificate), i2d_X509_NAME) +
                der::encoded(X509_get0_serialNumber(certificate), i2d_ASN1_INTEGER);
    const std::string_view piece[] = {whole};
    certificateHash_ = digestOf(EVP_sha256(), piece).value_or("");
    std::vector<std::string> all{whole};
    for (const CertificatePtr& other : identity_->chain) {
        std::string text = der::encoded(static_cast<const X509*>(other.get()), i2d_X509);
        if (std::find(all.begin(), all.end(), text) == all.end()) all.push_back(std::move(text));
    }
    certificates_ = der::setOf(der::kContext0, std::move(all));
    return !signatureAlgorithm_.empty() && !whole.empty() && !certificateHash_.empty();
}

cli::DigestPtr cli::ValueMaker::begin(EVP_PKEY_CTX** context) const {
    DigestPtr signing(EVP_MD_CTX_new());
    EVP_PKEY* key = identity_->key.get();
    if (!signing || EVP_DigestSignInit(signing.get(), context, inner_, nullptr, key) != 1) return nullptr;
    if (!pss_ && EVP_PKEY_is_a(key, "RSA-PSS") != 1) return signing;
    const bool good = EVP_PKEY_CTX_set_rsa_padding(*context, RSA_PKCS1_PSS_PADDING) == 1 &&
                      EVP_PKEY_CTX_set_rsa_pss_saltlen(*context, RSA_PSS_SALTLEN_DIGEST) == 1;
    return good ? std::move(signing) : nullptr;
}

std::optional<std::string> cli::ValueMaker::sign(std::string_view attributes) const {
    EVP_PKEY_CTX* context = nullptr;
    const DigestPtr signing = begin(&context);
    std::size_t length = 0;
    if (!signing || EVP_DigestSign(signing.get(), nullptr, &length, bytesOf(attributes), attributes.size()) != 1) {
        return std::nullopt;
    }
    std::string out(length, '\0');
    auto* to = reinterpret_cast<unsigned char*>(out.data());
    if (EVP_DigestSign(signing.get(), to, &length, bytesOf(attributes), attributes.size()) != 1) return std::nullopt;
    out.resize(length);
    return out;
}

/// SigningCertificateV2 (RFC 5035 3): one ESSCertIDv2, whose hash algorithm is left out as the default, SHA-256.
std::string cli::ValueMaker::signingCertificate() const {
    const X509* certificate = identity_->certificate.get();
    const std::string issuer = der::encoded(X509_get_issuer_name(certificate), i2d_X509_NAME);
    const std::string serial = der::encoded(X509_get0_serialNumber(certificate), i2d_ASN1_INTEGER);
    const std::string names = element(der::kSequence, element(der::kContext4, issuer));  // GeneralNames: directoryName
    const std::string id =
        element(der::kSequence, element(der::kOctetString, certificateHash_) + element(der::kSequence, names + serial));
    return element(der::kSequence, element(der::kSequence, id));
}

/// The signed attributes as they are signed: with the tag of a SET (RFC 5652 5.4).
std::string cli::ValueMaker::attributes(std::string_view messageDigest) const {
    std::vector<std::string> all = {
        attribute(NID_pkcs9_contentType, objectIdentifier(NID_pkcs7_data)),
        attribute(NID_pkcs9_messageDigest, element(der::kOctetString, messageDigest)),
    };
    if (kind_ == ValueKind::kCades) {
        all.push_back(attribute(NID_id_smime_aa_signingCertificateV2, signingCertificate()));
    }
    return der::setOf(der::kSet, std::move(all));
}

std::string cli::ValueMaker::assemble(std::string_view attributes, std::string_view signature) const {
    constexpr std::string_view kVersion1("\x02\x01\x01", 3);
    const std::string version(kVersion1);
    std::string tagged(attributes);
    tagged[0] = static_cast<char>(der::kContext0);
    const std::string signer =
        element(der::kSequence, version + element(der::kSequence, signerId_) + digestIdentifier(digest_) + tagged +
                                    signatureAlgorithm_ + element(der::kOctetString, signature));
    const std::string content = element(der::kSequence, objectIdentifier(NID_pkcs7_data));  // detached: no eContent
    const std::string signedData = element(der::kSequence, version + element(der::kSet, digestIdentifier(digest_)) +
                                                               content + certificates_ + element(der::kSet, signer));
    return element(der::kSequence, objectIdentifier(NID_pkcs7_signed) + element(der::kContext0, signedData));
}

std::optional<std::size_t> cli::ValueMaker::length() {
    const std::string dummy = attributes(std::string(static_cast<std::size_t>(EVP_MD_get_size(digest_)), '\0'));
    if (!varying_) {
        // The attributes do not matter here, so nothing is signed to learn the length.
        const int size = EVP_PKEY_get_size(identity_->key.get());
        return assemble(dummy, std::string(static_cast<std::size_t>(size), '\0')).size();
    }
    std::array<std::size_t, 3> lengths{};
    for (std::size_t& length : lengths) {
        const std::optional<std::string> signature = sign(dummy);
        if (!signature) {
            complainOfKey("OpenSSL does not sign with this key");
            return std::nullopt;
        }
        length = assemble(dummy, *signature).size();
    }
    std::sort(lengths.begin(), lengths.end());
    return lengths[1];
}

std::optional<std::string> cli::ValueMaker::make(std::string_view messageDigest, std::size_t length) {
    const std::string signedAttributes = attributes(messageDigest);
    for (int i = 0; i < (varying_ ? kTries : 1); ++i) {
        const std::optional<std::string> signature = sign(signedAttributes);
        if (!signature) {
            complainOfKey("OpenSSL does not sign with this key");
            return std::nullopt;
        }
        std::string value = assemble(signedAttributes, *signature);
        if (value.size() == length) return value;
    }
    complainOfKey("no signature of the expected length could be made");
    return std::nullopt;
}
