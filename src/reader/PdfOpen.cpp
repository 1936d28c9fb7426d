// CPdf: construction, opening a document and the early checks.
#include <sys/mman.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "reader/KeywordSearch.h"
#include "reader/PageTree.h"
#include "reader/SectionText.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Log.h"
#include "support/ResultText.h"
#include "syntax/Readers.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

using namespace varnpdf;

constinit ClassLogger CPdf::m_logger{"VarnPDF.CPdf"};

namespace {

constexpr std::string_view kHeader = "%PDF-";
constexpr std::size_t kLineEndWindow = 99;

enum LineEnd : int { kUnknown = -1, kCrLf = 0, kLf = 1, kCr = 2 };

// Nothing but a regular file has a length that can be trusted; a file that is not there is left to fopen.
bool isOtherThanFile(const char* filename) {
    struct stat info {};
    return stat(filename, &info) == 0 && !S_ISREG(info.st_mode);
}

long fileLength(std::FILE* file) {
    if (std::fseek(file, 0, SEEK_END) != 0) return -1;
    const long length = std::ftell(file);
    return std::fseek(file, 0, SEEK_SET) == 0 ? length : -1;
}

// Fetching a large buffer from the system page by page takes as long as reading the file into it. Blocks of this size are
// mappings of their own, so that nothing else of the heap is concerned; where the system declines, nothing is lost.
void askForLargePages(unsigned char* block, std::size_t length) {
    constexpr std::size_t kLarge = std::size_t{32} << 20U;
    constexpr std::size_t kPage = 4096;
    if (length < kLarge) return;
    const std::size_t behind = reinterpret_cast<std::uintptr_t>(block) % kPage;
    const std::size_t skip = behind == 0 ? 0 : kPage - behind;
    static_cast<void>(madvise(block + skip, length - skip, MADV_HUGEPAGE));
}

}  // namespace

void CPdf::FileCloser::operator()(std::FILE* file) const noexcept { std::fclose(file); }

void CPdf::FreeBytes::operator()(unsigned char* bytes) const noexcept { std::free(bytes); }

CPdf::CPdf()
    : updateTrailer_(std::make_unique<CPdfTrailer>()),
      lastTrailer_(std::make_unique<CPdfTrailer>()),
      objects_(std::make_unique<ObjectTable>()) {}

CPdf::~CPdf() = default;

std::string_view CPdf::view() const noexcept {
    return {reinterpret_cast<const char*>(content_.get()), content_ ? contentLen_ : 0};
}

int CPdf::Open(const char* filename, const char* mode) {
    try {
        if (filename == nullptr || mode == nullptr) return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
        return loadFile(filename, mode);
    } catch (...) {
        return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    }
}

int CPdf::Reopen(char* mode) {
    const std::string name = fileName_;
    return Open(name.c_str(), mode);
}

int CPdf::loadFile(const char* filename, const char* mode) {
    logDebug(m_logger, "######################");
    logDebug(m_logger, "### START PDF OPEN ###");
    logDebug(m_logger, "Dateiname: ", filename);
    fileName_ = filename;
    file_.reset(isOtherThanFile(filename) ? nullptr : std::fopen(filename, mode));
    const long length = file_ ? fileLength(file_.get()) : 0;
    if (file_) logDebug(m_logger, "Länge des Contents: ", length, " bytes");
    if (length <= 0) {
        logError(m_logger, logtext::CAN_NOT_LOAD_PDF_FILE);
        return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    }
    if (content_) return findRoot();

    const auto size = static_cast<std::size_t>(length);
    output_.setoldcontentsize(static_cast<unsigned int>(size));
    logDebug(m_logger, "Size Contenlen: ", length);
    if (size > limits::kDocumentBytes) {
        logError(m_logger, logtext::PDF_MAXSIZE);
        return VARNPDF_PDF_MAXSIZE;
    }
    if (!readContent(size)) {
        logError(m_logger, logtext::PDF_MEMORY_ALLOCATION);
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
    const int code = checkDocument();
    return code != VARNPDF_OK ? code : findRoot();
}

bool CPdf::readContent(std::size_t length) {
    // Room that nobody touches costs nothing, and an update of usual size then grows the buffer without moving it.
    constexpr std::size_t kUpdate = 65'536;
    content_.reset(static_cast<unsigned char*>(std::malloc(length + 1 + kUpdate)));
    if (!content_) return false;
    askForLargePages(content_.get(), length);
    contentLen_ = static_cast<unsigned int>(length);
    // A file that has become shorter meanwhile reads as zeros at its end.
    const std::size_t got = std::fread(content_.get(), 1, length, file_.get());
    std::memset(content_.get() + got, 0, length + 1 - got);
    return true;
}

int CPdf::checkDocument() {
    logDebug(m_logger, "PDF-Check");
    auto* const content = reinterpret_cast<char*>(content_.get());
    if (!IsPDF(content)) {
        logError(m_logger, logtext::NO_PDF_FILE);
        return VARNPDF_NO_PDF_FILE;
    }
    logDebug(m_logger, "Ist ein PDF");
    lineEndType_ = CheckLineEndType(content);
    logDebug(m_logger, "Line-End: ", lineEndType_);
    CheckLinearization();
    logDebug(m_logger, linearized_ ? "Linearisiert." : "Nicht linearisiert.");
    RetrieveLastPdfTrailer();
    if (const int code = checkNewestTrailer(); code != VARNPDF_OK) return code;
    if (!RetrieveObjects()) {
        logError(m_logger, logtext::READ_TRAILER_OBJECTS);
        return VARNPDF_READ_TRAILER_OBJECTS;
    }
    check_lockstate();
    return VARNPDF_OK;
}

int CPdf::checkNewestTrailer() {
    const int size = lastTrailer_ ? lastTrailer_->GetSize() : 0;
    if (size < 1) {
        logError(m_logger, logtext::READ_TRAILER_SIZE_MISSING);
        return VARNPDF_READ_TRAILER_SIZE_MISSING;
    }
    if (size > limits::kDeclaredSize) {
        logError(m_logger, logtext::READ_TRAILER_SIZE_TOO_LARGE);
        return VARNPDF_READ_TRAILER_SIZE_TOO_LARGE;
    }
    if (encrypted_ == 1) {
        logError(m_logger, logtext::PDF_ENCRYPTED);
        return VARNPDF_PDF_ENCRYPTED;
    }
    return VARNPDF_OK;
}

int CPdf::findRoot() {
    const std::string_view keys = lastTrailer_ ? keyText(*lastTrailer_) : std::string_view{};
    const auto root = findLaterEntry(keys, "/Root");
    if (!root) return VARNPDF_NO_ROOT;
    const CPdfObj* const catalogue = referencedObject(root->value.of(keys));
    return catalogue == nullptr || catalogue->content().empty() ? VARNPDF_ROOT_OBJECT_MISSING : VARNPDF_OK;
}

CPdfObj* CPdf::referencedObject(std::string_view value) {
    const auto reference = scanReference(value);
    return reference ? objects_->find(reference->number) : nullptr;
}

int CPdf::ParseContent(unsigned char* data, unsigned int len, bool /*release*/) {
    constexpr unsigned int kMost = std::numeric_limits<int>::max();  // offsets are int
    if (data == nullptr || len == 0 || len > kMost || content_) return -1;
    return guarded([&]() -> int {
        content_.reset(static_cast<unsigned char*>(std::malloc(std::size_t{len} + 1)));
        if (!content_) return VARNPDF_PDF_MEMORY_ALLOCATION;
        std::memcpy(content_.get(), data, len);
        content_[len] = 0;
        contentLen_ = len;
        output_.init(len);
        RetrieveLastPdfTrailer();
        RetrieveObjects();
        return VARNPDF_OK;
    });
}

bool CPdf::IsPDF(char* content) {
    const std::string_view text = view();
    if (content == nullptr || !content_ || std::strncmp(content, kHeader.data(), kHeader.size()) != 0) return false;
    version_ = 0;
    if (const auto number = readNumber(text.substr(kHeader.size(), 3), 3)) {
        version_ = number->isFloat ? number->real : static_cast<float>(number->integer);
    }
    const int keyword = GotoLastId("startxref");
    if (keyword < 0) return false;
    const auto number = Cursor(text, static_cast<std::size_t>(keyword) + 9).takeInt();
    if (!number) return false;
    auto at = static_cast<std::size_t>(static_cast<unsigned int>(*number));
    if (at >= text.size()) {
        at = text.find("xref", 1);
        if (at == std::string_view::npos || at + 4 >= text.size()) return false;
    }
    constexpr std::size_t kBlanks = 11;
    const std::size_t begin = at;
    while (at < text.size() && at - begin < kBlanks && isWhite(text[at])) ++at;
    if (text.substr(at).starts_with("xref")) return nextId("trailer", at) != KeywordSearch::kNone;
    return scanReference(text.substr(at)).has_value();
}

int CPdf::CheckLineEndType(char* content) {
    if (content == nullptr || std::strncmp(content, kHeader.data(), kHeader.size()) != 0) return kUnknown;
    const std::string_view head(content, strnlen(content, kLineEndWindow));
    if (head.find("\r\n") != std::string_view::npos) return kCrLf;
    if (head.find('\r') != std::string_view::npos) return kCr;
    return head.find('\n') != std::string_view::npos ? kLf : kUnknown;
}

std::string CPdf::the_line_end() const {
    switch (lineEndType_) {
        case kCrLf:
            return "\r\n";
        case kLf:
            return "\n";
        case kCr:
            return "\r";
        default:
            return "";
    }
}

void CPdf::Close() { file_.reset(); }

void CPdf::set_pdf_file_name(char* name) { fileName_ = name == nullptr ? "" : name; }
