// Lists the signatures of a PDF file and writes the bytes that the first one covers to a file, one call per question.
// Usage: one_call FILE.pdf SIGNED.bin
#include <varnpdf/varnpdf.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: one_call FILE.pdf SIGNED.bin\n");
        return 2;
    }
    // All values of a signature are read at once and kept: the count and signature 0 need one opening together.
    int code = CPdfInfo::GetNumSignatureEx(argv[1]);
    for (int i = 0; i < code; ++i) {
        constexpr int kSubFilter = 6;
        std::string kind;
        CPdfInfo::GetSignatureFieldEx(argv[1], i, kSubFilter, &kind, CPdfInfo::m_PdfSigF);
        std::printf("%d: %s\n", i, kind.c_str());
    }
    CPdfInfo::clearSigFieldList();

    unsigned long size = 0;
    if (code >= 0) code = CPdfInfo::GetSignatureBlob(argv[1], 0, nullptr, &size);  // null asks for the size
    std::vector<unsigned char> bytes(size);
    if (code == VARNPDF_OK) code = CPdfInfo::GetSignatureBlob(argv[1], 0, bytes.data(), &size);
    if (code != VARNPDF_OK) {
        std::fprintf(stderr, "%s: %s (%d)\n", argv[1], varnpdf_message(code), code);
        return 1;
    }
    std::ofstream out(argv[2], std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(size));
    if (!out.flush()) {
        std::fprintf(stderr, "%s: cannot be written\n", argv[2]);
        return 1;
    }
    return 0;
}
