// Opening a document: its bytes, the early checks, the order in which it is read.
#include "reader/Open.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include "model/DictionaryEntry.h"
#include "reader/Objects.h"
#include "reader/Search.h"
#include "reader/SectionText.h"
#include "reader/Trailers.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/ResultText.h"
#include "syntax/Reference.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr std::string_view kHeader = "%PDF-";

// A file that is not there is left to fopen.
bool isOtherThanFile(const char* path) {
    struct stat info {};
    return stat(path, &info) == 0 && !S_ISREG(info.st_mode);
}

long fileLength(std::FILE* file) {
    if (std::fseek(file, 0, SEEK_END) != 0) return -1;
    const long length = std::ftell(file);
    return std::fseek(file, 0, SEEK_SET) == 0 ? length : -1;
}

// Fetching a large buffer from the system page by page takes as long as reading the file into it. Blocks of this size are
// mappings of their own, so that nothing else of the heap is concerned; where the system declines, nothing is lost.
void askForLargePages(char* block, std::size_t length) {
    constexpr std::size_t kLarge = std::size_t{32} << 20U;
    constexpr std::size_t kPage = 4096;
    if (length < kLarge) return;
    const std::size_t behind = reinterpret_cast<std::uintptr_t>(block) % kPage;
    const std::size_t skip = behind == 0 ? 0 : kPage - behind;
    static_cast<void>(madvise(block + skip, length - skip, MADV_HUGEPAGE));
}

// Room for a document of this length and the NUL behind it. Room that nobody touches costs nothing, and an update of
// usual size then grows the buffer without moving it.
std::shared_ptr<Bytes> roomFor(std::size_t length) {
    constexpr std::size_t kUpdate = 65'536;
    auto bytes = std::make_shared<Bytes>();
    bytes->reserve(length + 1 + kUpdate);
    bytes->setSize(length + 1);
    return bytes;
}

int checkNewestTrailer(const Document& document) {
    const int size = document.newest ? document.newest->GetSize() : 0;
    if (size < 1) {
        logError(loggers::pdf, logtext::READ_TRAILER_SIZE_MISSING);
        return VARNPDF_READ_TRAILER_SIZE_MISSING;
    }
    if (size > limits::kDeclaredSize) {
        logError(loggers::pdf, logtext::READ_TRAILER_SIZE_TOO_LARGE);
        return VARNPDF_READ_TRAILER_SIZE_TOO_LARGE;
    }
    if (document.encrypted) {
        logError(loggers::pdf, logtext::PDF_ENCRYPTED);
        return VARNPDF_PDF_ENCRYPTED;
    }
    return VARNPDF_OK;
}

// The three characters behind "%PDF-", as much of them as is a number.
float versionOf(std::string_view digits) {
    float version = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), version, std::chars_format::fixed);
    return version;
}

}  // namespace

FileHandle openFile(const char* path, const char* mode) {
    logDebug(loggers::pdf, "######################");
    logDebug(loggers::pdf, "### START PDF OPEN ###");
    logDebug(loggers::pdf, "Dateiname: ", path);
    return FileHandle(isOtherThanFile(path) ? nullptr : std::fopen(path, mode));
}

int openDocument(Document& document, const char* path) {
    const FileHandle file = openFile(path, "rb");
    if (const int code = readBytes(document, file.get()); code != VARNPDF_OK) return code;
    if (const int code = readDocument(document); code != VARNPDF_OK) return code;
    return findRoot(document);
}

int readBytes(Document& document, std::FILE* file) {
    const long length = file == nullptr ? 0 : fileLength(file);
    if (file != nullptr) logDebug(loggers::pdf, "Länge des Contents: ", length, " bytes");
    if (length <= 0) {
        logError(loggers::pdf, logtext::CAN_NOT_LOAD_PDF_FILE);
        return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    }
    if (document.bytes) return VARNPDF_OK;
    const auto size = static_cast<std::size_t>(length);
    logDebug(loggers::pdf, "Size Contenlen: ", length);
    if (size > limits::kDocumentBytes) {
        logError(loggers::pdf, logtext::PDF_MAXSIZE);
        return VARNPDF_PDF_MAXSIZE;
    }
    try {
        const auto bytes = roomFor(size);
        askForLargePages(bytes->data(), size);
        // A file that has become shorter meanwhile reads as zeros at its end.
        const std::size_t got = std::fread(bytes->data(), 1, size, file);
        std::memset(bytes->data() + got, 0, size + 1 - got);
        document.bytes = bytes;
        document.length = size;
        return VARNPDF_OK;
    } catch (const std::bad_alloc&) {
        logError(loggers::pdf, logtext::PDF_MEMORY_ALLOCATION);
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
}

void takeBytes(Document& document, std::string_view bytes) {
    const auto copy = roomFor(bytes.size());
    std::memcpy(copy->data(), bytes.data(), bytes.size());
    copy->data()[bytes.size()] = 0;
    document.bytes = copy;
    document.length = bytes.size();
}

int readDocument(Document& document) {
    logDebug(loggers::pdf, "PDF-Check");
    if (!isPdf(document)) {
        logError(loggers::pdf, logtext::NO_PDF_FILE);
        return VARNPDF_NO_PDF_FILE;
    }
    logDebug(loggers::pdf, "Ist ein PDF");
    document.lineEnd = lineEndOf(document.view());
    logDebug(loggers::pdf, "Line-End: ", static_cast<int>(document.lineEnd));
    checkLinearization(document);
    logDebug(loggers::pdf, document.linearized ? "Linearisiert." : "Nicht linearisiert.");
    readNewestTrailer(document);
    if (const int code = checkNewestTrailer(document); code != VARNPDF_OK) return code;
    if (!readObjects(document)) {
        logError(loggers::pdf, logtext::READ_TRAILER_OBJECTS);
        return VARNPDF_READ_TRAILER_OBJECTS;
    }
    return VARNPDF_OK;
}

int findRoot(const Document& document) {
    const auto root = lookUp(document.newest ? keyText(*document.newest) : std::string_view{}, "/Root");
    if (!root) return VARNPDF_NO_ROOT;
    const CPdfObj* const catalogue = referencedObject(document, *root);
    return catalogue == nullptr || catalogue->content().empty() ? VARNPDF_ROOT_OBJECT_MISSING : VARNPDF_OK;
}

bool isPdf(Document& document) {
    const std::string_view text = document.view();
    if (!text.starts_with(kHeader)) return false;
    document.version = versionOf(text.substr(kHeader.size(), 3));
    const std::size_t keyword = lastKeyword(document, "startxref");
    if (keyword == KeywordSearch::kNone) return false;
    const auto number = Cursor(text, keyword + 9).takeInt();
    if (!number) return false;
    auto at = static_cast<std::size_t>(static_cast<unsigned int>(*number));
    if (at >= text.size()) {
        at = text.find("xref", 1);
        if (at == std::string_view::npos || at + 4 >= text.size()) return false;
    }
    constexpr std::size_t kBlanks = 11;
    const std::size_t begin = at;
    while (at < text.size() && at - begin < kBlanks && isWhite(text[at])) ++at;
    if (text.substr(at).starts_with("xref")) return nextKeyword(document, "trailer", at) != KeywordSearch::kNone;
    return scanReference(text.substr(at)).has_value();
}

LineEnd lineEndOf(std::string_view head) noexcept {
    constexpr std::size_t kWindow = 99;
    if (!head.starts_with(kHeader)) return LineEnd::Unknown;
    head = head.substr(0, kWindow);
    head = head.substr(0, head.find('\0'));
    if (head.find("\r\n") != std::string_view::npos) return LineEnd::CrLf;
    if (head.find('\r') != std::string_view::npos) return LineEnd::Cr;
    return head.find('\n') != std::string_view::npos ? LineEnd::Lf : LineEnd::Unknown;
}

std::string_view lineEndText(LineEnd type) noexcept {
    switch (type) {
        case LineEnd::CrLf:
            return "\r\n";
        case LineEnd::Lf:
            return "\n";
        case LineEnd::Cr:
            return "\r";
        default:
            return "";
    }
}

}  // namespace varnpdf
