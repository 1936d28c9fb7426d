// Finding a text, measured in the same run against what nobody can leave out: inflating the content of every page.
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "support/PdfBuilder.h"
#include "support/Text.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfTextSearch.h"

using namespace varnpdf::bench;

namespace {

// The pages pack to a fiftieth, so that inflating costs next to nothing: what counts is that the ratio stays the same
// for ten times the pages.
constexpr double kFindGoal = 200;
constexpr int kLines = 60;

std::string pageContent(int page) {
    std::string content = "BT /F 10 Tf 50 780 Td 12 TL\n";
    for (int line = 0; line < kLines; ++line) {
        varnpdf::append(content, "[(Line ", line, " of p) 20 (age ", page, ": where the records of the town stand, ",
                        page * kLines + line, ")] TJ T*\n");
    }
    return content + "ET\n";
}

/// Pages of text, and their packed contents.
struct Pages {
    explicit Pages(int count) {
        varnpdf::test::PdfBuilder builder;
        std::string kids;
        for (int i = 0; i < count; ++i) varnpdf::append(kids, 10 + 2 * i, " 0 R ");
        builder.object(1, "<< /Type /Catalog /Pages 2 0 R >>")
            .object(2, varnpdf::text("<< /Type /Pages /Kids [", kids, "] /Count ", count,
                                     " /MediaBox [0 0 595 842] /Resources << /Font << /F 3 0 R >> >> >>"))
            .object(3, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
        for (int i = 0; i < count; ++i) {
            builder.object(10 + 2 * i, varnpdf::text("<< /Type /Page /Parent 2 0 R /Contents ", 11 + 2 * i, " 0 R >>"));
            const std::string content = pageContent(i);
            builder.stream(11 + 2 * i, "", content, {.deflate = true});
            packed.push_back(varnpdf::test::deflated(content));
            unpacked += content.size();
        }
        builder.table();
        path = (std::filesystem::temp_directory_path() / varnpdf::text("varnpdf-find-", count, ".pdf")).string();
        std::ofstream(path, std::ios::binary) << builder.bytes();
        bytes = builder.bytes().size();
    }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages() { std::filesystem::remove(path); }

    std::string path;
    std::size_t bytes = 0;
    std::vector<std::string> packed;
    std::size_t unpacked = 0;
};

double limitOfInflating(const Pages& pages) {
    std::string room(pages.unpacked, '\0');
    return milliseconds([&] {
        for (const std::string& content : pages.packed) {
            uLongf length = room.size();
            const auto* const from = reinterpret_cast<const Bytef*>(content.data());
            if (uncompress(reinterpret_cast<Bytef*>(room.data()), &length, from, content.size()) != Z_OK) {
                throw std::runtime_error("uncompress");
            }
        }
    });
}

void findText(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Pages pages(count);
    CPdf pdf;
    if (pdf.Open(pages.path.c_str(), "rb") != 0) throw std::runtime_error("open");
    const std::string sought = varnpdf::text("page ", count - 1, ": where");
    Row row = measure(
        state, varnpdf::text("find, ", count, " pages"), Input{pages.path, pages.bytes, 0},
        [&] { return limitOfInflating(pages); },
        [&] {
            CPdfTextSearch search(&pdf);
            const double time = milliseconds([&] { search.Find(sought.c_str()); });
            if (search.GetHits().size() != kLines) throw std::runtime_error("hits");
            return time;
        },
        kFindGoal);
    row.note = "limit: inflating the contents";
    summary().push_back(row);
}

BENCHMARK(findText)->Arg(100)->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(findText)->Arg(1000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
