// Preparing a document for a signature and inserting the value, into a file, measured in the same run against what
// nobody can leave out: a copy of the document in memory, its digest, and the signature itself.
#include <openssl/evp.h>
#include <openssl/rsa.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Inputs.h"
#include "bench/Measure.h"
#include "varnpdf/PdfSign.h"

using namespace varnpdf::bench;

namespace {

constexpr unsigned kRoom = 2000;  // a CMS value with one certificate
constexpr double kLargeGoal = 1.5;
constexpr double kPeakGoal = 2.2;
constexpr double kSmallGoal = 0.4;  // 5,000 documents per second where OpenSSL makes 2,000 signatures

void prepare(CPdfSign& sign, std::string path) {
    char reason[] = "Freigabe";
    char location[] = "Bonn";
    char name[] = "Erika Mustermann";
    char date[] = "D:20240102120000+01'00'";
    const int code = sign.SignPDFFile(path.data(), 0, 0, 0, 0, 0, 0, 0, reason, location, name, date, kRoom, false, 0,
                                      0, nullptr, nullptr, 0, 0, false);
    if (code != 0) throw std::runtime_error("code " + std::to_string(code) + " for " + path);
}

void insert(CPdfSign& sign, const std::string& path) {
    static std::vector<unsigned char> value(kRoom, 0xa5);
    std::string target = path + ".signed";
    if (sign.SaveSignature(target.data(), value.data(), kRoom, kRoom) != 0) {
        throw std::runtime_error("cannot write " + target);
    }
}

void digest(const unsigned char* bytes, std::size_t length) {
    unsigned char out[EVP_MAX_MD_SIZE];
    if (EVP_Digest(bytes, length, out, nullptr, EVP_sha256(), nullptr) != 1) throw std::runtime_error("no digest");
    benchmark::DoNotOptimize(out);
}

double limitOfDigest(const std::vector<unsigned char>& document) {
    return milliseconds([&] {
        const auto copy = std::make_unique_for_overwrite<unsigned char[]>(document.size());
        std::memcpy(copy.get(), document.data(), document.size());
        digest(copy.get(), document.size());
    });
}

double limitOfSignature() {
    using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
    using Context = std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)>;
    static const Key key(EVP_RSA_gen(2048), EVP_PKEY_free);
    constexpr unsigned char kDigest[32] = {1, 2, 3};
    unsigned char value[256];
    std::size_t length = sizeof value;
    return milliseconds([&] {
        const Context context(EVP_PKEY_CTX_new(key.get(), nullptr), EVP_PKEY_CTX_free);
        if (EVP_PKEY_sign_init(context.get()) != 1 || EVP_PKEY_CTX_set_signature_md(context.get(), EVP_sha256()) != 1 ||
            EVP_PKEY_sign(context.get(), value, &length, kDigest, sizeof kDigest) != 1) {
            throw std::runtime_error("no signature");
        }
    });
}

// Writing over an old file would make the file system flush it.
void removeSigned(const Input& input) { std::filesystem::remove(input.path + ".signed"); }

double timeOfSigning(const Input& input) {
    removeSigned(input);
    return milliseconds([&] {
        CPdfSign sign;
        prepare(sign, input.path);
        insert(sign, input.path);
    });
}

// The digest, which is the host's work, is measured with it, as it is in the limit.
double timeOfSigningWithDigest(const Input& input) {
    removeSigned(input);
    return milliseconds([&] {
        CPdfSign sign;
        prepare(sign, input.path);
        digest(sign.GetPreparedDocument(), sign.GetPreparedLength());
        insert(sign, input.path);
    });
}

void signSmall(benchmark::State& state) {
    const Input input = inputs().tenPages();
    const std::string name = "sign, document of " + std::to_string(input.bytes / 1000) + " kB";
    Row row = measure(
        state, name, input, limitOfSignature, [&] { return timeOfSigning(input); }, kSmallGoal);
    row.note = std::to_string(static_cast<int>(1000 / row.ms)) + " documents per second; limit: RSA 2048";
    state.counters["documents_per_second"] = 1000 / row.ms;
    summary().push_back(row);
}

void signAndDigest(benchmark::State& state, const std::string& name, const Input& input, std::optional<double> goal) {
    const std::vector<unsigned char> document(input.bytes, 0xa5);
    Row row = measure(
        state, name, input, [&] { return limitOfDigest(document); }, [&] { return timeOfSigningWithDigest(input); },
        goal);
    row.note = "limit: copy and SHA-256";
    if (goal) {
        row.peak = static_cast<double>(peakOf("--peak-sign", input)) / static_cast<double>(input.bytes);
        row.peakGoal = kPeakGoal;
    }
    summary().push_back(row);
}

void digestSmall(benchmark::State& state) {
    const Input input = inputs().tenPages();
    signAndDigest(state, "sign, digest, " + std::to_string(input.bytes / 1000) + " kB", input, std::nullopt);
}

void digestLarge(benchmark::State& state) {
    const auto megabytes = static_cast<int>(state.range(0));
    const bool large = megabytes >= 100;
    signAndDigest(state, "sign, digest, " + std::to_string(megabytes) + " MB", inputs().megabyteStreams(megabytes),
                  large ? std::optional(kLargeGoal) : std::nullopt);
}

BENCHMARK(signSmall)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(digestSmall)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(digestLarge)->Arg(10)->Iterations(30)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(digestLarge)->Arg(100)->Iterations(9)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int varnpdf::bench::peakOfSigning(const char* path) {
    CPdfSign sign;
    prepare(sign, path);
    insert(sign, path);
    printPeak();
    return 0;
}
