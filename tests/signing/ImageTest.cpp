// The background image of a visible signature: what is taken, how it is declared, and how often it is decoded.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/LogCapture.h"
#include "tests/signing/Pictures.h"

namespace {

using namespace varnpdf::test;

constexpr const char* kColourType = "High-color bitmap (16, 24 or 32 bit), RGB16 or RGBF";
constexpr const char* kFailure = "error opening hg image file.";

/// Of the file as it was, without the first segment behind `marker`'s two bytes.
std::string without(std::string jpeg, const std::string& marker) {
    const std::size_t at = jpeg.find(marker);
    const auto length = static_cast<std::size_t>(static_cast<unsigned char>(jpeg[at + 3]));
    return jpeg.erase(at, 2 + length);
}

std::string expectedHead(std::size_t length, const std::string& space, const std::string& more) {
    return "<< \r\n    /Type /XObject\r\n   /Subtype /Image\r\n   /Filter /DCTDecode\r\n   /Length " +
           std::to_string(length) + "\r\n   /Width 4\r\n   /Height 2\r\n   /BitsPerComponent 8\r\n   /ColorSpace " +
           space + " \r\n   " + more + " \r\n>>\r\nstream\r\n";
}

/// The data of an image object that is declared so.
std::string imageData(const std::string& body, const std::string& space, const std::string& more) {
    const std::size_t begin = body.find("stream\r\n") + 8;
    const std::size_t length = body.rfind("\r\nendstream") - begin;
    EXPECT_EQ(body.substr(0, begin), expectedHead(length, space, more));
    return body.substr(begin, length);
}

struct Taken {
    const char* name;
    std::string bytes;
    bool skip;
    const char* space;
    bool mask = false;
};

TEST(Image, IsDeclaredAsItIs) {
    const std::string cmyk = picture(FIF_JPEG, 32);
    const Taken rows[] = {
        {"opaque PNG", picture(FIF_PNG, 24), false, "/DeviceRGB"},
        {"transparent PNG", picture(FIF_PNG, 32), false, "/DeviceRGB", true},
        {"not examined", picture(FIF_PNG, 32), true, "/DeviceRGB"},
        {"grey PNG", picture(FIF_PNG, 8), false, "/DeviceGray"},
        {"JPEG", picture(FIF_JPEG, 24), false, "/DeviceRGB"},
        {"JPEG, not examined", picture(FIF_JPEG, 24), true, "/DeviceRGB"},
        {"grey JPEG", picture(FIF_JPEG, 8), false, "/DeviceGray"},
        // Adobe's programs write inks inverted, and say that it is their file.
        {"inks of Adobe", cmyk, false, "/DeviceCMYK /Decode [1 0 1 0 1 0 1 0]"},
        {"inks", without(cmyk, "\xFF\xEE"), false, "/DeviceCMYK"},
    };
    for (const Taken& row : rows) {
        SCOPED_TRACE(row.name);
        const TempFile image(row.bytes);
        Request request = kVisible;
        request.image = image.path();
        request.skipImageCheck = row.skip;
        OpenedPdf file(signedFile(document(0), request));
        ASSERT_EQ(file.code, 0);
        if (row.mask) {
            EXPECT_EQ(imageData(file.body(16), "/DeviceGray", "").substr(0, 2), "\xFF\xD8");
        }
        const std::string data =
            imageData(file.body(row.mask ? 17 : 16), row.space, row.mask ? "/SMask 16 0 R\r\n" : "");
        EXPECT_EQ(data.substr(0, 2), "\xFF\xD8");
        EXPECT_TRUE(row.bytes.starts_with("\x89PNG") || data == row.bytes) << "a JPEG is not decoded";
        EXPECT_EQ(file.body(row.mask ? 18 : 17), "-");
    }
}

TEST(Image, OthersAreRefused) {
    const std::string png = picture(FIF_PNG, 24);
    const std::string jpeg = picture(FIF_JPEG, 24);
    const std::size_t frame = jpeg.find("\xFF\xC0");
    const auto changed = [&](std::size_t at, char byte) { return std::string(jpeg).replace(frame + at, 1, 1, byte); };
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"empty", ""},
        {"another kind", picture(FIF_BMP, 24)},
        {"PNG that ends in its sizes", png.substr(0, 20)},
        {"PNG without pixels", png.substr(0, 40)},
        {"PNG of 2 to the 24th columns", std::string(png).replace(16, 1, 1, '\x01')},
        {"JPEG cut short", jpeg.substr(0, jpeg.size() - 2)},
        {"JPEG without a frame", jpeg.substr(0, 20)},
        {"lossless JPEG", changed(1, '\xC3')},
        {"12 bits", changed(4, '\x0C')},
        {"two components", changed(9, '\x02')},
        {"no rows", changed(6, '\0')},
        {"too many pixels", changed(5, '\xFF').replace(frame + 7, 1, 1, '\xFF')},
    };
    for (const bool skip : {false, true}) {
        for (const auto& row : rows) {
            const TempFile image(row.bytes);
            const LogCapture log("VarnPDF.CPdfSign");
            Request request = kVisible;
            request.image = image.path();
            request.skipImageCheck = skip;
            EXPECT_EQ(signedFile(document(0), request), "code -1083") << row.name;
            EXPECT_TRUE(log.has(kFailure)) << row.name;
        }
    }
    Request directory = kVisible;
    directory.image = "/tmp";
    EXPECT_EQ(signedFile(document(0), directory), "code -1083");
}

TEST(Image, IsLoadedOnce) {
    const TempFile image(picture(FIF_PNG, 24));
    Request request = kVisible;
    request.image = image.path();
    for (const bool skip : {false, true}) {
        const LogCapture sign("VarnPDF.CPdfSign");
        const LogCapture pdf("VarnPDF.CPdf");
        request.skipImageCheck = skip;
        ASSERT_NE(signedFile(document(0), request).substr(0, 4), "code");
        EXPECT_EQ(std::ranges::count(sign.messages(), "PNG-Untersuchung wegen Transparenz"), skip ? 0 : 1);
        EXPECT_EQ(std::ranges::count(pdf.messages(), kColourType), 1);
    }
}

// Hosts that write a signature's objects themselves name the file.
TEST(Image, IsLoadedForAHostThatWritesItself) {
    const TempFile image(picture(FIF_JPEG, 24));
    for (const std::string& path : {image.path(), std::string("/nonexistent")}) {
        OpenedPdf file(document(0));
        ASSERT_EQ(file.code, 0);
        CPdfObj widget(10, 0, -1, -1);
        CPdfXRef xref;
        CPdfSigInfo info;
        int rect[4] = {10, 20, 110, 60};
        int size[2] = {100, 40};
        std::string text = "text";
        std::string name = path;
        const int code =
            file.pdf.WriteSignature(&xref, &widget, file.pdf.get_pdf_obj_from_map(3), nullptr, nullptr, 0, 1, &info,
                                    rect, size, 0, 0, text.data(), text.data(), text.data(), text.data(), true, -1, -1,
                                    -1, -1, 0, kRoom, 0, 1, name.data(), nullptr, 0, 0, nullptr);
        EXPECT_EQ(code, path == image.path() ? 0 : -1083);
        EXPECT_EQ(xref.GetRefNum(), path == image.path() ? 7 : 0);
    }
}

}  // namespace
