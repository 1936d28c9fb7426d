// Calls of CPdfHelper and CTokHelp on arbitrary text.
#include "fuzz/support/Readers.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/support/Check.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/TokHelp.h"

namespace varnpdf::fuzz {
namespace {

/// One text and the questions to it.
class Subject {
public:
    explicit Subject(std::string_view text) : text_(text), input_(text) {}
    [[nodiscard]] char* in() const { return input_.data(); }
    [[nodiscard]] int size() const { return input_.size(); }
    [[nodiscard]] std::size_t room() const { return text_.size() + 1; }

    /// A reader's result: the offset behind the object lies in the text, and what was copied stands there.
    void found(int result, int end, const Room& out, bool copies = true) const {
        check(result == 0 || result == 1, "a reader returns 0 or 1");
        check(end >= 0 && end <= size(), "an object ends inside the text");
        if (result == 1) {
            const std::string_view value(out.data());
            check(!copies || text_.find(value) != std::string_view::npos, "the copied text stands in the input");
        }
        check(text_ == in(), "a reader does not change its input");
    }

private:
    std::string_view text_;
    Terminated input_;
};

void readNumbers(const Subject& s) {
    float first = 0;
    float second = 0;
    int whole[2] = {};
    int isFloat[2] = {};
    int end = 0;
    const auto size = static_cast<unsigned>(s.size());
    const int number = CPdfHelper::ReadNumber(s.in(), size, &first, whole, isFloat, &end, false);
    check(number == 0 || (end > 0 && end <= s.size()), "a number ends inside the text");
    check(number == 0 || (first == first && first - first == 0), "a number is finite");
    end = 0;
    CPdfHelper::ReadPairOfNumbers(s.in(), &first, &second, whole, whole + 1, isFloat, isFloat + 1, &end);
    check(end >= 0 && end <= s.size(), "a pair ends inside the text");
    int count = 0;
    CPdfHelper::GetNumArraySize(s.in(), &count);
    check(count >= 0 && count <= s.size(), "an array has no more numbers than bytes");
    check(CPdfHelper::IsReference2(s.in(), whole, whole + 1) == CPdfHelper::IsReference2(s.in(), whole, whole + 1),
          "the same question gets the same answer");
}

void readObjects(const Subject& s) {
    int kind = -1;
    int end = 0;
    const Room string(s.room());
    s.found(CPdfHelper::ReadString(s.in(), string.data(), &kind, &end, false), end, string, false);
    check(kind >= 0 && kind <= 2, "a string is literal or hexadecimal");
    const Room array(s.room());
    end = 0;
    s.found(CPdfHelper::ReadArray(s.in(), array.data(), &end), end, array);
    for (const bool cut : {false, true}) {
        const Room dict(s.room());
        end = 0;
        s.found(CPdfHelper::ReadDict(s.in(), dict.data(), &end, cut), end, dict);
    }
    const Room object(s.room());
    end = 0;
    const int result = CPdfHelper::ReadObject(s.in(), object.data(), &kind, &end);
    // The length of "true" behind white space counts the terminator: the interface fixes that.
    s.found(result, kind == 1 && end == s.size() + 1 ? s.size() : end, object);
    check(kind >= 0 && kind <= 9 && (result == 1 || end == 0),
          "an object has a kind, and a length when it can be read");
    for (const int index : {0, 1, 7}) {
        const Room element(s.room());
        s.found(CPdfHelper::ReadArrayElement(s.in(), element.data(), index), 0, element);
    }
}

void readEntries(const Subject& s) {
    for (const char* const key : {"/Type", "Length", "/", ""}) {
        const Room value(s.room());
        int at = -1;
        int end = -1;
        const int result = CPdfHelper::ReadDictEntry(s.in(), key, value.data(), &at, &end);
        s.found(result, end, value);
        check(result == 1 ? at <= end && at >= 0 : at == 0 && end == 0, "an entry has its key in front of its end");
    }
    const Room trailer(s.room());
    int begin = 0;
    int end = 0;
    const int result = CPdfHelper::ReadTrailerDict(s.in(), trailer.data(), &begin, &end);
    s.found(result, end, trailer);
    check(result == 0 || (begin < end && standsAt(s.in(), static_cast<std::size_t>(begin), "<<")),
          "a trailer dictionary begins with its brackets");
    const Room content(s.room());
    int length = 0;
    CPdfHelper::GetObjectContent(s.in(), s.size(), content.data(), &length);
    s.found(1, length, content);
}

void askQuestions(const Subject& s) {
    const int blanks = CPdfHelper::SkipWhitespaces(s.in(), s.size());
    check(blanks >= 0 && blanks <= s.size(), "white space ends inside the text");
    check(CPdfHelper::CheckOnlyWhiteSpaces(s.in()) == (blanks == s.size()), "two ways to ask for white space agree");
    int number = 0;
    int generation = 0;
    CPdfHelper::IsReference(s.in(), &number, &generation);
    const Terminated copy(s.in());
    check(CPdfHelper::IsDictionary(copy.data()) == CPdfHelper::IsDictionary2(copy.data(), copy.size()),
          "a dictionary is one with its length given, too");
    const bool both = CPdfHelper::IsArray(s.in(), s.size()) && CPdfHelper::IsDict(s.in(), s.size());
    check(!both, "nothing is both array and dictionary");
    CPdfHelper::IsTrailerDict(s.in(), s.size());
    check(CPdfHelper::GetArrayAnz(s.in(), s.size()) <= s.size(), "an array has no more references than bytes");
    const int type = CPdfHelper::GetArrayType(s.in(), s.size());
    check(type >= 0 && type <= 2, "an array has one of three types");
    for (const int which : {-1, 0, 1}) {
        const Room entry(s.room());
        CPdfHelper::GetArrayEntry(s.in(), s.size(), which, entry.data());
        check(std::strlen(entry.data()) <= static_cast<std::size_t>(s.size()), "an entry is not longer than its array");
    }
    const Room references(s.room());
    CPdfHelper::StripReferenceArray(s.in(), references.data());
    s.found(1, 0, references);
    const int der = CPdfHelper::getSeqLength(reinterpret_cast<const unsigned char*>(s.in()), s.size());
    check(der == -1 || der >= 2, "an element has a header");
    const int at = CPdfHelper::FindPosition(s.in(), s.size(), "obj");
    check(at == 0 || standsAt(s.in(), static_cast<std::size_t>(at), "obj"), "a pattern stands where it was found");
    for (int width = -1; width <= std::min(s.size(), 9); ++width) CPdfHelper::getStreamValue(s.in(), width);
}

void strip(std::string_view text) {
    for (const int kind : {0, 1, 2}) {
        const Terminated stripped(text);
        CPdfHelper::StripBrackets(stripped.data(), kind);
        check(text.find(stripped.data()) != std::string_view::npos, "brackets are stripped from the ends");
        const Room enclosed(text.size() + 3);
        text.copy(enclosed.data(), text.size());
        CPdfHelper::CreateBrackets(enclosed.data(), kind);
        check(std::string_view(enclosed.data() + 1).starts_with(text), "brackets stand around the text");
    }
    const Terminated trimmed(text);
    CPdfHelper::StringTrimRight(trimmed.data());
    check(text.starts_with(trimmed.data()), "trimming at the right keeps the start");
    const Terminated shortened(text);
    check(std::strlen(CPdfHelper::left(shortened.data(), 5)) <= 5, "the left part is as short as asked for");
    const Terminated unflagged(text);
    CPdfHelper::RemoveFlag(unflagged.data(), "12");
    for (const int mode : {1, 2}) {
        const Terminated ends(text);
        int length = -1;
        CTokHelp::NZTrimLeftRight_BH(ends.data(), "( )", mode, &length);
        check(length >= 0 && length <= ends.size(), "a trimmed text is not longer");
    }
    const Terminated left(text);
    CTokHelp::TrimLeft(left.data(), " (");
    check(text.ends_with(left.data()), "trimming at the left keeps the end");
    const Terminated right(text);
    CTokHelp::TrimRight(right.data(), " )");
    check(text.starts_with(right.data()), "trimming at the right keeps the start");
}

void escape(std::string_view text) {
    const Terminated in(text);
    const Room escaped(2 * text.size() + 1);
    CPdfHelper::CreateLiteralEscapeSeq(in.data(), escaped.data());
    const Room plain(2 * text.size() + 1);
    CPdfHelper::RemoveLiteralEscapeSeq(escaped.data(), plain.data());
    std::string expected(text);
    std::erase(expected, '\\');
    check(expected == plain.data(), "taking the escapes away undoes escaping, but for backslashes");
    const Terminated literal(text);
    int length = literal.size();
    CTokHelp::DecodeLiteralString(reinterpret_cast<unsigned char*>(literal.data()), &length);
    check(length >= 0 && length <= literal.size(), "undoing escapes makes a string shorter");
}

void convert(std::string_view text) {
    const Terminated in(text);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(in.data());
    const Room digits(2 * text.size() + 1);
    CTokHelp::BinaryToAsc(bytes, in.size(), digits.data());
    const Room back(text.size());
    int length = in.size();
    CTokHelp::AscToBinary(digits.data(), back.bytes(), &length);
    check(length == in.size() && text == std::string_view(back.data(), text.size()), "hexadecimal text goes both ways");
    const Room halves(text.size() / 2);
    CPdfHelper::StringToHex(in.data(), static_cast<unsigned>(in.size()), halves.bytes());
    const Room colons(3 * text.size());
    CTokHelp::GenHexOutput(colons.data(), const_cast<unsigned char*>(bytes), static_cast<unsigned>(in.size()));
    const Room latin(text.size() + 1);
    const int lost = CTokHelp::ConvertUTF8ToISO88591(in.data(), latin.data());
    check(lost >= 0 && lost <= in.size(), "no more characters are lost than there are");
    auto* at = reinterpret_cast<unsigned char*>(in.data());
    for (const auto* before = at; CTokHelp::utf8_getc(&at) >= 0; before = at) {
        check(at > before && at <= bytes + text.size(), "reading characters moves on inside the text");
    }
    char word[256];
    for (const int index : {0, 3}) CTokHelp::GetWord(in.data(), word, index);
    char* const changed = CTokHelp::StrReplace(in.data(), "obj", "o");
    check(changed != nullptr && std::strstr(changed, "obj") == nullptr, "every occurrence is replaced");
    std::free(changed);
    CTokHelp::String2Int(in.data());
    CTokHelp::OnlyDecimalDigits(in.data());
}

}  // namespace

void readEverything(std::string_view text) {
    const Subject subject(text.substr(0, text.find('\0')));
    readNumbers(subject);
    readObjects(subject);
    readEntries(subject);
    askQuestions(subject);
}

void convertEverything(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    strip(text);
    escape(text);
    convert(text);
}

}  // namespace varnpdf::fuzz
