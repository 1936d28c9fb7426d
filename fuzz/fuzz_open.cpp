// Opening a document and every reading call on it.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "fuzz/support/Check.h"
#include "fuzz/support/Transcript.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PdfBuilder.h"

using varnpdf::fuzz::check;

namespace {

/// A file in memory that can be opened by name.
class MemoryFile {
public:
    MemoryFile() : handle_(memfd_create("varnpdf", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(handle_)) {
        check(handle_ >= 0, "a file in memory can be made");
    }
    void fill(std::string_view bytes) const {
        check(ftruncate(handle_, 0) == 0, "a file in memory can be emptied");
        const ssize_t written = pwrite(handle_, bytes.data(), bytes.size(), 0);
        check(written == static_cast<ssize_t>(bytes.size()), "a file in memory can be filled");
    }
    [[nodiscard]] const char* path() const { return path_.c_str(); }

private:
    int handle_;
    std::string path_;
};

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
