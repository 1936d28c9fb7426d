// Running content streams for their text.
#include "content/Interpreter.h"

#include <algorithm>
#include <utility>

#include "support/Limits.h"
#include "syntax/CharClass.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr double kThousand = 1000;

const TextFont& noFont() {
    static const TextFont kFont = [] {
        const Document none;
        std::size_t budget = 0;
        return TextFont::from(none, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>", budget);
    }();
    return kFont;
}

// Where the data of an inline image ends: at an "EI" between white space that text follows, not more of the picture.
std::size_t behindInlineImage(std::string_view content, std::size_t from) {
    constexpr std::size_t kLookAhead = 16;
    const auto isBlank = [](char c) { return isWhite(c) || c == '\0'; };
    const auto isText = [&](char c) { return isBlank(c) || (c >= ' ' && c <= '~'); };
    for (std::size_t at = content.find("EI", from); at != std::string_view::npos; at = content.find("EI", at + 1)) {
        const std::string_view behind = content.substr(at + 2, kLookAhead);
        const bool stands = at > 0 && isBlank(content[at - 1]) && (behind.empty() || isBlank(behind.front()));
        if (stands && std::ranges::all_of(behind, isText)) return at + 2;
    }
    return content.size();
}

}  // namespace

void Interpreter::run(std::string_view content, Resources* resources) {
    resources_.push_back(resources);
    const std::size_t allowed = std::min(budget_, content.size());
    budget_ -= allowed;
    content = content.substr(0, allowed);
    Lexer lexer(content);
    operands_.clear();
    while (const Token token = lexer.next()) {
        if (token.kind == TokenKind::ArrayOpen || token.kind == TokenKind::DictOpen) {
            lexer.moveTo(token.begin);
            const auto value = lexer.nextValue();
            operands_.push_back(value.value_or(std::string_view{}));
        } else if (token.kind != TokenKind::Word || isClass(token.text.front(), kIsNumberByte)) {
            operands_.push_back(token.text);
        } else {
            operate(token.text, lexer, content);
            operands_.clear();
        }
        if (operands_.size() > limits::kOperands) operands_.clear();
    }
    operands_.clear();
    resources_.pop_back();
}

std::string_view Interpreter::operand(std::size_t fromEnd) const {
    return fromEnd < operands_.size() ? operands_[operands_.size() - 1 - fromEnd] : std::string_view{};
}

double Interpreter::number(std::size_t fromEnd) const { return numberOf(operand(fromEnd)).value_or(0); }

std::optional<Matrix> Interpreter::matrixOperand() const {
    if (operands_.size() < 6) return std::nullopt;
    return Matrix{number(5), number(4), number(3), number(2), number(1), number(0)};
}

void Interpreter::operate(std::string_view name, Lexer& lexer, std::string_view content) {
    if (operateText(name) || operateState(name)) return;
    if (name == "Do") {
        showForm(operand(0));
    } else if (name == "gs") {
        useGraphicsState();
    } else if (name == "ID") {
        lexer.moveTo(behindInlineImage(content, lexer.at()));
    }
}

bool Interpreter::operateState(std::string_view name) {
    if (name == "q") {
        save();
    } else if (name == "Q") {
        restore();
    } else if (name == "cm") {
        if (const auto matrix = matrixOperand()) state_.ctm = *matrix * state_.ctm;
    } else if (name == "Tc") {
        state_.charSpace = number(0);
    } else if (name == "Tw") {
        state_.wordSpace = number(0);
    } else if (name == "Tz") {
        state_.scale = number(0) / 100;
    } else if (name == "TL") {
        state_.leading = number(0);
    } else if (name == "Ts") {
        state_.rise = number(0);
    } else {
        return false;
    }
    return true;
}

bool Interpreter::operateText(std::string_view name) {
    if (name == "Tj") {
        show(operand(0));
    } else if (name == "TJ") {
        showArray(operand(0));
    } else if (name == "Td") {
        nextLine(number(1), number(0));
    } else if (name == "TD") {
        state_.leading = -number(0);
        nextLine(number(1), number(0));
    } else if (name == "Tm") {
        if (const auto matrix = matrixOperand()) setLine(*matrix);
    } else if (name == "T*") {
        nextLine(0, -state_.leading);
    } else if (name == "'") {
        nextLine(0, -state_.leading);
        show(operand(0));
    } else if (name == "\"") {
        state_.wordSpace = number(2);
        state_.charSpace = number(1);
        nextLine(0, -state_.leading);
        show(operand(0));
    } else if (name == "Tf") {
        selectFont();
    } else if (name == "BT") {
        setLine(Matrix{});
    } else {
        return false;
    }
    return true;
}

void Interpreter::save() {
    if (saved_.size() < limits::kGraphicsStates) {
        saved_.push_back(state_);
    } else {
        ++unsaved_;
    }
}

void Interpreter::restore() {
    if (unsaved_ > 0) {
        --unsaved_;
    } else if (!saved_.empty()) {
        state_ = saved_.back();
        saved_.pop_back();
    }
}

// Forms without a name of their own use that of the content around them, as old writers leave it out.
std::string_view Interpreter::resource(std::string_view category, std::string_view name) const {
    for (std::size_t i = resources_.size(); i > 0; --i) {
        Resources* const inner = resources_[i - 1];
        const std::string_view value = inner == nullptr ? std::string_view{} : inner->find(category, name);
        if (!value.empty()) return value;
    }
    return {};
}

void Interpreter::selectFont() {
    state_.size = number(0);
    const std::string_view font = resource("/Font", operand(1));
    state_.font = font.empty() ? nullptr : cache_.font(font);
}

void Interpreter::useGraphicsState() {
    const auto font = cache_.fontOfState(resource("/ExtGState", operand(0)));
    if (!font) return;
    state_.font = font->font;
    state_.size = font->size;
}

void Interpreter::setLine(const Matrix& line) { text_ = line_ = line; }

void Interpreter::nextLine(double x, double y) { setLine(Matrix{1, 0, 0, 1, x, y} * line_); }

void Interpreter::showArray(std::string_view array) {
    Lexer lexer(array);
    if (lexer.next().kind != TokenKind::ArrayOpen) return;
    while (const Token token = lexer.next()) {
        if (token.kind == TokenKind::String || token.kind == TokenKind::HexString) {
            show(token.text);
        } else if (const auto number = numberOf(token.text)) {
            const double back = -*number / kThousand * state_.size;
            const bool vertical = state_.font != nullptr && state_.font->isVertical();
            const Vector move = vertical ? Vector{0, back} : Vector{back * state_.scale, 0};
            text_ = Matrix{1, 0, 0, 1, move.x, move.y} * text_;
        }
    }
}

void Interpreter::show(std::string_view string) {
    const auto codes = stringOf(string);
    if (!codes) return;
    const TextFont& font = state_.font == nullptr ? noFont() : *state_.font;
    for (std::string_view rest = *codes; !rest.empty();) {
        const ShownCode shown = font.next(rest);
        rest.remove_prefix(std::max<std::size_t>(shown.bytes, 1));
        if (glyphs_.size() < limits::kPageGlyphs) place(shown);
        const double spacing = state_.charSpace + (shown.isSpace ? state_.wordSpace : 0);
        const double along = shown.advance * state_.size + spacing;
        const Vector move = font.isVertical() ? Vector{0, along} : Vector{along * state_.scale, 0};
        text_ = Matrix{1, 0, 0, 1, move.x, move.y} * text_;
    }
}

void Interpreter::place(const ShownCode& shown) {
    const TextFont& font = state_.font == nullptr ? noFont() : *state_.font;
    const Matrix onPage = text_ * state_.ctm;
    const double along = shown.advance * state_.size;
    PlacedGlyph glyph;
    glyph.text = shown.text;
    glyph.baseline = onPage.point({0, 0});
    glyph.origin = onPage.point({0, state_.rise});
    glyph.up = onPage.direction({0, state_.size});
    glyph.vertical = font.isVertical();
    glyph.advance = onPage.direction(glyph.vertical ? Vector{0, along} : Vector{along * state_.scale, 0});
    glyph.ascent = static_cast<float>(font.ascent());
    glyph.descent = static_cast<float>(font.descent());
    glyphs_.push_back(std::move(glyph));
}

void Interpreter::showForm(std::string_view name) {
    const std::string_view value = resource("/XObject", name);
    const Form* const form = value.empty() ? nullptr : cache_.form(value);
    const bool allowed = form != nullptr && active_.size() < limits::kFormDepth && budget_ > 0 &&
                         std::ranges::find(active_, form) == active_.end();
    if (!allowed) return;
    const SharedContent content = cache_.contentOf(*form);
    Resources* const own = cache_.resources(form->resources);
    const State before = state_;
    const Matrix text = text_;
    const Matrix line = line_;
    auto outer = std::exchange(saved_, {});
    const std::size_t outerUnsaved = std::exchange(unsaved_, 0);
    active_.push_back(form);
    state_.ctm = form->matrix * state_.ctm;
    run(content->view(), own);
    active_.pop_back();
    saved_ = std::move(outer);
    unsaved_ = outerUnsaved;
    state_ = before;
    text_ = text;
    line_ = line;
}

}  // namespace varnpdf
