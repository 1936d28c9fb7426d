// Lists the signatures of a PDF file and writes the value of the first one to a file.
// Usage: read_signatures FILE.pdf VALUE.der
#include <varnpdf/varnpdf.h>

#include <cstdio>
#include <fstream>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: read_signatures FILE.pdf VALUE.der\n");
        return 2;
    }
    CPdf pdf;
    if (const int code = pdf.Open(argv[1], "rb"); code != VARNPDF_OK) {
        std::fprintf(stderr, "%s: %s (%d)\n", argv[1], varnpdf_message(code), code);
        return 1;
    }
    const int count = pdf.PdfGetNumSignatures();
    std::printf("signatures: %d\n", count);

    constexpr int kReason = 1;                           // the tags stand beside GetSignatureField in Pdf.h
    std::vector<char> reason(pdf.GetContentLen() + 1U);  // the one length that always does
    for (int i = 0; i < count; ++i) {
        int reasonLength = 0;
        int code = pdf.GetSignatureField(i, kReason, reason.data(), &reasonLength);

        unsigned long size = 0;
        if (code == VARNPDF_OK) code = pdf.GetSignaturePKCS7(i, nullptr, &size);  // null asks for the size
        std::vector<unsigned char> value(size);
        if (code == VARNPDF_OK) code = pdf.GetSignaturePKCS7(i, value.data(), &size);
        if (code != VARNPDF_OK) {
            std::printf("%d: %s (%d)\n", i, varnpdf_message(code), code);
            continue;
        }
        std::printf("%d: reason \"%s\", PKCS#7 value of %lu bytes\n", i, reason.data(), size);
        if (i > 0) continue;
        std::ofstream out(argv[2], std::ios::binary);
        out.write(reinterpret_cast<const char*>(value.data()), static_cast<std::streamsize>(size));
        if (!out.flush()) {
            std::fprintf(stderr, "%s: cannot be written\n", argv[2]);
            return 1;
        }
    }
    return 0;
}
