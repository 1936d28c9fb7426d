// Extending a security store that others wrote. The input is the texts of objects 20, 21, ..., separated by NULs; the
// catalogue says that the first of them is its store.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "fuzz/support/Check.h"
#include "tests/support/PdfBuilder.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfDSS.h"

using varnpdf::fuzz::check;

namespace {

// SHA-1 of the byte 01
constexpr std::string_view kKey = "/BF8B4530D8D246DD74AC53A13471BBA17941DFF7";

std::string documentOf(std::string_view input) {
    varnpdf::test::PdfBuilder builder;
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R /DSS 20 0 R >>")
        .object(2, "<< /Type /Pages /Kids [] /Count 0 >>");
    builder.object(4, "<< /Type /Annot /FT /Sig /T (a) /V 5 0 R >>").signature(5, "<01>");
    for (int number = 20; number < 30 && !input.empty(); ++number) {
        const std::size_t end = std::min(input.find('\0'), input.size());
        builder.object(number, input.substr(0, end));
        input.remove_prefix(std::min(end + 1, input.size()));
    }
    return builder.table().bytes();
}

std::string contentOf(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

/// Files of this process, removed at its end.
struct Files {
    Files() : directory(std::filesystem::temp_directory_path() / ("fuzz-store-" + std::to_string(getpid()))) {
        std::filesystem::create_directory(directory);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    std::filesystem::path directory;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Files files;
    static std::string in = files.directory / "in.pdf";
    static std::string out = files.directory / "out.pdf";
    const std::string document = documentOf({reinterpret_cast<const char*>(data), size});
    std::ofstream(in, std::ios::binary) << document;
    {
        CPdf pdf;
        if (pdf.Open(in.c_str(), "rb") != 0) return 0;
        if (pdf.PdfGetNumSignatures() != 1) return 0;  // the input has signatures of its own
    }
    pdf_dss_struct record{0, "AQID", "BAUG", "BwgJ"};
    const c_pdf_dss dss;
    std::string before = document;
    for (int run = 0; run < 2; ++run) {
        check(dss.append_dss(in.data(), out.data(), &record, 1, true) == 0, "the store can be written");
        const std::string after = contentOf(out);
        check(after.starts_with(before), "the old bytes are unchanged");
        const std::string_view tail = std::string_view(after).substr(before.size());
        check(tail.find(kKey) != std::string_view::npos, "the signature has its entry");
        CPdf pdf;
        check(pdf.Open(out.c_str(), "rb") == 0, "the result opens");
        check(pdf.PdfGetNumSignatures() == 1, "the signature is still there");
        before = after;
        in.swap(out);
    }
    return 0;
}
