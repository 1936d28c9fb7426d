// Clocks, limits, peak memory and the closing table.
#include "bench/Measure.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "varnpdf/Pdf.h"

namespace varnpdf::bench {
namespace {

struct Free {
    void operator()(char* bytes) const { std::free(bytes); }
};
using Buffer = std::unique_ptr<char, Free>;

Buffer readFile(const Input& input) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(input.path.c_str(), "rb"), std::fclose);
    Buffer bytes(static_cast<char*>(std::malloc(input.bytes)));
    if (!file || !bytes || std::fread(bytes.get(), 1, input.bytes, file.get()) != input.bytes) {
        throw std::runtime_error("cannot read " + input.path);
    }
    return bytes;
}

std::size_t countEndings(std::string_view text) {
    constexpr std::string_view kKeyword = "endobj";
    std::size_t count = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;) {
        const void* const hit = memmem(at, static_cast<std::size_t>(end - at), kKeyword.data(), kKeyword.size());
        if (hit == nullptr) return count;
        ++count;
        at = static_cast<const char*>(hit) + kKeyword.size();
    }
}

void unpackAll(const char* bytes, const Input& input) {
    for (const StreamPlace& place : input.streams) {
        std::string text(place.unpacked, '\0');
        uLongf size = text.size();
        const auto* const packed = reinterpret_cast<const Bytef*>(bytes + place.offset);
        if (uncompress(reinterpret_cast<Bytef*>(text.data()), &size, packed, place.packed) != Z_OK) {
            throw std::runtime_error("a stream of the input does not inflate");
        }
        benchmark::DoNotOptimize(countEndings(text));
    }
}

double cpuMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values.empty() ? 0 : values[values.size() / 2];
}

std::size_t statusValue(std::string_view key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key)) return std::stoul(line.substr(key.size())) * 1024;
    }
    throw std::runtime_error("no " + std::string(key) + " in /proc/self/status");
}

}  // namespace

double milliseconds(const std::function<void()>& call) {
    const double start = cpuMilliseconds();
    call();
    return cpuMilliseconds() - start;
}

double limitOfScan(const Input& input) {
    Buffer bytes;
    return milliseconds([&] {
        bytes = readFile(input);
        benchmark::DoNotOptimize(countEndings({bytes.get(), input.bytes}));
    });
}

double limitOfUnpacking(const Input& input) {
    Buffer bytes;
    return milliseconds([&] {
        bytes = readFile(input);
        benchmark::DoNotOptimize(countEndings({bytes.get(), input.bytes}));
        unpackAll(bytes.get(), input);
    });
}

double timeOfOpen(const Input& input) {
    CPdf pdf;
    int code = 0;
    const double time = milliseconds([&] { code = pdf.Open(input.path.c_str(), "rb"); });
    if (code != 0) throw std::runtime_error("code " + std::to_string(code) + " for " + input.path);
    return time;
}

std::size_t peakOf(const char* work, const Input& input) {
    // A process of its own: the heap of this one holds what other benchmarks left.
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    const std::string command = "'" + self + "' " + work + " '" + input.path + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(popen(command.c_str(), "r"), pclose);
    std::size_t peak = 0;
    if (!out || std::fscanf(out.get(), "%zu", &peak) != 1) throw std::runtime_error("no peak for " + input.path);
    return peak;
}

void printPeak() { std::printf("%zu\n", statusValue("VmHWM:")); }

int peakOfOpening(const char* path) {
    CPdf pdf;
    if (pdf.Open(path, "rb") != 0) return 1;
    printPeak();
    return 0;
}

std::vector<Row>& summary() {
    static std::vector<Row> rows;
    return rows;
}

Row measure(benchmark::State& state, const std::string& name, const Input& input, const std::function<double()>& limit,
            const std::function<double()>& open, std::optional<double> goal) {
    std::vector<double> limits;
    std::vector<double> times;
    for (const auto iteration : state) {
        static_cast<void>(iteration);
        limits.push_back(limit());
        times.push_back(open());
        state.SetIterationTime(times.back() / 1000);
    }
    Row row{name, median(times), median(limits), goal, "", std::nullopt, std::nullopt};
    state.counters["ratio"] = row.ms / row.limitMs;
    state.counters["limit_ms"] = row.limitMs;
    state.counters["bytes"] = static_cast<double>(input.bytes);
    return row;
}

void printSummary() {
    std::printf("\n%-36s %10s %10s %7s %5s %-5s %s\n", "", "ms", "limit ms", "ratio", "goal", "", "");
    for (const Row& row : summary()) {
        const double ratio = row.ms / row.limitMs;
        const std::string goal = row.goal ? std::to_string(*row.goal).substr(0, 4) : "-";
        const char* const verdict = !row.goal ? "" : ratio <= *row.goal ? "ok" : "over";
        std::printf("%-36s %10.3f %10.3f %7.2f %5s %-5s %s\n", row.name.c_str(), row.ms, row.limitMs, ratio,
                    goal.c_str(), verdict, row.note.c_str());
        if (!row.peak) continue;
        const std::string most = row.peakGoal ? std::to_string(*row.peakGoal).substr(0, 4) : "-";
        const char* const memory = !row.peakGoal ? "" : *row.peak <= *row.peakGoal ? "ok" : "over";
        std::printf("%-36s %10s %10s %7.2f %5s %-5s %s\n", "  peak memory / file", "", "", *row.peak, most.c_str(),
                    memory, "");
    }
}

}  // namespace varnpdf::bench
