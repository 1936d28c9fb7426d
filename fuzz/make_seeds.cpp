// Writes the first inputs of the fuzz targets: make_seeds DIRECTORY. Documents go to DIRECTORY/open and
// DIRECTORY/attach, the same and documents with forms to DIRECTORY/sign, texts to DIRECTORY/syntax, keys with texts to
// DIRECTORY/entry, old security stores to DIRECTORY/store, files to convert to DIRECTORY/convert, choices of dictionaries
// to DIRECTORY/dictionary. Small files of the corpus join the documents.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Corpus.h"
#include "tests/support/PdfBuilder.h"

namespace fs = std::filesystem;
using namespace varnpdf::test;

namespace {

constexpr std::uintmax_t kCorpusBytes = 100'000;
constexpr const char* kField = "<< /Type /Annot /Subtype /Widget /FT /Sig /T (Sig) /V ";

// A document with fields 4, 6, ... and their signatures 5, 7, ...
PdfBuilder signedDocument(int signatures, const std::string& contents, const std::string& entries) {
    PdfBuilder builder = smallDocument();
    for (int number = 4; number < 4 + 2 * signatures; number += 2) {
        builder.object(number, kField + std::to_string(number + 1) + " 0 R >>");
        builder.signature(number + 1, contents, entries);
    }
    return builder;
}

std::string packed(int predictor, bool hybrid) {
    PdfBuilder builder("\r\n");
    const std::vector<std::pair<int, std::string>> members = {
        {1, "<< /Type /Catalog /Pages 2 0 R >>"},
        {2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>"},
        {3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 100.5 200] /Rotate -90 >>"},
        {4, std::string(kField) + "5 0 R >>"},
        {5, "<< /Type /Sig /Reason <FEFF00410042> /Cert [<3000> <3001>] /ByteRange [0 1 3 4] /Contents <3000> >>"}};
    builder.objectStream(6, members);
    if (hybrid) return builder.hybrid(7).bytes();
    return builder.crossReferenceStream(7, {.predictor = predictor}).bytes();
}

std::string updated(int updates) {
    PdfBuilder builder = smallDocument("\r");
    builder.table();
    for (int i = 0; i < updates; ++i) {
        builder.object(3, "<< /Type /Page /Parent 2 0 R /Rotate " + std::to_string(i) + " >>").object(4 + i, "[1 0 R]");
        builder.table();
    }
    return builder.object(9, "null", 1).crossReferenceStream(10).bytes();
}

std::string linearized() {
    PdfBuilder builder;
    builder.object(9, "<< /Linearized 1 /L 2000 /H [500 20] /O 3 /E 900 /N 1 /T 1200 >>");
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R >>");
    builder.table({.size = "10"});
    builder.object(2, "<< /Type /Pages /Kids [[3 0 R] 4 0 R] /Count 1 /MediaBox [0 0 9 9] >>");
    builder.object(3, "<< /Type /Page /Parent 2 0 R >>").object(4, "<< /Kids [2 0 R 3 0 R] >>");
    builder.stream(5, "", std::string(900, 'x'));
    return builder.table().bytes();
}

std::string locked(const std::string& method, const std::string& params) {
    PdfBuilder builder = signedDocument(1, "<3000>", "/TransformMethod " + method + " /TransformParams 8 0 R");
    return builder.object(8, params).table().bytes();
}

std::string withNameTree() {
    PdfBuilder builder("\n", "%PDF-1.4");
    builder.object(
        1, "<< /Type /Catalog /Pages 2 0 R /Names << /EmbeddedFiles 4 0 R >> /PageLabels << /Nums [0 9 0 R] >> >>");
    builder.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 /Resources << /Font << /A 9 0 R >> >> >>");
    builder.object(
        3, "<< /Type /Page /Parent 2 0 R /Contents 8 0 R /Annots [<< /Subtype /FileAttachment /FS 7 0 R >>] >>");
    builder.object(4, "<< /Kids 5 0 R >>").object(5, "[6 0 R]");
    builder.object(6, "<< /Limits [(a) <62>] /Names [(a) 7 0 R (b\\)) << /F (b) >>] >>");
    builder.object(7, "<< /Type /Filespec /F (a) /UF <FEFF0061> /EF << /F 8 0 R >> /Desc (d) >>");
    builder.stream(8, "/Params << /Size 4 >> /Subtype /text#2Fplain", "data", {.deflate = true});
    return builder.object(9, "<< /S /D >>").table().bytes();
}

std::map<std::string, std::string> documents() {
    PdfBuilder indirect = smallDocument();
    indirect.objectStream(5, {{6, "(a)"}, {7, "[1 2 R]"}}, {.deflate = true, .length = "8 0 R"}).object(8, "70");
    std::map<std::string, std::string> out = {
        {"table", smallDocument().table().bytes()},
        {"table-crlf", smallDocument("\r\n").table().bytes()},
        {"damaged-startxref", withStartxref(smallDocument().raw(".").table().bytes(), 999999)},
        {"stream", packed(1, false)},
        {"stream-predicted", packed(12, false)},
        {"hybrid", packed(1, true)},
        {"updates", updated(5)},
        {"linearized", linearized()},
        {"indirect-length", indirect.crossReferenceStream(9, {.index = false}).bytes()},
        {"encrypted", smallDocument().table({.entries = "/Root 1 0 R /Encrypt 9 0 R"}).bytes()},
        {"locked-docmdp", locked("/DocMDP", "<< /Type /TransformParams /P 1 >>")},
        {"locked-fieldmdp", locked("/FieldMDP", "<< /Type /TransformParams /Action /All >>")},
    };
    const std::string values = "/Reason (a \\(b\\)) /Name <FEFF0041> /M (D:20240101) /Cert <30030201>";
    const std::map<std::string, std::string> contents = {{"der", "<300302010700000000>"},
                                                         {"indefinite", "<3080020107000000000000>"},
                                                         {"octets", "<0482000301020300>"},
                                                         {"padding", "<31313131>"},
                                                         {"empty", "<>"}};
    for (const auto& [name, value] : contents) {
        out["signed-" + name] = withByteRanges(signedDocument(2, value, values).table().bytes());
    }
    return out;
}

// What a preparation has to change or to find its way around.
std::map<std::string, std::string> formDocuments() {
    const auto document = [](const std::string& form, const std::string& page, int sections) {
        PdfBuilder builder("\r\n");
        builder.object(1, "<< /Type /Catalog /Pages 2 0 R /AcroForm " + form + " /Metadata 8 0 R >>");
        builder.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 /MediaBox [0 0 595 842] >>");
        builder.object(3, "<< /Type /Page /Parent 2 0 R " + page + " >>");
        builder.object(4, "<< /Fields [5 0 R] /SigFlags 1 /DR << /Font << /F 9 0 R >> >> >>");
        builder.object(5, "<< /Type /Annot /Subtype /Widget /FT /Sig /T (Empty) /Rect [9 9 99 99] /P 3 0 R >>");
        builder.object(6, "[5 0 R]");
        builder.stream(8, "/Type /Metadata", "<xmp:ModifyDate>2024-01-01T00:00:00Z</xmp:ModifyDate>");
        builder.object(9, "<< /Type /Font /ModDate (D:20240101000000Z) >>");
        if (sections > 1) builder.table().object(3, "<< /Type /Page /Parent 2 0 R " + page + " >>");
        return builder.table({.entries = "/Root 1 0 R /Info 9 0 R /ID [<0011> <2233>]"}).bytes();
    };
    return {{"form", document("4 0 R", "/Annots [5 0 R]", 1)},
            {"form-direct", document("<< /Fields [5 0 R] /DA (/F 0 Tf) >>", "/Annots 6 0 R /Rotate 90", 2)},
            {"form-none", document("null", "/Annots null", 1)}};
}

const std::vector<std::string> kTexts = {"12",
                                         "-1.5e3 4",
                                         "12 0 R",
                                         "(a (b) \\) c)",
                                         "<48 65 6C>",
                                         "/Name#20/Next",
                                         "[1 2 0 R (x) [null] << /A true >>]",
                                         "<< /Type /Sig /Length 3 /Kids [1 0 R] >>stream\nabc\nendstream",
                                         "xref\n0 1\ntrailer << /Size 1 >>startxref",
                                         "5 0 obj << /Type /Page >> endobj",
                                         "true",
                                         "\t \a\r\n",
                                         "0123456789abcdefABCDEF",
                                         "gr\xc3\xbc\xc3\x9f \xff",
                                         "[[[[[[[[1]]]]]]]]"};

const std::vector<std::pair<std::string, std::string>> kEntries = {
    {"/Type", "1 0 obj\n<< /Type /Sig /Length 3 >>\nendobj"},
    {"Kids", "<< /Kids [1 0 R [2 0 R] (]) ] /Count 2 >>"},
    {"/V", "<< /Lock << /V 1 >> /V (a\\)b) /V 12 0 R>>"},
    {"/P", "<< /Perms <</P 1>> /P <3E> /Parent 1 0 R /P true >>"},
    {"/A", "[/A /B /A 2 ] << /A>>"}};

// Bodies of the objects 20, 21, ...
const std::vector<std::vector<std::string>> kStores = {
    {"<</VRI 22 0 R/Certs 21 0 R/CRLs[]>>", "[30 0 R null 31 0 R]",
     "<</BF8B4530D8D246DD74AC53A13471BBA17941DFF7<</Cert 21 0 R/TU(D:2026)/Type/VRI>>/00FF 23 0 R>>",
     "<</OCSP[5 0 R]>>"},
    {"<</VRI<</bf8b4530d8d246dd74ac53a13471bba17941dff7<</CRL[1 5 R]>> >>/Certs 20 0 R/X (a(b)\\)) % c\n>>"},
    {"21 0 R", "20 0 R"},
    {"<</VRI 20 0 R/V#52I[1]/Certs(x)/CRLs 5/OCSPs 1 0 R/Y>>"},
    {"[]"}};

// What the generator of dictionaries chooses, byte by byte: plain values of each kind, then nested ones.
const std::vector<std::string> kChoices = {
    {7, 0, 5, 1, 9, 0, 2, 4, 0, 3, 5, 8, 3, 4, 1, 2, 3, 4, 4, 3, 0, 1, 2, 5, 1, 6, 3, 14, 5, 0},
    {3, 7, 0, 3, 8, 1, 2, 3, 2, 1, 5, 7, 1, 2, 0, 8, 1, 3, 1, 4, 0, 7, 2, 2, 2, 5, 9, 11},
    {5, 8, 2, 3, 0, 8, 1, 1, 7, 1, 1, 2, 3, 8, 9, 10, 3, 2, 1, 2, 4, 2, 3, 6, 1, 1}};

// The first byte chooses the kind of file: JPEG, TIFF, text.
std::map<std::string, std::string> convertible() {
    using namespace std::string_literals;
    const std::string frame = "\xFF\xC0\x00\x0B\x08\x00\x02\x00\x03\x01\x01\x11\x00"s;
    // 8 x 2 samples of one bit in one strip: ten tags of the first directory.
    const auto tag = [](int name, char kind, int value) {
        return std::string{static_cast<char>(name),  static_cast<char>(name >> 8),  kind, 0, 1, 0, 0, 0,
                           static_cast<char>(value), static_cast<char>(value >> 8), 0,    0};
    };
    const auto tiff = [&](int compression, int photometric, const std::string& data) {
        const int end = 8 + 2 + 9 * 12 + 4;
        return "II*\0\x08\0\0\0\x09\0"s + tag(256, 3, 8) + tag(257, 3, 2) + tag(258, 3, 1) + tag(259, 3, compression) +
               tag(262, 3, photometric) + tag(273, 4, end) + tag(277, 3, 1) + tag(278, 3, 2) +
               tag(279, 4, static_cast<int>(data.size())) + "\0\0\0\0"s + data;
    };
    return {
        {"jpeg", "\0\xFF\xD8\xFF\xE0\x00\x04zz"s + frame + "\xFF\xDA\x00\x02z\xFF\xD9"s},
        {"tiff", '\1' + tiff(1, 1, "\xA5\x5A")},
        {"tiff-packed", '\1' + tiff(32773, 0, "\x01\xA5\x5A")},
        {"tiff-fax", '\1' + tiff(4, 0, "\x26\xA0\x04\x00\x40\x00"s)},
        {"text", "\2It's (one)\r\n\ttwo\f\x84\x81\\"s},
        {"text-utf8", "\2\xEF\xBB\xBFgr\xC3\xBC\xC3\x9F\xE2\x82\xAC\n"s},
    };
}

void write(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

int copyCorpus(const fs::path& target) {
    const fs::path corpus = varnpdf::test::corpus();
    if (!fs::is_directory(corpus)) return 0;
    int copied = 0;
    for (const auto& item : fs::recursive_directory_iterator(corpus)) {
        if (!item.is_regular_file() || item.path().extension() != ".pdf" || item.file_size() > kCorpusBytes) continue;
        const std::string name = item.path().parent_path().filename().string() + '-' + item.path().filename().string();
        fs::copy_file(item.path(), target / name, fs::copy_options::overwrite_existing);
        ++copied;
    }
    return copied;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_seeds DIRECTORY\n");
        return 2;
    }
    const fs::path root(argv[1]);
    for (const char* const name : {"open", "attach", "sign", "syntax", "entry", "store", "convert", "dictionary"}) {
        fs::create_directories(root / name);
    }
    const auto made = documents();
    const auto forms = formDocuments();
    for (const auto& [name, bytes] : made) {
        for (const char* const target : {"open", "attach", "sign"}) write(root / target / (name + ".pdf"), bytes);
    }
    for (const auto& [name, bytes] : forms) write(root / "sign" / (name + ".pdf"), bytes);
    write(root / "attach" / "tree.pdf", withNameTree());
    for (std::size_t i = 0; i < kTexts.size(); ++i) write(root / "syntax" / std::to_string(i), kTexts[i]);
    for (std::size_t i = 0; i < kEntries.size(); ++i) {
        write(root / "entry" / std::to_string(i), kEntries[i].first + '\0' + kEntries[i].second);
    }
    for (std::size_t i = 0; i < kChoices.size(); ++i) write(root / "dictionary" / std::to_string(i), kChoices[i]);
    for (const auto& [name, bytes] : convertible()) write(root / "convert" / name, bytes);
    for (std::size_t i = 0; i < kStores.size(); ++i) {
        std::string bodies;
        for (const std::string& body : kStores[i]) bodies += body + '\0';
        write(root / "store" / std::to_string(i), bodies);
    }
    copyCorpus(root / "sign");
    std::printf("%zu documents of our own, %d of the corpus\n", made.size() + forms.size(), copyCorpus(root / "open"));
    return 0;
}
