// Attaching: codes, templates, name trees of every shape, and reading what is embedded.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>

#include "support/Text.h"
#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "varnpdf/PdfAttach.h"
#include "varnpdf/result.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;
namespace fs = std::filesystem;

/// A directory of its own, removed at the end.
struct Directory {
    Directory() {
        std::string name = (fs::temp_directory_path() / "varnpdf-attach-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
    ~Directory() { fs::remove_all(path); }
    std::string file(const std::string& name, std::string_view bytes) const {
        std::ofstream(path / name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return (path / name).string();
    }
    fs::path path;
};

std::string bytesOf(const std::string& path) {
    std::ostringstream out;
    out << std::ifstream(path, std::ios::binary).rdbuf();
    return out.str();
}

int attach(std::string document, std::string file) {
    return CPdfAttach().AttachFileToPDF(reinterpret_cast<unsigned char*>(document.data()),
                                        reinterpret_cast<unsigned char*>(file.data()), 0);
}

/// "key=name:content" of every embedded file; keys without their mark and their zero bytes.
std::string embedded(const std::string& path) {
    CPdf pdf;
    if (const int code = pdf.Open(path.c_str(), "rb"); code != 0) return std::to_string(code);
    CPdfAttachments files(&pdf);
    std::string out;
    for (int i = 0; i < files.GetCount(); ++i) {
        std::string key = files.GetKey(i);
        if (key.starts_with("\xef\xbf")) key.erase(0, 2);
        std::erase(key, '\0');
        unsigned long length = 0;
        std::string content = std::to_string(files.GetContent(i, nullptr, &length));
        if (content == "0") {
            content.assign(length, '?');
            files.GetContent(i, reinterpret_cast<unsigned char*>(content.data()), &length);
        }
        out += (i == 0 ? "" : " ") + key + "=" + files.GetName(i) + ":" + content;
    }
    return out;
}

PdfBuilder withCatalogue(std::string_view entries, std::string_view lineEnd = "\n") {
    PdfBuilder builder{std::string(lineEnd)};
    builder.object(1, varnpdf::text("<< /Type /Catalog /Pages 2 0 R ", entries, " >>"));
    builder.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    return builder.object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>");
}

TEST(MimeTable, IsSortedParallelAndTells) {
    ASSERT_EQ(iMaxMIMETypes, 642);
    const std::regex type("[a-z0-9-]+/[a-z0-9.+-]+");
    const std::regex extension("\\.[a-z0-9]+");
    std::set<std::pair<std::string, std::string>> rows;
    for (int i = 0; i < iMaxMIMETypes; ++i) {
        EXPECT_TRUE(std::regex_match(MIME_Types[i], type)) << MIME_Types[i];
        EXPECT_TRUE(std::regex_match(FileExtensions[i], extension)) << FileExtensions[i];
        const std::pair<std::string, std::string> row{FileExtensions[i], MIME_Types[i]};
        if (!rows.empty()) {
            EXPECT_LT(*rows.rbegin(), row);
        }
        rows.insert(row);
    }
    EXPECT_EQ(rows.size(), 642U);
    const struct {
        const char* extension;
        std::vector<std::string> types;
    } telling[] = {
        {".doc", {"application/msword"}},
        {".jpg", {"image/jpeg", "image/pjpeg"}},
        {".p7s", {"application/pkcs7-signature"}},
        {".pdf", {"application/pdf"}},
        {".txt", {"text/plain"}},
        {".xml", {"application/xml", "text/xml"}},
        {".zip", {"application/x-compressed", "application/x-zip-compressed", "application/zip", "multipart/x-zip"}},
        {".zoo", {"application/octet-stream"}},
        {".zsh", {"text/x-script.zsh"}},
    };
    for (const auto& [name, types] : telling) {
        std::vector<std::string> found;
        for (const auto& row : rows) {
            if (row.first == name) found.push_back(row.second);
        }
        EXPECT_EQ(found, types) << name;
    }
    EXPECT_EQ(std::string(FileExtensions[0]) + FileExtensions[1] + FileExtensions[2], ".3dm.3dmf.a");
    EXPECT_EQ(std::string(FileExtensions[640]) + FileExtensions[641], ".zoo.zsh");
}

TEST(Attach, Codes) {
    const Directory dir;
    const std::string good = withCatalogue("").table().bytes();
    const std::string pdf = dir.file("a.pdf", good);
    const std::string text = dir.file("a.txt", "x");
    const std::string empty = dir.file("e.txt", "");
    const std::string plain = dir.file("noext", "x");
    const std::string odd = dir.file("a.pdfx", "x");
    const std::string encrypted =
        dir.file("c.pdf", withCatalogue("").table({.entries = "/Root 1 0 R /Encrypt 3 0 R"}).bytes());
    const std::string broken = dir.file("t.pdf", withCatalogue("/Names << /EmbeddedFiles [1] >>").table().bytes());
    const std::string missing = (dir.path / "missing.txt").string();
    const std::string at256 = "/" + std::string(255, 'x');
    const struct {
        std::string document, file;
        int code;
    } rows[] = {
        {at256 + "x", text, -1007}, {pdf, at256 + "x", -1007},       {at256, text, -1001},    {pdf, missing, -1171},
        {pdf, "/dev/null", -1171},  {pdf, dir.path.string(), -1171}, {pdf, empty, -1172},     {pdf, plain, -1173},
        {pdf, odd, -1173},          {encrypted, text, -1021},        {text, text, -1029},     {missing, text, -1001},
        {missing, plain, -1173},    {broken, text, -1174},           {missing, empty, -1172},
    };
    for (const auto& [document, file, code] : rows) EXPECT_EQ(attach(document, file), code) << document << " " << file;
    CPdfAttach attach;
    std::string path = pdf;
    auto* const bytes = reinterpret_cast<unsigned char*>(path.data());
    EXPECT_EQ(attach.AttachFileToPDF(nullptr, bytes, 0), -1008);
    EXPECT_EQ(attach.AttachFileToPDF(bytes, nullptr, 0), -1008);
    EXPECT_EQ(bytesOf(pdf), good);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path), {}), 7) << "something was left behind";
}

TEST(Attach, TheUpdateByteForByte) {
    const Directory dir;
    const std::string old = withCatalogue("").table({.entries = "/Root 1 0 R /ID [<0A><0B0C0D0E0F10>]"}).bytes();
    const std::string pdf = dir.file("a.pdf", old);
    fs::create_directory(dir.path / "sub");
    const std::string file = dir.file("sub/REPORT.PDF", std::string(1000, 'x'));
    chmod(pdf.c_str(), 0640);
    ASSERT_EQ(attach(pdf, file), 0);
    struct stat status {};
    stat(pdf.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);

    const std::string now = bytesOf(pdf);
    ASSERT_TRUE(now.starts_with(old));
    const std::string tail = now.substr(old.size());
    const std::string packed = deflated(std::string(1000, 'x'));
    const std::string date = "\\(D:[0-9]{14}[+-][0-9']+\\)";
    const std::size_t data = tail.find("stream\r\n") + 8;
    EXPECT_TRUE(std::regex_match(
        tail.substr(0, data),
        std::regex(varnpdf::text("4 0 obj\r\n<<\r\n/Subtype /application#2Fpdf\r\n/Length ", packed.size(),
                                 "\r\n/Filter /FlateDecode\r\n/DL 1000\r\n/Params\r\n<<\r\n/CreationDate ", date,
                                 "\r\n/ModDate ", date, "\r\n/Size 1000\r\n>>\r\n>>\r\nstream\r\n"))))
        << tail.substr(0, data);
    const auto at = [&](std::string_view object) {
        return varnpdf::Digits{static_cast<long long>(now.find(object)), 10};
    };
    const std::string key = "(\xef\xbf\0R\0E\0P\0O\0R\0T\0.\0P\0D\0F)"s;
    std::string rest = tail.substr(data);
    const std::size_t id = rest.find("<0A><") + 5;
    rest.replace(id, 12, "............");
    EXPECT_EQ(rest,
              varnpdf::text(packed, "\r\nendstream\rendobj\r",
                            "5 0 obj\r\n<<\r\n/F (REPORT.PDF)\r\n/EF <</F 4 0 R>>\r\n/Desc ()\r\n",
                            "/Type /Filespec\r\n>>\r\nendobj\r\n", "6 0 obj\r<<\r/EmbeddedFiles 7 0 R\r>>\rendobj\r",
                            "7 0 obj\r\n<<\r\n/Names [", key, " 5 0 R]\r\n>>\r\nendobj\r\n",
                            "1 0 obj\n<< /Type /Catalog /Pages 2 0 R  /Names 6 0 R\r\n>>\nendobj\r\n",
                            "xref\r\n1 1 \r\n", at("1 0 obj\n<< /Type /Catalog /Pages 2 0 R  /N"),
                            " 00000 n\r\n4 1 \r\n", at("4 0 obj"), " 00000 n\r\n5 1 \r\n", at("5 0 obj"),
                            " 00000 n\r\n6 1 \r\n", at("6 0 obj"), " 00000 n\r\n7 1 \r\n", at("7 0 obj"),
                            " 00000 n\r\ntrailer\r\n<<\r\n/Size 8\r\n/ID [<0A><............>]\r\n/Root 1 0 R\r\n/Prev ",
                            old.find("xref\n"), "\r\n>>\r\nstartxref\r\n", now.rfind("xref\r\n1 1"), "\r\n%%EOF\r\n"));
    EXPECT_EQ(now.find("<0B0C0D0E0F10>", old.size()), std::string::npos);
    EXPECT_EQ(embedded(pdf), "REPORT.PDF=REPORT.PDF:" + std::string(1000, 'x'));
}

// Every shape of a catalogue: what it says, the objects 4 and on that it refers to, and the files that were there.
TEST(Attach, NameTrees) {
    const std::string tree = "<< /Names [(k) 8 0 R] >>";
    const struct {
        const char* name;
        std::string catalogue;
        std::vector<std::string> objects;
        std::string before;
    } rows[] = {
        {"nothing", "", {}, ""},
        {"null", "/Names null", {}, ""},
        {"null object", "/Names 4 0 R", {"null"}, ""},
        {"dangling", "/Names 99 0 R", {}, ""},
        {"direct names", "/Names << /Dests 7 0 R >>", {}, ""},
        {"names object", "/Names 4 0 R", {"<< /JavaScript 7 0 R>>"}, ""},
        {"all direct", "/Names << /EmbeddedFiles << /Names [(k) 8 0 R] >> >>", {}, "k=k:old "},
        {"objects", "/Names 4 0 R", {"<</EmbeddedFiles 5 0 R>>", tree}, "k=k:old "},
        {"array object", "/Names 4 0 R", {"<</EmbeddedFiles 5 0 R>>", "<</Names 6 0 R>>", "[(k) 8 0 R]"}, "k=k:old "},
        {"chain of references", "/Names 4 0 R", {"5 0 R", "<</EmbeddedFiles 6 0 R>>", tree}, "k=k:old "},
        {"empty array", "/Names << /EmbeddedFiles 4 0 R >>", {"<</Names []>>"}, ""},
        {"empty tree", "/Names << /EmbeddedFiles 4 0 R >>", {"<<>>"}, ""},
        {"bracket in a key", "/Names << /EmbeddedFiles << /Names [(]\\\\) 8 0 R] >> >>", {}, "]\\=k:old "},
        {"kids",
         "/Names << /EmbeddedFiles 4 0 R >>",
         {"<</Kids [5 0 R 6 0 R]>>", "<</Limits[(c)(d)]/Names[(c) 8 0 R(d) 8 0 R]>>",
          "<</Limits [(k)(k)] /Names [(k) 8 0 R]>>"},
         "c=k:old d=k:old k=k:old "},
        {"deep kids by reference",
         "/Names << /EmbeddedFiles << /Kids 4 0 R >> >>",
         {"[5 0 R]", "<</Limits[(k)(k)]/Kids [6 0 R]>>", "<</Limits [(k)(k)] /Names [(k) 8 0 R]>>"},
         "k=k:old "},
        {"backslash at the end of a string",
         R"(/F (C:\\docs\\) /Names 4 0 R)",
         {R"(<</F (C:\\docs\\)/EmbeddedFiles 5 0 R>>)", R"(<</F (C:\\docs\\)/Kids [6 0 R]>>)",
          R"(<</F (\\)/Limits[(k)(k)]/Names[(k) 8 0 R]>>)"},
         "k=k:old "},
        {"parenthesis behind a backslash",
         R"(/F (a\\\)) /Names << /F (\\\)) /EmbeddedFiles << /F (\\\)) /Names [(k) 8 0 R] >> >>)",
         {},
         "k=k:old "},
        {"parentheses in parentheses",
         "/F (a(b)c) /Names << /F (a(b)c) /EmbeddedFiles << /F (a(b)c) /Names [(a(b)c) 8 0 R] >> >>",
         {},
         "a(b)c=k:old "},
    };
    for (const auto& [name, catalogue, objects, before] : rows) {
        const Directory dir;
        PdfBuilder builder = withCatalogue(catalogue);
        for (std::size_t i = 0; i < objects.size(); ++i) builder.object(static_cast<int>(i) + 4, objects[i]);
        builder.object(8, "<< /Type /Filespec /F (k) /EF << /F 9 0 R >> >>").stream(9, "", "old");
        const Closing closing{.entries = R"(/Info << /Title (C:\\docs\\) >> /X (\\\)) /Y (a(b)c) /Root 1 0 R)"};
        const std::string pdf = dir.file("a.pdf", builder.table(closing).bytes());
        EXPECT_EQ(embedded(pdf) + " ", before.empty() ? " " : before) << name;
        EXPECT_EQ(attach(pdf, dir.file("b.txt", "one")), 0) << name;
        EXPECT_EQ(attach(pdf, dir.file("a.txt", "two")), 0) << name;
        EXPECT_EQ(embedded(pdf), before + "b.txt=b.txt:one a.txt=a.txt:two") << name;
        OpenedPdf opened(bytesOf(pdf));
        if (name == "kids"sv) {
            EXPECT_EQ(opened.body(4), "<</Kids [5 0 R 6 0 R]>>");
            EXPECT_TRUE(opened.body(6).starts_with("<</Limits [(k) (\xef\xbf\0b"s)) << opened.body(6);
        }
    }
}

TEST(Attach, DamagedTreesAreRefused) {
    const struct {
        const char* name;
        std::string catalogue;
        std::vector<std::string> objects;
    } rows[] = {
        {"names is an array", "/Names [1 2]", {}},
        {"tree is a number", "/Names << /EmbeddedFiles 5 >>", {}},
        {"array is a string", "/Names << /EmbeddedFiles << /Names (x) >> >>", {}},
        {"array is not closed", "/Names 4 0 R", {"<< /EmbeddedFiles 5 0 R >>", "<< /Names [(a) 1 0 R >>"}},
        {"kid is its parent", "/Names << /EmbeddedFiles 4 0 R >>", {"<< /Kids [4 0 R] >>"}},
        {"kids in a circle", "/Names << /EmbeddedFiles 4 0 R >>", {"<< /Kids [5 0 R] >>", "<< /Kids [4 0 R] >>"}},
        {"kid is missing", "/Names << /EmbeddedFiles << /Kids [77 0 R] >> >>", {}},
        {"limits are numbers", "/Names << /EmbeddedFiles << /Limits [1 2] /Names [] >> >>", {}},
    };
    for (const auto& [name, catalogue, objects] : rows) {
        const Directory dir;
        PdfBuilder builder = withCatalogue(catalogue);
        for (std::size_t i = 0; i < objects.size(); ++i) builder.object(static_cast<int>(i) + 4, objects[i]);
        const std::string old = builder.table().bytes();
        const std::string pdf = dir.file("a.pdf", old);
        EXPECT_EQ(attach(pdf, dir.file("b.txt", "x")), VARNPDF_NAME_TREE_UNUSABLE) << name;
        EXPECT_EQ(bytesOf(pdf), old) << name;
        EXPECT_EQ(embedded(pdf).find("-10"), std::string::npos) << name;  // reading it ends
    }
    // A chain of kids deeper than any real one, and one that is as deep as is allowed.
    for (const int depth : {400, 600}) {
        const Directory dir;
        PdfBuilder builder = withCatalogue("/Names << /EmbeddedFiles 4 0 R >>");
        for (int i = 0; i < depth; ++i) builder.object(4 + i, varnpdf::text("<< /Kids [", 5 + i, " 0 R] >>"));
        builder.object(4 + depth, "<< /Names [] >>");
        const std::string pdf = dir.file("a.pdf", builder.table().bytes());
        EXPECT_EQ(attach(pdf, dir.file("b.txt", "x")), depth == 400 ? 0 : VARNPDF_NAME_TREE_UNUSABLE);
    }
}

TEST(Attach, NamesThatNeedCare) {
    for (const char* const name : {"a(b.txt", "a)b).txt", "back\\.txt\\.txt", "new\nline.txt", "re\rturn.txt",
                                   "endobj.txt", "it's \"q\".txt", " .txt"}) {
        const Directory dir;
        const std::string pdf = dir.file("a.pdf", withCatalogue("").table().bytes());
        for (int i = 0; i < 2; ++i) EXPECT_EQ(attach(pdf, dir.file(name, "x")), 0) << name;
        const std::string one = name + "="s + name + ":x";
        EXPECT_EQ(embedded(pdf), one + " " + one);
    }
    const Directory dir;
    const std::string pdf = dir.file("a.pdf", withCatalogue("").table().bytes());
    EXPECT_EQ(attach(pdf, dir.file("\xc3\x84.txt", "x")), 0);
    EXPECT_EQ(attach(pdf, dir.file("\xe2\x82\xac.txt", "x")), 0);
    EXPECT_EQ(embedded(pdf), "\xc4.txt=\xc4.txt:x \xe2\x82\xac.txt=\xa0.txt:x");
}

TEST(Attach, DocumentsOfEveryKind) {
    const std::vector<std::pair<int, std::string>> members = {
        {1, "<< /Type /Catalog /Pages 2 0 R /Names << /EmbeddedFiles 4 0 R >> >>"},
        {2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>"},
        {3, "<< /Type /Page /Parent 2 0 R >>"},
        {4, "<< /Names [] >>"}};
    PdfBuilder packed;
    packed.objectStream(6, members).crossReferenceStream(7);
    std::string cut = withCatalogue("", "\r").table().bytes();
    cut.pop_back();
    // A number that is in use would replace its object; a /Size that is too small does not tell.
    const std::string lying = withCatalogue("").object(9, "<< /Kept true >>").table({.size = "5"}).bytes();
    const struct {
        std::string bytes, start;
    } rows[] = {{packed.bytes(), "8 0 obj"}, {cut, "\r\n4 0 obj"}, {lying, "10 0 obj"}};
    for (const auto& [bytes, start] : rows) {
        const Directory dir;
        const std::string pdf = dir.file("a.pdf", bytes);
        EXPECT_EQ(attach(pdf, dir.file("b.txt", "x")), 0);
        EXPECT_EQ(embedded(pdf), "b.txt=b.txt:x") << start;
        EXPECT_EQ(bytesOf(pdf).substr(bytes.size(), start.size()), start);
    }
}

// The walk over all objects ends at the largest number there is, and behind it.
TEST(Attachments, LargestNumbers) {
    PdfBuilder builder = withCatalogue("");
    builder.object(4, "<< /Subtype /FileAttachment /FS << /F (n) /EF << /F 5 0 R >> >> >>").stream(5, "", "x");
    const std::string bytes = builder.table().bytes();
    for (const char* const heading : {"2147483647 1", "2147483646 2", "2147483648 1", "99999999999 2"}) {
        const Directory dir;
        const std::string entries = varnpdf::text(heading, "\n0000000009 00000 n \n0000000009 00000 n \ntrailer");
        const std::string pdf = dir.file("a.pdf", replaced(bytes, "trailer", entries));
        EXPECT_EQ(embedded(pdf), "=n:x") << heading;
    }
}

// Listing takes time with the length of the document, not with its square.
TEST(Attachments, SharedObjectsEndTheList) {
    constexpr int kMany = 20'000;
    std::string junk;
    for (int i = 0; i < 20'000; ++i) junk += "/A 1 ";
    std::string pairs;
    std::string kids;
    for (int i = 0; i < kMany; ++i) {
        varnpdf::append(pairs, '(', i, ") 5 0 R ");
        varnpdf::append(kids, 6 + i, " 0 R ");
    }
    PdfBuilder specs = withCatalogue("/Names << /EmbeddedFiles 4 0 R >>");
    specs.object(4, "<< /Names [" + pairs + "] >>").object(5, "<< /F (a) " + junk + ">>");
    PdfBuilder leaves = withCatalogue("/Names << /EmbeddedFiles 4 0 R >>");
    leaves.object(4, "<< /Kids [" + kids + "] >>").object(5, "[(a) << /F (a) >> " + junk + "]");
    for (int i = 0; i < kMany; ++i) leaves.object(6 + i, "<< /Names 5 0 R >>");
    for (PdfBuilder* const document : {&specs, &leaves}) {
        const Directory directory;
        CPdf pdf;
        ASSERT_EQ(pdf.Open(directory.file("d.pdf", document->table().bytes()).c_str(), "rb"), 0);
        const int count = CPdfAttachments(&pdf).GetCount();
        EXPECT_GT(count, 10);
        EXPECT_LT(count, 1000);
    }
}

TEST(Attachments, OfOtherMakers) {
    const std::string packed = deflated("content");
    const struct {
        const char* name;
        std::string spec, stream, data, found;
    } rows[] = {
        {"plain", "/F (n)", "", "endobj and endstream", "k=n:endobj and endstream"},
        {"unicode name first", "/UF <FEFF0041> /F (n)", "/Filter /FlateDecode", packed, "k=\xfe\xff\0A:content"s},
        {"filter in an array", "/F (n)", "/Filter [ /FlateDecode ]", packed, "k=n:content"},
        {"no name", "", "/Filter null", "x", "k=k:x"},
        {"another filter", "/F (n)", "/Filter /ASCIIHexDecode", "41>", "k=n:A"},
        {"two filters", "/F (n)", "/Filter [/ASCIIHexDecode /FlateDecode]", "41>", "k=n:-1176"},
        {"a filter for images", "/F (n)", "/Filter /DCTDecode", "x", "k=n:-1176"},
        {"predicted", "/F (n)", "/Filter /FlateDecode /DecodeParms << /Predictor 12 >>", deflated("\2a\2\1"), "k=n:ab"},
        {"damaged", "/F (n)", "/Filter /FlateDecode", packed.substr(0, 5), "k=n:-1176"},
    };
    for (const auto& [name, spec, stream, data, found] : rows) {
        const Directory dir;
        PdfBuilder builder = withCatalogue("/Names << /EmbeddedFiles << /Names [(k) 4 0 R] >> >>");
        builder.object(4, varnpdf::text("<< ", spec, " /EF << /F 5 0 R >> >>")).stream(5, stream, data);
        EXPECT_EQ(embedded(dir.file("a.pdf", builder.table().bytes())), found) << name;
    }
    const Directory dir;
    PdfBuilder builder = withCatalogue("/Names << /EmbeddedFiles << /Names [(k) << /F (n) >> (x)] >> >>");
    builder.object(4, "<< /Subtype /FileAttachment /FS 5 0 R >>").object(6, "<< /Subtype /FileAttachment /FS 5 0 R >>");
    builder.object(5, "<< /F (note) /EF << /F 7 0 R >> >>")
        .stream(7, "/Subtype /text#2Fplain /Params << /Size 12 >>", "hi");
    OpenedPdf opened(builder.table().bytes());
    CPdfAttachments files(&opened.pdf);
    ASSERT_EQ(files.GetCount(), 2);  // the annotation's file once
    unsigned long length = 0;
    EXPECT_EQ(files.GetContent(0, nullptr, &length), VARNPDF_EMBEDDED_FILE_MISSING);
    EXPECT_EQ(files.GetContent(2, nullptr, &length), VARNPDF_EMBEDDED_FILE_MISSING);
    EXPECT_EQ(files.GetName(1) + files.GetMimeType(1) + std::to_string(files.GetSize(1)), "notetext/plain12");
}

}  // namespace
