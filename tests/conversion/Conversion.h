// Converting files made on the spot, and looking into the result.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "support/Inflate.h"
#include "varnpdf/Convert.h"
#include "varnpdf/Pdf.h"

namespace varnpdf::test {

/// A directory of its own, removed at the end of the scope.
class WorkDirectory {
public:
    WorkDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "varnpdf-convert-XXXXXX").string();
        path_ = mkdtemp(name.data());
    }
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;
    ~WorkDirectory() { std::filesystem::remove_all(path_); }

    [[nodiscard]] std::string at(const std::string& name) const { return (path_ / name).string(); }
    [[nodiscard]] std::string write(const std::string& name, std::string_view bytes) const {
        std::ofstream(at(name), std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return at(name);
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(at(name), std::ios::binary).rdbuf();
        return bytes.str();
    }
    [[nodiscard]] auto files() const {
        return std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator());
    }

private:
    std::filesystem::path path_;
};

inline int convert(std::string in, std::string out) { return VarnImage(in.data(), out.data()); }

/// The text of an object from its number through "endobj".
inline std::string objectText(const std::string& pdf, int number) {
    const std::string head = '\n' + std::to_string(number) + " 0 obj";
    const std::size_t at = pdf.find(head);
    return at == std::string::npos ? "" : pdf.substr(at + 1, pdf.find("endobj", at) + 5 - at);
}

/// The data of an object's stream, inflated.
inline std::string streamOf(const std::string& pdf, int number) {
    const std::size_t object = pdf.find('\n' + std::to_string(number) + " 0 obj");
    const std::size_t data = object == std::string::npos ? object : pdf.find("stream\n", object);
    if (data == std::string::npos) return "no stream";
    const auto bytes = inflateAll(std::string_view(pdf).substr(data + 7), std::size_t{1} << 30U);
    return bytes ? std::string(bytes->view()) : "cannot be inflated";
}

/// Every entry of the table leads to its object, and the library itself opens the document.
inline void expectSound(const WorkDirectory& work, const std::string& name) {
    const std::string pdf = work.read(name);
    const std::size_t start = pdf.rfind("startxref\n");
    ASSERT_NE(start, std::string::npos);
    std::istringstream table(pdf.substr(std::stoul(pdf.substr(start + 10))));
    std::string word;
    int first = -1;
    int count = 0;
    table >> word >> first >> count;
    ASSERT_EQ(word, "xref");
    ASSERT_GT(count, 5);
    for (int number = 0; number < count; ++number) {
        std::string offset;
        std::string generation;
        std::string kind;
        table >> offset >> generation >> kind;
        ASSERT_EQ(offset.size(), 10U);
        if (number == 0) continue;
        const std::string head = std::to_string(number) + " 0 obj";
        ASSERT_EQ(pdf.substr(std::stoul(offset), head.size()), head) << kind;
    }
    CPdf document;
    EXPECT_EQ(document.Open(work.at(name).c_str(), "rb"), 0);
}

/// Every "(D:...)" that has the form of a PDF date with zone (ISO 32000-2 7.9.4) as "(DATE)".
inline std::string maskedDates(std::string text) {
    constexpr std::string_view kForm = "(D:99999999999999+99'99')";
    const auto fits = [](char c, char form) {
        if (form == '9') return c >= '0' && c <= '9';
        return c == form || (form == '+' && c == '-');
    };
    for (std::size_t at = text.find("(D:"); at != std::string::npos; at = text.find("(D:", at + 1)) {
        if (text.size() - at < kForm.size()) break;
        if (!std::equal(kForm.begin(), kForm.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                        [&](char form, char c) { return fits(c, form); })) {
            continue;
        }
        text.replace(at, kForm.size(), "(DATE)");
    }
    return text;
}

}  // namespace varnpdf::test
