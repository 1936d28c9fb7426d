// Owners of OpenSSL handles.
#pragma once

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/evp.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <memory>
#include <string_view>

namespace cli {

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T* handle) const noexcept {
        release(handle);
    }
};

inline void releaseCertificates(STACK_OF(X509) * stack) noexcept { sk_X509_pop_free(stack, X509_free); }

using BioPtr = std::unique_ptr<BIO, Releaser<BIO_free_all>>;
using KeyPtr = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY_free>>;
using CertificatePtr = std::unique_ptr<X509, Releaser<X509_free>>;
using CertificatesPtr = std::unique_ptr<STACK_OF(X509), Releaser<releaseCertificates>>;
using Pkcs12Ptr = std::unique_ptr<PKCS12, Releaser<PKCS12_free>>;
using CmsPtr = std::unique_ptr<CMS_ContentInfo, Releaser<CMS_ContentInfo_free>>;
using DigestPtr = std::unique_ptr<EVP_MD_CTX, Releaser<EVP_MD_CTX_free>>;
using StorePtr = std::unique_ptr<X509_STORE, Releaser<X509_STORE_free>>;
using StoreContextPtr = std::unique_ptr<X509_STORE_CTX, Releaser<X509_STORE_CTX_free>>;

inline const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace cli
