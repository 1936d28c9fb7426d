// References and streams of a document.
#include "portfolio/Streams.h"

#include <algorithm>

#include "syntax/Cursor.h"
#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr int kLongestChain = 8;  // references to references; a loop ends here

// The text from the object's first byte to the end of the document; only the object itself when it lies elsewhere.
std::string_view fromObjectOn(CPdf& pdf, const CPdfObj& object) {
    const std::string_view text = object.content();
    const std::string_view document(reinterpret_cast<const char*>(pdf.GetContent()), pdf.GetContentLen());
    const char* const begin = text.data();
    if (begin < document.data() || begin >= document.data() + document.size()) return text;
    return document.substr(static_cast<std::size_t>(begin - document.data()));
}

bool endsStream(std::string_view text, std::size_t at) {
    if (at > text.size()) return false;
    Cursor cursor(text, at);
    cursor.skip(kIsCSpace);
    return cursor.at() - at <= 2 && cursor.rest().starts_with("endstream");
}

}  // namespace

CPdfObj* referenced(CPdf& pdf, std::string_view value) {
    const auto number = referenceOf(value);
    return number ? pdf.get_pdf_obj_from_map(*number) : nullptr;
}

std::string_view resolved(CPdf& pdf, std::string_view value) {
    for (int i = 0; i < kLongestChain; ++i) {
        const auto number = referenceOf(value);
        if (!number) return value;
        const CPdfObj* const object = pdf.get_pdf_obj_from_map(*number);
        if (object == nullptr) return {};
        value = partsOf(pdf, *object).body;
    }
    return {};
}

ObjectParts partsOf(CPdf& pdf, const CPdfObj& object) {
    const std::string_view text = object.content();
    Lexer lexer(text, bodyBegin(text));
    const auto value = lexer.nextValue();
    if (!value) return {};
    ObjectParts parts;
    parts.body = *value;
    const Token keyword = lexer.next();
    if (!parts.body.starts_with("<<") || keyword.text.substr(0, 6) != "stream") return parts;

    const std::size_t from = streamDataBegin(text, keyword.begin);
    const std::string_view length = valueOf(parts.body, "/Length");
    CPdfObj* const indirect = referenced(pdf, length);
    const std::string_view digits = indirect == nullptr ? length : bodyOf(indirect->content());
    const std::string_view whole = fromObjectOn(pdf, object);
    const auto stated = Cursor(digits).takeInt();
    if (stated && *stated >= 0 && endsStream(whole, from + static_cast<std::size_t>(*stated))) {
        parts.data = whole.substr(from, static_cast<std::size_t>(*stated));
        parts.lengthHolds = true;
        return parts;
    }
    std::size_t end = text.find("endstream", from);
    if (end == kNone) end = std::min(text.rfind("endobj"), text.size());
    end = std::max(end, from);
    if (end > from && text[end - 1] == '\n') --end;
    if (end > from && text[end - 1] == '\r') --end;
    parts.data = text.substr(from, end - from);
    return parts;
}

}  // namespace varnpdf
