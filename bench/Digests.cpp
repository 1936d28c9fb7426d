// Digests, measured in the same run against OpenSSL on the same bytes. The program starts itself anew so that OpenSSL
// takes its portable code, without the instructions of single processors.
#include <openssl/evp.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Digests.h"
#include "bench/Measure.h"
#include "varnpdf/Sha.h"

namespace varnpdf::bench {
namespace {

constexpr double kDigestGoal = 5;

struct Digest {
    const char* name;
    int type;
    const EVP_MD* (*reference)();
};
constexpr Digest kDigests[] = {{"SHA-1", 0, EVP_sha1}, {"SHA-256", 1, EVP_sha256}, {"SHA-512", 3, EVP_sha512}};

void digest(benchmark::State& state) {
    const Digest& kind = kDigests[state.range(0)];
    const std::vector<char> message(16'000'000, 'x');
    char ours[EVP_MAX_MD_SIZE] = {};
    unsigned char theirs[EVP_MAX_MD_SIZE] = {};
    unsigned length = 0;
    Input input;
    input.bytes = message.size();
    Row row = measure(
        state, std::string(kind.name) + ", 16 MB", input,
        [&] {
            return milliseconds(
                [&] { EVP_Digest(message.data(), message.size(), theirs, &length, kind.reference(), nullptr); });
        },
        [&] {
            return milliseconds([&] {
                CSHA sha(kind.type);
                sha.AddData(message.data(), static_cast<int>(message.size()));
                sha.FinalDigest(ours);
            });
        },
        kDigestGoal);
    if (std::string(ours, length) != std::string(reinterpret_cast<char*>(theirs), length)) {
        throw std::runtime_error(std::string(kind.name) + " differs from OpenSSL's");
    }
    row.note = std::to_string(static_cast<int>(16'000 / row.ms)) + " MB/s; limit: OpenSSL's portable code";
    summary().push_back(row);
}

}  // namespace

void registerDigests() {
    benchmark::RegisterBenchmark("digest", digest)
        ->DenseRange(0, 2)
        ->Iterations(9)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}
}  // namespace varnpdf::bench
