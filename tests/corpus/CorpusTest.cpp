// Every file of the corpus through Open and all reading calls: page and signature counts against those of independent
// tools (facts.tsv of the corpus), differences against the kept list expected.tsv.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/support/Transcript.h"
#include "support/Corpus.h"
#include "varnpdf/Pdf.h"

namespace fs = std::filesystem;

namespace {

using varnpdf::test::corpus;

constexpr double kMostSeconds = 2;
constexpr const char* kExpected = VARNPDF_SOURCE_DIR "/tests/corpus/expected.tsv";
constexpr const char* kTable = VARNPDF_SOURCE_DIR "/docs/corpus.md";

/// Rows of a file with tab-separated fields, the heading left out.
std::vector<std::vector<std::string>> rows(const fs::path& file) {
    std::vector<std::vector<std::string>> out;
    std::ifstream in(file);
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        std::vector<std::string> fields;
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');) fields.push_back(cell);
        out.push_back(fields);
    }
    return out;
}

struct Counts {
    std::string code, pages, signatures;
    bool operator==(const Counts&) const = default;
};

void PrintTo(const Counts& counts, std::ostream* out) {
    *out << "code " << counts.code << ", pages " << counts.pages << ", signatures " << counts.signatures;
}

CPdfObj* referenced(CPdf& pdf, const std::string& reference) {
    return pdf.get_pdf_obj_from_map(std::atoi(reference.c_str()));
}

int walkedPages(CPdf& pdf) {
    CPdfObj* const catalogue = referenced(pdf, pdf.GetLastTrailer()->GetRoot());
    std::string value(catalogue->content().size() + 1, '\0');
    int at = 0;
    int end = 0;
    if (pdf.ReadDictionaryEntry(catalogue, "/Pages", value.data(), &at, &end) == 0) return 0;
    CPdfObj* const root = referenced(pdf, value);
    int count = 0;
    while (pdf.GetPdfPageObject(root, count, nullptr, nullptr) != nullptr) ++count;
    return count;
}

Counts read(const fs::path& file) {
    CPdf pdf;
    const int code = pdf.Open(file.c_str(), "rb");
    // The transcript makes every reading call and ends the process when a result breaks its promise.
    EXPECT_FALSE(varnpdf::fuzz::transcript(pdf, code).empty());
    if (code != 0) return {std::to_string(code), "-", "-"};
    return {"0", std::to_string(walkedPages(pdf)), std::to_string(pdf.PdfGetNumSignatures())};
}

class Corpus : public testing::Test {
protected:
    void SetUp() override {
        if (!fs::exists(corpus() / "facts.tsv")) GTEST_SKIP() << "VARNPDF_CORPUS names no corpus";
    }
};

TEST_F(Corpus, CountsAreThoseOfIndependentToolsOrExplained) {
    std::map<std::string, Counts> expected;
    for (const auto& row : rows(kExpected)) {
        ASSERT_EQ(row.size(), 5U);
        EXPECT_TRUE(expected.try_emplace(row[0], Counts{row[1], row[2], row[3]}).second) << "twice: " << row[0];
    }
    int files = 0;
    for (const auto& row : rows(corpus() / "facts.tsv")) {
        ASSERT_EQ(row.size(), 6U);
        const std::string& name = row[0];
        SCOPED_TRACE(name);
        ++files;
        const auto start = std::chrono::steady_clock::now();
        const Counts found = read(corpus() / name);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        EXPECT_LT(took.count(), kMostSeconds);
        const Counts facts{"0", row[2], row[3]};
        const auto known = expected.find(name);
        if (known == expected.end()) {
            EXPECT_EQ(found, facts) << "a difference that expected.tsv does not explain";
        } else {
            EXPECT_EQ(found, known->second);
            EXPECT_NE(known->second, facts) << "expected.tsv lists what is no difference";
            expected.erase(known);
        }
    }
    EXPECT_GT(files, 0);
    for (const auto& [name, counts] : expected) ADD_FAILURE() << "in expected.tsv, but not in the corpus: " << name;
}

// Needs no corpus: the table in the documentation counts what the kept list says.
TEST(ExpectedDifferences, AreThoseOfTheDocumentation) {
    std::map<std::string, int> byReason;
    for (const auto& row : rows(kExpected)) ++byReason[row.at(4)];
    std::map<std::string, int> documented;
    std::ifstream table(kTable);
    for (std::string line; std::getline(table, line);) {
        // | `reason` | files | ...
        if (!line.starts_with("| `")) continue;
        const std::size_t end = line.find('`', 3);
        documented[line.substr(3, end - 3)] = std::atoi(line.substr(line.find('|', end) + 1).c_str());
    }
    EXPECT_FALSE(byReason.empty());
    EXPECT_EQ(documented, byReason);
}

}  // namespace
