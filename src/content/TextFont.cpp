// Fonts read for their text.
#include "content/TextFont.h"

#include <algorithm>
#include <charconv>

#include "model/Lookup.h"
#include "model/Stream.h"
#include "support/Limits.h"
#include "syntax/Lexer.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr double kThousand = 1000;
// Where neither the font nor its descriptor says anything: roomy, as lines of most fonts are.
constexpr double kAscent = 0.95;
constexpr double kDescent = -0.35;

struct Heights {
    double ascent, descent;
};

Heights heightsOf(StandardFace face) {
    switch (face) {
        case StandardFace::Courier:
            return {0.629, -0.157};
        case StandardFace::Times:
        case StandardFace::TimesBold:
        case StandardFace::TimesItalic:
        case StandardFace::TimesBoldItalic:
            return {0.683, -0.217};
        case StandardFace::Symbol:
            return {1.01, -0.293};
        case StandardFace::ZapfDingbats:
            return {0.82, -0.143};
        default:
            return {0.718, -0.207};
    }
}

// "ABCDEF+Name" is a subset of Name.
std::string withoutTag(std::string name) {
    constexpr std::size_t kTag = 6;
    if (name.size() > kTag && name[kTag] == '+') name.erase(0, kTag + 1);
    return name;
}

}  // namespace

/// Puts a font together.
class TextFont::Maker {
public:
    Maker(const Document& document, std::string_view dictionary, std::size_t& budget)
        : document_(document), dictionary_(dictionary), budget_(budget) {}

    TextFont make() {
        font_.ascent_ = kAscent;
        font_.descent_ = kDescent;
        const std::string_view subtype = value("/Subtype");
        font_.composite_ = subtype == "/Type0";
        readToUnicode();
        if (font_.composite_) {
            readComposite();
        } else {
            face_ = standardFace(withoutTag(nameOf(value("/BaseFont"))));
            descriptor_ = Dictionary(value("/FontDescriptor"));
            readEncoding(subtype);
            readWidths();
            readHeights();
            if (subtype == "/Type3") readType3();
        }
        return std::move(font_);
    }

private:
    [[nodiscard]] std::string_view value(std::string_view key) const {
        return resolved(document_, dictionary_.find(key));
    }
    [[nodiscard]] double number(const Dictionary& dictionary, std::string_view key, double fallback) const {
        return realOf(document_, dictionary.find(key)).value_or(fallback);
    }

    // What a stream says, or what could be had of it.
    std::string streamText(std::string_view reference) {
        const CPdfObj* const object = objectOf(document_, reference);
        const auto stream = object == nullptr ? std::nullopt : streamOf(document_, *object);
        if (!stream) return {};
        std::size_t produced = 0;
        const auto bytes = decodedPart(document_, *stream, std::min(limits::kFontBytes, budget_), &produced);
        if (!bytes) return {};
        budget_ -= std::min(budget_, std::max(produced, bytes->bytes.view().size()));
        return std::string(bytes->bytes.view());
    }

    void readToUnicode() {
        const std::string_view entry = dictionary_.find("/ToUnicode");
        if (resolved(document_, entry).starts_with("/Identity")) {
            font_.codesAreUtf16_ = true;
        } else {
            font_.toUnicode_ = CMap::read(streamText(entry));
        }
    }

    void readEncoding(std::string_view subtype) {
        const std::string_view encoding = value("/Encoding");
        const Dictionary dictionary(encoding);
        const Encoding* base = namedEncoding(encoding);
        if (base == nullptr) base = namedEncoding(resolved(document_, dictionary.find("/BaseEncoding")));
        if (base != nullptr || !readOwnEncoding()) {
            // A TrueType font without an encoding shows its own, which is that of Windows in practice.
            if (base == nullptr) base = subtype == "/TrueType" ? &winAnsiEncoding() : &standardEncoding();
            for (std::size_t code = 0; code < font_.texts_.size(); ++code) {
                if ((*base)[code] != 0) font_.texts_[code] = (*base)[code];
            }
        }
        readDifferences(resolved(document_, dictionary.find("/Differences")));
        for (std::size_t code = 0; code < font_.texts_.size(); ++code) {
            auto known = font_.toUnicode_.text(static_cast<std::uint32_t>(code));
            if (!known.empty()) font_.texts_[code] = std::move(known);
        }
    }

    void readDifferences(std::string_view array) {
        Lexer tokens(array);
        std::size_t code = 0;
        while (const Token token = tokens.next()) {
            if (token.kind == TokenKind::Name) {
                if (code < font_.texts_.size()) font_.texts_[code++] = textOfGlyph(nameOf(token.text));
            } else if (const auto number = numberOf(token.text)) {
                code = static_cast<std::size_t>(std::clamp(*number, 0.0, 256.0));
            }
        }
    }

    // The encoding inside: of Symbol and ZapfDingbats, or of an embedded Type 1 program, whose clear text has it.
    bool readOwnEncoding() {
        const auto glyphs = face_ ? symbolGlyphs(*face_) : std::span<const SymbolGlyph>{};
        for (const SymbolGlyph& glyph : glyphs) font_.texts_[glyph.code] = char32_t{glyph.character};
        if (!glyphs.empty()) return true;
        const std::string program = streamText(descriptor_.find("/FontFile"));
        const std::string_view clear = std::string_view(program).substr(0, program.find("eexec"));
        const std::size_t begin = clear.find("/Encoding");
        if (begin == std::string_view::npos) return false;
        Lexer tokens(clear.substr(0, clear.find("readonly", begin)), begin);
        bool found = false;
        for (Token token = tokens.next(); token; token = tokens.next()) {
            if (token.text != "dup") continue;
            const auto code = numberOf(tokens.next().text);
            const Token name = tokens.next();
            if (!code || *code < 0 || *code > 255 || name.kind != TokenKind::Name) continue;
            font_.texts_[static_cast<std::size_t>(*code)] = textOfGlyph(nameOf(name.text));
            found = true;
        }
        return found;
    }

    void readWidths() {
        font_.widths_.assign(font_.texts_.size(), static_cast<float>(number(descriptor_, "/MissingWidth", 0)));
        const auto widths = itemsOf(value("/Widths"));
        if (!widths) {
            useStandardWidths();
            return;
        }
        auto code = static_cast<std::size_t>(std::clamp(number(dictionary_, "/FirstChar", 0), 0.0, 256.0));
        for (const std::string_view width : *widths) {
            if (code == font_.widths_.size()) break;
            font_.widths_[code++] = static_cast<float>(realOf(document_, width).value_or(0));
        }
        for (float& width : font_.widths_) width /= static_cast<float>(kThousand);
    }

    void useStandardWidths() {
        const StandardFace face = face_.value_or(StandardFace::Helvetica);
        for (std::size_t code = 0; code < font_.texts_.size(); ++code) {
            const std::u32string& text = font_.texts_[code];
            font_.widths_[code] = text.empty() ? 0 : standardWidth(face, text.front());
        }
        for (const SymbolGlyph& glyph : symbolGlyphs(face)) {
            font_.widths_[glyph.code] = static_cast<float>(glyph.width / kThousand);
        }
    }

    void readHeights() {
        // Where the font is not in the file, readers show the standard font.
        constexpr const char* kPrograms[] = {"/FontFile", "/FontFile2", "/FontFile3"};
        const bool embedded =
            std::ranges::any_of(kPrograms, [&](const char* key) { return !descriptor_.find(key).empty(); });
        if (face_ && !embedded) {
            const Heights heights = heightsOf(*face_);
            font_.ascent_ = heights.ascent;
            font_.descent_ = heights.descent;
            return;
        }
        // Some descriptors have the wrong sign, 0, or a height beyond all reason.
        constexpr double kMost = 3;
        const double ascent = std::abs(number(descriptor_, "/Ascent", 0)) / kThousand;
        const double descent = std::abs(number(descriptor_, "/Descent", 0)) / kThousand;
        if (ascent > 0 && ascent < kMost) font_.ascent_ = ascent;
        if (descent > 0 && descent < kMost) font_.descent_ = -descent;
    }

    // Glyphs of Type 3 have a space of their own.
    void readType3() {
        const auto matrix = numbersOf(value("/FontMatrix"));
        const auto box = numbersOf(value("/FontBBox"));
        if (matrix.size() != 6) return;
        for (float& width : font_.widths_) width *= static_cast<float>(kThousand * matrix[0]);
        const bool hasBox = box.size() == 4 && box[3] > box[1];
        if (!hasBox) return;
        font_.ascent_ = std::clamp(box[3] * matrix[3], -2.0, 2.0);
        font_.descent_ = std::clamp(box[1] * matrix[3], -2.0, 2.0);
    }

    void readComposite() {
        const std::string_view encoding = value("/Encoding");
        if (encoding.starts_with("<<")) {
            font_.cmap_ = CMap::read(streamText(dictionary_.find("/Encoding")));
        } else {
            // Code maps that every reader knows by name; of most of them the codes have two bytes.
            font_.cmap_ = CMap::identity();
            font_.cmap_.setVertical(encoding.ends_with("-V"));
            font_.cidsKnown_ = encoding.starts_with("/Identity");
            if (contains(encoding, "UCS2") || contains(encoding, "UTF16")) font_.codesAreUtf16_ = true;
        }
        const auto fonts = itemsOf(value("/DescendantFonts"));
        const Dictionary descendant(fonts && !fonts->empty() ? resolved(document_, fonts->front())
                                                             : std::string_view{});
        descriptor_ = Dictionary(resolved(document_, descendant.find("/FontDescriptor")));
        readHeights();
        font_.defaultWidth_ = number(descendant, "/DW", kThousand) / kThousand;
        const auto vertical = numbersOf(resolved(document_, descendant.find("/DW2")));
        if (vertical.size() == 2) font_.verticalAdvance_ = vertical[1] / kThousand;
        readCidWidths(resolved(document_, descendant.find("/W")));
    }

    // "first [w w w]" and "first last w".
    void readCidWidths(std::string_view array) {
        const auto items = itemsOf(array).value_or(std::vector<std::string_view>{});
        const auto cidAt = [&](std::size_t at) {
            return static_cast<std::uint32_t>(std::max(integerOf(document_, items[at]).value_or(0), 0));
        };
        for (std::size_t at = 0; at + 1 < items.size();) {
            const std::uint32_t first = cidAt(at);
            const std::size_t index = font_.widths_.size();
            if (const auto widths = itemsOf(resolved(document_, items[at + 1]))) {
                for (const std::string_view width : *widths) addCidWidth(width);
                const auto count = static_cast<std::uint32_t>(widths->size());
                if (count > 0) font_.cidWidths_.push_back({first, first + (count - 1), index, true});
                at += 2;
            } else {
                if (at + 2 >= items.size()) break;
                addCidWidth(items[at + 2]);
                font_.cidWidths_.push_back({first, cidAt(at + 1), index, false});
                at += 3;
            }
        }
        std::ranges::stable_sort(font_.cidWidths_, {}, &CidWidths::first);
    }

    void addCidWidth(std::string_view width) {
        font_.widths_.push_back(static_cast<float>(realOf(document_, width).value_or(0) / kThousand));
    }

    const Document& document_;
    Dictionary dictionary_;
    std::size_t& budget_;
    TextFont font_;
    std::optional<StandardFace> face_;
    Dictionary descriptor_;
};

TextFont TextFont::from(const Document& document, std::string_view dictionary, std::size_t& budget) {
    return Maker(document, dictionary, budget).make();
}

double TextFont::cidWidth(std::uint32_t cid) const noexcept {
    auto at = std::ranges::upper_bound(cidWidths_, cid, {}, &CidWidths::first);
    if (!cidsKnown_ || at == cidWidths_.begin()) return defaultWidth_;
    --at;
    if (cid > at->last) return defaultWidth_;
    return static_cast<double>(widths_[at->each ? at->index + (cid - at->first) : at->index]);
}

ShownCode TextFont::next(std::string_view codes) const {
    constexpr std::uint32_t kSpace = 32;
    ShownCode shown;
    if (!composite_) {
        const auto code = static_cast<unsigned char>(codes.front());
        shown.text = texts_[code];
        shown.advance = static_cast<double>(widths_[code]);
        shown.isSpace = code == kSpace;
        return shown;
    }
    const CharCode code = cmap_.next(codes);
    shown.bytes = code.bytes;
    shown.isSpace = code.bytes == 1 && code.value == kSpace;
    shown.text = toUnicode_.text(code.value);
    if (shown.text.empty() && codesAreUtf16_) shown.text = fromUtf16(codes.substr(0, code.bytes));
    shown.advance = isVertical() ? verticalAdvance_ : cidWidth(cmap_.cid(code.value));
    return shown;
}

}  // namespace varnpdf
