// Checking of signature values.
#include <openssl/err.h>
#include <openssl/ts.h>

#include "cms.h"
#include "der.h"

namespace {

using cli::Pieces;
using cli::ValueContent;
using cli::ValueReport;
using cli::ValueState;

using TokenPtr = std::unique_ptr<TS_TST_INFO, cli::Releaser<TS_TST_INFO_free>>;
inline void releaseList(ASN1_SEQUENCE_ANY* list) noexcept { sk_ASN1_TYPE_pop_free(list, ASN1_TYPE_free); }
using AnyListPtr = std::unique_ptr<ASN1_SEQUENCE_ANY, cli::Releaser<releaseList>>;

cli::CmsPtr parse(std::string_view value, std::size_t* length = nullptr) {
    const unsigned char* at = cli::bytesOf(value);
    cli::CmsPtr cms(d2i_CMS_ContentInfo(nullptr, &at, static_cast<long>(value.size())));
    if (cms && OBJ_obj2nid(CMS_get0_type(cms.get())) != NID_pkcs7_signed) cms.reset();
    ERR_clear_error();
    if (cms && length != nullptr) *length = static_cast<std::size_t>(at - cli::bytesOf(value));
    return cms;
}

std::string_view viewOf(const ASN1_STRING* text) {
    if (text == nullptr) return {};
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(text)),
            static_cast<std::size_t>(ASN1_STRING_length(text))};
}

std::string_view attributeValue(const CMS_SignerInfo* signer, int nid, int type) {
    // -3: exactly one attribute of this type with exactly one value (RFC 5652 11).
    return viewOf(static_cast<const ASN1_STRING*>(CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(nid), -3, type)));
}

bool hasAttributes(const CMS_SignerInfo* signer) { return CMS_signed_get_attr_count(signer) >= 0; }

/// The attributes name the kind of the content that is there (RFC 5652 5.3 demands it).
bool contentTypeFits(CMS_ContentInfo* cms, const CMS_SignerInfo* signer) {
    const auto* named = static_cast<const ASN1_OBJECT*>(
        CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(NID_pkcs9_contentType), -3, V_ASN1_OBJECT));
    return named != nullptr && OBJ_cmp(named, CMS_get0_eContentType(cms)) == 0;
}

/// Elements of a SEQUENCE; empty when it is none.
AnyListPtr elementsOf(const ASN1_TYPE* sequence) {
    if (sequence == nullptr || sequence->type != V_ASN1_SEQUENCE) return nullptr;
    const unsigned char* at = ASN1_STRING_get0_data(sequence->value.sequence);
    return AnyListPtr(d2i_ASN1_SEQUENCE_ANY(nullptr, &at, ASN1_STRING_length(sequence->value.sequence)));
}

/// The hash of the first certificate named by a signing-certificate attribute (RFC 5035 3 and 4), the signer's, is that
/// of `signer`. `digest` is the one that holds where the attribute names none.
bool namesCertificate(std::string_view attribute, const EVP_MD* digest, const X509* signer) {
    const unsigned char* at = cli::bytesOf(attribute);
    const AnyListPtr top(d2i_ASN1_SEQUENCE_ANY(nullptr, &at, static_cast<long>(attribute.size())));
    const AnyListPtr ids = elementsOf(sk_ASN1_TYPE_value(top.get(), 0));
    const AnyListPtr id = elementsOf(sk_ASN1_TYPE_value(ids.get(), 0));
    const ASN1_TYPE* hash = sk_ASN1_TYPE_value(id.get(), 0);
    if (const AnyListPtr algorithm = elementsOf(hash)) {
        const ASN1_TYPE* name = sk_ASN1_TYPE_value(algorithm.get(), 0);
        if (name == nullptr || name->type != V_ASN1_OBJECT) return false;
        digest = EVP_get_digestbyobj(name->value.object);
        hash = sk_ASN1_TYPE_value(id.get(), 1);
    }
    if (hash == nullptr || hash->type != V_ASN1_OCTET_STRING) return false;
    const std::string whole = cli::der::encoded(signer, i2d_X509);
    const std::string_view piece[] = {whole};
    return cli::digestOf(digest, piece) == viewOf(hash->value.octet_string);
}

/// The signing-certificate attributes, where there are any, mean the signer's certificate: the key alone could belong to
/// several.
bool certificateFits(const CMS_SignerInfo* signer, const X509* certificate) {
    const std::string_view first = attributeValue(signer, NID_id_smime_aa_signingCertificate, V_ASN1_SEQUENCE);
    const std::string_view second = attributeValue(signer, NID_id_smime_aa_signingCertificateV2, V_ASN1_SEQUENCE);
    return (first.empty() || namesCertificate(first, EVP_sha1(), certificate)) &&
           (second.empty() || namesCertificate(second, EVP_sha256(), certificate));
}

void takeSigner(CMS_ContentInfo* cms, CMS_SignerInfo* signer, ValueReport& report) {
    report.certificates.reset(CMS_get1_certs(cms));
    for (int i = 0; i < sk_X509_num(report.certificates.get()); ++i) {
        X509* candidate = sk_X509_value(report.certificates.get(), i);
        if (CMS_SignerInfo_cert_cmp(signer, candidate) != 0) continue;
        X509_up_ref(candidate);
        report.signer.reset(candidate);
        CMS_SignerInfo_set1_signer_cert(signer, candidate);
        return;
    }
}

/// The attributes as they were signed: in their order, with the tag of a SET (RFC 5652 5.4).
std::string signedAttributes(const CMS_SignerInfo* signer) {
    std::string all;
    for (int i = 0; i < CMS_signed_get_attr_count(signer); ++i) {
        all +=
            cli::der::encoded(static_cast<const X509_ATTRIBUTE*>(CMS_signed_get_attr(signer, i)), i2d_X509_ATTRIBUTE);
    }
    return cli::der::element(cli::der::kSet, all);
}

/// OpenSSL 3.0 does not check Ed25519 inside CMS.
ValueState checkEd25519(CMS_SignerInfo* signer, Pieces content) {
    std::string message;
    if (hasAttributes(signer)) {
        message = signedAttributes(signer);
    } else {
        for (const std::string_view piece : content) message += piece;
    }
    const ASN1_OCTET_STRING* signature = CMS_SignerInfo_get0_signature(signer);
    EVP_PKEY* key = nullptr;
    CMS_SignerInfo_get0_algs(signer, &key, nullptr, nullptr, nullptr);
    const cli::DigestPtr context(EVP_MD_CTX_new());
    const bool good = EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key) == 1 &&
                      EVP_DigestVerify(context.get(), ASN1_STRING_get0_data(signature),
                                       static_cast<std::size_t>(ASN1_STRING_length(signature)), cli::bytesOf(message),
                                       message.size()) == 1;
    return good ? ValueState::kIntact : ValueState::kSignatureWrong;
}

/// A signature without signed attributes is one over the content itself.
bool contentSignatureFits(CMS_ContentInfo* cms, CMS_SignerInfo* signer, Pieces content) {
    const cli::BioPtr chain(CMS_dataInit(cms, BIO_new(BIO_s_null())));
    if (!chain) return false;
    for (const std::string_view piece : content) {
        if (BIO_write(chain.get(), piece.data(), static_cast<int>(piece.size())) != static_cast<int>(piece.size())) {
            return false;
        }
    }
    return CMS_SignerInfo_verify_content(signer, chain.get()) == 1;
}

ValueState checkSignature(CMS_ContentInfo* cms, CMS_SignerInfo* signer, Pieces content) {
    EVP_PKEY* key = nullptr;
    X509_ALGOR* algorithm = nullptr;
    CMS_SignerInfo_get0_algs(signer, &key, nullptr, nullptr, &algorithm);
    const ASN1_OBJECT* object = nullptr;
    X509_ALGOR_get0(&object, nullptr, nullptr, algorithm);
    // Some countries have numbers of their own for ECDSA, with signatures in a form of their own.
    if (key == nullptr || OBJ_obj2nid(object) == NID_undef) return ValueState::kUnsupported;
    if (EVP_PKEY_is_a(key, "ED25519") == 1) return checkEd25519(signer, content);
    const bool known = EVP_PKEY_is_a(key, "RSA") == 1 || EVP_PKEY_is_a(key, "RSA-PSS") == 1 ||
                       EVP_PKEY_is_a(key, "EC") == 1 || EVP_PKEY_is_a(key, "DSA") == 1;
    if (!known) return ValueState::kUnsupported;
    const bool good =
        hasAttributes(signer) ? CMS_SignerInfo_verify(signer) == 1 : contentSignatureFits(cms, signer, content);
    return good ? ValueState::kIntact : ValueState::kSignatureWrong;
}

/// The value as signature over `content`, from the digest inwards.
ValueState checkSigned(CMS_ContentInfo* cms, Pieces content, ValueReport& report) {
    STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms);
    if (sk_CMS_SignerInfo_num(signers) != 1) return ValueState::kUnreadable;
    CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, 0);
    X509_ALGOR* algorithm = nullptr;
    CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &algorithm, nullptr);
    const ASN1_OBJECT* object = nullptr;
    X509_ALGOR_get0(&object, nullptr, nullptr, algorithm);
    const EVP_MD* digest = EVP_get_digestbyobj(object);
    if (digest == nullptr) return ValueState::kUnsupported;
    report.digest = EVP_MD_get0_name(digest);
    takeSigner(cms, signer, report);
    if (hasAttributes(signer)) {
        const std::optional<std::string> found = cli::digestOf(digest, content);
        if (!found) return ValueState::kUnsupported;
        if (attributeValue(signer, NID_pkcs9_messageDigest, V_ASN1_OCTET_STRING) != *found) {
            return ValueState::kDigestDiffers;
        }
        if (!contentTypeFits(cms, signer)) return ValueState::kSignatureWrong;
    }
    if (!report.signer) return ValueState::kNoSigner;
    if (hasAttributes(signer) && !certificateFits(signer, report.signer.get())) return ValueState::kSignatureWrong;
    return checkSignature(cms, signer, content);
}

/// What the value carries says the digest of the pieces.
bool carriedDigestFits(std::string_view carried, Pieces pieces, ValueContent content) {
    if (content == ValueContent::kSha1) return cli::digestOf(EVP_sha1(), pieces) == carried;
    const unsigned char* at = cli::bytesOf(carried);
    const TokenPtr token(d2i_TS_TST_INFO(nullptr, &at, static_cast<long>(carried.size())));
    if (!token) return false;
    TS_MSG_IMPRINT* imprint = TS_TST_INFO_get_msg_imprint(token.get());
    const ASN1_OBJECT* object = nullptr;
    X509_ALGOR_get0(&object, nullptr, nullptr, TS_MSG_IMPRINT_get_algo(imprint));
    return cli::digestOf(EVP_get_digestbyobj(object), pieces) == viewOf(TS_MSG_IMPRINT_get_msg(imprint));
}

ValueState check(CMS_ContentInfo* cms, Pieces pieces, ValueContent content, ValueReport& report) {
    if (content == ValueContent::kBytes) return checkSigned(cms, pieces, report);
    ASN1_OCTET_STRING** carried = CMS_get0_content(cms);
    if (carried == nullptr || *carried == nullptr) return ValueState::kUnreadable;
    if (content == ValueContent::kTimeStamp && OBJ_obj2nid(CMS_get0_eContentType(cms)) != NID_id_smime_ct_TSTInfo) {
        return ValueState::kUnreadable;
    }
    const std::string_view inner[] = {viewOf(*carried)};
    const ValueState state = checkSigned(cms, inner, report);
    if (state == ValueState::kIntact && !carriedDigestFits(inner[0], pieces, content)) {
        return ValueState::kDigestDiffers;
    }
    return state;
}

}  // namespace

cli::ValueReport cli::checkValue(std::string_view value, Pieces pieces, ValueContent content) {
    ValueReport report;
    if (const CmsPtr cms = parse(value)) report.state = check(cms.get(), pieces, content, report);
    ERR_clear_error();
    return report;
}

const char* cli::sentenceOf(ValueState state) {
    switch (state) {
        case ValueState::kIntact:
            return "the signature is intact";
        case ValueState::kUnreadable:
            return "the signature value is no CMS SignedData with one signer";
        case ValueState::kNoSigner:
            return "the signature value does not hold its signer's certificate";
        case ValueState::kDigestDiffers:
            return "the signed bytes are not those that were signed: the message digest differs";
        case ValueState::kSignatureWrong:
            return "the signature does not fit the signer's certificate";
        case ValueState::kUnsupported:
            return "the signature uses an algorithm that is not supported here";
    }
    return "";
}

std::size_t cli::valueLength(std::string_view value) {
    std::size_t length = 0;
    return parse(value, &length) ? length : 0;
}

cli::StorePtr cli::trustedCertificates(const std::string& path) {
    const std::vector<CertificatePtr> all = readCertificates(path);
    if (all.empty()) return nullptr;
    StorePtr store(X509_STORE_new());
    for (const CertificatePtr& one : all) X509_STORE_add_cert(store.get(), one.get());
    return store;
}

std::optional<std::string> cli::chainProblem(const ValueReport& report, X509_STORE* anchors) {
    if (!report.signer) return "there is no certificate to trust";
    const StoreContextPtr context(X509_STORE_CTX_new());
    if (X509_STORE_CTX_init(context.get(), anchors, report.signer.get(), report.certificates.get()) != 1) {
        return opensslReason();
    }
    X509_VERIFY_PARAM* how = X509_STORE_CTX_get0_param(context.get());
    X509_VERIFY_PARAM_set_purpose(how, X509_PURPOSE_ANY);
    // Whatever the user named is an anchor, also when it is no root.
    X509_VERIFY_PARAM_set_flags(how, X509_V_FLAG_PARTIAL_CHAIN);
    const bool good = X509_verify_cert(context.get()) == 1;
    const int error = X509_STORE_CTX_get_error(context.get());
    opensslReason();
    if (good) return std::nullopt;
    return X509_verify_cert_error_string(error);
}
