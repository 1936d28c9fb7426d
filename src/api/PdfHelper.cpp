// CPdfHelper: the face of the readers and of the reference utilities for C strings.
#include "varnpdf/PdfHelper.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "support/Guarded.h"
#include "syntax/Der.h"
#include "syntax/Readers.h"
#include "syntax/Reference.h"
#include "varnpdf/TokHelp.h"

namespace {

using varnpdf::TextSpan;

int toInt(std::size_t offset) { return static_cast<int>(offset); }

/// A length as callers give it; below 0 is none.
std::size_t toSize(int len) { return len < 0 ? 0 : static_cast<std::size_t>(len); }

/// Writes the text and a terminator; the text may lie in the same buffer.
void store(char* out, std::string_view text) {
    if (!text.empty()) std::memmove(out, text.data(), text.size());
    out[text.size()] = '\0';
}

/// Writes the text alone.
void storeBare(char* out, std::string_view text) { std::copy(text.begin(), text.end(), out); }

void storeNumber(const varnpdf::NumberToken& number, float* f, int* i, int* isFloat) {
    *isFloat = number.isFloat ? 1 : 0;
    if (number.isFloat) {
        *f = number.real;
    } else {
        *i = number.integer;
    }
}

}  // namespace

CPdfHelper::CPdfHelper() = default;
CPdfHelper::~CPdfHelper() = default;

int CPdfHelper::SkipWhitespaces(const char* s, int len) {
    const std::size_t bound = toSize(len);
    return toInt(varnpdf::skipWhitespaces({s, strnlen(s, bound)}));
}

bool CPdfHelper::CheckOnlyWhiteSpaces(const char* s) { return s[varnpdf::skipWhitespaces(s)] == '\0'; }

int CPdfHelper::ReadNumber(const char* s, unsigned len, float* f, int* i, int* isFloat, int* end, bool /*flag*/) {
    const auto number = varnpdf::readNumber(s, len);
    if (!number) return 0;
    storeNumber(*number, f, i, isFloat);
    *end = toInt(number->end);
    return 1;
}

int CPdfHelper::ReadPairOfNumbers(const char* s, float* f1, float* f2, int* i1, int* i2, int* isFloat1, int* isFloat2,
                                  int* end) {
    const std::string_view text(s);
    const auto first = varnpdf::readNumber(text);
    if (!first) return 0;
    const auto second = varnpdf::readNumber(text.substr(first->end));
    if (!second) return 0;
    storeNumber(*first, f1, i1, isFloat1);
    storeNumber(*second, f2, i2, isFloat2);
    *end = toInt(first->end + second->end);
    return 1;
}

int CPdfHelper::GetNumArraySize(const char* s, int* count) {
    const varnpdf::NumberCount numbers = varnpdf::countNumbers(s);
    *count = numbers.count;
    return numbers.complete ? 1 : 0;
}

int CPdfHelper::ReadString(const char* s, char* out, int* kind, int* len, bool /*flag*/) {
    const auto string = varnpdf::readString(s);
    *kind = !string ? 0 : string->hexadecimal ? 2 : 1;
    *len = string ? toInt(string->end) : 0;
    if (!string) return 0;
    store(out, {s, string->end});
    return 1;
}

int CPdfHelper::ReadArray(const char* s, char* out, int* len) {
    const auto array = varnpdf::readArray(s);
    if (!array) return 0;
    store(out, {s, array->end});
    *len = toInt(array->end);
    return 1;
}

int CPdfHelper::ReadDict(const char* s, char* out, int* len, bool cut) {
    const std::string_view text(s);
    const auto dict = varnpdf::readDict(text);
    const std::size_t end = !dict ? 0 : cut ? dict->end : text.size();
    *len = toInt(end);
    if (!dict) return 0;
    store(out, text.substr(0, end));
    return 1;
}

int CPdfHelper::ReadObject(const char* s, char* out, int* type, int* len) {
    const std::string_view text(s);
    auto kind = varnpdf::ObjectKind::None;
    const auto object = varnpdf::readObject(text, varnpdf::limits::kNesting, &kind);
    *type = static_cast<int>(kind);
    *len = 0;
    if (!object) return 0;
    const std::string_view body = object->of(text);
    store(out, body);
    *len = toInt(object->end);
    // The extra byte of "false" is counted by comparing with the text from its start, so white space makes it count
    // for "true" as well.
    if (kind == varnpdf::ObjectKind::Boolean && body.size() == 4 && object->begin > 0) ++*len;
    return 1;
}

int CPdfHelper::ReadArrayElement(const char* s, char* out, int index) {
    const std::string_view text(s);
    if (index < 0) return 0;
    const auto element = varnpdf::readArrayElement(text, toSize(index));
    if (!element) return 0;
    store(out, element->of(text));
    return 1;
}

int CPdfHelper::ReadDictEntry(const char* s, const char* key, char* out, int* keyPos, int* end) {
    const std::string_view text(s);
    const auto entry = varnpdf::readDictEntry(text, key);
    *keyPos = entry ? toInt(entry->keyPos) : 0;
    *end = entry ? toInt(entry->value.end) : 0;
    if (!entry) return 0;
    store(out, entry->value.of(text));
    return 1;
}

bool CPdfHelper::IsTrailerDict(const char* s, int len) {
    return std::strncmp(s + SkipWhitespaces(s, len), "xref", 4) == 0;
}

int CPdfHelper::ReadTrailerDict(const char* s, char* out, int* start, int* end) {
    const std::string_view text(s);
    const auto dict = varnpdf::readTrailerDict(text);
    if (!dict) return 0;
    store(out, dict->of(text));
    *start = toInt(dict->begin);
    *end = toInt(dict->end);
    return 1;
}

int CPdfHelper::GetObjectContent(const char* s, int /*len*/, char* out, int* outLen) {
    const std::string_view text(s);
    const TextSpan body = varnpdf::objectContent(text);
    store(out, body.of(text));
    *outLen = toInt(body.size());
    return 1;
}

bool CPdfHelper::IsArray(const char* s, int len) { return len >= 2 && s[SkipWhitespaces(s, len)] == '['; }

bool CPdfHelper::IsDict(const char* s, int len) {
    return len >= 3 && std::strncmp(s + SkipWhitespaces(s, len), "<<", 2) == 0;
}

bool CPdfHelper::IsReference2(const char* s, int* num, int* gen) {
    const auto ref = varnpdf::isReference2(s);
    if (!ref) return false;
    *num = ref->number;
    *gen = ref->generation;
    return true;
}

int CPdfHelper::CreateLiteralEscapeSeq(const char* in, char* out) {
    return varnpdf::guardedOr(0, [&] {
        storeBare(out, varnpdf::escapeLiteral(in));
        return 1;
    });
}

int CPdfHelper::RemoveLiteralEscapeSeq(const char* in, char* out) {
    return varnpdf::guardedOr(0, [&] {
        store(out, varnpdf::unescapeLiteral(in));
        return 1;
    });
}

int CPdfHelper::RemoveLiteralEscapeSeq(const char* in, std::string& out) {
    return varnpdf::guardedOr(0, [&] {
        out = varnpdf::unescapeLiteral(in);
        return 1;
    });
}

bool CPdfHelper::IsDictionary(char* s) { return varnpdf::isDictionary(s); }

bool CPdfHelper::IsDictionary2(char* s, int len) { return varnpdf::isDictionary({s, toSize(len)}); }

bool CPdfHelper::IsReference(char* s, int* num, int* gen) {
    const auto scanned = varnpdf::scanLenientReference(s);
    if (!scanned) return false;
    if (scanned->number) *num = *scanned->number;
    if (scanned->generation) *gen = *scanned->generation;
    return true;
}

int CPdfHelper::StripReferenceArray(char* in, char* out) {
    store(out, varnpdf::stripReferenceArray(in));
    return 1;
}

void CPdfHelper::StripBrackets(char* s, int kind) { store(s, varnpdf::stripBrackets(s, kind)); }

void CPdfHelper::CreateBrackets(char* s, int kind) {
    const varnpdf::BracketPair pair = varnpdf::bracketPair(kind == 1 ? 1 : 0);
    const std::size_t len = std::strlen(s);
    std::memmove(s + 1, s, len);
    s[0] = pair.open;
    s[len + 1] = pair.close;
    s[len + 2] = '\0';
}

int CPdfHelper::GetArrayAnz(char* s, int len) { return varnpdf::arrayReferenceCount(s, toSize(len)); }

int CPdfHelper::GetArrayType(char* s, int /*len*/) { return varnpdf::arrayType(s); }

void CPdfHelper::GetArrayEntry(char* s, int len, int which, char* out) {
    storeBare(out, varnpdf::arrayEntry(s, toSize(len), which));
}

int CPdfHelper::StringToHex(char* hex, unsigned len, unsigned char* out) {
    std::size_t size = 0;
    for (unsigned kept = 0; kept < len && hex[size] != '\0'; ++size) {
        if (hex[size] != '\r') ++kept;
    }
    const std::size_t written = varnpdf::hexToBytes({hex, size}, out, len / 2);
    std::fill(out + written, out + len / 2, static_cast<unsigned char>(0));
    return 1;
}

void CPdfHelper::StringTrimRight(char* s) { s[varnpdf::trimRight(s).size()] = '\0'; }

char* CPdfHelper::left(char* s, int n) {
    s[strnlen(s, toSize(n))] = '\0';
    return s;
}

int CPdfHelper::String2Int(char* s) { return CTokHelp::String2Int(s); }
bool CPdfHelper::IsEOL(char c) { return varnpdf::isEol(c); }
void CPdfHelper::AppendCharToString(char* s, char c) { CTokHelp::AppendCharToString(s, c); }

int CPdfHelper::getSeqLength(const unsigned char* der, int len) {
    if (der == nullptr || len < 1) return -1;
    const auto length = varnpdf::derElementLength({reinterpret_cast<const char*>(der), toSize(len)});
    return length && *length <= toSize(std::numeric_limits<int>::max()) ? toInt(*length) : -1;
}

int CPdfHelper::potenz(int base, int exp) {
    auto square = static_cast<unsigned>(base);
    unsigned result = 1;
    for (; exp > 0; exp /= 2, square *= square) {
        if (exp % 2 != 0) result *= square;
    }
    return static_cast<int>(result);
}

int CPdfHelper::RemoveFlag(char* s, const char* flag) {
    const std::size_t len = std::strlen(flag);
    char* at = std::strstr(s, flag);
    if (at == nullptr) return 0;
    store(at, at + len);
    return 1;
}

int CPdfHelper::FindPosition(char* buf, int len, std::string pattern) {
    const std::size_t at = std::string_view(buf, toSize(len)).find(pattern);
    return at == std::string_view::npos ? 0 : toInt(at);
}

int CPdfHelper::Deflate(unsigned char* in, unsigned int inLen, unsigned char* out, unsigned long* outLen) {
    if (in == nullptr || out == nullptr || outLen == nullptr) return Z_STREAM_ERROR;
    return uncompress(out, outLen, in, inLen);
}
