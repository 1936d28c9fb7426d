// The digests against OpenSSL's.
#pragma once

namespace varnpdf::bench {

/// The variable by which OpenSSL is told, with "0:0", to use its portable code only.
inline constexpr const char* kPortableDigests = "OPENSSL_ia32cap";

/// In place of the static registration: they run in a process that has the variable.
void registerDigests();

}  // namespace varnpdf::bench
