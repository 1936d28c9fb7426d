// A document opened from bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/TempFile.h"
#include "varnpdf/Pdf.h"

namespace varnpdf::test {

struct OpenedPdf {
    explicit OpenedPdf(std::string_view bytes) : file(bytes), code(pdf.Open(file.path().c_str(), "rb")) {}

    /// What stands between "obj" and "endobj", without white space around it; "-" for an object that is not loaded.
    [[nodiscard]] std::string body(int number) {
        CPdfObj* obj = pdf.get_pdf_obj_from_map(number);
        const std::string_view text = obj == nullptr ? std::string_view{} : obj->content();
        const std::size_t begin = text.find_first_not_of(" \r\n", text.find("obj") + 3);
        const std::size_t end = text.find_last_not_of(" \r\n", text.rfind("endobj") - 1);
        return text.empty() ? "-" : std::string(text.substr(begin, end + 1 - begin));
    }
    /// The bodies of several objects, separated by blanks.
    [[nodiscard]] std::string bodies(const std::vector<int>& numbers) {
        std::string out;
        for (const int number : numbers) out += (out.empty() ? "" : " ") + body(number);
        return out;
    }

    TempFile file;
    CPdf pdf;
    int code;
};

}  // namespace varnpdf::test
