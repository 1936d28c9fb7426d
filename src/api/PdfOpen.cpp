// CPdf: construction, opening, the early checks and searching the bytes.
#include <cstring>
#include <limits>

#include "api/PdfState.h"
#include "reader/Objects.h"
#include "reader/Open.h"
#include "reader/Search.h"
#include "reader/Trailers.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "support/ResultText.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr int kModeNext = 1;
constexpr int kModeLast = 2;

int offsetOrNone(std::size_t at) { return at == KeywordSearch::kNone ? -1 : static_cast<int>(at); }

}  // namespace

CPdf::CPdf() : state_(std::make_unique<PdfState>()) {}

CPdf::~CPdf() = default;

int CPdf::Open(const char* filename, const char* mode) {
    if (filename == nullptr || mode == nullptr) return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    const auto open = [&]() -> int {
        Document& document = state_->document;
        state_->fileName = filename;
        state_->file = openFile(filename, mode);
        const bool isHeld = document.bytes != nullptr;
        if (const int code = readBytes(document, state_->file.get()); code != VARNPDF_OK) return code;
        if (state_->incomplete) return VARNPDF_PDF_MEMORY_ALLOCATION;
        if (isHeld) return findRoot(document);
        state_->output.setoldcontentsize(static_cast<unsigned int>(document.length));
        state_->incomplete = true;
        const int code = readDocument(document);
        if (code == VARNPDF_OK) check_lockstate();
        state_->incomplete = false;
        return code == VARNPDF_OK ? findRoot(document) : code;
    };
    return guarded(open, VARNPDF_PDF_MEMORY_ALLOCATION, VARNPDF_CAN_NOT_LOAD_PDF_FILE);
}

int CPdf::Reopen(char* mode) {
    return guarded([&] { return Open(std::string(state_->fileName).c_str(), mode); }, VARNPDF_PDF_MEMORY_ALLOCATION,
                   VARNPDF_CAN_NOT_LOAD_PDF_FILE);
}

int CPdf::ParseContent(unsigned char* data, unsigned int len, bool /*release*/) {
    constexpr unsigned int kMost = std::numeric_limits<int>::max();  // offsets are int
    if (data == nullptr || len == 0 || len > kMost || state_->document.bytes) return -1;
    return guarded([&]() -> int {
        state_->output.init(len);
        takeBytes(state_->document, {reinterpret_cast<const char*>(data), len});
        state_->incomplete = true;
        readNewestTrailer(state_->document);
        readObjects(state_->document);
        state_->incomplete = false;
        return VARNPDF_OK;
    });
}

bool CPdf::IsPDF(char* content) {
    constexpr std::string_view kHeader = "%PDF-";
    if (content == nullptr || std::strncmp(content, kHeader.data(), kHeader.size()) != 0) return false;
    return guardedOr(false, [this] { return isPdf(state_->document); });
}

int CPdf::CheckLineEndType(char* content) {
    constexpr std::size_t kHead = 99;
    if (content == nullptr) return static_cast<int>(LineEnd::Unknown);
    return static_cast<int>(lineEndOf({content, strnlen(content, kHead)}));
}

std::string CPdf::the_line_end() const { return std::string(lineEndText(state_->document.lineEnd)); }
int CPdf::GetLineEndType() const { return static_cast<int>(state_->document.lineEnd); }
void CPdf::Close() { state_->file.reset(); }
void CPdf::set_pdf_file_name(char* name) { state_->fileName = name == nullptr ? "" : name; }
float CPdf::GetPDFVersion() const { return state_->document.version; }
int CPdf::PdfIsEncrypted() const { return state_->document.encrypted ? 1 : 0; }
bool CPdf::get_IsLinearized() const { return state_->document.linearized; }
unsigned int CPdf::GetContentLen() const { return static_cast<unsigned int>(state_->document.length); }

// Hosts read through this pointer; the bytes belong to all revisions of the document and stay as they are.
unsigned char* CPdf::GetContent() {
    const auto& bytes = state_->document.bytes;
    return bytes ? reinterpret_cast<unsigned char*>(const_cast<char*>(bytes->data())) : nullptr;
}

int CPdf::GotoIdGeneral(const char* keyword, int mode, int start) {
    Document& document = state_->document;
    if (!document.bytes) return 0;
    if (keyword == nullptr || *keyword == '\0') return -1;
    if (mode == kModeNext && start < 0) return -1;
    return guardedOr(-1, [&] {
        if (mode == kModeNext) return offsetOrNone(nextKeyword(document, keyword, static_cast<std::size_t>(start)));
        if (mode == kModeLast) return offsetOrNone(lastKeyword(document, keyword));
        return offsetOrNone(search(document, keyword, true).last(0));
    });
}

int CPdf::GotoLastId(const char* keyword) { return GotoIdGeneral(keyword, kModeLast, 0); }

int CPdf::GotoNextId(const char* keyword, int start) { return GotoIdGeneral(keyword, kModeNext, start); }

int CPdf::GetLine(char* out, int pos) { return GetLine(out, pos, static_cast<int>(state_->document.length)); }

int CPdf::GetLine(char* out, int pos, int max) {
    if (out == nullptr) return pos;
    *out = '\0';
    if (pos < 0) return pos;
    const std::string_view text = state_->document.view();
    Cursor cursor(text, static_cast<std::size_t>(pos));
    cursor.skip(kIsEol);
    TextSpan line = cursor.takeUntil(kIsEol);
    const auto most = static_cast<std::size_t>(max < 0 ? 0 : max);
    if (line.size() > most) line.end = line.begin + most;
    std::memcpy(out, text.data() + line.begin, line.size());
    out[line.size()] = '\0';
    return static_cast<int>(line.end);
}
