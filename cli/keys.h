// The signer's key and certificates from PEM files or a PKCS#12 file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "openssl.h"
#include "parser.h"
#include "passphrase.h"

namespace cli {

/// Who signs.
struct Identity {
    KeyPtr key;
    CertificatePtr certificate;
    std::vector<CertificatePtr> chain;  ///< further certificates to go with it
};

/// Where it stands, as the command line says.
struct KeyOptions {
    std::string key;
    std::string certificate;
    std::string chain;
    std::string pkcs12;
    PassphraseSource passphrase;
};

void addKeyOptions(const Parser& parser, KeyOptions& options);
/// Either --key and --cert, or --p12; false after a complaint.
bool keyOptionsFit(const KeyOptions& options);
/// Reads it all; nothing after a complaint. A certificate that is out of date is only warned of: the signature is
/// valid as such, and the clock may be wrong.
std::optional<Identity> readIdentity(const KeyOptions& options);
/// All certificates of a PEM file; empty after a complaint.
std::vector<CertificatePtr> readCertificates(const std::string& path);
/// The common name of the subject in UTF-8, or the whole subject; "" when it has none.
std::string subjectName(const X509* certificate);
/// Text of OpenSSL's newest error; its queue is emptied.
std::string opensslReason();

}  // namespace cli
