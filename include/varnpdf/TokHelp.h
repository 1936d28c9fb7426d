// CTokHelp: classification of single bytes, trimming, hexadecimal text, UTF-8 and literal-string escapes.
#pragma once

#include "varnpdf/export.h"

/// Stateless helpers on NUL-terminated byte strings. Buffers belong to the caller unless a function says it
/// allocates; pointers must not be null unless a function says so. Without memory a function that returns a pointer
/// returns null, one whose result is 1 or 0 returns 0, any other VARNPDF_PDF_MEMORY_ALLOCATION (-1014); nothing is
/// written then, and no exception leaves.
///
/// White space is space, LF, CR, FF, TAB and BEL. That is not the set of ISO 32000-2 7.2.3: NUL ends every C string
/// and is not white space here, BEL is.
class VARNPDF_EXPORT CTokHelp {
public:
    CTokHelp();
    virtual ~CTokHelp();

    // Single bytes

    /// One of space, LF, CR, FF, TAB, BEL.
    static bool isWhiteSpace(char c);
    /// One of ( ) < > [ ] { } / % (ISO 32000-2 table 2).
    static bool isDelimiter(char c);
    /// One of ( ) < > [ ] { }.
    static bool isBracket(char c);
    /// One of ( < [ {.
    static bool isBracketOpen(char c);
    /// One of ) > ] }.
    static bool isBracketClose(char c);
    /// A decimal digit.
    static bool isNumeric(char c);
    /// A decimal digit, '.', '+' or '-'.
    static bool isNumber(char c);
    /// A hexadecimal digit of either case, whatever the name says.
    static bool isAscii(char c);
    /// LF or CR.
    static bool IsEOL(char c);

    // Tokens

    /// `s` starts a literal string "(" or a hexadecimal string "<", but not a dictionary "<<" (ISO 32000-2 7.3.4).
    static bool isString(const char* s);
    /// `s` starts a name, "/" (ISO 32000-2 7.3.5).
    static bool isName(const char* s);
    /// `s` starts with "<<" and contains "stream" anywhere.
    static bool isStreamDict(char* s);
    /// One of the first `n` bytes at `p` is 0; `n` below 1 gives false.
    static bool isUsingNull(void* p, long n);
    /// Every byte in the first half of `s` (rounded up) is a digit, '.', '+' or '-'; the second half is not looked at.
    static bool OnlyDecimalDigits(char* s);

    // Building and copying

    /// Copy of `n` bytes at `p` with a terminator behind them. The caller frees it with `free`.
    static char* Strdup(char* p, unsigned n);
    /// Copy of the string `p`, or null for null. The caller frees it with `free`.
    static char* Strdup(char* p);
    static char* Strdup(const char* p);
    /// Puts `c` and a terminator behind the string `s`, which needs one byte of room; null is left alone.
    static void AppendCharToString(char* s, char c);
    /// Kept for hosts that were built with it, of no use otherwise: frees `*ps` and leaves the pointer as it is, so
    /// that the string with `c` behind it is not handed out. Null, and a string longer than six characters, is left
    /// alone.
    static void AppendCharToString(char** ps, char c);
    /// Writes `c` at offset `pos` of `s` and a terminator behind it; null is left alone.
    static void AppendChar(char* s, int pos, char c);
    /// `AppendChar` at the end of `s`; null is left alone.
    static void AppendChar(char* s, char c);
    /// New string in which every `from` has become `to`; the caller frees it with `free`. The search starts over
    /// after each replacement, so that an occurrence put together by one is replaced as well. Where `to` contains
    /// `from` that could never end: then what a replacement has written is not searched again, and an empty `from`
    /// replaces nothing.
    static char* StrReplace(char* str, const char* from, const char* to);
    /// The integer at the start of `s` (white space and a sign may precede it), limited to the range of int. 0 when
    /// there is none and for null.
    static int String2Int(char* s);
    /// Copies word number `index`, counted from 0, into `out` (256 bytes). Words are runs without space, TAB, LF, VT,
    /// FF, CR. 0, or -1 and an empty `out` when there is no such word or it is longer than 255 bytes.
    static int GetWord(char* str, char* out, int index);

    // Trimming; `set` is the string of characters to remove, changes are made in place

    /// Removes leading characters, but never more than half of the string (rounded up). Returns 0.
    static int TrimLeft(char* s, const char* set);
    /// Overwrites characters with 0 from offset `len` - 1 downwards, up to the first one that stays. Returns 0.
    static int TrimRight(char* s, int len, const char* set);
    /// `TrimRight` from the end of the string.
    static int TrimRight(char* s, const char* set);
    /// Trims the left end (`mode` 1) or the right end (any other mode); `*outLen` receives the remaining length. At the
    /// right end a parenthesis behind a backslash stays. Returns 0.
    static int NZTrimLeftRight_BH(char* s, const char* set, int mode, int* outLen);

    // Hexadecimal text

    /// Lower-case hexadecimal digits of `len` bytes, two per byte, into `out` (2 * `len` + 1 bytes). Returns `out`.
    static char* BinaryToAsc(const unsigned char* data, int len, char* out);
    /// Converts digit pairs of either case to bytes. `*len` is the number of bytes wanted and becomes half the length
    /// of `hex` when that is less. Returns `out`.
    static unsigned char* AscToBinary(const char* hex, unsigned char* out, int* len);
    /// Lower-case digit pairs with ':' between them, e.g. "0a:ff", into `out` (3 * `len` bytes, at least 1). Returns
    /// `len`.
    static int GenHexOutput(char* out, unsigned char* data, unsigned len);

    // UTF-8 and Latin-1

    /// Number of one bits from bit 7 of the low byte downwards, before the first zero bit.
    static int high_ones(int c);
    /// Every lead byte is followed by the continuation bytes it announces (up to seven); "" is, null is not.
    static bool is_utf8_byte_stream(char* s);
    /// Takes one character of up to 31 bits at `*p` and advances `*p`. -1 at a terminator, also inside a sequence,
    /// without stepping over it; 0x80 for a byte that does not fit. Overlong forms and surrogates are not refused.
    static int utf8_getc(unsigned char** p);
    /// Writes `c` & 0x7FFFFFFF at `*p` in one to six bytes without a terminator, advances `*p` and returns the value.
    static int utf8_putc(int c, unsigned char** p);
    /// Converts `src` to Latin-1 in `dst` (strlen(src) + 1 bytes); characters above 0xFF become spaces and their
    /// number is returned. Text that is not UTF-8 is copied as it is, with 0 for result.
    static int ConvertUTF8ToISO88591(char* src, char* dst);

    // Literal strings

    /// Undoes the escapes in the `*len` bytes of a literal string's body (ISO 32000-2 7.3.4.2) in place and sets `*len`
    /// to the new length. An octal escape becomes one byte of value 0. 1, or 0 when there is nothing to undo.
    static int DecodeLiteralString(unsigned char* buf, int* len);
};
