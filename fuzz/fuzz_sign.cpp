// Preparing a signature in any document, inserting a value, and what a reader finds then.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "fuzz/support/Check.h"
#include "fuzz/support/MemoryFile.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfInfo.h"
#include "varnpdf/PdfSign.h"
#include "varnpdf/result.h"

using varnpdf::fuzz::check;
using varnpdf::fuzz::MemoryFile;

namespace {

constexpr std::string_view kValue("\x30\x06\x02\x01\x07\x04\x01\x2a", 8);
constexpr unsigned kRoom = 8;
constexpr int kRegister = 100;

std::string_view view(const unsigned char* bytes, std::size_t length) {
    return {reinterpret_cast<const char*>(bytes), length};
}

using Call = int (*)(char*, int, unsigned char*, unsigned long*);
using Own = int (CPdf::*)(int, unsigned char*, unsigned long*);

/// The value by one call on the file, which must be the open document's, with the same code.
std::string agreed(CPdf& pdf, const MemoryFile& file, int index, Own own, Call call) {
    std::string path = file.path();
    unsigned long ownSize = 0;
    unsigned long size = 0;
    const int code = (pdf.*own)(index, nullptr, &ownSize);
    const int called = call(path.data(), index, nullptr, &size);
    check(called == code, "one call and the open document give the same code");
    if (code != VARNPDF_OK) return "";
    check(size == ownSize, "they give the same size");
    std::string bytes(size, '\0');
    std::string ownBytes(size, '\0');
    const int fetched = (pdf.*own)(index, reinterpret_cast<unsigned char*>(ownBytes.data()), &ownSize);
    check(call(path.data(), index, reinterpret_cast<unsigned char*>(bytes.data()), &size) == fetched &&
              (fetched != VARNPDF_OK || bytes == ownBytes),
          "they give the same bytes");
    return fetched == VARNPDF_OK ? bytes : "";
}

/// What makes a file unreadable once anything stands behind it.
bool refusesUpdates(CPdf& pdf, std::string_view bytes) {
    // The table of a hybrid file frees what its companion stream holds, with a generation above 0. Such an entry of an
    // older section hides an object of the update as well.
    if (bytes.find("/XRefStm") != std::string_view::npos) return true;
    // An entry that points behind the end is passed over as long as there is nothing.
    const int most = pdf.get_max_obj_num_from_map();
    const CPdfObj* obj = pdf.search_map_by_value(0);
    for (; obj != nullptr; obj = obj->GetObjNum() < most ? pdf.search_map_by_value(obj->GetObjNum() + 1) : nullptr) {
        if (obj->GetFromPos() < 0 || static_cast<std::size_t>(obj->GetFromPos()) >= bytes.size()) return true;
    }
    return false;
}

/// The signature that the file got is there, among others or not.
void readBack(const MemoryFile& file, std::string_view signedBytes, int before) {
    CPdf pdf;
    check(pdf.Open(file.path(), "rb") == VARNPDF_OK, "the signed document opens");
    const int count = pdf.PdfGetNumSignatures();
    check(count == before + 1, "there is one signature more");
    check(CPdfInfo::GetNumSignature(std::string(file.path()).data()) == count, "one call counts the same");
    bool found = count > kRegister;
    for (int index = 0; !found && index < count; ++index) {
        if (agreed(pdf, file, index, &CPdf::GetSignaturePKCS7, &CPdfInfo::GetSignaturePKCS7) != kValue) continue;
        found = agreed(pdf, file, index, &CPdf::GetSignatureBlob, &CPdfInfo::GetSignatureBlob) == signedBytes;
    }
    check(found, "the inserted value signs the prepared bytes");
}

/// The choices of a host, drawn from the input.
int prepare(CPdfSign& sign, CPdf& pdf, std::size_t draw) {
    std::string reason = "why";
    std::string name = "who (else)";
    std::string date = "D:20260102030405+01'00'";
    FormfieldInfo_tag line{0, 0, 0, "by", "me"};
    const bool visible = (draw & 1U) == 0;
    const bool layers = (draw & 2U) != 0;
    const bool lock = (draw & 4U) != 0;
    const int page = static_cast<int>(draw >> 3U & 1U);
    return sign.DummySign(&pdf, page, 1, 5, 5, visible ? 4 : 0, visible ? 3 : 0, 0, reason.data(), reason.data(),
                          name.data(), date.data(), kRoom, false, layers ? 1 : 0, 0, nullptr, &line, layers ? 1 : 0,
                          lock ? 1 : 0, false);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile input;
    static const MemoryFile output;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    input.fill(bytes);
    std::string path = input.path();
    CPdf pdf;
    const int code = pdf.Open(path.c_str(), "rb");
    check(CPdfInfo::CheckEncryption(path.data()) == code, "one call gives the code of the opening");
    if (code != VARNPDF_OK) return 0;
    const int before = pdf.PdfGetNumSignatures();
    const bool isReadableAgain = !refusesUpdates(pdf, bytes);

    CPdfSign sign;
    if (prepare(sign, pdf, std::hash<std::string_view>{}(bytes)) != VARNPDF_OK) return 0;
    const std::string_view prepared = view(sign.GetPreparedDocument(), sign.GetPreparedLength());
    check(prepared.starts_with(bytes), "the old bytes are those of the document");
    check(sign.GetContentsOffset() > bytes.size() && sign.GetContentsOffset() < prepared.size(),
          "the value goes into the update");
    std::string value(kValue);
    std::string saved = output.path();
    check(sign.SaveSignature(saved.data(), reinterpret_cast<unsigned char*>(value.data()), kValue.size(), kRoom) == 0,
          "the signed document is saved");
    check(output.read().size() == prepared.size() + 2 * kRoom + 2, "the value fills its room");
    if (isReadableAgain) readBack(output, prepared, before);
    return 0;
}
