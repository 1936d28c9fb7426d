// One call per question gives what an open document gives, on every signed file of the corpus.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/Corpus.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfInfo.h"

namespace fs = std::filesystem;

namespace {

struct Part {
    int code = 0;
    std::string bytes;
    bool operator==(const Part&) const = default;
};

/// Size query and fetch.
template <typename Call>
Part part(Call call) {
    unsigned long size = 0;
    unsigned char* none = nullptr;
    Part result{call(none, &size), ""};
    if (result.code != 0) return result;
    result.bytes.resize(size);
    result.code = call(reinterpret_cast<unsigned char*>(result.bytes.data()), &size);
    return result;
}

std::string hex(const std::string& bytes) {
    std::string out;
    for (const char c : bytes) {
        out += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4U];
        out += "0123456789abcdef"[static_cast<unsigned char>(c) & 15U];
    }
    return out;
}

void expectSameValues(CPdf& pdf, const std::string& path, int index) {
    std::string buffer(pdf.GetContentLen() + 1U, '\0');
    for (int tag = 1; tag <= 13; ++tag) {
        int length = 0;
        pdf.GetSignatureField(index, tag, buffer.data(), &length);
        std::string expected = buffer.substr(0, static_cast<std::size_t>(length));
        if (expected.ends_with('\0')) expected.pop_back();  // the terminator of a text in UTF-16
        if (tag == 4) std::erase(expected, '\\');
        if (tag == 10) expected = hex(expected);
        std::string kept;
        EXPECT_EQ(CPdfInfo::GetSignatureFieldEx(path, index, tag, &kept, CPdfInfo::m_PdfSigF), 0);
        EXPECT_EQ(kept, expected) << "tag " << tag;
    }
}

void expectSameParts(CPdf& pdf, std::string path, int index) {
    using Own = int (CPdf::*)(int, unsigned char*, unsigned long*);
    using Call = int (*)(char*, int, unsigned char*, unsigned long*);
    const struct {
        Own own;
        Call call;
    } rows[] = {{&CPdf::GetSignatureBlob, &CPdfInfo::GetSignatureBlob},
                {&CPdf::GetSignaturePKCS7, &CPdfInfo::GetSignaturePKCS7},
                {&CPdf::GetSignaturePKCS1, &CPdfInfo::GetSignaturePKCS1}};
    for (const auto& row : rows) {
        EXPECT_EQ(part([&](auto* buffer, auto* length) { return row.call(path.data(), index, buffer, length); }),
                  part([&](auto* buffer, auto* length) { return (pdf.*row.own)(index, buffer, length); }));
    }
    EXPECT_EQ(part([&](auto* buffer, auto* length) {
                  return CPdfInfo::GetSignaturePKCS1Cert(path.data(), index, 0, buffer, length);
              }),
              part([&](auto* buffer, auto* length) { return pdf.GetSignaturePKCS1Cert(index, 0, buffer, length); }));
}

TEST(InfoOnCorpus, SaysWhatTheDocumentSays) {
    if (!fs::exists(varnpdf::test::corpus() / "facts.tsv")) GTEST_SKIP() << "VARNPDF_CORPUS names no corpus";
    int signatures = 0;
    for (const auto& item : fs::recursive_directory_iterator(varnpdf::test::corpus())) {
        if (item.path().extension() != ".pdf") continue;
        std::string path = item.path().string();
        SCOPED_TRACE(path);
        CPdf pdf;
        const int code = pdf.Open(path.c_str(), "rb");
        const int count = code == 0 ? pdf.PdfGetNumSignatures() : code;
        if (count < 1 && item.file_size() % 8 != 0) continue;  // of the others some will do
        EXPECT_EQ(CPdfInfo::GetNumSignature(path.data()), count);
        EXPECT_EQ(CPdfInfo::GetNumSignatureEx(path.data()), count);
        EXPECT_EQ(CPdfInfo::CheckEncryption(path.data()), code);
        for (int index = 0; index < count; ++index) {
            SCOPED_TRACE(index);
            expectSameValues(pdf, path, index);
            expectSameParts(pdf, path, index);
            ++signatures;
        }
    }
    EXPECT_GT(signatures, 0);
    RecordProperty("signatures", signatures);
    CPdfInfo::clearSigFieldList();
}

}  // namespace
