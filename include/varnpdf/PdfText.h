// CPdfText: texts and dates between a PDF file and people.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "varnpdf/export.h"

/// Texts of PDF files as UTF-8 and back, and dates for signatures. All members may be called from several threads at a
/// time; each lets std::bad_alloc out.
class VARNPDF_EXPORT CPdfText {
public:
    CPdfText() = delete;

    // --- UTF-8 ---

    /// The characters of UTF-8; nothing when the bytes are not well-formed (RFC 3629).
    static std::optional<std::u32string> Characters(std::string_view utf8);
    static std::string Utf8(std::u32string_view characters);
    /// UTF-8 with each byte that is none replaced by U+FFFD.
    static std::string ValidUtf8(std::string_view bytes);
    /// Valid UTF-8 without anything that moves a terminal's cursor or hides text: line ends and tabs become blanks,
    /// other control characters and direction overrides U+FFFD.
    static std::string Printable(std::string_view bytes);

    // --- encodings of PDF ---

    /// A text string (ISO 32000-2 7.9.2.2) as valid UTF-8: UTF-16 or UTF-8 behind a byte order mark, else
    /// PDFDocEncoding. What is no character becomes U+FFFD.
    static std::string DecodeTextString(std::string_view bytes);
    /// The bytes of a text string: PDFDocEncoding where that has all characters, else UTF-16 behind a byte order mark.
    /// They still need escapes to stand between parentheses.
    static std::string EncodeTextString(std::u32string_view characters);
    /// WinAnsiEncoding (annex D), as the texts of an appearance are given. Nothing when a character is not in it;
    /// `refused`, unless null, is then its index.
    static std::optional<std::string> EncodeWinAnsi(std::u32string_view characters, std::size_t* refused = nullptr);

    // --- PDF syntax ---

    /// The bytes of the literal or hexadecimal string (7.3.4) at the start of a text; nothing when there is none or it
    /// is not closed.
    static std::optional<std::string> StringBytes(std::string_view value);
    /// The name (7.3.5) at the start of a text without its slash, "#20" undone; nothing when there is none.
    static std::optional<std::string> NameBytes(std::string_view value);

    // --- dates ---

    /// A PDF date (7.9.4) or one of ISO 8601 as complete PDF date, D:20261115023351+01'00'. What is not said counts as
    /// the first of its kind, a missing zone as the local one at that time. Nothing for what is no date.
    static std::optional<std::string> CompleteDate(std::string_view date);
    /// The present moment in that form, with the local offset that holds now.
    static std::string Now();
};
