// Opening and reading documents, each measured in the same run against the least work possible: reading the file into
// one buffer and looking once for every "endobj". The benchmarks of signing stand in signing_bench.cpp.
#include <log4cxx/logger.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Digests.h"
#include "bench/Inputs.h"
#include "bench/Measure.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf::bench;

namespace {

constexpr double kObjectGoal = 6;
constexpr double kStreamGoal = 1.6;
constexpr double kUnpackGoal = 3;
constexpr double kPeakGoal = 1.3;
constexpr double kLogGoal = 1.05;  // what is left is noise

std::string perObject(const Row& row, const Input& input) {
    return std::to_string(static_cast<int>(row.ms * 1e6 / input.objects)) + " ns per object";
}

Row measureOpen(benchmark::State& state, const std::string& name, const Input& input, double goal) {
    return measure(
        state, name, input, [&] { return limitOfScan(input); }, [&] { return timeOfOpen(input); }, goal);
}

void notePeak(benchmark::State& state, Row& row, const Input& input, std::optional<double> goal) {
    row.peak = static_cast<double>(peakOf("--peak-open", input)) / static_cast<double>(input.bytes);
    row.peakGoal = goal;
    state.counters["peak_ratio"] = *row.peak;
}

void openPlain(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Input input = inputs().plainObjects(count);
    Row row = measureOpen(state, "open, " + std::to_string(count) + " objects", input, kObjectGoal);
    row.note = perObject(row, input);
    notePeak(state, row, input, std::nullopt);
    summary().push_back(row);
}

void openStreams(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Input input = inputs().megabyteStreams(count);
    Row row = measureOpen(state, "open, " + std::to_string(count) + " MB of streams", input, kStreamGoal);
    notePeak(state, row, input, kPeakGoal);
    summary().push_back(row);
}

void openPacked(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Input input = inputs().packedObjects(count);
    Row row = measure(
        state, "open, " + std::to_string(count) + " packed objects", input, [&] { return limitOfUnpacking(input); },
        [&] { return timeOfOpen(input); }, kUnpackGoal);
    row.note = perObject(row, input) + "; limit inflates as well";
    summary().push_back(row);
}

void openUpdates(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Input input = inputs().updates(count);
    summary().push_back(measureOpen(state, "open, " + std::to_string(count) + " updates", input, kObjectGoal));
}

void openSmall(benchmark::State& state) {
    const Input input = inputs().smallDocument();
    Row row = measureOpen(state, "open, document of " + std::to_string(input.bytes / 1000) + " kB", input, kObjectGoal);
    row.note = std::to_string(static_cast<int>(1000 / row.ms)) + " documents per second";
    state.counters["documents_per_second"] = 1000 / row.ms;
    summary().push_back(row);
}

/// What a host asks for: every value of every signature. Returns the number of bytes, so that nothing is left out.
std::size_t readSignatures(CPdf& pdf, std::vector<char>& room) {
    constexpr int kTags = 13;
    std::size_t bytes = 0;
    const int count = pdf.PdfGetNumSignatures();
    for (int i = 0; i < count; ++i) {
        for (int tag = 1; tag <= kTags; ++tag) {
            int length = 0;
            pdf.GetSignatureField(i, tag, room.data(), &length);
            bytes += static_cast<std::size_t>(length);
        }
        unsigned long size = 0;
        if (pdf.GetSignaturePKCS7(i, nullptr, &size) != 0) throw std::runtime_error("a value cannot be read");
        pdf.GetSignaturePKCS7(i, reinterpret_cast<unsigned char*>(room.data()), &size);
        bytes += size;
        if (pdf.GetSignatureBlob(i, nullptr, &size) != 0) throw std::runtime_error("a range cannot be read");
        bytes += size;
    }
    return bytes;
}

void signatures(benchmark::State& state) {
    const auto others = static_cast<int>(state.range(0));
    const Input input = inputs().signatures(others);
    const std::string among = "25 signatures, " + std::to_string(others) + " objects";
    std::vector<char> room(input.bytes + 1);
    Row row = measure(
        state, "read " + among, input, [&] { return limitOfScan(input); },
        [&] {
            CPdf pdf;
            if (pdf.Open(input.path.c_str(), "rb") != 0) throw std::runtime_error("does not open");
            return milliseconds([&] { benchmark::DoNotOptimize(readSignatures(pdf, room)); });
        },
        std::nullopt);
    row.note = "opened before";
    summary().push_back(row);
}

/// The same opening with the library's loggers switched off and with no word about logging from the host.
void silentLog(benchmark::State& state) {
    const Input input = inputs().plainObjects(static_cast<int>(state.range(0)));
    const log4cxx::LoggerPtr logger = log4cxx::Logger::getLogger("VarnPDF");
    const auto timed = [&](const log4cxx::LevelPtr& level) {
        logger->setLevel(level);
        return timeOfOpen(input);
    };
    Row row = measure(
        state, "open, log unconfigured : off", input, [&] { return timed(log4cxx::Level::getOff()); },
        [&] { return timed(log4cxx::LevelPtr()); }, kLogGoal);
    row.note = "limit: levels set to OFF";
    summary().push_back(row);
}

BENCHMARK(openPlain)->Arg(10'000)->Iterations(60)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(openPlain)->Arg(100'000)->Iterations(15)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(openPlain)->Arg(400'000)->Iterations(7)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(openStreams)->Arg(500)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(openPacked)->Arg(400'000)->Iterations(7)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(openUpdates)->Arg(200)->Iterations(100)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(openSmall)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(signatures)->Arg(200)->Iterations(100)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(signatures)->Arg(400'000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(silentLog)->Arg(100'000)->Iterations(25)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--peak-open") == 0) return peakOfOpening(argv[2]);
    if (argc == 3 && std::strcmp(argv[1], "--peak-sign") == 0) return peakOfSigning(argv[2]);
    const bool digests = std::getenv(kPortableDigests) != nullptr;
    if (digests) {
        benchmark::ClearRegisteredBenchmarks();
        registerDigests();
    }
    std::vector<char*> arguments(argv, argv + argc + 1);
    benchmark::Initialize(&argc, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(argc, arguments.data())) return 2;
    try {
        benchmark::RunSpecifiedBenchmarks();
        if (!summary().empty()) printSummary();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "varnpdf_bench: %s\n", error.what());
        return 1;
    }
    if (digests) return 0;
    // The digests come in a process of their own, for OpenSSL looks at this while it is loaded.
    std::fflush(stdout);
    setenv(kPortableDigests, "0:0", 1);
    return execv("/proc/self/exe", argv);
}
