// Signs a PDF file: the library prepares it, OpenSSL makes the value (any other place could), the library inserts it.
// Usage: sign_file IN.pdf OUT.pdf KEY.pem CERTIFICATE.pem
#include <openssl/cms.h>
#include <openssl/pem.h>
#include <varnpdf/varnpdf.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

namespace {

struct Free {
    void operator()(BIO* bio) const { BIO_free(bio); }
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(CMS_ContentInfo* value) const { CMS_ContentInfo_free(value); }
};
template <typename Handle>
using Owner = std::unique_ptr<Handle, Free>;

/// A detached CMS SignedData over the bytes, DER; empty when OpenSSL cannot make it.
std::vector<unsigned char> signatureValue(const void* bytes, int length, const char* keyFile,
                                          const char* certificateFile) {
    const Owner<BIO> keyText(BIO_new_file(keyFile, "r"));
    const Owner<BIO> certificateText(BIO_new_file(certificateFile, "r"));
    if (!keyText || !certificateText) return {};
    const Owner<EVP_PKEY> key(PEM_read_bio_PrivateKey(keyText.get(), nullptr, nullptr, nullptr));
    const Owner<X509> certificate(PEM_read_bio_X509(certificateText.get(), nullptr, nullptr, nullptr));
    const Owner<BIO> content(BIO_new_mem_buf(bytes, length));
    if (!key || !certificate || !content) return {};
    const Owner<CMS_ContentInfo> value(
        CMS_sign(certificate.get(), key.get(), nullptr, content.get(), CMS_BINARY | CMS_DETACHED | CMS_NOSMIMECAP));
    const int size = value ? i2d_CMS_ContentInfo(value.get(), nullptr) : 0;
    if (size <= 0) return {};
    std::vector<unsigned char> der(static_cast<std::size_t>(size));
    unsigned char* end = der.data();
    i2d_CMS_ContentInfo(value.get(), &end);
    return der;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: sign_file IN.pdf OUT.pdf KEY.pem CERTIFICATE.pem\n");
        return 2;
    }
    char reason[] = "Records accepted";
    char nothing[] = "";
    char date[32];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "D:%Y%m%d%H%M%SZ", std::gmtime(&now));
    FormfieldInfo_tag line{};  // Helvetica, regular, as large as fits
    std::strcpy(line.label, "Signed by");
    std::strcpy(line.value, "Marta Beispiel");

    // What is reserved but not used is padded, and some validators then say that not all of the file is signed. An RSA
    // value always has the same length, so a first one tells it.
    std::vector<unsigned char> value = signatureValue("", 0, argv[3], argv[4]);
    const auto room = static_cast<unsigned int>(value.size());
    // 200 x 40 points, its lower left corner 240 left of and 80 below the upper right corner of the first page.
    CPdfSign sign;
    sign.setUserETSISubFilter(false);  // a plain CMS value is /adbe.pkcs7.detached
    int code = sign.SignPDFFile(argv[1], 0, 4, 240, 80, 200, 40, 0, reason, nothing, nothing, date, room, false, 0, 0,
                                nullptr, &line, 1, 0, false);
    if (code != VARNPDF_OK) {
        std::fprintf(stderr, "%s: %s (%d)\n", argv[1], varnpdf_message(code), code);
        return 1;
    }
    // What stands in memory now are exactly the bytes to sign.
    value = signatureValue(sign.GetPreparedDocument(), static_cast<int>(sign.GetPreparedLength()), argv[3], argv[4]);
    if (value.empty() || value.size() > room) {
        std::fprintf(stderr, "no signature value could be made\n");
        return 1;
    }
    code = sign.SaveSignature(argv[2], value.data(), static_cast<unsigned int>(value.size()), room);
    if (code != VARNPDF_OK) std::fprintf(stderr, "%s: %s (%d)\n", argv[2], varnpdf_message(code), code);
    return code == VARNPDF_OK ? 0 : 1;
}
