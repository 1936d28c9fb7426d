// Opening a document and every reading call on it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "fuzz/support/Check.h"
#include "fuzz/support/MemoryFile.h"
#include "fuzz/support/Transcript.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PdfBuilder.h"

using varnpdf::fuzz::check;
using varnpdf::fuzz::MemoryFile;

namespace {

/// The destructor is part of what is tested.
std::string read(const MemoryFile& file) {
    CPdf pdf;
    const int code = pdf.Open(file.path(), "rb");
    return varnpdf::fuzz::transcript(pdf, code);
}

std::string goodDocument() {
    auto builder = varnpdf::test::smallDocument();
    builder.object(4, "<< /Type /Annot /FT /Sig /T (a) /V 5 0 R >>").signature(5, "<3003020107>", "/Reason (why)");
    return varnpdf::test::withByteRanges(builder.table().bytes());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile input;
    static const MemoryFile good;
    static const std::string expected = [] {
        good.fill(goodDocument());
        return read(good);
    }();
    check(expected.starts_with("0 "), "the good document opens");

    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    input.fill(bytes);
    const std::string first = read(input);
    // Formatting all messages is slow; one input in 16 has a host that wants them.
    std::unique_ptr<varnpdf::test::LogCapture> log;
    if (std::hash<std::string_view>{}(bytes) % 16 == 0) {
        log = std::make_unique<varnpdf::test::LogCapture>("VarnPDF.CPdf");
    }
    check(read(input) == first, "a second opening gives the same, logged or not");
    log.reset();
    check(read(good) == expected, "a document does not depend on those before it");
    return 0;
}
