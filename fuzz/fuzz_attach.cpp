// Embedding into a hostile document, reading what it embeds, and taking its first page as a cover sheet.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "fuzz/support/Check.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfAttach.h"
#include "varnpdf/PdfCollection.h"

using varnpdf::fuzz::check;
namespace fs = std::filesystem;

namespace {

struct Directory {
    Directory() : path(fs::temp_directory_path() / ("varnpdf-fuzz-" + std::to_string(getpid()))) {
        fs::create_directory(path);
    }
    ~Directory() { fs::remove_all(path); }
    [[nodiscard]] std::string file(const char* name) const { return (path / name).string(); }
    fs::path path;
};

void fill(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string bytesOf(const std::string& path) {
    std::ostringstream out;
    out << std::ifstream(path, std::ios::binary).rdbuf();
    return out.str();
}

/// Number of embedded files; every one of them is read. -1 when the document does not open.
int readAll(const std::string& path) {
    CPdf pdf;
    if (pdf.Open(path.c_str(), "rb") != 0) return -1;
    CPdfAttachments files(&pdf);
    for (int i = 0; i < files.GetCount(); ++i) {
        unsigned long length = 0;
        const bool readable = files.GetContent(i, nullptr, &length) == 0;
        std::string bytes(readable ? length : 0, '\0');
        if (readable) files.GetContent(i, reinterpret_cast<unsigned char*>(bytes.data()), &length);
        check(bytes.size() == (readable ? length : 0), "both calls say the same length");
        static_cast<void>(files.GetName(i) + files.GetKey(i) + files.GetDescription(i) + files.GetMimeType(i));
        static_cast<void>(files.GetSize(i));
    }
    return files.GetCount();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Directory directory;
    static std::string document = directory.file("document.pdf");
    static std::string attachment = [] {
        std::string path = directory.file("attachment.txt");
        fill(path, "attached");
        return path;
    }();
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    fill(document, bytes);
    const int before = readAll(document);
    const int code = CPdfAttach().AttachFileToPDF(reinterpret_cast<unsigned char*>(document.data()),
                                                  reinterpret_cast<unsigned char*>(attachment.data()), 0);
    const std::string now = bytesOf(document);
    check(now.starts_with(bytes), "the old bytes are unchanged");
    check((code == 0) == (now.size() > size), "a failure writes nothing");
    check(before >= 0 || code != 0, "what does not open takes no file");

    CPdfCollectionListItem item(document, 1, true, "");
    std::string portfolio = directory.file("portfolio.pdf");
    if (CPdfCollection().CreateCollection(portfolio.data(), {&item}) == 0) {
        check(readAll(portfolio) == 1, "a portfolio opens and holds its file");
        fs::remove(portfolio);
    }
    return 0;
}
