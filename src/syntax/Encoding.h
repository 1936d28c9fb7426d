// Encodings of text: those of one byte a character (ISO 32000-2 annex D), UTF-8, UTF-16, text strings (7.9.2.2).
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace varnpdf {

/// Stands for what is no character.
inline constexpr char32_t kReplacement = 0xFFFD;

/// Characters by code, 0 for codes without one.
using Encoding = std::array<char32_t, 256>;
/// As fonts read it: codes that the table leaves open show a bullet, 0xA0 a space and 0xAD a hyphen.
const Encoding& winAnsiEncoding() noexcept;
const Encoding& macRomanEncoding() noexcept;
const Encoding& pdfDocEncoding() noexcept;

/// The code of a printable character in WinAnsiEncoding.
std::optional<char> winAnsiCode(char32_t character) noexcept;
/// The code of a character in PDFDocEncoding, or of a tab or line end.
std::optional<char> pdfDocCode(char32_t character) noexcept;

/// A letter of DOS code page 437 and its place in WinAnsiEncoding.
struct DosLetter {
    unsigned char dos;
    unsigned char winAnsi;
};
/// ü ä Ä ö Ö Ü ß
inline constexpr DosLetter kDosLetters[] = {{129, 0xFC}, {132, 0xE4}, {142, 0xC4}, {148, 0xF6},
                                            {153, 0xD6}, {154, 0xDC}, {225, 0xDF}};

/// Decodes UTF-8 (RFC 3629) that comes in pieces.
class Utf8Reader {
public:
    enum class Step { kMore, kCharacter, kInvalid };
    /// Takes one byte; the character is then `character()`.
    Step take(unsigned char byte) noexcept;
    [[nodiscard]] char32_t character() const noexcept { return character_; }
    [[nodiscard]] bool inside() const noexcept { return left_ > 0; }

private:
    char32_t character_ = 0;
    char32_t least_ = 0;
    int left_ = 0;
};

/// The characters of well-formed UTF-8; overlong forms, surrogates and cut characters are not well-formed.
std::optional<std::u32string> fromUtf8(std::string_view bytes);
/// The same with each byte that begins no character replaced.
std::u32string fromBrokenUtf8(std::string_view bytes);
/// The characters of UTF-8; bytes that are not UTF-8 are taken to be Latin-1.
std::u32string fromUtf8OrLatin1(std::string_view bytes);
std::string toUtf8(std::u32string_view characters);
/// Without what moves a terminal's cursor or hides text: blanks for line ends and tabs, `kReplacement` for other control
/// characters and direction overrides.
std::u32string printable(std::u32string_view characters);

/// The characters of a text string: UTF-16 or UTF-8 behind a byte order mark, else PDFDocEncoding. What is no character
/// is replaced.
std::u32string fromTextString(std::string_view bytes);
/// The bytes of a text string: PDFDocEncoding where that has all characters, else UTF-16 behind a byte order mark.
std::string toTextString(std::u32string_view characters);

/// One bits from bit 7 downwards.
int highOnes(unsigned char byte) noexcept;
/// Every lead byte, of one to eight bytes, is followed by the continuation bytes that it announces; see
/// `CTokHelp::is_utf8_byte_stream`.
bool isUtf8Stream(std::string_view bytes) noexcept;
inline constexpr int kUtf8End = -1;
inline constexpr int kBadUtf8 = 0x80;
/// The character of up to 31 bits at `at` (inside the bytes), moved behind the bytes used. `kBadUtf8` for a byte that
/// does not fit, which stays, `kUtf8End` when the bytes end inside the character.
int takeUtf8(std::string_view bytes, std::size_t& at) noexcept;

struct Latin1Text {
    std::string text;
    int replaced = 0;  ///< characters that became spaces
};
/// Latin-1 of a UTF-8 stream; other bytes are taken to be Latin-1.
Latin1Text latin1FromUtf8(std::string_view bytes);

}  // namespace varnpdf
