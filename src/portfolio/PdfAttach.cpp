// CPdfAttach: the checks, the new objects and the update.
#include "varnpdf/PdfAttach.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include "portfolio/EmbeddedFile.h"
#include "portfolio/NameTreeUpdate.h"
#include "portfolio/Streams.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "support/Text.h"
#include "syntax/CharClass.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"
#include "writer/SectionTexts.h"

using namespace varnpdf;

namespace {

constexpr std::size_t kPath = 257;  // with its terminator
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

/// One file on its way into one document.
class Attachment {
public:
    Attachment(const char* document, const char* file, const ClassLogger& logger)
        : document_(document), file_(file), name_(justFilename(file_).substr(0, kName)), logger_(logger) {}

    int run();

private:
    int pack();
    int number(CPdf& pdf);
    [[nodiscard]] std::string streamHead() const;
    [[nodiscard]] std::string fileSpec() const;
    [[nodiscard]] std::string key() const;
    int save(CPdf& pdf, const NameTreeUpdate& tree);

    const char* document_;
    std::string_view file_;
    std::string_view name_;
    const ClassLogger& logger_;
    std::string type_;
    PackedFile packed_;
    int stream_ = 0;  // the file specification has the number behind it
    int next_ = 0;
};

int Attachment::run() {
    if (const int code = pack(); code != VARNPDF_OK) return code;
    CPdf pdf;
    if (const int code = pdf.Open(document_, "rb"); code != VARNPDF_OK) return code;
    if (pdf.PdfIsEncrypted() == 1) return VARNPDF_PDF_ENCRYPTED;
    CPdfObj* const catalogue = referenced(pdf, pdf.GetLastTrailer()->root());
    if (catalogue == nullptr) return VARNPDF_ROOT_OBJECT_MISSING;
    if (const int code = number(pdf); code != VARNPDF_OK) return code;
    NameTreeUpdate tree(pdf, key(), stream_ + 1, next_);
    if (!tree.run(*catalogue)) {
        logError(logger_, "/EmbeddedFiles kann nicht erweitert werden");
        return VARNPDF_NAME_TREE_UNUSABLE;
    }
    return save(pdf, tree);
}

// A file of no known type is not worth packing; a file that is missing or empty is told first.
int Attachment::pack() {
    if (const int code = codeOf(examineFile(file_.data()), 0); code != VARNPDF_OK) return code;
    type_ = mimeName(name_);
    if (type_.empty()) return VARNPDF_MIME_TYPE_UNKNOWN;
    int zlibCode = 0;
    const PackResult result = packFile(file_.data(), packed_, &zlibCode);
    logDebug(logger_, "Datei gepackt: ", packed_.length, " -> ", packed_.data.size(), " bytes");
    return codeOf(result, zlibCode);
}

// From /Size on; a file whose highest number is not below it keeps that number.
int Attachment::number(CPdf& pdf) {
    constexpr int kObjects = 4;
    const int highest = pdf.get_max_obj_num_from_map();
    if (highest > std::numeric_limits<int>::max() - kObjects) return VARNPDF_NAME_TREE_UNUSABLE;
    stream_ = std::max(pdf.GetLastTrailer()->GetSize(), highest + 1);
    next_ = stream_ + 2;
    return VARNPDF_OK;
}

std::string Attachment::streamHead() const {
    std::string out;
    append(out, stream_, " 0 obj\r\n<<\r\n");
    append(out, "/Subtype /", type_, "\r\n");
    append(out, "/Length ", packed_.data.size(), "\r\n/Filter /FlateDecode\r\n");
    append(out, "/DL ", packed_.length, "\r\n/Params\r\n<<\r\n");
    append(out, "/CreationDate (", fileDate(packed_.changed), ")\r\n");
    append(out, "/ModDate (", fileDate(packed_.modified), ")\r\n");
    append(out, "/Size ", packed_.length, "\r\n>>\r\n>>\r\nstream\r\n");
    return out;
}

std::string Attachment::fileSpec() const {
    std::string out;
    append(out, stream_ + 1, " 0 obj\r\n<<\r\n");
    append(out, "/F ", literalString(textString(name_)), "\r\n");
    append(out, "/EF <</F ", stream_, " 0 R>>\r\n");
    append(out, "/Desc ()\r\n/Type /Filespec\r\n>>\r\nendobj\r\n");
    return out;
}

// Units of 16 bits behind a mark that is no byte order mark: hosts and older files know the keys by it.
std::string Attachment::key() const {
    const auto characters = fromUtf8(name_);
    const bool isLatin1 = characters && std::ranges::all_of(*characters, [](char32_t c) { return c < 0x100; });
    std::string key = "\xef\xbf";
    for (const char c : isLatin1 ? latin1FromUtf8(name_).text : std::string(name_)) {
        key.push_back('\0');
        key.push_back(c);
    }
    return key;
}

// The update is old bytes, head, packed file, tail: the two large pieces are written from where they are.
int Attachment::save(CPdf& pdf, const NameTreeUpdate& tree) {
    const std::string_view old(reinterpret_cast<const char*>(pdf.GetContent()), pdf.GetContentLen());
    std::string head = old.empty() || isEol(old.back()) ? "" : "\r\n";
    const std::size_t streamAt = old.size() + head.size();
    head += streamHead();
    const std::size_t tailAt = old.size() + head.size() + packed_.data.size();

    CPdfXRefContainer xrefs;
    std::string tail = "\r\nendstream\rendobj\r";
    addObjectEntry(xrefs, stream_, 0, streamAt);
    addObjectEntry(xrefs, stream_ + 1, 0, tailAt + tail.size());
    append(tail, fileSpec());
    for (const auto& [number, content] : tree.added()) {
        addObjectEntry(xrefs, number, 0, tailAt + tail.size());
        append(tail, content);
    }
    for (const auto& [number, content] : tree.changed()) {
        const int generation = std::max(pdf.get_pdf_obj_from_map(number)->GetGenNumber(), 0);
        addObjectEntry(xrefs, number, generation, tailAt + tail.size());
        append(tail, objectText(number, generation, content));
    }
    xrefs.SortXRefList();
    const std::size_t section = tailAt + tail.size();
    if (section > limits::kDocumentBytes) return VARNPDF_PDF_MAXSIZE;
    CPdfTrailer& trailer = *pdf.GetUpdateTrailer();
    trailer.SetSize(std::max(trailer.GetSize(), next_));
    pdf.ResetByteStream(static_cast<unsigned>(section));
    pdf.WriteTrailer(&xrefs, &trailer, true, true);

    StagedFile file(document_);
    if (!file.isOpen()) return VARNPDF_SAVE_FAILED;
    const std::string_view close(pdf.GetByteStream(), static_cast<std::size_t>(pdf.GetByteStreamLen()));
    for (const std::string_view piece :
         {old, std::string_view(head), packed_.data.view(), std::string_view(tail), close}) {
        file.write(piece);
    }
    return file.commit() ? VARNPDF_OK : VARNPDF_SAVE_FAILED;
}

}  // namespace

CPdfAttach::CPdfAttach() = default;
CPdfAttach::~CPdfAttach() = default;

int CPdfAttach::AttachFileToPDF(unsigned char* pdfPath, unsigned char* filePath, int /*reserved*/) {
    logDebug(loggers::attach, "### AttachFileToPDF START");
    if (pdfPath == nullptr || filePath == nullptr) return VARNPDF_PATH_MISSING;
    const auto* const document = reinterpret_cast<const char*>(pdfPath);
    const auto* const file = reinterpret_cast<const char*>(filePath);
    if (strnlen(document, kPath) == kPath || strnlen(file, kPath) == kPath) return VARNPDF_FILE_NAME_TOO_LONG;
    int code = VARNPDF_OK;
    try {
        code = Attachment(document, file, loggers::attach).run();
    } catch (...) {
        code = VARNPDF_PDF_MEMORY_ALLOCATION;
    }
    if (code == VARNPDF_OK) {
        logDebug(loggers::attach, "### AttachFileToPDF ENDE");
    } else {
        logError(loggers::attach, "### AttachFileToPDF ABBRUCH: ", code);
    }
    return code;
}
