// Preparing and saving a signature with dummy values.
#pragma once

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "tests/support/TempFile.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfSign.h"

namespace varnpdf::test {

constexpr unsigned kRoom = 4;  // bytes reserved for the value

struct Request {
    int page = 0;
    int posMode = 1;
    int x = 0, y = 0, width = 0, height = 0;
    std::string reason = "why", location = "where", name = "who", date = "D:20260102030405+01'00'";
    unsigned room = kRoom;
    int layers = 0;
    std::string image = {};
    std::vector<FormfieldInfo_tag> fields = {};
    int lock = 0;
    bool skipImageCheck = false;
};

inline FormfieldInfo_tag line(std::string_view label, std::string_view value, int family = 0, int style = 0,
                              int size = 0) {
    FormfieldInfo_tag field{family, style, size, "", ""};
    label.copy(field.label, sizeof field.label - 1);
    value.copy(field.value, sizeof field.value - 1);
    return field;
}

inline int prepareFile(CPdfSign& sign, std::string path, Request r) {
    return sign.SignPDFFile(path.data(), r.page, r.posMode, r.x, r.y, r.width, r.height, 0, r.reason.data(),
                            r.location.data(), r.name.data(), r.date.data(), r.room, false, r.layers,
                            r.image.empty() ? 0 : 1, r.image.data(), r.fields.data(), static_cast<int>(r.fields.size()),
                            r.lock, r.skipImageCheck);
}

inline int prepare(CPdfSign& sign, std::string_view document, const Request& request) {
    return prepareFile(sign, TempFile(document).path(), request);
}

inline std::string preparedBytes(const CPdfSign& sign) {
    return {reinterpret_cast<const char*>(sign.GetPreparedDocument()), sign.GetPreparedLength()};
}

inline std::string saved(CPdfSign& sign, std::string value = "\x01\xAB\xFF", unsigned room = kRoom) {
    TempFile file;
    std::string path = file.path();
    const int code = sign.SaveSignature(path.data(), reinterpret_cast<unsigned char*>(value.data()),
                                        static_cast<unsigned>(value.size()), room);
    return code == 0 ? file.read() : "code " + std::to_string(code);
}

/// The signed file, or "code ...".
inline std::string signedFile(std::string_view document, const Request& request = {}) {
    CPdfSign sign;
    const int code = prepare(sign, document, request);
    return code == 0 ? saved(sign, "\x01\xAB\xFF", request.room) : "code " + std::to_string(code);
}

/// Object numbers of the cross-reference table that closes the file, in its order: "3 24 25 ".
inline std::string listedNumbers(std::string_view file) {
    std::string numbers;
    std::istringstream table{std::string(file.substr(file.rfind("xref\r\n", file.rfind("startxref") - 1) + 6))};
    for (int start = 0, count = 0; table >> start >> count;) {
        std::string entry;
        for (std::getline(table, entry); count > 0 && std::getline(table, entry); --count) {
            numbers += std::to_string(start++) + ' ';
        }
    }
    return numbers;
}

}  // namespace varnpdf::test
