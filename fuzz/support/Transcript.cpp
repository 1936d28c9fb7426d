// The reading calls of a document and the properties of their results.
#include "fuzz/support/Transcript.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <string_view>
#include <vector>

#include "fuzz/support/Check.h"
#include "fuzz/support/Readers.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/result.h"

namespace varnpdf::fuzz {
namespace {

constexpr int kTags = 13;
constexpr int kContentsTag = 8;
constexpr int kTried = 110;  // more than the register of signatures holds
constexpr int kPages = 2000;
constexpr std::size_t kReadTexts = 48;
constexpr std::size_t kReadBytes = 4096;

class Notes {
public:
    template <typename Value>
    Notes& operator<<(const Value& value) {
        if constexpr (std::is_arithmetic_v<Value>) {
            text_ += std::to_string(value);
        } else {
            text_ += value;
        }
        text_ += ' ';
        return *this;
    }
    /// Long values are noted by size and hash.
    Notes& brief(std::string_view value) { return *this << value.size() << std::hash<std::string_view>{}(value); }
    std::string take() { return std::move(text_); }

private:
    std::string text_;
};

bool isOneOf(int code, std::initializer_list<int> codes) { return std::ranges::find(codes, code) != codes.end(); }

std::string_view viewOf(const CPdfObj* obj) { return obj == nullptr ? std::string_view{} : obj->content(); }

CPdfObj* referenced(CPdf& pdf, const char* reference) {
    int number = -1;
    int generation = 0;
    Terminated text(reference);
    return CPdfHelper::IsReference2(text.data(), &number, &generation) ? pdf.get_pdf_obj_from_map(number) : nullptr;
}

void noteTrailer(Notes& notes, CPdfTrailer* trailer) {
    if (trailer == nullptr) {
        notes << "none";
        return;
    }
    notes << trailer->GetXRef() << trailer->GetSize() << trailer->GetPrev() << trailer->GetIsCrossRefStream()
          << trailer->GetRoot() << trailer->GetInfo();
    notes.brief(trailer->GetId());
    notes << trailer->Getm_IndexFieldInfos(1, 0) << trailer->Getm_IndexFieldInfos(2, 0);
}

/// Size query and fetch agree, whatever the call. Not below 0 and not above the bytes it can come from.
template <typename Call>
int noteSized(Notes& notes, std::size_t most, std::size_t roomPerByte, std::size_t more,
              std::initializer_list<int> codes, Call&& call) {
    unsigned long asked = 0;
    const int code = call(nullptr, &asked);
    check(isOneOf(code, codes), "the size query returns a documented code");
    notes << code;
    if (code != VARNPDF_OK) return code;
    check(asked <= most, "a value is not longer than the bytes it is taken from");
    const Room room(asked * roomPerByte + more);
    unsigned long fetched = asked;
    const int second = call(room.bytes(), &fetched);
    check(isOneOf(second, codes), "the fetch returns a documented code");
    if (second == VARNPDF_OK) {
        check(fetched == asked, "size query and fetch agree");
        notes.brief({room.data(), asked});
    }
    notes << second;
    return second;
}

void noteFields(CPdf& pdf, Notes& notes, int index, bool exists) {
    for (int tag = 1; tag <= kTags; ++tag) {
        int asked = -1;
        const int code = pdf.GetSignatureField(index, tag, nullptr, &asked);
        check(exists || code == VARNPDF_NO_SIGNATURE_VALUE, "an index without signature is refused");
        check(isOneOf(code, {VARNPDF_OK, VARNPDF_NO_SIGNATURE_VALUE}), "GetSignatureField returns a documented code");
        check(asked >= 0, "a length is not negative");
        const Room room(static_cast<std::size_t>(asked) + 1);
        int fetched = -1;
        check(pdf.GetSignatureField(index, tag, room.data(), &fetched) == code,
              "the code does not depend on the buffer");
        check(fetched == asked, "the length does not depend on the buffer");
        check(room.data()[asked] == '\0', "a value is terminated");
        notes.brief({room.data(), static_cast<std::size_t>(asked)});
        if (tag == kContentsTag && asked > 0) {
            check(room.data()[0] != '<' && room.data()[asked - 1] != '>', "/Contents comes without its brackets");
        }
    }
}

void noteSignature(CPdf& pdf, Notes& notes, int index, bool exists) {
    const std::size_t size = pdf.GetContentLen();
    noteFields(pdf, notes, index, exists);
    noteSized(notes, 2 * size, 1, 0, {0, -1, -22, -113},
              [&](unsigned char* out, unsigned long* length) { return pdf.GetSignatureBlob(index, out, length); });
    noteSized(notes, size / 2, 1, 0, {0, -1, -22, -114, -115},
              [&](unsigned char* out, unsigned long* length) { return pdf.GetSignaturePKCS7(index, out, length); });
    noteSized(notes, size / 2, 1, 0, {0, -1, -22, -117},
              [&](unsigned char* out, unsigned long* length) { return pdf.GetSignaturePKCS1(index, out, length); });
    noteSized(notes, size / 2, 2, 0, {0, -1, -22, -117}, [&](unsigned char* out, unsigned long* length) {
        auto narrow = static_cast<unsigned int>(*length);
        const int code = pdf.GetSignPKCS1(index, out, &narrow);
        *length = narrow;
        return code;
    });
    for (const int certificate : {-1, 0, 1, 12}) {
        // A certificate may stand in an object stream, which unpacks to more than the document.
        constexpr std::size_t kMost = std::size_t{1} << 30U;
        noteSized(notes, kMost, 2, 2, {0, -118, -1008}, [&](unsigned char* out, unsigned long* length) {
            unsigned int narrow = 0;
            const int code = pdf.GetSignPKCS1Cert(index, certificate, out, narrow);
            *length = narrow;
            return code;
        });
        noteSized(notes, kMost, 1, 0, {0, -117, -118, -1008}, [&](unsigned char* out, unsigned long* length) {
            return pdf.GetSignaturePKCS1Cert(index, certificate, out, length);
        });
    }
    check(pdf.GetPdfObjBySigIndex(-1) == nullptr, "a negative index has no object");
    notes.brief(viewOf(pdf.GetPdfObjBySigIndex(index)));
}

void noteSignatures(CPdf& pdf, Notes& notes) {
    const int count = pdf.PdfGetNumSignatures();
    check(count >= 0 && count == pdf.PdfGetNumSignatures(), "counting again gives the same number");
    notes << "signatures" << count;
    std::vector<std::string> names;
    pdf.create_vectorlist_of_signatures(names);
    for (const std::string& name : names) notes.brief(name);
    for (int i = -1; i <= std::min(count, 3); ++i) noteSignature(pdf, notes, i, i >= 0 && i < count);
    if (count > 3) noteSignature(pdf, notes, std::min(count, kTried) - 1, true);
    check(isOneOf(pdf.get_lockstate(), {0, 1}), "the lock state is 0 or 1");
    notes << "locked" << pdf.get_lockstate();
    pdf.check_lockstate();
    notes << pdf.get_lockstate();
}

void notePages(CPdf& pdf, Notes& notes) {
    CPdfObj* const catalogue = referenced(pdf, pdf.GetLastTrailer()->GetRoot());
    int at = 0;
    int end = 0;
    const Room value(catalogue == nullptr ? 1 : viewOf(catalogue).size() + 1);
    CPdfObj* root = catalogue;
    if (catalogue != nullptr && pdf.ReadDictionaryEntry(catalogue, "/Pages", value.data(), &at, &end) == 1) {
        root = referenced(pdf, value.data());
    }
    int box[4] = {};
    int rotation = 0;
    int count = 0;
    for (; count < kPages; ++count) {
        CPdfObj* const page = pdf.GetPdfPageObject(root, count, box, &rotation);
        if (page == nullptr) break;
        check(box[0] <= box[2] && box[1] <= box[3], "a box has its lower left corner first");
        int number = page->GetObjNum();
        int generation = 0;
        notes << number << rotation << box[0] << box[3];
        if (count < 8) notes << pdf.GetPageNoFromObjRef(&number, &generation);
    }
    check(pdf.GetPdfPageObject(root, -1, nullptr, nullptr) == nullptr, "there is no page below 0");
    notes << "pages" << count;
}

void noteLookups(CPdf& pdf, Notes& notes, CPdfObj& obj) {
    const std::string_view text = obj.content();
    for (const char* const key : {"/Type", "/Kids", "/Length", "Root", "/V"}) {
        const Room value(text.size() + 1);
        int at = -1;
        int end = -1;
        const int found = pdf.ReadDictionaryEntry(&obj, key, value.data(), &at, &end);
        check(found == 0 || (at >= 0 && at < end && static_cast<std::size_t>(end) <= text.size()),
              "an entry lies inside the object");
        check(found == 1 || (at == 0 && end == 0), "no entry, no positions");
        notes << at << end;
    }
    const Room nested(text.size() + 1);
    int at = 0;
    int end = 0;
    notes << pdf.ReadDictionaryEntryWithInDict(&obj, "/TransformMethod", nested.data(), &at, &end) << at << end;
}

void noteObjects(CPdf& pdf, Notes& notes) {
    std::size_t read = 0;
    int last = -1;
    for (CPdfObj* obj = pdf.search_map_by_value(0); obj != nullptr; obj = pdf.search_map_by_value(last + 1)) {
        check(obj->GetObjNum() > last, "objects come in ascending order");
        last = obj->GetObjNum();
        check(pdf.get_pdf_obj_from_map(last) == obj, "an object stands under its number");
        const std::string_view text = obj->content();
        notes << last << obj->GetGenNumber() << obj->IsInUse() << obj->GetIsCompressed();
        notes.brief(text);
        if (!text.empty() && text.size() <= kReadBytes && read++ < kReadTexts) {
            noteLookups(pdf, notes, *obj);
            readEverything(text);
        }
        if (last == std::numeric_limits<int>::max()) break;
    }
    check(last < 0 || pdf.get_max_obj_num_from_map() == last, "the last object has the largest number");
}

void noteSearches(CPdf& pdf, Notes& notes) {
    const auto size = static_cast<int>(pdf.GetContentLen());
    for (const char* const keyword : {"startxref", "trailer", "endobj", "obj", ""}) {
        const int last = pdf.GotoLastId(keyword);
        const int next = pdf.GotoNextId(keyword, size / 2);
        check(last >= -1 && last < size, "the last keyword lies in the document");
        check(next == -1 || (next > size / 2 && next < size), "the next keyword lies behind the start");
        notes << last << next;
    }
    const Room line(static_cast<std::size_t>(size) + 1);
    const int end = pdf.GetLine(line.data(), size / 2);
    const Room shortLine(17);
    check(end >= size / 2 && end <= size, "a line lies in the document");
    notes << end << pdf.GetLine(shortLine.data(), size / 2, 16) << pdf.GetLineEndType() << pdf.the_line_end();
}

}  // namespace

std::string transcript(CPdf& pdf, int code) {
    check(isOneOf(code, {0, -1001, -1013, -1014, -1018, -1021, -1029, -1060, -1061}), "Open returns a documented code");
    check(*varnpdf_message(code) != '\0', "every code has a sentence");
    Notes notes;
    notes << code << pdf.GetContentLen() << pdf.GetPDFVersion() << pdf.get_IsLinearized() << pdf.PdfIsEncrypted();
    noteTrailer(notes, pdf.GetLastTrailer());
    for (int i = 0; i < std::min(pdf.GetTrailerCount(), 50); ++i) noteTrailer(notes, pdf.GetTrailer(i));
    check(pdf.GetTrailer(pdf.GetTrailerCount()) == nullptr, "there is no section behind the last");
    pdf.DebugShowObjectInfo();
    pdf.DebugShowTrailerInfo();
    if (code != VARNPDF_OK) return notes.take();
    check(pdf.PdfIsEncrypted() == 0, "an encrypted document does not open");
    noteSearches(pdf, notes);
    noteSignatures(pdf, notes);
    notePages(pdf, notes);
    noteObjects(pdf, notes);
    return notes.take();
}

}  // namespace varnpdf::fuzz
