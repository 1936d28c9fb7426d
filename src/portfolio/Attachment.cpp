// One file on its way into one document.
#include "portfolio/Attachment.h"

#include <algorithm>

#include "model/Lookup.h"
#include "portfolio/NameTreeUpdate.h"
#include "support/Loggers.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"
#include "varnpdf/MimeTypes.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr std::size_t kName = 255;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) { return lower(x) == lower(y); });
}

// The type as one name: a slash would begin the next (ISO 32000-2 7.3.5). Empty for an unknown extension.
std::string mimeName(std::string_view fileName) {
    const std::size_t dot = fileName.rfind('.');
    if (dot == std::string_view::npos) return {};
    const std::string_view extension = fileName.substr(dot, kName);
    std::string name;
    for (int i = 0; i < iMaxMIMETypes && name.empty(); ++i) {
        if (equalIgnoringCase(FileExtensions[i], extension)) name = MIME_Types[i];
    }
    for (std::size_t at = 0; (at = name.find('/', at)) != std::string::npos; at += 3) name.replace(at, 1, "#2F");
    return name;
}

int codeOf(PackResult result, int zlibCode) {
    switch (result) {
        case PackResult::Good:
            return VARNPDF_OK;
        case PackResult::Empty:
            return VARNPDF_ATTACHMENT_EMPTY;
        case PackResult::TooLarge:
            return VARNPDF_PDF_MAXSIZE;
        case PackResult::ZlibFailed:
            return zlibCode;
        default:
            return VARNPDF_ATTACHMENT_UNREADABLE;
    }
}

}  // namespace

// A file of no known type is not worth packing; a file that is missing or empty is told first.
int readAttachedFile(const char* path, AttachedFile& file) {
    if (const int code = codeOf(examineFile(path), 0); code != VARNPDF_OK) return code;
    file.name = justFilename(path).substr(0, kName);
    file.type = mimeName(file.name);
    if (file.type.empty()) return VARNPDF_MIME_TYPE_UNKNOWN;
    int zlibCode = 0;
    const PackResult result = packFile(path, file.packed, &zlibCode);
    logDebug(loggers::attach, "Datei gepackt: ", file.packed.length, " -> ", file.packed.data.size(), " bytes");
    return codeOf(result, zlibCode);
}

int Attachment::run() {
    const CPdfObj* const catalogue = objectOf(document_, document_.newest->root());
    if (catalogue == nullptr) return VARNPDF_ROOT_OBJECT_MISSING;
    constexpr int kMostObjects = 4;
    if (!update_.canReserve(kMostObjects)) return VARNPDF_NAME_TREE_UNUSABLE;
    const int stream = update_.reserve();
    const int fileSpec = update_.reserve();
    writeStream(stream);
    writeFileSpec(fileSpec, stream);
    if (!NameTreeUpdate(document_, update_, key(), fileSpec).run(*catalogue)) {
        logError(loggers::attach, "/EmbeddedFiles kann nicht erweitert werden");
        return VARNPDF_NAME_TREE_UNUSABLE;
    }
    update_.dropUnchanged();
    update_.writeWaiting();
    return update_.close({.section = Update::Section::Table, .joinRuns = false});
}

void Attachment::writeStream(int number) {
    const PackedFile& packed = file_.packed;
    update_.begin(number, 0);
    std::string& out = update_.tail().text;
    append(out, number, " 0 obj\r\n<<\r\n");
    append(out, "/Subtype /", file_.type, "\r\n");
    append(out, "/Length ", packed.data.size(), "\r\n/Filter /FlateDecode\r\n");
    append(out, "/DL ", packed.length, "\r\n/Params\r\n<<\r\n");
    append(out, "/CreationDate (", fileDate(packed.changed), ")\r\n");
    append(out, "/ModDate (", fileDate(packed.modified), ")\r\n");
    append(out, "/Size ", packed.length, "\r\n>>\r\n>>\r\nstream\r\n");
    update_.appendForeign(packed.data.view());
    append(update_.tail().text, "\r\nendstream\rendobj\r");
}

void Attachment::writeFileSpec(int number, int stream) {
    std::string out;
    append(out, number, " 0 obj\r\n<<\r\n");
    append(out, "/F ", literalString(textString(file_.name)), "\r\n");
    append(out, "/EF <</F ", stream, " 0 R>>\r\n");
    append(out, "/Desc ()\r\n/Type /Filespec\r\n>>\r\nendobj\r\n");
    update_.write(number, 0, out);
}

// Units of 16 bits behind a mark that is no byte order mark: hosts and older files know the keys by it.
std::string Attachment::key() const {
    const auto characters = fromUtf8(file_.name);
    const bool isLatin1 = characters && std::ranges::all_of(*characters, [](char32_t c) { return c < 0x100; });
    std::string key = "\xef\xbf";
    for (const char c : isLatin1 ? latin1FromUtf8(file_.name).text : std::string(file_.name)) {
        key.push_back('\0');
        key.push_back(c);
    }
    return key;
}

}  // namespace varnpdf
