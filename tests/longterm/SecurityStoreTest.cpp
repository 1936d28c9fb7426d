// The security store: what is written, what of an old store stays, and what a failure leaves.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"
#include "support/Text.h"
#include "varnpdf/PdfDSS.h"
#include "varnpdf/PdfStore.h"
#include "varnpdf/result.h"

namespace {

using namespace varnpdf::test;
using varnpdf::text;
using Records = std::vector<pdf_dss_struct>;

// SHA-1 of the bytes 30 82 00 00, of 01 and of 02 00
const std::string kKey0 = "BFBD5A76349BBD9260A3B1975ED31433060FA4E8";
const std::string kKey1 = "BF8B4530D8D246DD74AC53A13471BBA17941DFF7";
const std::string kKey2 = "9B99593353A610C4BEE0D6A94A01A3296080C0FB";

const std::string kEmptyEntry = " << /OCSP [] /CRL [] /Cert []>>";

int append(const std::string& in, std::string out, Records records, bool overwrite = true) {
    std::string path = in;
    records.reserve(1);  // an array without records is one all the same
    return c_pdf_dss().append_dss(path.data(), out.data(), records.data(), static_cast<int>(records.size()), overwrite);
}

/// The document with the store, or "code ...".
std::string stored(std::string_view document, const Records& records) {
    const TempFile in(document);
    const TempFile out;
    const int code = append(in.path(), out.path(), records);
    if (code != 0) return "code " + std::to_string(code);
    EXPECT_EQ(in.read(), document);
    std::string file = out.read();
    EXPECT_TRUE(file.starts_with(document));
    EXPECT_EQ(OpenedPdf(file).code, 0) << file.substr(document.size());
    return file;
}

/// Pages 2 and 3 and a signed field with each of the values; the catalogue has these entries.
PdfBuilder signedDocument(const std::vector<std::string>& values, const std::string& catalogue = "",
                          const std::string& lineEnd = "\n", std::string_view header = "%PDF-1.7") {
    PdfBuilder builder(lineEnd, header);
    builder.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    builder.object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>");
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R" + catalogue + ">>");
    int number = 4;
    for (const std::string& value : values) {
        const std::string dictionary = std::to_string(number + 1) + " 0 R";
        builder.object(number, "<< /Type /Annot /FT /Sig /T (f) /V " + dictionary + " >>");
        builder.signature(number + 1, value);
        number += 2;
    }
    return builder;
}

/// The newest text of an object in the appended part, without white space at its ends.
std::string body(const std::string& file, int number) { return OpenedPdf(file).body(number); }

// The whole update, byte for byte. The record of "the last signature" goes to the third one.
TEST(SecurityStore, NewStore) {
    const std::string document = signedDocument({"<30820000>", "<01>", "<0200>"}).table().bytes();
    const std::string file = stored(document, {{-1, "AQID", "", ""}, {0, "", "BA==", "BQ\nUF"}, {1, "", "", ""}});
    const std::string tail = file.substr(document.size());
    const std::string objects =
        "10 0 obj\n<< \n   /Length 1\n>>\nstream\n\x04\nendstream\nendobj\n\n"
        "11 0 obj\n<< \n   /Length 3\n>>\nstream\n\x05\x05\x05\nendstream\nendobj\n\n"
        "12 0 obj\n<< \n   /Length 3\n>>\nstream\n\x01\x02\x03\nendstream\nendobj\n\n"
        "13 0 obj\n<< \n% Eintrag neuer DSS \n"
        "/" +
        kKey0 +
        " << /OCSP [11 0 R] /CRL [10 0 R] /Cert []>>\n"
        "/" +
        kKey1 +
        " << /OCSP [] /CRL [] /Cert []>>\n"
        "/" +
        kKey2 +
        " << /OCSP [] /CRL [] /Cert [12 0 R]>>\n"
        ">>\nendobj\n\n"
        "14 0 obj\n<< \n   /VRI 13 0 R\n   /OCSPs [11 0 R]\n   /CRLs [10 0 R]\n   /Certs [12 0 R]\n>>\nendobj\n\n"
        "1 0 obj\n<< /Type /Catalog /Pages 2 0 R/DSS 14 0 R\n>>\nendobj\r\n"
        "xref\r\n1 1 \r\n";
    EXPECT_EQ(tail.substr(0, objects.size()), objects);
    const std::string end = "trailer\r\n<<\r\n/Size 15\r\n/Root 1 0 R\r\n/Prev " +
                            std::to_string(document.rfind("xref\n0")) + "\r\n>>\r\nstartxref\r\n" +
                            std::to_string(document.size() + tail.find("xref\r\n")) + "\r\n%%EOF\r\n";
    EXPECT_TRUE(file.ends_with(end)) << tail;
}

// The layout of the stream, with every line end, an unknown one among them; the identifier is renewed or stood for.
TEST(SecurityStore, StreamSection) {
    struct Row {
        const char* lineEnd;
        const char* written;
        const char* behindStream;
        const char* entries;
        const char* id;
    };
    const std::string longHeader = "%PDF-1.7" + std::string(100, ' ');
    for (const Row& row :
         {Row{"\n", "\n", "\n", "", "/ID [(000)(000)]"}, Row{"\r\n", "\r\n", "\r\n", " /ID [<AB> <CD>]", "/ID [<AB> <"},
          Row{"\r", "\r", "\r\n", " /Info 2 0 R", "/Info 2 0 R\r  /Root 1 0 R \r  /ID [(000)(000)]"},
          Row{"\n", "\r\n", "\r\n", "", "/ID [(000)(000)]"}}) {
        const std::string_view nl = row.written;
        Closing closing{.entries = std::string("/Root 1 0 R") + row.entries};
        closing.widths[0] = 2;
        const bool unknown = nl != row.lineEnd;
        PdfBuilder builder = signedDocument({"<01>"}, "", row.lineEnd, unknown ? longHeader : "%PDF-1.7");
        const std::string document = builder.crossReferenceStream(6, closing).bytes();
        const std::string tail = stored(document, {{0, "AQID", "", ""}}).substr(document.size());
        const std::size_t at = tail.find(text("10 0 obj", nl, "<< ", nl, "  /Type /XRef ", nl, "  /Size 11 ", nl));
        ASSERT_NE(at, std::string::npos) << tail;
        for (const std::string& part :
             {std::string(row.id), text(">>", nl, "stream", row.behindStream, "x"),
              text("  /Index[1 1 7 4] ", nl, "  /Filter /FlateDecode  ", nl, "   /W [2 4 2]", nl, "  /Length ")}) {
            EXPECT_NE(tail.find(part, at), std::string::npos) << part << tail.substr(at);
        }
        EXPECT_TRUE(tail.ends_with(
            text(nl, "endstream", nl, "endobj", nl, "startxref", nl, document.size() + at, nl, "%%EOF", nl)));
    }
}

struct OldStore {
    const char* name;
    std::string entries;               ///< of the catalogue
    std::vector<std::string> objects;  ///< from 20 on
    int number;                        ///< of the store afterwards
    std::string store;                 ///< what its object then holds, from /OCSPs on, and what /VRI holds
    std::string vri;
};

// A certificate, object 40 or behind, is added to signature 0 whose key the old store may know.
TEST(SecurityStore, OldStoresStay) {
    const std::string old = " << /Type /VRI /Cert [30 0 R 31 5 R] /TU (D:2026\\) x) /TS 33 0 R /CRL 21 0 R>>";
    const std::string merged = " << /Type /VRI /Cert [30 0 R 31 5 R 40 0 R] /TU (D:2026\\) x) /TS 33 0 R /CRL 21 0 R>>";
    const std::string fresh = "/" + kKey0 + " << /OCSP [] /CRL [] /Cert [40 0 R]>>";
    const std::string other = "/00FF << /Cert [% ] no end\n31 0 R] >>";
    const OldStore rows[] = {
        {"all by reference",
         "/DSS 20 0 R",
         {"<</VRI 22 0 R/Certs 21 0 R/CRLs 21 0 R>>", "[30 0 R null 31 0 R]",
          "<</" + kKey0 + " 23 0 R\n" + other + ">>", "<</Cert 21 0 R/Type/VRI>>"},
         20,
         "/OCSPs []\n   /CRLs 21 0 R\n   /Certs [30 0 R 31 0 R 40 0 R]\n>>",
         "/" + kKey0 + " << /Cert [30 0 R 31 0 R 40 0 R] /Type /VRI>>\n" + other},
        {"all in place",
         "/DSS<</Type/DSS/VRI<<" + other + "/" + kKey0 + old + ">>/Certs[30 0 R]/X (a(b) >>)>>/Lang (de)",
         {},
         42,
         "/OCSPs []\n   /CRLs []\n   /Certs [30 0 R 40 0 R]\n   /Type /DSS\n   /X (a(b) >>)\n>>",
         other + "\n/" + kKey0 + merged},
        {"lower-case key",
         "/DSS 20 0 R",
         {"<</VRI<</bfbd5a76349bbd9260a3b1975ed31433060fa4e8" + old + ">> >>"},
         20,
         "/OCSPs []\n   /CRLs []\n   /Certs [40 0 R]\n>>",
         "/bfbd5a76349bbd9260a3b1975ed31433060fa4e8" + old.substr(0, old.size()) + "\n/" + kKey0 + merged},
        {"escaped key",
         "/D#53S 20 0 R",
         {"<</V#52I<</#42" + kKey0.substr(1) + "<</CRL[31 0 R]>> >> >>"},
         20,
         "/OCSPs []\n   /CRLs []\n   /Certs [40 0 R]\n>>",
         "/#42" + kKey0.substr(1) + " << /CRL [31 0 R] /Cert [40 0 R]>>"},
        {"stream instead of array",
         "/DSS 20 0 R",
         {"<</Certs 30 0 R>>"},
         20,
         "/OCSPs []\n   /CRLs []\n   /Certs [30 0 R 40 0 R]\n>>",
         fresh},
        // what is no store
        {"missing", "/DSS 99 0 R", {}, 42, "/OCSPs []\n   /CRLs []\n   /Certs [40 0 R]\n>>", fresh},
        {"null", "/DSS null", {}, 42, "/OCSPs []\n   /CRLs []\n   /Certs [40 0 R]\n>>", fresh},
        {"no value", "/DSS", {}, 42, "/OCSPs []\n   /CRLs []\n   /Certs [40 0 R]\n>>", fresh},
        {"a number", "/DSS 20 0 R", {"7"}, 42, "/OCSPs []\n   /CRLs []\n   /Certs [40 0 R]\n>>", fresh},
        {"loop of references",
         "/DSS 20 0 R",
         {"21 0 R", "20 0 R"},
         42,
         "/OCSPs []\n   /CRLs []\n   /Certs [40 0 R]\n>>",
         fresh},
        {"wrong types",
         "/DSS 20 0 R",
         {"<</VRI[1]/Certs(x)/CRLs 5/OCSPs 20 0 R/Y>>"},
         20,
         "/OCSPs 20 0 R\n   /CRLs []\n   /Certs [40 0 R]\n   /Y null\n>>",
         fresh},
        {"one object for everything",
         "/DSS 20 0 R",
         {"<</VRI 20 0 R/Certs 20 0 R>>"},
         20,
         "/CRLs []\n   /Certs [20 0 R 40 0 R]\n>>",
         "/VRI 20 0 R\n/Certs 20 0 R\n" + fresh},
        {"the catalogue itself",
         "/DSS 1 0 R",
         {},
         1,
         "/CRLs []\n   /Certs [40 0 R]\n   /Type /Catalog\n   /Pages 2 0 R\n   /DSS 1 0 R\n>>",
         fresh},
        {"no dictionary as entry",
         "/DSS 20 0 R",
         {"<</VRI<</" + kKey0 + " 5/00FF(x)>> >>"},
         20,
         "/Certs [40 0 R]\n>>",
         fresh + "\n/00FF (x)"},
    };
    for (const OldStore& row : rows) {
        PdfBuilder builder = signedDocument({"<30820000>"}, row.entries);
        for (int number = 20; const std::string& object : row.objects) builder.object(number++, object);
        for (const int number : {30, 31, 33, 39}) builder.stream(number, "", "old");
        const std::string document = builder.table().bytes();
        const std::string file = stored(document, {{-1, "AQID", "", ""}});
        const std::string store = body(file, row.number);
        EXPECT_TRUE(store.ends_with(row.store)) << row.name << '\n' << store;
        const int entries = std::stoi(store.substr(store.find("/VRI ") + 5));
        const std::string vri = body(file, entries);
        EXPECT_NE(vri.find("\n" + row.vri + "\n>>"), std::string::npos) << row.name << '\n' << vri;
        EXPECT_EQ(vri.find("% vorhandene Daten (Problem)") != std::string::npos, row.vri != fresh) << row.name;
        EXPECT_EQ(file.find("\n1 0 obj", document.size()) != std::string::npos, row.number == 42 || row.number == 1);
        if (row.number == 42) {
            EXPECT_NE(body(file, 1).find("/DSS 42 0 R"), std::string::npos) << body(file, 1);
        }
    }
}

// The store and the catalogue may lie in an object stream, and the newest section may be a hybrid.
TEST(SecurityStore, PackedObjects) {
    PdfBuilder packed = signedDocument({"<30820000>"});
    packed.objectStream(20, {{1, "<< /Type /Catalog /Pages 2 0 R /DSS 21 0 R >>"}, {21, "<< /Certs [22 0 R] >>"}});
    PdfBuilder hybrid = signedDocument({"<30820000>"}, "/DSS 21 0 R ");
    hybrid.object(21, "<< /Certs 19 0 R >>").objectStream(20, {{19, "[22 0 R]"}});
    for (const bool isStream : {true, false}) {
        PdfBuilder& builder = isStream ? packed : hybrid;
        builder.stream(22, "", "old");
        const std::string document = isStream ? builder.crossReferenceStream(23).bytes() : builder.hybrid(23).bytes();
        const std::string file = stored(document, {{0, "AQID", "", ""}});
        EXPECT_EQ(body(file, 21), "<< \n   /VRI 25 0 R\n   /OCSPs []\n   /CRLs []\n   /Certs [22 0 R 24 0 R]\n>>");
        EXPECT_NE(body(file, 1).find("/DSS 21 0 R >>"), std::string::npos);
        EXPECT_EQ(file.find("/Type /XRef", document.size()) != std::string::npos, isStream);
    }
}

TEST(SecurityStore, SecondRunExtends) {
    const std::string document = signedDocument({"<30820000>", "<01>"}).table().bytes();
    const std::string first = stored(document, {{0, "AQID", "", ""}});
    const std::string second = stored(first, {{1, "BA==", "BQ==", ""}});
    EXPECT_EQ(body(second, 10), "<< \n   /VRI 9 0 R\n   /OCSPs []\n   /CRLs [12 0 R]\n   /Certs [8 0 R 11 0 R]\n>>");
    EXPECT_EQ(body(second, 9), "<< \n% vorhandene Daten (Problem)\n/" + kKey0 +
                                   " << /OCSP [] /CRL [] /Cert [8 0 R]>>\n/" + kKey1 +
                                   " << /OCSP [] /CRL [12 0 R] /Cert [11 0 R]>>\n>>");
    EXPECT_EQ(second.find("\n1 0 obj", first.size()), std::string::npos) << "the catalogue stays";
}

TEST(SecurityStore, Keys) {
    const std::string zeros(200'002, '0');
    const std::pair<std::string, std::string> rows[] = {
        {"<3082\r\n0000>", kKey0},
        {"<02 0>", kKey2},
        {"(\\060\\202\\0\\000)", kKey0},
        {"(\\002\\\n\\0)", kKey2},
        {"<" + zeros + ">", "963DB9E83D715FDB648C04BAD49ACE2BCFAB5B1C"}};
    for (const auto& [value, key] : rows) {
        const std::string file = stored(signedDocument({value}).table().bytes(), {});
        EXPECT_NE(file.find(text("/", key, kEmptyEntry)), std::string::npos) << value.substr(0, 40);
    }
    // Equal values share an entry; a field whose value cannot be reached has none, and its material goes nowhere.
    PdfBuilder builder = signedDocument({"<01>", "<01>"});
    builder.object(8, "<< /Type /Annot /FT /Sig /V 77 0 R >>");
    const std::string file =
        stored(builder.table().bytes(), {{1, "AQID", "", ""}, {0, "", "AQID", ""}, {2, "AA==", "", ""}});
    EXPECT_NE(file.find("% Eintrag neuer DSS \n/" + kKey1 + " << /OCSP [] /CRL [9 0 R] /Cert [10 0 R]>>\n>>"),
              std::string::npos)
        << file;
}

TEST(SecurityStore, ManySignaturesAndNone) {
    std::vector<std::string> values(150, "<01>");
    values.back() = "<0200>";
    const std::string file = stored(signedDocument(values).table().bytes(), {{-1, "AQID", "", ""}});
    EXPECT_NE(file.find("/" + kKey2 + " << /OCSP [] /CRL [] /Cert [304 0 R]>>"), std::string::npos);
    const std::string unsignedFile = stored(smallDocument().table().bytes(), {{-1, "AQID", "", ""}});
    EXPECT_EQ(body(unsignedFile, 5), "<< \n   /VRI 4 0 R\n   /OCSPs []\n   /CRLs []\n   /Certs []\n>>");
}

// Signatures that only a viewer finds have an entry too, and numbers behind those that are counted.
TEST(SecurityStore, SignaturesOfFieldsWhoseWidgetsStandApart) {
    const std::string apart = "<< /FT /Sig /T (apart) /V 31 0 R /Kids [32 0 R] >>";
    struct Row {
        std::vector<std::string> counted;
        int record;
        std::string entries;
    };
    for (const Row& row :
         {Row{{}, -1, "/" + kKey2 + " << /OCSP [] /CRL [] /Cert [33 0 R]>>\n>>"},
          Row{{"<01>"}, -1, "/" + kKey1 + " << /OCSP [] /CRL [] /Cert [33 0 R]>>\n/" + kKey2 + kEmptyEntry + "\n>>"},
          Row{{"<01>"}, 1, "/" + kKey1 + kEmptyEntry + "\n/" + kKey2 + " << /OCSP [] /CRL [] /Cert [33 0 R]>>\n>>"}}) {
        PdfBuilder builder = signedDocument(row.counted, "/AcroForm << /Fields [30 0 R] >>");
        builder.object(30, apart).signature(31, "<0200>").object(32, "<< /Subtype /Widget /Parent 30 0 R >>");
        const std::string file = stored(builder.table().bytes(), {{row.record, "AQID", "", ""}});
        EXPECT_NE(file.find("% Eintrag neuer DSS \n" + row.entries), std::string::npos) << file;
    }
}

TEST(SecurityStore, ReadByHosts) {
    PdfBuilder builder = signedDocument({"<30820000>", "<01>"}, "/DSS 20 0 R");
    builder.object(
        20,
        "<< /Certs [21 0 R 99 0 R 21 0 R] /CRLs 25 0 R /VRI << /" + kKey1 +
            " << /Cert [21 0 R] /TU (D:2026) >> /bfbd5a76349bbd9260a3b1975ed31433060fa4e8 24 0 R /X#41 24 0 R >> >>");
    builder.stream(21, "", "plain").stream(22, "", "packed", {.deflate = true}).stream(23, "/Filter /Odd", "x");
    builder.object(24, "<< /OCSP [22 0 R] >>").object(25, "[22 0 R 23 0 R]");
    OpenedPdf opened(builder.table().bytes());
    CPdfStore store(opened.pdf);
    ASSERT_TRUE(store.IsThere());
    EXPECT_EQ(store.GetObjNum(), 20);
    EXPECT_EQ(store.GetMaterial().certificates, (std::vector{21, -1, 21}));
    EXPECT_EQ(store.GetMaterial().crls, (std::vector{22, 23}));
    EXPECT_TRUE(store.GetMaterial().ocsps.empty());
    std::string entries;
    for (const PdfStoreEntry& entry : store.GetEntries()) {
        varnpdf::append(entries, entry.key.substr(0, 4), ' ', entry.signature, ' ', entry.time, ' ',
                        entry.material->certificates.size(), ' ', entry.material->ocsps.size(), '\n');
    }
    EXPECT_EQ(entries, "BF8B 1 D:2026 1 0\nbfbd 0  0 1\nXA -1  0 1\n");
    EXPECT_EQ(store.GetBytes(21), "plain");
    EXPECT_EQ(store.GetBytes(22), "packed");
    for (const int none : {23, 24, 99, -1}) EXPECT_EQ(store.GetBytes(none), std::nullopt) << none;
    OpenedPdf without(signedDocument({"<01>"}, "/DSS 7").table().bytes());
    EXPECT_FALSE(CPdfStore(without.pdf).IsThere());
}

// A number that is in use would replace its object; a /Size that is too small does not tell.
TEST(SecurityStore, NewNumbersAreFree) {
    PdfBuilder builder = signedDocument({"<01>"});
    const std::string document = builder.object(9, "<< /Kept true >>").table({.size = "5"}).bytes();
    OpenedPdf opened(stored(document, {{-1, "AQID", "", ""}}));
    EXPECT_EQ(opened.body(9), "<< /Kept true >>");
    EXPECT_NE(opened.body(10), "-");
}

TEST(SecurityStore, ArgumentsInOrder) {
    const TempFile in(signedDocument({"<01>"}).table().bytes());
    const TempFile out("old");
    std::string input = in.path();
    std::string output = out.path();
    std::string none;
    std::string missing = in.path() + ".missing";
    pdf_dss_struct record{-1, "AQID", "", ""};
    const c_pdf_dss dss;
    struct Row {
        int code;
        char* in;
        char* out;
        pdf_dss_struct* records;
        int count;
    };
    for (const Row& row :
         {Row{-1400, nullptr, nullptr, nullptr, 0}, Row{-1400, none.data(), none.data(), nullptr, 0},
          Row{-1401, missing.data(), nullptr, nullptr, 0}, Row{-1401, missing.data(), none.data(), nullptr, 0},
          Row{-1402, missing.data(), output.data(), nullptr, 1}, Row{-1402, missing.data(), output.data(), &record, -1},
          Row{-1403, missing.data(), output.data(), &record, 1}, Row{-1404, input.data(), output.data(), &record, 1},
          Row{-1404, input.data(), input.data(), &record, 1}}) {
        EXPECT_EQ(dss.append_dss(row.in, row.out, row.records, row.count, false), row.code);
    }
    EXPECT_EQ(out.read(), "old");
}

// Nothing is created, and what is there stays, whatever fails.
TEST(SecurityStore, FailuresLeaveNothing) {
    const std::filesystem::path directory =
        std::filesystem::temp_directory_path() / ("dss-" + std::to_string(getpid()));
    std::filesystem::create_directory(directory);
    const std::string good = signedDocument({"<01>"}).table().bytes();
    const std::string packed = signedDocument({"<01>"}).object(1, "7").table().bytes();
    const TempFile old("old");
    const std::pair<std::string, int> rows[] = {
        {"no PDF", VARNPDF_NO_PDF_FILE},
        {signedDocument({"<01>"}).table({.entries = "/Root 1 0 R /Encrypt 2 0 R"}).bytes(), VARNPDF_PDF_ENCRYPTED},
        {signedDocument({"<01>"}).table({.entries = "/Root 99 0 R"}).bytes(), VARNPDF_ROOT_OBJECT_MISSING},
        {signedDocument({"<01>"}).table({.entries = ""}).bytes(), VARNPDF_NO_ROOT},
        {packed, VARNPDF_DSS_CATALOGUE_MISSING}};
    for (const auto& [document, code] : rows) {
        const TempFile in(document);
        EXPECT_EQ(append(in.path(), directory / "new.pdf", {}), code);
        EXPECT_EQ(append(in.path(), old.path(), {}), code);
    }
    const TempFile in(good);
    EXPECT_EQ(append(in.path(), directory / "none" / "new.pdf", {}), VARNPDF_DSS_OUTPUT_FAILED);
    EXPECT_EQ(append(in.path(), directory, {}), VARNPDF_DSS_OUTPUT_FAILED);
    EXPECT_EQ(append(in.path(), "/dev/full", {}), VARNPDF_DSS_OUTPUT_FAILED);
    EXPECT_TRUE(std::filesystem::is_empty(directory));
    EXPECT_EQ(old.read(), "old");
    std::filesystem::remove_all(directory);
}

// Input and output may be one file, also behind a link, and its mode stays.
TEST(SecurityStore, InPlace) {
    const std::string document = signedDocument({"<01>"}).table().bytes();
    const TempFile file(document);
    const std::string link = file.path() + ".link";
    std::filesystem::create_symlink(file.path(), link);
    chmod(file.path().c_str(), 0640);
    EXPECT_EQ(append(file.path(), link, {{0, "AQID", "", ""}}), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_NE(file.read().find("/DSS "), std::string::npos);
    struct stat status {};
    stat(file.path().c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    std::filesystem::remove(link);
}

// A file that does not end with a line end gets one, counted in every offset.
TEST(SecurityStore, MissingLineEnd) {
    std::string document = signedDocument({"<01>"}).table().bytes();
    document.pop_back();
    const std::string file = stored(document, {{0, "AQID", "", ""}});
    EXPECT_EQ(file.substr(document.size(), 9), "\n6 0 obj\n");
    EXPECT_EQ(body(file, 6), "<< \n   /Length 3\n>>\nstream\n\x01\x02\x03\nendstream");
}

TEST(SecurityStore, Log) {
    const LogCapture log("VarnPDF.c_pdf_dss");
    const std::string first = stored(signedDocument({"<01>"}).table().bytes(), {{0, "AQID", "", ""}});
    const std::vector<std::string> order = {"Starte append_dss",
                                            "Parameter und Dateien scheinen okay",
                                            "PDF geoeffnet",
                                            "Anzahl der PDF-Objekte : 6",
                                            "Gefundene Signaturen und deren DigestsHash:",
                                            "0: " + kKey1,
                                            "Muss neues DSS Objekt erzeugen",
                                            "Hash-Liste durchlaufen und alle Arrays gefuellt.",
                                            "Alle Cert/CRL/OCSP-Objekte erzeugt.",
                                            "VRI-Objekt erzeugen",
                                            "VRI-Objekt im xref erzeugen",
                                            "DSS-Objekt mit Content erzeugen",
                                            "DSS-Objekt im xref erzeugen",
                                            "Root-Objekt um /DSS Tag erweitern da vorher noch kein DSS vorhanden",
                                            "Root-Objekt NEU schreiben in xref",
                                            "Beginne neues XREF zu erstellen",
                                            "Normalen Trailer schreiben"};
    EXPECT_EQ(std::vector(log.messages().begin(), log.messages().begin() + static_cast<int>(order.size())), order);
    ASSERT_EQ(log.messages().size(), order.size() + 3);
    EXPECT_TRUE(log.messages()[order.size()].starts_with("Neues PDF erzeugen: "));
    EXPECT_EQ(log.messages()[order.size() + 1], "crossref ende");
    EXPECT_EQ(log.messages()[order.size() + 2], "Beende append_dss");
    stored(first, {{0, "AQID", "", ""}, {5, "AQID", "", ""}});
    for (const char* const message :
         {"/DSS  gefunden", "/VRI  gefunden", "Lese Daten aus vorh. Signatur Nr 0", "- OCSPs-Array", "- Certs-Array",
          "- CRLs-Array", "Array im DSS-Objekt erweitern um neue Referenzen", "das DSS Dict muss erweitert werden",
          "Keine Signatur Nr 5, Daten werden nicht eingetragen"}) {
        EXPECT_TRUE(log.has(message)) << message;
    }
}

TEST(SecurityStore, TextHelpers) {
    const c_pdf_dss dss;
    EXPECT_EQ(dss.append_to_array({}), "[]");
    EXPECT_EQ(dss.append_to_array({4, 17}), "[4 0 R 17 0 R]");
    EXPECT_EQ(dss.str_replace("aXbXXc", "X", "XX", 0), "aXXbXXXXc");
    EXPECT_EQ(dss.str_replace("aXbXXc", "X", "", 2), "abXc");
    EXPECT_EQ(dss.str_replace("abc", "", "x", 0), "abc");
    std::FILE* file = stdout;
    EXPECT_EQ(fopen_s(&file, "/nowhere/at/all", "rb"), ENOENT);
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(fopen_s(&file, "/dev/null", "rb"), 0);
    std::fclose(file);
}

}  // namespace
