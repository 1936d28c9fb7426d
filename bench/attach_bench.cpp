// Embedding a file, measured in the same run against what nobody can leave out: reading it and packing it with zlib.
#include <zlib.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/Inputs.h"
#include "bench/Measure.h"
#include "varnpdf/PdfAttach.h"

using namespace varnpdf::bench;

namespace {

constexpr double kAttachGoal = 1.1;

double limitOfPacking(const Input& file) {
    const auto bytes = std::make_unique_for_overwrite<unsigned char[]>(file.bytes);
    uLongf packed = compressBound(static_cast<uLong>(file.bytes));
    const auto room = std::make_unique_for_overwrite<unsigned char[]>(packed);
    return milliseconds([&] {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(file.path.c_str(), "rb"), std::fclose);
        if (!in || std::fread(bytes.get(), 1, file.bytes, in.get()) != file.bytes) throw std::runtime_error("read");
        if (compress(room.get(), &packed, bytes.get(), static_cast<uLong>(file.bytes)) != Z_OK) {
            throw std::runtime_error("compress");
        }
    });
}

double timeOfAttach(const Input& document, const Input& file) {
    std::string target = document.path + ".attached.pdf";
    std::string source = file.path;
    std::filesystem::copy_file(document.path, target, std::filesystem::copy_options::overwrite_existing);
    int code = 0;
    const double time = milliseconds([&] {
        code = CPdfAttach().AttachFileToPDF(reinterpret_cast<unsigned char*>(target.data()),
                                            reinterpret_cast<unsigned char*>(source.data()), 0);
    });
    std::filesystem::remove(target);
    if (code != 0) throw std::runtime_error("code " + std::to_string(code) + " for " + source);
    return time;
}

void attachFile(benchmark::State& state) {
    Inputs inputs;
    const auto megabytes = static_cast<int>(state.range(0));
    const Input document = inputs.smallDocument();
    const Input file = inputs.textFile(megabytes);
    Row row = measure(
        state, "attach, " + std::to_string(megabytes) + " MB", file, [&] { return limitOfPacking(file); },
        [&] { return timeOfAttach(document, file); }, kAttachGoal);
    row.note = "limit: reading and zlib";
    summary().push_back(row);
}

BENCHMARK(attachFile)->Arg(1)->Iterations(40)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(attachFile)->Arg(100)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
