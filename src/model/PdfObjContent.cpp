// Operations on an object's text other than dictionary entries: streams, references, classification.
#include <cstring>

#include "support/Loggers.h"
#include "syntax/Cursor.h"
#include "syntax/Text.h"
#include "varnpdf/PdfObj.h"

using namespace varnpdf;

namespace {

constexpr std::string_view kEndObj = "endobj";
constexpr std::size_t kNone = std::string_view::npos;

// "%d %d", or "%s %d %d" with a word in front.
bool takeTwoInts(std::string_view text, int& first, int& second) {
    Cursor cursor(text);
    for (int attempt = 0; attempt < 2; ++attempt) {
        Cursor ahead = cursor;
        const auto one = ahead.takeInt();
        const auto two = one ? ahead.takeInt() : std::nullopt;
        if (two) {
            first = *one;
            second = *two;
            return true;
        }
        cursor.skip(kIsCSpace);
        cursor.takeUntil(kIsCSpace);
    }
    return false;
}

// Where the data behind a "stream" keyword begins: CR bytes, then line feeds each with CR bytes behind it.
std::size_t dataBegin(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] == '\r') ++at;
    while (at < text.size() && text[at] == '\n') {
        ++at;
        while (at < text.size() && text[at] == '\r') ++at;
    }
    return at;
}

struct LengthEntry {
    std::size_t key;
    TextSpan value;
    std::optional<int> number;
};

// The next /Length with white space behind it: /Length1 of an embedded font program is another key.
std::optional<LengthEntry> nextLength(std::string_view text, std::size_t from) {
    constexpr std::string_view kLength = "/Length";
    for (std::size_t key = text.find(kLength, from); key != kNone; key = text.find(kLength, key + 1)) {
        Cursor value(text, key + kLength.size());
        if (value.skip(kIsCSpace) == 0) continue;
        const std::size_t begin = value.at();
        const auto number = value.takeInt();
        return LengthEntry{key, {begin, value.at()}, number};
    }
    return std::nullopt;
}

// Walks the states of the classification; each is announced before it is entered.
class Classifier {
public:
    Classifier(std::string_view text, const ClassLogger& logger) : cursor_(text), logger_(logger) {}

    bool isArray() {
        return number("State 0: Suche nach ObjNr", "State 1: Einlesen ObjNr") &&
               number("State 2: Suche nach GenNr", "State 3: GenNr einlesen") && keyword() &&
               cursor_.rest().find('[') != kNone;
    }

private:
    bool number(const char* seeking, const char* reading) {
        logDebug(logger_, seeking);
        cursor_.skipWhite();
        if (!isDigit(cursor_.peek())) return false;
        logDebug(logger_, reading);
        cursor_.skip(kIsDigit);
        return isWhite(cursor_.peek());
    }

    bool keyword() {
        logDebug(logger_, "State 4: suche nach 'obj'");
        cursor_.skipWhite();
        logDebug(logger_, "State 5:  'obj' einlesen");
        if (!cursor_.take("obj") || isLetter(cursor_.peek())) return false;
        logDebug(logger_, isWhite(cursor_.peek()) ? "State 6:  'obj' gefunden, jetzt Typinfos"
                                                  : "State 6:  'obj:' gefunden, jetzt Typinfos");
        return true;
    }

    static bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

    Cursor cursor_;
    const ClassLogger& logger_;
};

}  // namespace

void CPdfObj::AddStream(char* data, int len) {
    const std::string_view old = content();
    const std::size_t end = old.find(kEndObj);
    if (end == kNone || len < 0 || (data == nullptr && len > 0)) return;
    const auto dataLength = static_cast<std::size_t>(len);
    // What is recorded counts the old text whole, so that it reaches to the new "endobj" when the old one was last.
    const std::size_t recorded = old.size() + dataLength + std::strlen("stream\n\nendstream\n");
    std::string built;
    built.reserve(recorded + 10);
    append(built, old.substr(0, end), "stream\n", std::string_view(data, dataLength), "\n", "endstream\n",
           "endobj\n\n");
    built.resize(recorded, '\0');
    setContent(built);
}

void CPdfObj::UpdateLengthTag() {
    const std::string_view old = content();
    const std::size_t stream = old.find("stream");
    const auto first = nextLength(old, 0);
    if (stream == kNone || !first || first->key > stream || !first->number) return;
    const std::size_t begin = dataBegin(old, stream + 6);
    const std::size_t end = old.find("endstream", stream + 6);
    if (end == kNone) return;
    const std::size_t length = end > begin ? end - begin - 1 : 0;

    // One pass over the dictionary: what has been written is not searched again.
    std::string built;
    std::size_t copied = 0;
    for (auto entry = first; entry && entry->key < stream; entry = nextLength(old, entry->key + 1)) {
        if (entry->number != first->number) continue;
        append(built, old.substr(copied, entry->value.begin - copied), length);
        copied = entry->value.end;
    }
    append(built, old.substr(copied));
    setContent(built);
}

bool FindEndObjinNext(char* buf, int len) {
    if (buf == nullptr || len <= 0) return false;
    const std::string_view text(buf, static_cast<std::size_t>(len));
    return text.find(kEndObj) != kNone || text.find("ENDOBJ") != kNone;
}

bool CPdfObj::FindEndObjinNext(char* buf, int len) { return ::FindEndObjinNext(buf, len); }

CPdfObj::ContentType CPdfObj::check_object_type(char* text, int len) {
    logDebug(loggers::object, "check_object_type");
    if (text == nullptr || len < 1) return eContentUnknown;
    Classifier classifier(std::string_view(text, static_cast<std::size_t>(len)), loggers::object);
    return classifier.isArray() ? eContentArray : eContentUnknown;
}

int CPdfObj::GetIdFromReference(char* ref) {
    int number = 0;
    int generation = 0;
    if (!takeTwoInts(viewOf(ref), number, generation)) return 0;
    objNum_ = number;
    genNum_ = generation;
    return 1;
}

int CPdfObj::GetIdFromReferenceArray(char* array, int index) {
    const std::string_view text = viewOf(array);
    std::size_t begin = text.find('[');
    if (begin == kNone) return 0;
    for (int i = 0;; ++i) {
        ++begin;
        const std::size_t end = text.find('R', begin);
        if (end == kNone || end + 1 >= text.size()) return 0;
        if (std::string_view("] \n\r").find(text[end + 1]) == kNone) return 0;
        if (i == index) {
            // The reference was reached, whether or not its numbers can be read.
            takeTwoInts(text.substr(begin, end - begin), objNum_, genNum_);
            return 1;
        }
        begin = end;
    }
}

int CPdfObj::GetNumberOfIDs(char* text) {
    std::string_view list = viewOf(text);
    const std::size_t open = list.find('[');
    const std::size_t close = list.find(']');
    if (open != kNone && close != kNone && open < close) list = list.substr(open, close - open);
    int count = 0;
    for (const char c : list) count += c == 'R' ? 1 : 0;
    return count;
}

int CPdfObj::GetArrayContent(char* out, int index) {
    const std::string_view text = content();
    const std::size_t open = text.find('[');
    const std::size_t close = open == kNone ? kNone : text.find(']', open);
    if (index > 0 || close == kNone || out == nullptr) return -1;
    const std::string_view array = text.substr(open, close + 1 - open);
    std::memcpy(out, array.data(), array.size());
    out[array.size()] = '\0';
    return 0;
}
