// Reading of keys and certificates.
#include "keys.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/provider.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <limits>

#include "command.h"

namespace {

/// Null after a complaint.
cli::BioPtr openFile(const std::string& path) {
    // OpenSSL opens directories and then says nothing useful.
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
        cli::complain(path, std::strerror(EISDIR));
        return nullptr;
    }
    cli::BioPtr bio(BIO_new_file(path.c_str(), "rb"));
    if (!bio) {
        const int error = errno;
        ERR_clear_error();
        cli::complain(path, std::strerror(error));
    }
    return bio;
}

struct Question {
    cli::Passphrase* passphrase;
    const std::string* path;
};

int givePassphrase(char* buffer, int size, int /*writing*/, void* data) {
    const auto* question = static_cast<const Question*>(data);
    cli::Passphrase& passphrase = *question->passphrase;
    if (!passphrase.fetch(*question->path) || passphrase.length() > static_cast<std::size_t>(size)) return -1;
    std::memcpy(buffer, passphrase.text(), passphrase.length());
    return static_cast<int>(passphrase.length());
}

bool readKey(const std::string& path, cli::Passphrase& passphrase, cli::Identity& identity) {
    const cli::BioPtr bio = openFile(path);
    if (!bio) return false;
    Question question{&passphrase, &path};
    identity.key.reset(PEM_read_bio_PrivateKey(bio.get(), nullptr, givePassphrase, &question));
    ERR_clear_error();
    if (identity.key) return true;
    if (passphrase.fetched()) {
        cli::complain(path, "the pass phrase does not fit, or the key is damaged");
    } else if (!passphrase.failed()) {
        cli::complain(path, "there is no private key in PEM form in it");
    }
    return false;
}

bool readPem(const cli::KeyOptions& options, cli::Passphrase& passphrase, cli::Identity& identity) {
    if (!readKey(options.key, passphrase, identity)) return false;
    identity.chain = cli::readCertificates(options.certificate);
    if (identity.chain.empty()) return false;
    identity.certificate = std::move(identity.chain.front());
    identity.chain.erase(identity.chain.begin());
    return true;
}

/// An empty pass phrase is told apart in PKCS#12 from none at all, and both mean that nobody need be asked.
const char* storePassphrase(PKCS12* store, const std::string& path, cli::Passphrase& passphrase) {
    if (PKCS12_mac_present(store) != 1 || PKCS12_verify_mac(store, nullptr, 0) == 1) return nullptr;
    if (PKCS12_verify_mac(store, "", 0) == 1) return "";
    if (!passphrase.fetch(path)) return nullptr;
    return passphrase.text();
}

bool parseStore(PKCS12* store, const char* text, cli::Identity& identity) {
    EVP_PKEY* key = nullptr;
    X509* certificate = nullptr;
    STACK_OF(X509)* others = nullptr;
    if (PKCS12_parse(store, text, &key, &certificate, &others) != 1) return false;
    identity.key.reset(key);
    identity.certificate.reset(certificate);
    const cli::CertificatesPtr owner(others);
    while (sk_X509_num(others) > 0) identity.chain.emplace_back(sk_X509_shift(others));
    return true;
}

using ProviderPtr = std::unique_ptr<OSSL_PROVIDER, cli::Releaser<OSSL_PROVIDER_unload>>;

/// Files of older programs are encrypted with RC2, which OpenSSL 3 keeps in a provider of its own.
bool parseOldStore(PKCS12* store, const char* text, cli::Identity& identity) {
    // The 1 leaves the default provider where it is.
    const ProviderPtr old(OSSL_PROVIDER_try_load(nullptr, "legacy", 1));
    return old && parseStore(store, text, identity);
}

bool readPkcs12(const std::string& path, cli::Passphrase& passphrase, cli::Identity& identity) {
    const cli::BioPtr bio = openFile(path);
    if (!bio) return false;
    const cli::Pkcs12Ptr store(d2i_PKCS12_bio(bio.get(), nullptr));
    if (!store) {
        ERR_clear_error();
        cli::complain(path, "this is no PKCS#12 file");
        return false;
    }
    const char* text = storePassphrase(store.get(), path, passphrase);
    if (passphrase.failed()) return false;
    if (passphrase.fetched() && PKCS12_verify_mac(store.get(), text, -1) != 1) {
        ERR_clear_error();
        cli::complain(path, "the pass phrase does not fit");
        return false;
    }
    if (!parseStore(store.get(), text, identity) && !parseOldStore(store.get(), text, identity)) {
        cli::complain(path, "its contents cannot be decrypted: " + cli::opensslReason());
        return false;
    }
    ERR_clear_error();
    if (!identity.key || !identity.certificate) {
        cli::complain(path, "there is no private key with its certificate in it");
        return false;
    }
    return true;
}

void warn(const std::string& path, const std::string& sentence) { cli::complain(path, "warning: " + sentence); }

void warnOfCertificate(const std::string& path, X509* certificate) {
    if (X509_cmp_current_time(X509_get0_notAfter(certificate)) < 0) warn(path, "the certificate has expired");
    if (X509_cmp_current_time(X509_get0_notBefore(certificate)) > 0) warn(path, "the certificate is not yet valid");
    // Without the extension every usage is allowed, and all bits are set.
    if ((X509_get_key_usage(certificate) & (KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION)) == 0) {
        warn(path, "the certificate is not meant for signatures");
    }
}

}  // namespace

void cli::addKeyOptions(const Parser& parser, KeyOptions& options) {
    parser.option("--key", options.key, "Private key (PEM)").shownAs("FILE");
    parser.option("--cert", options.certificate, "The signer's certificate (PEM); more in it go with it")
        .shownAs("FILE");
    parser.option("--chain", options.chain, "Certificates of the issuers (PEM), put into the signature")
        .shownAs("FILE");
    parser.option("--p12", options.pkcs12, "Key and certificates in one file (PKCS#12)").shownAs("FILE");
    const Option file = parser.option("--pass-file", options.passphrase.file,
                                      "File whose first line is the pass phrase; otherwise it is asked for");
    file.shownAs("FILE");
    parser.option("--pass-fd", options.passphrase.descriptor, "The same from an open file descriptor")
        .between(0, std::numeric_limits<int>::max())
        .excludes(file)
        .shownAs("N");
}

bool cli::keyOptionsFit(const KeyOptions& options) {
    const bool pem = !options.key.empty() && !options.certificate.empty() && options.pkcs12.empty();
    const bool pkcs12 = options.key.empty() && options.certificate.empty() && !options.pkcs12.empty();
    if (!pem && !pkcs12) complain("sign", "who signs is told by --key and --cert, or by --p12");
    return pem || pkcs12;
}

std::optional<cli::Identity> cli::readIdentity(const KeyOptions& options) {
    const bool pkcs12 = !options.pkcs12.empty();
    Passphrase passphrase(options.passphrase);
    Identity identity;
    if (!(pkcs12 ? readPkcs12(options.pkcs12, passphrase, identity) : readPem(options, passphrase, identity))) {
        return std::nullopt;
    }
    if (!options.chain.empty()) {
        std::vector<CertificatePtr> more = readCertificates(options.chain);
        if (more.empty()) return std::nullopt;
        for (CertificatePtr& one : more) identity.chain.push_back(std::move(one));
    }
    const std::string& where = pkcs12 ? options.pkcs12 : options.certificate;
    if (X509_check_private_key(identity.certificate.get(), identity.key.get()) != 1) {
        ERR_clear_error();
        complain(where, "the certificate does not belong to the private key");
        return std::nullopt;
    }
    warnOfCertificate(where, identity.certificate.get());
    return identity;
}

std::vector<cli::CertificatePtr> cli::readCertificates(const std::string& path) {
    std::vector<CertificatePtr> all;
    const BioPtr bio = openFile(path);
    if (!bio) return all;
    // Nobody is asked for the pass phrase of a certificate.
    const auto refuse = [](char*, int, int, void*) { return -1; };
    while (CertificatePtr one{PEM_read_bio_X509(bio.get(), nullptr, refuse, nullptr)}) all.push_back(std::move(one));
    const unsigned long error = ERR_peek_last_error();
    const bool atEnd = ERR_GET_LIB(error) == ERR_LIB_PEM && ERR_GET_REASON(error) == PEM_R_NO_START_LINE;
    ERR_clear_error();
    if (!atEnd) {
        complain(path, "a certificate in it cannot be read");
        all.clear();
    } else if (all.empty()) {
        complain(path, "there is no certificate in PEM form in it");
    }
    return all;
}

std::string cli::subjectName(const X509* certificate) {
    const X509_NAME* subject = X509_get_subject_name(certificate);
    const int at = X509_NAME_get_index_by_NID(subject, NID_commonName, -1);
    if (at >= 0) {
        unsigned char* text = nullptr;
        const int length = ASN1_STRING_to_UTF8(&text, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, at)));
        if (length < 0) return {};
        std::string out(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
        OPENSSL_free(text);
        return out;
    }
    const BioPtr memory(BIO_new(BIO_s_mem()));
    X509_NAME_print_ex(memory.get(), subject, 0, XN_FLAG_RFC2253 & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB));
    char* text = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &text);
    return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

std::string cli::opensslReason() {
    const char* reason = ERR_reason_error_string(ERR_peek_last_error());
    std::string out = reason != nullptr ? reason : "unknown error";
    ERR_clear_error();
    return out;
}
