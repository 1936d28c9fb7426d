// Measuring an operation against the least work that anybody must do who wants to see every object of the file.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bench/Inputs.h"

namespace varnpdf::bench {

/// Milliseconds of processor time of one call, system calls included. The library works on the caller's thread and the
/// files are in the page cache, so that this is the time that passes, but for what else the machine has to do.
double milliseconds(const std::function<void()>& call);

/// Reads the file into one fresh buffer and looks for every "endobj" in it. The buffer is freed outside of the time.
double limitOfScan(const Input& input);
/// The same, and inflates every stream once and looks through the result.
double limitOfUnpacking(const Input& input);
/// Opens the document; ends the program when it does not open. It is closed outside of the time.
double timeOfOpen(const Input& input);

/// Peak resident memory in bytes of a process that opens ("--peak-open") or signs ("--peak-sign") the file and does
/// nothing else.
std::size_t peakOf(const char* work, const Input& input);
/// Those processes: they print their peak and end.
int peakOfOpening(const char* path);
int peakOfSigning(const char* path);
void printPeak();

struct Row {
    std::string name;
    double ms = 0;
    double limitMs = 0;
    std::optional<double> goal;  ///< largest ratio
    std::string note;
    std::optional<double> peak;  ///< as a multiple of the file
    std::optional<double> peakGoal;
};

/// The rows of the closing table.
std::vector<Row>& summary();
void printSummary();

/// Takes turns with `limit` and `open` and notes the ratio of the medians. The state's time is that of `open`.
Row measure(benchmark::State& state, const std::string& name, const Input& input, const std::function<double()>& limit,
            const std::function<double()>& open, std::optional<double> goal);

}  // namespace varnpdf::bench
