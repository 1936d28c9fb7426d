// Content streams (ISO 32000-2 7.8, 8.4, 9.4), as far as text is concerned.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "content/PageText.h"
#include "content/Resources.h"
#include "syntax/Lexer.h"

namespace varnpdf {

/// Runs the content of one page, forms included, and collects the glyphs it shows.
class Interpreter {
public:
    /// `budget` pays for every byte that is gone through.
    Interpreter(ResourceCache& cache, std::size_t& budget) : cache_(cache), budget_(budget) {}

    /// `resources` may be null.
    void run(std::string_view content, Resources* resources);
    std::vector<PlacedGlyph> take() { return std::move(glyphs_); }

private:
    struct State {
        Matrix ctm;
        const TextFont* font = nullptr;
        double size = 0;
        double charSpace = 0;
        double wordSpace = 0;
        double scale = 1;  // horizontal
        double leading = 0;
        double rise = 0;
    };
    void operate(std::string_view name, Lexer& lexer, std::string_view content);
    bool operateState(std::string_view name);
    bool operateText(std::string_view name);
    void save();
    void restore();
    [[nodiscard]] std::string_view resource(std::string_view category, std::string_view name) const;
    void selectFont();
    void useGraphicsState();
    void setLine(const Matrix& line);
    void nextLine(double x, double y);
    void showArray(std::string_view array);
    void show(std::string_view string);
    void place(const ShownCode& shown);
    void showForm(std::string_view name);
    [[nodiscard]] double number(std::size_t fromEnd) const;
    [[nodiscard]] std::string_view operand(std::size_t fromEnd) const;
    /// That of the last six operands; nothing when there are fewer.
    [[nodiscard]] std::optional<Matrix> matrixOperand() const;

    ResourceCache& cache_;
    std::size_t& budget_;
    std::vector<Resources*> resources_;  // of the page, and of the forms inside each other
    State state_;
    std::vector<State> saved_;
    std::size_t unsaved_ = 0;  // "q" beyond the limit
    Matrix text_;
    Matrix line_;
    std::vector<std::string_view> operands_;
    std::vector<const Form*> active_;
    std::vector<PlacedGlyph> glyphs_;
};

}  // namespace varnpdf
