// CTokHelp: the face of the byte classes and text helpers for C strings.
#include "varnpdf/TokHelp.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "support/Guarded.h"
#include "syntax/Cursor.h"
#include "syntax/Encoding.h"
#include "syntax/Readers.h"
#include "syntax/Text.h"

namespace {

using varnpdf::isClass;

/// Writes the text and a terminator; the text may lie in the same buffer.
void store(char* out, std::string_view text) {
    if (!text.empty()) std::memmove(out, text.data(), text.size());
    out[text.size()] = '\0';
}

// Null without memory.
char* duplicate(std::string_view text) {
    auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr) return nullptr;
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = '\0';
    return copy;
}

std::string_view bytes(const unsigned char* data, std::size_t len) {
    return {reinterpret_cast<const char*>(data), len};
}

/// Two characters as "%x" reads them: white space or a sign may stand for the first, a byte that is no digit ends the
/// number.
unsigned char scanHexPair(char first, char second) {
    const int high = varnpdf::hexValue(first);
    const int low = varnpdf::hexValue(second);
    if (high >= 0) return static_cast<unsigned char>(low < 0 ? high : 16 * high + low);
    if (low < 0) return 0;
    if (first == '-') return static_cast<unsigned char>(-low);
    return static_cast<unsigned char>(first == '+' || varnpdf::isCSpace(first) ? low : 0);
}

}  // namespace

CTokHelp::CTokHelp() = default;
CTokHelp::~CTokHelp() = default;

bool CTokHelp::isWhiteSpace(char c) { return varnpdf::isWhite(c); }
bool CTokHelp::isDelimiter(char c) { return varnpdf::isDelimiter(c); }
bool CTokHelp::isBracket(char c) { return isClass(c, varnpdf::kIsBracketOpen | varnpdf::kIsBracketClose); }
bool CTokHelp::isBracketOpen(char c) { return isClass(c, varnpdf::kIsBracketOpen); }
bool CTokHelp::isBracketClose(char c) { return isClass(c, varnpdf::kIsBracketClose); }
bool CTokHelp::isNumeric(char c) { return varnpdf::isDigit(c); }
bool CTokHelp::isNumber(char c) { return isClass(c, varnpdf::kIsNumberByte); }
bool CTokHelp::isAscii(char c) { return isClass(c, varnpdf::kIsHexDigit); }
bool CTokHelp::IsEOL(char c) { return varnpdf::isEol(c); }

bool CTokHelp::isString(const char* s) { return s[0] == '(' || (s[0] == '<' && s[1] != '<'); }
bool CTokHelp::isName(const char* s) { return s[0] == '/'; }

bool CTokHelp::isStreamDict(char* s) { return std::strncmp(s, "<<", 2) == 0 && std::strstr(s, "stream") != nullptr; }

bool CTokHelp::isUsingNull(void* p, long n) {
    return n > 0 && std::memchr(p, 0, static_cast<std::size_t>(n)) != nullptr;
}

bool CTokHelp::OnlyDecimalDigits(char* s) { return varnpdf::onlyDecimalDigits(s); }

char* CTokHelp::Strdup(char* p, unsigned n) { return duplicate({p, n}); }
char* CTokHelp::Strdup(char* p) { return p == nullptr ? nullptr : duplicate(p); }
char* CTokHelp::Strdup(const char* p) { return p == nullptr ? nullptr : duplicate(p); }

void CTokHelp::AppendCharToString(char* s, char c) { AppendChar(s, c); }

void CTokHelp::AppendCharToString(char** ps, char /*c*/) {
    constexpr std::size_t kLongest = 6;
    if (ps == nullptr || *ps == nullptr || std::strlen(*ps) > kLongest) return;
    // The longer string was never stored back, so nobody could see or free it.
    std::free(*ps);
}

void CTokHelp::AppendChar(char* s, int pos, char c) {
    if (s == nullptr) return;
    s[pos] = c;
    s[pos + 1] = '\0';
}

void CTokHelp::AppendChar(char* s, char c) {
    if (s == nullptr) return;
    char* end = s + std::strlen(s);
    end[0] = c;
    end[1] = '\0';
}

char* CTokHelp::StrReplace(char* str, const char* from, const char* to) {
    return varnpdf::guardedOr(static_cast<char*>(nullptr),
                              [&] { return duplicate(varnpdf::replaceAll(str, from, to)); });
}

int CTokHelp::String2Int(char* s) { return s == nullptr ? 0 : varnpdf::Cursor(s).takeInt().value_or(0); }

int CTokHelp::GetWord(char* str, char* out, int index) {
    constexpr std::size_t kLongest = 255;
    const auto word = varnpdf::word(str, index);
    const bool found = word && word->size() <= kLongest;
    store(out, found ? *word : std::string_view());
    return found ? 0 : -1;
}

int CTokHelp::TrimLeft(char* s, const char* set) {
    const std::size_t len = std::strlen(s);
    const std::string_view rest = varnpdf::trimLeftHalf({s, len}, set);
    store(s, rest);
    std::memset(s + rest.size(), 0, len - rest.size());
    return 0;
}

int CTokHelp::TrimRight(char* s, int len, const char* set) {
    const std::string_view members(set);
    while (len > 0 && members.find(s[len - 1]) != std::string_view::npos) s[--len] = '\0';
    return 0;
}

int CTokHelp::TrimRight(char* s, const char* set) { return TrimRight(s, static_cast<int>(std::strlen(s)), set); }

int CTokHelp::NZTrimLeftRight_BH(char* s, const char* set, int mode, int* outLen) {
    const std::size_t len = std::strlen(s);
    const std::string_view rest =
        mode == 1 ? varnpdf::trimLeft({s, len}, set) : varnpdf::trimRightUnescaped({s, len}, set);
    *outLen = static_cast<int>(rest.size());
    if (mode != 1) std::memset(s + rest.size(), 0, len - rest.size());
    store(s, rest);
    return 0;
}

char* CTokHelp::BinaryToAsc(const unsigned char* data, int len, char* out) {
    return varnpdf::guardedOr(static_cast<char*>(nullptr), [&] {
        store(out, len < 1 ? std::string() : varnpdf::toHex(bytes(data, static_cast<std::size_t>(len))));
        return out;
    });
}

unsigned char* CTokHelp::AscToBinary(const char* hex, unsigned char* out, int* len) {
    *len = static_cast<int>(std::min<long>(*len, static_cast<long>(std::strlen(hex) / 2)));
    for (int i = 0; i < *len; ++i, hex += 2) out[i] = scanHexPair(hex[0], hex[1]);
    return out;
}

int CTokHelp::GenHexOutput(char* out, unsigned char* data, unsigned len) {
    return varnpdf::guarded([&] {
        store(out, varnpdf::toHex(bytes(data, len), ':'));
        return static_cast<int>(len);
    });
}

int CTokHelp::high_ones(int c) { return varnpdf::highOnes(static_cast<unsigned char>(c)); }

bool CTokHelp::is_utf8_byte_stream(char* s) { return s != nullptr && varnpdf::isUtf8Stream(s); }

int CTokHelp::utf8_getc(unsigned char** p) {
    constexpr std::size_t kLongest = 6;
    const std::string_view window = bytes(*p, strnlen(reinterpret_cast<const char*>(*p), kLongest));
    if (window.empty()) return varnpdf::kUtf8End;
    std::size_t used = 0;
    const int c = varnpdf::takeUtf8(window, used);
    *p += used;
    return c;
}

int CTokHelp::utf8_putc(int c, unsigned char** p) {
    const unsigned value = static_cast<unsigned>(c) & 0x7FFFFFFFU;
    // Bits that fit one byte, two bytes, and five more with each further byte.
    unsigned more = value < 0x80U ? 0 : 1;
    for (unsigned bits = 11; more > 0 && value >> bits != 0; bits += 5) ++more;
    const unsigned prefix = more == 0 ? 0 : 0xFF00U >> (more + 1);
    *(*p)++ = static_cast<unsigned char>(prefix | (value >> (6 * more)));
    while (more-- > 0) *(*p)++ = static_cast<unsigned char>(0x80U | ((value >> (6 * more)) & 0x3FU));
    return static_cast<int>(value);
}

int CTokHelp::ConvertUTF8ToISO88591(char* src, char* dst) {
    return varnpdf::guarded([&] {
        const varnpdf::Latin1Text latin1 = varnpdf::latin1FromUtf8(src);
        store(dst, latin1.text);
        return latin1.replaced;
    });
}

int CTokHelp::DecodeLiteralString(unsigned char* buf, int* len) {
    if (*len < 2) return 0;
    return varnpdf::guardedOr(0, [&] {
        const auto size = static_cast<std::size_t>(*len);
        const auto decoded = varnpdf::decodeLiteral(bytes(buf, size));
        if (!decoded) return 0;
        std::memset(buf, 0, size);
        std::copy(decoded->begin(), decoded->end(), buf);
        *len = static_cast<int>(decoded->size());
        return 1;
    });
}
