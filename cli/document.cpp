// Opening and reading of documents for all commands.
#include "document.h"

#include <charconv>
#include <cstring>
#include <vector>

#include "command.h"
#include "text.h"
#include "varnpdf/PdfText.h"

namespace {

constexpr int kLongestChain = 8;  // references to references; a loop ends here

/// The number at the start of `text`, which is taken off together with the white space around it; -1 without one.
int takeNumber(std::string_view& text) {
    text = cli::trimmed(text);
    int number = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return -1;
    text = cli::trimmed(text.substr(static_cast<std::size_t>(end - text.data())));
    return number;
}

/// What stands between "obj" and "endobj".
std::string_view body(const CPdfObj& obj) {
    std::string_view text = obj.content();
    const std::size_t keyword = text.find("obj");
    if (keyword == std::string_view::npos) return {};
    text = cli::trimmed(text.substr(keyword + 3));
    if (text.ends_with("endobj")) text.remove_suffix(6);
    return cli::trimmed(text);
}

}  // namespace

int cli::openDocument(CPdf& pdf, const std::string& path) {
    const int code = pdf.Open(path.c_str(), "rb");
    if (code != 0) complain(path, code);
    return code;
}

CPdfObj* cli::referenced(CPdf& pdf, std::string_view text) {
    const int number = takeNumber(text);
    const int generation = takeNumber(text);
    return number > 0 && generation >= 0 && text.starts_with('R') ? pdf.get_pdf_obj_from_map(number) : nullptr;
}

CPdfObj* cli::referenced(CPdf& pdf, CPdfObj& obj, const char* key) {
    const std::optional<std::string_view> text = entry(obj, key);
    return text ? referenced(pdf, *text) : nullptr;
}

std::optional<std::string_view> cli::entry(CPdfObj& obj, const char* key) {
    const std::string_view text = obj.content();
    std::vector<char> copy(text.size() + 1);
    int keyPos = 0;
    int endPos = 0;
    if (obj.ReadDictionaryEntry(key, copy.data(), &keyPos, &endPos, 0, nullptr, 1) == 0) return std::nullopt;
    const std::size_t begin = static_cast<std::size_t>(keyPos) + std::strlen(key);
    const auto end = static_cast<std::size_t>(endPos);
    if (begin > end || end > text.size()) return std::nullopt;
    const std::string_view found = trimmed(text.substr(begin, end - begin));
    return found.starts_with('(') ? trimmed(text.substr(begin)) : found;
}

std::optional<std::string_view> cli::value(CPdf& pdf, CPdfObj& obj, const char* key) {
    std::optional<std::string_view> text = entry(obj, key);
    for (int i = 0; text && i < kLongestChain; ++i) {
        const CPdfObj* target = referenced(pdf, *text);
        if (target == nullptr) break;
        text = body(*target);
    }
    return text;
}

std::optional<std::string> cli::displayed(std::optional<std::string_view> text) {
    if (!text || *text == "null") return std::nullopt;
    if (const std::optional<std::string> bytes = CPdfText::StringBytes(*text))
        return CPdfText::DecodeTextString(*bytes);
    if (const std::optional<std::string> name = CPdfText::NameBytes(*text)) return CPdfText::ValidUtf8(*name);
    if (text->starts_with('(')) return std::nullopt;  // a string that never ends
    return CPdfText::ValidUtf8(*text);
}
