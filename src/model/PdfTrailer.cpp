// The trailer record: its texts, the /Index pairs and the renewal of /ID.
#include "varnpdf/PdfTrailer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "model/IndexPairs.h"
#include "support/Loggers.h"
#include "support/Text.h"
#include "syntax/Cursor.h"
#include "syntax/Lexer.h"
#include "syntax/Reference.h"

using namespace varnpdf;

namespace {

constexpr std::string_view kHexDigitsUpper = "0123456789ABCDEF";
constexpr std::string_view kBlank = " \n\r\t";
constexpr std::size_t kIdDigits = 32;

// The elements of an /ID as it stands in the file, perhaps behind a comment.
std::string_view elementsOf(std::string_view text) {
    text = trim(text, kBlank);
    if (text.starts_with('%')) text.remove_prefix(std::min(text.find('['), text.size()));
    if (text.starts_with('[')) text.remove_prefix(1);
    if (text.ends_with(']')) text.remove_suffix(1);
    return trim(text, kBlank);
}

// Random digits, others than those they take the place of: the generator starts anew every second, and two updates of
// one document may come within one.
std::string otherDigits(std::size_t count, std::string_view old) {
    std::string digits(count, '0');
    do {
        for (char& digit : digits) digit = kHexDigitsUpper[static_cast<std::size_t>(std::rand()) % 16];
    } while (digits == old && count > 0);
    return digits;
}

// The first 16 characters of the literal string at the start of `text`, as hexadecimal digits.
std::string literalAsHex(std::string_view text) {
    std::string hex;
    int open = 1;
    for (std::size_t i = 1; i < text.size() && hex.size() < kIdDigits; ++i) {
        const bool escapes = text[i] == '\\' && i + 1 < text.size() &&
                             std::string_view("()\\").find(text[i + 1]) != std::string_view::npos;
        if (escapes) {
            ++i;
        } else if (text[i] == '(') {
            ++open;
        } else if (text[i] == ')' && --open == 0) {
            break;
        }
        const auto byte = static_cast<unsigned char>(text[i]);
        hex.push_back(kHexDigitsUpper[byte >> 4U]);
        hex.push_back(kHexDigitsUpper[byte & 15U]);
    }
    return hex;
}

// The elements as an array whose last string behind the permanent one is made of other digits: as many as it had, and a
// full set where a literal string stood or none.
std::string withOtherEnd(std::string_view elements, std::size_t permanentEnd) {
    Lexer lexer(elements, permanentEnd);
    Token last;
    for (Token token = lexer.next(); token; token = lexer.next()) {
        if (token.kind == TokenKind::HexString) last = token;
    }
    if (!last) return text('[', elements.substr(0, permanentEnd), " <", otherDigits(kIdDigits, {}), ">]");
    const std::string_view old = last.text.substr(1, last.text.size() - 2);
    return text('[', elements.substr(0, last.begin + 1), otherDigits(old.size(), old), elements.substr(last.end() - 1),
                ']');
}

// A text with NULs in it, perhaps, and the terminated buffer of fixed room that a host reads and writes.
class TrailerText {
public:
    explicit TrailerText(int room) : room_(static_cast<std::size_t>(room)) {}

    // The buffer counts once something else than the text stands in it.
    [[nodiscard]] std::string_view view() const {
        if (!buffer_ || std::memcmp(buffer_.get(), text_.c_str(), text_.size() + 1) == 0) return text_;
        return {buffer_.get(), strnlen(buffer_.get(), room_)};
    }

    bool set(std::string_view text) {
        if (text.size() >= room_) return false;
        text_.assign(text);  // keeps its room; the text may be what the buffer holds
        if (buffer_) fillBuffer();
        return true;
    }

    // Made when somebody asks: a long chain of sections then costs what its texts need.
    char* buffer() {
        if (!buffer_) {
            buffer_ = std::make_unique_for_overwrite<char[]>(room_);
            fillBuffer();
        }
        return buffer_.get();
    }

private:
    void fillBuffer() { std::fill_n(std::copy(text_.begin(), text_.end(), buffer_.get()), room_ - text_.size(), '\0'); }

    std::size_t room_;
    std::string text_;
    std::unique_ptr<char[]> buffer_;
};

}  // namespace

struct CPdfTrailer::Texts {
    TrailerText encrypt{kEncryptRoom};
    TrailerText info{kInfoRoom};
    TrailerText root{kRootRoom};
    TrailerText id{kIdRoom};
};

CPdfTrailer::CPdfTrailer() : texts_(std::make_unique<Texts>()) { SetObjectType(eContentDictionary); }

CPdfTrailer::~CPdfTrailer() = default;

int CPdfTrailer::GetXRef() const { return xref_; }
void CPdfTrailer::SetXRef(int offset) { xref_ = offset; }
int CPdfTrailer::GetSize() const { return size_; }
void CPdfTrailer::SetSize(int size) { size_ = size; }
int CPdfTrailer::GetPrev() const { return prev_; }
void CPdfTrailer::SetPrev(int offset) { prev_ = offset; }
int CPdfTrailer::GetXRefStmAddr() const { return xrefStm_; }
void CPdfTrailer::SetXRefStmAddr(int offset) { xrefStm_ = offset; }
bool CPdfTrailer::GetHasInfoFlag() const { return hasInfo_; }
void CPdfTrailer::SetHasInfoFlag(bool has) { hasInfo_ = has; }
bool CPdfTrailer::GetIsCrossRefStream() const { return isStream_; }
void CPdfTrailer::SetIsCrossRefStream(bool isStream) { isStream_ = isStream; }
std::string_view CPdfTrailer::encrypt() const { return texts_->encrypt.view(); }
std::string_view CPdfTrailer::info() const { return texts_->info.view(); }
std::string_view CPdfTrailer::root() const { return texts_->root.view(); }
std::string_view CPdfTrailer::id() const { return texts_->id.view(); }
bool CPdfTrailer::setEncrypt(std::string_view text) { return texts_->encrypt.set(text); }
bool CPdfTrailer::setInfo(std::string_view text) { return texts_->info.set(text); }
bool CPdfTrailer::setRoot(std::string_view text) { return texts_->root.set(text); }
bool CPdfTrailer::setId(std::string_view text) { return texts_->id.set(text); }

char* CPdfTrailer::GetEncrypt() { return texts_->encrypt.buffer(); }
char* CPdfTrailer::GetInfo() { return texts_->info.buffer(); }
char* CPdfTrailer::GetRoot() { return texts_->root.buffer(); }
char* CPdfTrailer::GetId() { return texts_->id.buffer(); }

void CPdfTrailer::SetId(char* id) { setId(id == nullptr ? std::string_view{} : std::string_view(id)); }

void CPdfTrailer::Setm_cIndexField(unsigned char* text, int len) {
    if (text == nullptr || len < 0) return;
    auto copy = std::make_unique<unsigned char[]>(static_cast<std::size_t>(len) + 1);
    std::memcpy(copy.get(), text, static_cast<std::size_t>(len));
    m_cIndexField = std::move(copy);
}

unsigned char* CPdfTrailer::Getm_cIndexField() { return m_cIndexField.get(); }

int CPdfTrailer::Getm_IndexFieldInfos(int mode, int index) {
    if (!m_cIndexField) {
        logDebug(loggers::trailer, "c_IndexField leer!");
        return 0;
    }
    const auto pairs = indexPairs(reinterpret_cast<const char*>(m_cIndexField.get()));
    if (mode == 1) return static_cast<int>(pairs.size());
    if (index < 0 || static_cast<std::size_t>(index) >= pairs.size()) return 0;
    const IndexPair& pair = pairs[static_cast<std::size_t>(index)];
    if (mode == 2) return pair.first;
    return mode == 3 ? pair.count : 0;
}

int CPdfTrailer::UpdateId(bool renew) {
    if (!renew) return 0;
    const std::string_view elements = elementsOf(texts_->id.view());
    Lexer lexer(elements);
    const Token permanent = lexer.next();
    if (elements.starts_with('(')) {
        texts_->id.set(varnpdf::text("[ <", literalAsHex(elements), "> <", otherDigits(kIdDigits, {}), "> ]"));
    } else if (permanent.kind == TokenKind::HexString) {
        std::srand(static_cast<unsigned int>(std::time(nullptr)));
        texts_->id.set(withOtherEnd(elements, permanent.end()));
    }
    return 0;
}
