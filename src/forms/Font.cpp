// Simple fonts: encodings, widths, heights.
#include "forms/Font.h"

#include <algorithm>

#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr float kThousand = 1000;

void applyDifferences(std::string_view array, Encoding& encoding) {
    Lexer tokens(array);
    tokens.next();
    std::size_t code = 0;
    while (const Token token = tokens.next()) {
        if (const auto number = numberOf(token.text)) {
            code = static_cast<std::size_t>(std::clamp(*number, 0.0, 256.0));
        } else if (token.kind == TokenKind::Name && code < encoding.size()) {
            encoding[code++] = characterOf(nameOf(token.text)).value_or(0);
        }
    }
}

Encoding encodingOf(const Dictionary& font, const References& references) {
    const std::string_view value = references.follow(font.find("/Encoding"));
    if (const Encoding* const named = namedEncoding(value)) return *named;
    // A TrueType font without an encoding shows its own, which is that of Windows in practice.
    const bool trueType = font.find("/Subtype") == "/TrueType";
    const Dictionary dictionary(value);
    const Encoding* const base = namedEncoding(references.follow(dictionary.find("/BaseEncoding")));
    Encoding encoding = base != nullptr ? *base : trueType ? winAnsiEncoding() : standardEncoding();
    applyDifferences(references.follow(dictionary.find("/Differences")), encoding);
    return encoding;
}

}  // namespace

std::optional<FieldFont> FieldFont::from(std::string_view dictionary, const References& references) {
    const Dictionary font(dictionary);
    const std::string_view subtype = font.find("/Subtype");
    if (subtype != "/Type1" && subtype != "/TrueType" && subtype != "/MMType1") return std::nullopt;
    const std::string name = nameOf(references.follow(font.find("/BaseFont")));
    if (contains(name, "ZapfDingbats") || contains(name, "Symbol")) return std::nullopt;
    const Encoding encoding = encodingOf(font, references);
    FieldFont out;
    const auto widths = references.follow(font.find("/Widths"));
    if (!widths.empty()) {
        out.readWidths(references.follow(font.find("/FirstChar")), widths);
    } else {
        const auto face = standardFace(name);
        if (!face) return std::nullopt;
        out.useStandardWidths(*face, encoding);
    }
    const Dictionary descriptor(references.follow(font.find("/FontDescriptor")));
    const auto height = [&](const char* key, double fallback) {
        const double value = numberOf(references.follow(descriptor.find(key))).value_or(0) / kThousand;
        const double size = value < 0 ? -value : value;
        return size > 0.1 && size < 2 ? size : fallback;
    };
    out.ascent_ = height("/Ascent", out.ascent_);
    out.descent_ = height("/Descent", out.descent_);
    out.finish(encoding);
    return out;
}

const FieldFont& FieldFont::helvetica() {
    static const FieldFont kFont = [] {
        FieldFont font;
        font.useStandardWidths(StandardFace::Helvetica, winAnsiEncoding());
        font.finish(winAnsiEncoding());
        return font;
    }();
    return kFont;
}

void FieldFont::readWidths(std::string_view first, std::string_view widths) {
    auto code = static_cast<std::size_t>(std::clamp(numberOf(first).value_or(0), 0.0, 256.0));
    for (const double width : numbersOf(widths)) {
        if (code >= widths_.size()) return;
        widths_[code++] = static_cast<float>(std::clamp(width, 0.0, 10'000.0)) / kThousand;
    }
}

void FieldFont::useStandardWidths(StandardFace face, const Encoding& encoding) {
    for (std::size_t code = 0; code < encoding.size(); ++code) widths_[code] = standardWidth(face, encoding[code]);
}

// A code without a width is one that the font does not have, or no longer has since it was subset.
void FieldFont::finish(const Encoding& encoding) {
    for (std::size_t code = 0; code < encoding.size(); ++code) {
        if (encoding[code] != 0 && widths_[code] > 0) codes_.emplace(encoding[code], static_cast<char>(code));
    }
    const auto space = codes_.find(' ');
    if (space != codes_.end()) codes_.emplace(0xA0, space->second);
}

std::optional<std::string> FieldFont::encode(std::u32string_view characters) const {
    std::string out;
    for (const char32_t c : characters) {
        if (c == '\n') {
            out.push_back('\n');
            continue;
        }
        const auto code = codes_.find(c);
        if (code == codes_.end() || code->second == '\n') return std::nullopt;
        out.push_back(code->second);
    }
    return out;
}

double FieldFont::width(std::string_view codes) const {
    double sum = 0;
    for (const char code : codes) sum += static_cast<double>(widths_[static_cast<unsigned char>(code)]);
    return sum;
}

}  // namespace varnpdf
