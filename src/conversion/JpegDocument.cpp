// A JPEG image as a document of one page.
#include "conversion/JpegDocument.h"

#include "conversion/Deflater.h"

namespace varnpdf {
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
