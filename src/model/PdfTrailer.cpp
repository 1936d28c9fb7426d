// The trailer record: its texts, the /Index pairs and the renewal of /ID.
#include "varnpdf/PdfTrailer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "model/IndexPairs.h"
#include "support/Log.h"
#include "syntax/Cursor.h"
#include "syntax/Reference.h"

using namespace varnpdf;

constinit ClassLogger CPdfTrailer::m_logger{"VarnPDF.CPdfTrailer"};

namespace {

constexpr std::string_view kHexDigitsUpper = "0123456789ABCDEF";
constexpr std::string_view kBlank = " \n\r\t";

std::string_view insideArray(std::string_view text) {
    text = trim(text, kBlank);
    if (text.starts_with('[')) text.remove_prefix(1);
    if (text.ends_with(']')) text.remove_suffix(1);
    return trim(text, kBlank);
}

char randomDigit() { return kHexDigitsUpper[static_cast<std::size_t>(std::rand()) % 16]; }

// The first 16 characters of the literal string at the start of `text`, as hexadecimal digits.
std::string literalAsHex(std::string_view text) {
    constexpr std::size_t kPermanentBytes = 16;
    std::string hex;
    int open = 1;
    for (std::size_t i = 1; i < text.size() && hex.size() < 2 * kPermanentBytes; ++i) {
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

}  // namespace

CPdfTrailer::CPdfTrailer() { SetObjectType(eContentDictionary); }

CPdfTrailer::~CPdfTrailer() = default;

char* CPdfTrailer::GetEncrypt() { return buffer(encrypt_, kEncryptRoom); }
char* CPdfTrailer::GetInfo() { return buffer(info_, kInfoRoom); }
char* CPdfTrailer::GetRoot() { return buffer(root_, kRootRoom); }
char* CPdfTrailer::GetId() { return buffer(id_, kIdRoom); }

void CPdfTrailer::SetId(char* id) { setId(id == nullptr ? std::string_view{} : std::string_view(id)); }

bool CPdfTrailer::store(std::string& target, std::string_view text, int room) {
    if (text.size() >= static_cast<std::size_t>(room)) return false;
    target.assign(text);
    return true;
}

// The room is made when somebody asks for the buffer: a long chain of sections then costs what its texts need.
char* CPdfTrailer::buffer(std::string& text, int room) {
    if (text.size() < static_cast<std::size_t>(room)) text.resize(static_cast<std::size_t>(room), '\0');
    return text.data();
}

void CPdfTrailer::Setm_cIndexField(unsigned char* text, int len) {
    if (text == nullptr || len < 0) return;
    auto copy = std::make_unique<unsigned char[]>(static_cast<std::size_t>(len) + 1);
    std::memcpy(copy.get(), text, static_cast<std::size_t>(len));
    m_cIndexField = std::move(copy);
}

unsigned char* CPdfTrailer::Getm_cIndexField() { return m_cIndexField.get(); }

int CPdfTrailer::Getm_IndexFieldInfos(int mode, int index) {
    if (!m_cIndexField) {
        logDebug(m_logger, "c_IndexField leer!");
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
    std::string_view text = id();
    text.remove_prefix(std::min(text.find_first_not_of(kBlank), text.size()));
    if (text.starts_with('%')) text.remove_prefix(std::min(text.find('['), text.size()));
    text = insideArray(text);
    std::string renewed;
    if (text.starts_with('(')) {
        append(renewed, "[ <", literalAsHex(text), "> <");
        for (int i = 0; i < 32; ++i) renewed.push_back(randomDigit());
        append(renewed, "> ]");
    } else if (text.starts_with('<')) {
        const std::size_t end = text.rfind('>');
        const std::size_t begin = end == std::string_view::npos ? end : text.rfind('<', end);
        if (begin == std::string_view::npos) return 0;
        append(renewed, "[", text, "]");
        std::srand(static_cast<unsigned int>(std::time(nullptr)));
        for (std::size_t i = begin + 2; i < end + 1; ++i) renewed[i] = randomDigit();
    } else {
        return 0;
    }
    store(id_, renewed, kIdRoom);
    return 0;
}
