// How the self-check asks the exported readers.
#include "api/SelfCheck.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <vector>

#include "selfcheck/DictionaryCases.h"
#include "selfcheck/ReaderCases.h"
#include "support/Text.h"
#include "syntax/Text.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfObj.h"

namespace varnpdf {
namespace {

// Room for results, zeroed and not a byte longer than promised, so that a sanitizer sees any step beyond it.
class Room {
public:
    explicit Room(std::size_t size) : bytes_(size) {}
    explicit Room(const std::string& text) : Room(text.size() + 1) {}
    operator char*() { return bytes_.data(); }
    [[nodiscard]] std::string_view all() const { return {bytes_.data(), bytes_.size()}; }

private:
    std::vector<char> bytes_;
};

template <typename First, typename... Others>
std::string shown(const First& first, const Others&... others) {
    std::string out;
    appendPart(out, first);
    ((out.push_back(' '), appendPart(out, others)), ...);
    return out;
}

std::string shownNumber(int isFloat, float real, int integer) {
    if (isFloat == 0) return text("integer ", integer);
    char digits[64];
    return text("float ", std::string_view(digits, std::to_chars(digits, std::end(digits), real).ptr));
}

// The first word of a row's input, which is then taken off.
std::string takeWord(std::string& in) {
    const std::size_t end = in.find(' ');
    std::string word = in.substr(0, end);
    in.erase(0, end + 1);
    return word;
}

int lengthOf(const std::string& in) { return static_cast<int>(in.size()); }

std::string readNumber(std::string in) {
    float real = -1;
    int integer = -1, isFloat = -1, end = -1;
    const auto bound = static_cast<unsigned>(in.size());
    const int result = CPdfHelper::ReadNumber(in.c_str(), bound, &real, &integer, &isFloat, &end, false);
    return result == 0 ? "0" : shown(result, shownNumber(isFloat, real, integer), end);
}

std::string readPairOfNumbers(std::string in) {
    float f1 = -1, f2 = -1;
    int i1 = -1, i2 = -1, is1 = -1, is2 = -1, end = -1;
    const int result = CPdfHelper::ReadPairOfNumbers(in.c_str(), &f1, &f2, &i1, &i2, &is1, &is2, &end);
    return result == 0 ? "0" : shown(result, shownNumber(is1, f1, i1), shownNumber(is2, f2, i2), end);
}

std::string getNumArraySize(std::string in) {
    int count = -1;
    const int result = CPdfHelper::GetNumArraySize(in.c_str(), &count);
    return shown(result, count);
}

std::string checkOnlyWhiteSpaces(std::string in) { return CPdfHelper::CheckOnlyWhiteSpaces(in.c_str()) ? "1" : "0"; }

std::string readObject(std::string in) {
    Room out(in);
    int type = -1, length = -1;
    const int result = CPdfHelper::ReadObject(in.c_str(), out, &type, &length);
    return shown(result, type, length, static_cast<char*>(out));
}

std::string readArray(std::string in) {
    Room out(in);
    int length = 0;
    const int result = CPdfHelper::ReadArray(in.c_str(), out, &length);
    return shown(result, length, static_cast<char*>(out));
}

std::string readArrayElement(std::string in) {
    std::string all;
    for (int index = -1; index < 4; ++index) {
        Room out(in);
        const int result = CPdfHelper::ReadArrayElement(in.c_str(), out, index);
        append(all, index < 0 ? "" : " ", result, ":", static_cast<char*>(out));
    }
    return all;
}

template <bool kCut>
std::string readDict(std::string in) {
    Room out(in);
    int length = -1;
    const int result = CPdfHelper::ReadDict(in.c_str(), out, &length, kCut);
    return shown(result, length, static_cast<char*>(out));
}

std::string readDictEntry(std::string in) {
    const std::string key = takeWord(in);
    Room out(in);
    int keyPos = -1, end = -1;
    const int result = CPdfHelper::ReadDictEntry(in.c_str(), key.c_str(), out, &keyPos, &end);
    return shown(result, keyPos, end, static_cast<char*>(out));
}

std::string readString(std::string in) {
    Room out(in);
    int kind = -1, length = -1;
    const int result = CPdfHelper::ReadString(in.c_str(), out, &kind, &length, true);
    return shown(result, kind, length, static_cast<char*>(out));
}

std::string readTrailerDict(std::string in) {
    Room out(in);
    int start = -1, end = -1;
    const int result = CPdfHelper::ReadTrailerDict(in.c_str(), out, &start, &end);
    return result == 0 ? "0" : shown(result, start, end, static_cast<char*>(out));
}

std::string isTrailerDict(std::string in) { return CPdfHelper::IsTrailerDict(in.c_str(), lengthOf(in)) ? "1" : "0"; }
std::string isArray(std::string in) { return CPdfHelper::IsArray(in.c_str(), lengthOf(in)) ? "1" : "0"; }
std::string isDict(std::string in) { return CPdfHelper::IsDict(in.c_str(), lengthOf(in)) ? "1" : "0"; }

std::string createLiteralEscapeSeq(std::string in) {
    Room out(2 * in.size() + 1);
    const int result = CPdfHelper::CreateLiteralEscapeSeq(in.c_str(), out);
    return result == 1 ? static_cast<char*>(out) : shown(result);
}

// Both forms.
std::string removeLiteralEscapeSeq(std::string in) {
    Room out(in);
    std::string other = "x";
    const int one = CPdfHelper::RemoveLiteralEscapeSeq(in.c_str(), out);
    const int two = CPdfHelper::RemoveLiteralEscapeSeq(in.c_str(), other);
    return one == 1 && two == 1 && other == static_cast<char*>(out) ? other : shown(one, two, other);
}

std::string getObjectContent(std::string in) {
    Room out(in);
    int length = -1;
    const int result = CPdfHelper::GetObjectContent(in.c_str(), lengthOf(in), out, &length);
    return result == 1 ? shown(length, static_cast<char*>(out)) : shown(result);
}

std::string isReference2(std::string in) {
    int number = -1, generation = -1;
    return CPdfHelper::IsReference2(in.c_str(), &number, &generation) ? shown(1, number, generation) : "0";
}

std::string isReference(std::string in) {
    int number = -1, generation = -1;
    const int result = CPdfHelper::IsReference(in.data(), &number, &generation) ? 1 : 0;
    return shown(result, number, generation);
}

std::string isDictionary(std::string in) {
    const int whole = CPdfHelper::IsDictionary(in.data()) ? 1 : 0;
    const int length = lengthOf(in);
    in += " rest >";
    return shown(whole, CPdfHelper::IsDictionary2(in.data(), length) ? 1 : 0);
}

std::string isPageObject(std::string in) {
    CPdfObj object;
    object.setContent(in);
    return CPdfHelper::IsPageObject(&object) ? "1" : "0";
}

std::string stripBrackets(std::string in) {
    std::string all;
    for (const int kind : {1, 2, 3}) {
        std::string copy = in;
        CPdfHelper::StripBrackets(copy.data(), kind);
        append(all, kind == 1 ? "" : ":", copy.c_str());
    }
    return all;
}

std::string createBrackets(std::string in) {
    std::string all;
    for (const int kind : {1, 2, 3}) {
        Room copy(in.size() + 3);
        in.copy(copy, in.size());
        CPdfHelper::CreateBrackets(copy, kind);
        append(all, kind == 1 ? "" : ":", static_cast<char*>(copy));
    }
    return all;
}

std::string stripReferenceArray(std::string in) {
    Room out(in);
    const int result = CPdfHelper::StripReferenceArray(in.data(), out);
    return shown(result, static_cast<char*>(out));
}

std::string referenceArray(std::string in) {
    std::string entries;
    for (const int which : {-1, 0, 5}) {
        Room out(in);
        CPdfHelper::GetArrayEntry(in.data(), lengthOf(in), which, out);
        append(entries, which < 0 ? "" : ":", static_cast<char*>(out));
    }
    return shown(CPdfHelper::GetArrayAnz(in.data(), lengthOf(in)), CPdfHelper::GetArrayType(in.data(), lengthOf(in)),
                 entries);
}

std::string stringToHex(std::string in) {
    const std::string word = takeWord(in);
    unsigned length = 0;
    std::from_chars(word.data(), word.data() + word.size(), length);
    std::vector<unsigned char> out(length / 2 + 1, 0x77);
    CPdfHelper::StringToHex(in.data(), length, out.data());
    return toHex({reinterpret_cast<const char*>(out.data()), out.size()});
}

std::string replaceTjValue(std::string in) {
    CPdfObj object;
    object.setContent(in);
    std::string shownText = "+";
    const int result = object.ReplaceTjValue(shownText.data());
    return shown(result, object.content());
}

std::string addDictionaryEntry(std::string in) {
    std::string entry = takeWord(in);
    CPdfObj object;
    object.setContent(in);
    const int result = object.AddDictionaryEntry(entry.data());
    return shown(result, object.content());
}

// What a lookup gives, and whether anything was written behind the value.
std::string lookedUp(std::string in, const selfcheck::Lookup& how) {
    Room out(std::max<std::size_t>(in.size(), 1));
    int keyPos = -1, endPos = -1, length = 0;
    const int found = CPdfObj::ReadDictionaryEntry2(in.data(), lengthOf(in), how.key, out, &keyPos, &endPos, 0, &length,
                                                    how.namesAsValues, how.start);
    const std::string_view all = out.all();
    const std::size_t end = std::min(static_cast<std::size_t>(std::max(length, 0)), all.size());
    const bool isClean = all.find_first_not_of('\0', end) == std::string_view::npos;
    return shown(found, keyPos, endPos, length, all.substr(0, end), isClean ? "" : "and more");
}

Judgement judgeLookups() {
    Judgement judgement;
    for (const selfcheck::Lookup& row : selfcheck::kLookups) {
        ++judgement.cases;
        const std::string_view value = row.value == nullptr ? "" : row.value;
        const std::string expected =
            shown(row.value == nullptr ? 0 : 1, row.keyPos, row.endPos, value.size(), value, "");
        const std::string given = lookedUp(std::string(row.text), row);
        if (given != expected && judgement.failure.empty()) {
            judgement.failure = text(row.text, " -> ", expected, ", given: ", given);
        }
    }
    return judgement;
}

template <const auto& kRows, auto kAsk>
Judgement table() {
    return judge(kRows, kAsk);
}

constexpr ReaderCheck kChecks[] = {
    {"ReadNumber", table<selfcheck::kReadNumber, readNumber>},
    {"ReadPairOfNumbers", table<selfcheck::kReadPairOfNumbers, readPairOfNumbers>},
    {"GetNumArraySize", table<selfcheck::kGetNumArraySize, getNumArraySize>},
    {"CheckOnlyWhiteSpaces", table<selfcheck::kCheckOnlyWhiteSpaces, checkOnlyWhiteSpaces>},
    {"ReadObject", table<selfcheck::kReadObject, readObject>},
    {"ReadArray", table<selfcheck::kReadArray, readArray>},
    {"ReadArrayElement", table<selfcheck::kReadArrayElement, readArrayElement>},
    {"ReadDict", table<selfcheck::kReadDict, readDict<false>>},
    {"ReadDict (cut)", table<selfcheck::kReadDictCut, readDict<true>>},
    {"ReadDictEntry", table<selfcheck::kReadDictEntry, readDictEntry>},
    {"ReadString", table<selfcheck::kReadString, readString>},
    {"ReadTrailerDict", table<selfcheck::kReadTrailerDict, readTrailerDict>},
    {"IsTrailerDict", table<selfcheck::kIsTrailerDict, isTrailerDict>},
    {"IsArray", table<selfcheck::kIsArray, isArray>},
    {"IsDict", table<selfcheck::kIsDict, isDict>},
    {"CreateLiteralEscapeSeq", table<selfcheck::kCreateLiteralEscapeSeq, createLiteralEscapeSeq>},
    {"RemoveLiteralEscapeSeq", table<selfcheck::kRemoveLiteralEscapeSeq, removeLiteralEscapeSeq>},
    {"GetObjectContent", table<selfcheck::kGetObjectContent, getObjectContent>},
    {"IsReference2", table<selfcheck::kIsReference2, isReference2>},
    {"IsReference", table<selfcheck::kIsReference, isReference>},
    {"IsDictionary", table<selfcheck::kIsDictionary, isDictionary>},
    {"IsPageObject", table<selfcheck::kIsPageObject, isPageObject>},
    {"StripBrackets", table<selfcheck::kStripBrackets, stripBrackets>},
    {"CreateBrackets", table<selfcheck::kCreateBrackets, createBrackets>},
    {"StripReferenceArray", table<selfcheck::kStripReferenceArray, stripReferenceArray>},
    {"GetArrayEntry", table<selfcheck::kReferenceArrays, referenceArray>},
    {"StringToHex", table<selfcheck::kStringToHex, stringToHex>},
    {"ReadDictionaryEntry2", judgeLookups},
    {"AddDictionaryEntry", table<selfcheck::kAddDictionaryEntry, addDictionaryEntry>},
    {"ReplaceTjValue", table<selfcheck::kReplaceTjValue, replaceTjValue>},
};

}  // namespace

Judgement judge(std::span<const std::string_view> rows, const std::function<std::string(std::string)>& ask) {
    constexpr std::string_view kArrow = " -> ";
    Judgement judgement;
    for (const std::string_view row : rows) {
        ++judgement.cases;
        const std::size_t arrow = row.find(kArrow);
        const std::string given = ask(std::string(row.substr(0, arrow)));
        if (given == row.substr(arrow + kArrow.size()) || !judgement.failure.empty()) continue;
        judgement.failure = text(row, ", given: ", given);
    }
    return judgement;
}

std::span<const ReaderCheck> readerChecks() { return kChecks; }

}  // namespace varnpdf
