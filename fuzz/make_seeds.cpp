// Writes the first inputs of the fuzz targets: make_seeds DIRECTORY. Documents go to DIRECTORY/open and
// DIRECTORY/attach, texts to DIRECTORY/syntax, keys with texts to DIRECTORY/entry. Small files of the corpus join the
// documents of DIRECTORY/open.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

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

void write(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

int copyCorpus(const fs::path& target) {
    const char* const named = std::getenv("VARNPDF_CORPUS");
    const fs::path corpus = named != nullptr ? named : VARNPDF_SOURCE_DIR "/../shared/corpus";
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
    for (const char* const name : {"open", "attach", "syntax", "entry"}) fs::create_directories(root / name);
    const auto made = documents();
    for (const auto& [name, bytes] : made) {
        write(root / "open" / (name + ".pdf"), bytes);
        write(root / "attach" / (name + ".pdf"), bytes);
    }
    write(root / "attach" / "tree.pdf", withNameTree());
    for (std::size_t i = 0; i < kTexts.size(); ++i) write(root / "syntax" / std::to_string(i), kTexts[i]);
    for (std::size_t i = 0; i < kEntries.size(); ++i) {
        write(root / "entry" / std::to_string(i), kEntries[i].first + '\0' + kEntries[i].second);
    }
    std::printf("%zu documents of our own, %d of the corpus\n", made.size(), copyCorpus(root / "open"));
    return 0;
}
