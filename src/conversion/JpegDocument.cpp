// A JPEG image as a document of one page.
#include "conversion/JpegDocument.h"

#include <array>

#include "conversion/Deflater.h"

namespace varnpdf {
namespace {

constexpr int kFill = 0xFF;
constexpr int kStart = 0xD8;
constexpr int kEnd = 0xD9;
constexpr int kScan = 0xDA;

// The marker's second byte, behind any fill bytes. Decoders pass over stray bytes in front of a marker, and so do we.
int nextMarker(std::FILE* file) {
    int byte = std::fgetc(file);
    while (byte != kFill && byte != EOF) byte = std::fgetc(file);
    while (byte == kFill) byte = std::fgetc(file);
    return byte;
}

int word(std::FILE* file) {
    const int high = std::fgetc(file);
    const int low = std::fgetc(file);
    return high == EOF || low == EOF ? -1 : high * 256 + low;
}

// Read, not sought: tiny segments would cost a system call each.
bool skipBytes(std::FILE* file, int count) {
    std::array<char, 4096> room;
    while (count > 0) {
        const std::size_t part = std::min(room.size(), static_cast<std::size_t>(count));
        if (std::fread(room.data(), 1, part, file) != part) return false;
        count -= static_cast<int>(part);
    }
    return true;
}

bool isFrame(int marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

}  // namespace

bool JpegFrame::canBeShown() const noexcept {
    return kind <= 0xC2 && precision == 8 && width > 0 && height > 0 && (components == 1 || components == 3);
}

std::optional<JpegFrame> readFrame(std::FILE* file) {
    if (std::fgetc(file) != kFill || std::fgetc(file) != kStart) return {};
    for (;;) {
        const int marker = nextMarker(file);
        if (marker == EOF || marker == kEnd || marker == kScan) return {};
        const int length = word(file);
        if (length < 2) return {};
        if (!isFrame(marker)) {
            if (!skipBytes(file, length - 2)) return {};
            continue;
        }
        JpegFrame frame{.kind = marker};
        frame.precision = std::fgetc(file);
        frame.height = word(file);
        frame.width = word(file);
        frame.components = std::fgetc(file);
        if (frame.height < 0 || frame.width < 0 || frame.components == EOF) return {};
        return frame;
    }
}

void putJpegHead(ObjectFile& out, int width, int height, int length, bool gray) {
    out.put("%PDF-1.2\n%????\n");
    out.startObject(1);
    out.put("\n<<\n", "/Producer (varnpdf JPEG converter 1.0)\n", "/Creator (", kMaker, ")\n", "/CreationDate (",
            creationDate(), ")\n", ">>\nendobj\n");
    out.startObject(2);
    out.put("\n<<\n/Type /Catalog\n/Pages 3 0 R\n>>\nendobj\n");
    out.startObject(3);
    out.put("\n<<\n/Type /Pages\n/Kids [4 0 R]\n/Count 1\n>>\nendobj\n");
    out.startObject(4);
    out.put("\n<<\n/Type /Page\n", "/Resources <</XObject <</I-0 5 0 R>> /ProcSet [/PDF /ImageC]>>\n",
            "/MediaBox [0 0 ", scanned(width), ' ', scanned(height), "]\n", "/Parent 3 0 R\n", "/Contents 6 0 R\n",
            ">>\nendobj\n");
    out.startObject(5);
    out.put("\n<< /Type /XObject /Subtype /Image /Name /I-0 /Width ", width, " /Height ", height, "\n",
            "/BitsPerComponent 8 /Filter /DCTDecode /ColorSpace ", gray ? "/DeviceGray " : "/DeviceRGB ", "/Length ",
            length, " >>\nstream\n");
}

void putJpegFoot(ObjectFile& out, int width, int height) {
    Deflater deflater;
    const std::string content = text("q\n", scanned(width), " 0 0 ", scanned(height), " 0 0 cm\n/I-0 Do\nQ\n");
    const std::string_view packed = deflater.whole(content);
    out.put("\nendstream\n", "endobj\n");
    out.startObject(6);
    out.put("\n<</Filter [/FlateDecode] /Length ", packed.size(), ">>\nstream\n");
    out.put(packed, "endstream\nendobj\n");
    const std::uint64_t table = out.position();
    out.putTable("xref\n0 ", "\n");
    putTrailer(out, table);
}

}  // namespace varnpdf
