// Validation material from files.
#include "material.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include "command.h"
#include "state.h"

namespace {

template <typename T>
T* parse(T* (*d2i)(T**, const unsigned char**, long), void (*release)(T*), std::string_view der) {
    const unsigned char* at = cli::bytesOf(der);
    T* const value = d2i(nullptr, &at, static_cast<long>(der.size()));
    ERR_clear_error();
    if (value == nullptr || at == cli::bytesOf(der) + der.size()) return value;
    release(value);
    return nullptr;
}

/// Why the bytes are not wanted; null when they are.
const char* problemOf(std::string_view der, cli::Material kind) {
    switch (kind) {
        case cli::Material::kCertificate:
            return cli::parseCertificate(der) ? nullptr : "this is no certificate in PEM or DER";
        case cli::Material::kCrl:
            return cli::parseCrl(der) ? nullptr : "this is no certificate revocation list in PEM or DER";
        default:
            break;
    }
    const cli::OcspPtr response = cli::parseOcsp(der);
    if (!response) return "this is no OCSP response in DER";
    const bool answers = OCSP_response_status(response.get()) == OCSP_RESPONSE_STATUS_SUCCESSFUL &&
                         cli::BasicOcspPtr(OCSP_response_get1_basic(response.get()));
    ERR_clear_error();
    return answers ? nullptr : "this OCSP response holds no answer, only that the responder could not give one";
}

bool isWanted(std::string_view block, cli::Material kind) {
    switch (kind) {
        case cli::Material::kCertificate:
            return block == PEM_STRING_X509 || block == PEM_STRING_X509_OLD;
        case cli::Material::kCrl:
            return block == PEM_STRING_X509_CRL;
        default:
            return block == "OCSP RESPONSE";
    }
}

/// The wanted blocks of a PEM text; others, such as a key beside its certificate, are passed over.
std::vector<std::string> pemBlocks(const std::string& text, cli::Material kind) {
    std::vector<std::string> blocks;
    const cli::BioPtr bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    char* name = nullptr;
    char* header = nullptr;
    unsigned char* data = nullptr;
    long length = 0;
    while (bio && PEM_read_bio(bio.get(), &name, &header, &data, &length) == 1) {
        if (isWanted(name, kind)) blocks.emplace_back(reinterpret_cast<char*>(data), static_cast<std::size_t>(length));
        OPENSSL_free(name);
        OPENSSL_free(header);
        OPENSSL_free(data);
    }
    ERR_clear_error();
    return blocks;
}

}  // namespace

cli::CertificatePtr cli::parseCertificate(std::string_view der) {
    return CertificatePtr(parse<X509>(d2i_X509, X509_free, der));
}

cli::CrlPtr cli::parseCrl(std::string_view der) { return CrlPtr(parse<X509_CRL>(d2i_X509_CRL, X509_CRL_free, der)); }

cli::OcspPtr cli::parseOcsp(std::string_view der) {
    return OcspPtr(parse<OCSP_RESPONSE>(d2i_OCSP_RESPONSE, OCSP_RESPONSE_free, der));
}

std::optional<std::vector<std::string>> cli::readMaterial(const std::string& path, Material kind) {
    std::optional<std::string> bytes = readFile(path);
    if (!bytes) return std::nullopt;
    std::vector<std::string> values = pemBlocks(*bytes, kind);
    if (values.empty()) values.push_back(std::move(*bytes));
    for (const std::string& value : values) {
        if (const char* const problem = problemOf(value, kind)) {
            complain(path, problem);
            return std::nullopt;
        }
    }
    return values;
}

std::string cli::nameOf(const X509_NAME* name) {
    const BioPtr bio(BIO_new(BIO_s_mem()));
    if (!bio || X509_NAME_print_ex(bio.get(), name, 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB) < 0) return {};
    char* text = nullptr;
    const long length = BIO_get_mem_data(bio.get(), &text);
    return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

std::string cli::responderOf(const OCSP_RESPONSE* response) {
    const BasicOcspPtr basic(OCSP_response_get1_basic(const_cast<OCSP_RESPONSE*>(response)));
    ERR_clear_error();
    const ASN1_OCTET_STRING* key = nullptr;
    const X509_NAME* name = nullptr;
    if (!basic || OCSP_resp_get0_id(basic.get(), &key, &name) != 1) return {};
    if (name != nullptr) return nameOf(name);
    const auto* const bytes = reinterpret_cast<const char*>(ASN1_STRING_get0_data(key));
    return "key " + hexOf({bytes, static_cast<std::size_t>(ASN1_STRING_length(key))});
}
