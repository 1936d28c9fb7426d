// Validation material from files: certificates, revocation lists, OCSP responses.
#pragma once

#include <openssl/ocsp.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "openssl.h"

namespace cli {

enum class Material { kCertificate, kCrl, kOcsp };

using CrlPtr = std::unique_ptr<X509_CRL, Releaser<X509_CRL_free>>;
using OcspPtr = std::unique_ptr<OCSP_RESPONSE, Releaser<OCSP_RESPONSE_free>>;
using BasicOcspPtr = std::unique_ptr<OCSP_BASICRESP, Releaser<OCSP_BASICRESP_free>>;

/// Null when the bytes are no such DER value, or go on behind it.
CertificatePtr parseCertificate(std::string_view der);
CrlPtr parseCrl(std::string_view der);
OcspPtr parseOcsp(std::string_view der);

/// Every value of the kind in a file, in DER as it stands there: all blocks of a PEM file, or the one value of a DER
/// file. Nothing after a complaint.
std::optional<std::vector<std::string>> readMaterial(const std::string& path, Material kind);

/// A distinguished name for people, "C = DE, CN = Jane".
std::string nameOf(const X509_NAME* name);
/// Who signed a response: a name, or "key HASH".
std::string responderOf(const OCSP_RESPONSE* response);

}  // namespace cli
