// CPdfText: the face of encodings and dates.
#include "varnpdf/PdfText.h"

#include <ctime>

#include "syntax/Dates.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"

using namespace varnpdf;

std::optional<std::u32string> CPdfText::Characters(std::string_view utf8) { return fromUtf8(utf8); }

std::string CPdfText::Utf8(std::u32string_view characters) { return toUtf8(characters); }

std::string CPdfText::ValidUtf8(std::string_view bytes) { return toUtf8(fromBrokenUtf8(bytes)); }

std::string CPdfText::Printable(std::string_view bytes) { return toUtf8(printable(fromBrokenUtf8(bytes))); }

std::string CPdfText::DecodeTextString(std::string_view bytes) { return toUtf8(fromTextString(bytes)); }

std::string CPdfText::EncodeTextString(std::u32string_view characters) { return toTextString(characters); }

std::optional<std::string> CPdfText::EncodeWinAnsi(std::u32string_view characters, std::size_t* refused) {
    std::string out;
    for (const char32_t c : characters) {
        const auto code = winAnsiCode(c);
        if (!code) {
            if (refused != nullptr) *refused = out.size();
            return std::nullopt;
        }
        out.push_back(*code);
    }
    return out;
}

std::optional<std::string> CPdfText::StringBytes(std::string_view value) { return stringOf(value); }

std::optional<std::string> CPdfText::NameBytes(std::string_view value) {
    return value.starts_with('/') ? std::optional(nameOf(value)) : std::nullopt;
}

std::optional<std::string> CPdfText::CompleteDate(std::string_view date) { return completePdfDate(date); }

std::string CPdfText::Now() { return localPdfDate(std::time(nullptr)); }
