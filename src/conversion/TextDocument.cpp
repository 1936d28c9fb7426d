// Text as a document: Courier on Letter pages.
#include "conversion/TextDocument.h"

#include <algorithm>
#include <array>

#include "syntax/Encoding.h"

namespace varnpdf {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kTab = 8;
constexpr int kFullPage = 54;  // a page with more entries is written

enum Class : unsigned char { kPlain, kControl, kEscaped, kDosLetter };

constexpr std::array<Class, 256> kClasses = [] {
    std::array<Class, 256> classes{};
    for (std::size_t byte = 0; byte < ' '; ++byte) classes[byte] = kControl;
    classes[127] = kControl;
    for (const char c : {'\'', '(', ')', '\\'}) classes[static_cast<unsigned char>(c)] = kEscaped;
    for (const DosLetter& letter : kDosLetters) classes[letter.dos] = kDosLetter;
    return classes;
}();

Class classOf(char c) { return kClasses[static_cast<unsigned char>(c)]; }

constexpr std::string_view kFont =
    "\n<<\n"
    "/Type /Font\n"
    "/Subtype /Type1\n"
    "/Name /F1\n"
    "/BaseFont /Courier\n"
    "/FirstChar 32\n"
    "/LastChar 255\n"
    "/Encoding /WinAnsiEncoding\n"
    ">>\nendobj\n";

}  // namespace

void putTextHead(ObjectFile& out) {
    out.put("%PDF-1.2\n%????\n");
    out.startObject(1);
    out.put("\n<<\n", "/Producer (", kMaker, " varnpdf text converter 1.0)\n", "/Creator (", kMaker,
            " varnpdf text converter 1.0)\n", "/CreationDate (", creationDate(), ")\n", ">>\nendobj\n");
    out.startObject(2);
    out.put("\n<<\n/Type /Catalog\n/Pages 3 0 R\n>>\nendobj\n");
    // Our pages name object 5; the font is object 4 as well for pages that a host puts between head and foot.
    for (const int number : {4, 5}) {
        out.startObject(number);
        out.put(kFont);
    }
}

void putTextPage(ObjectFile& out, Deflater& deflater, std::string_view entries, int last) {
    const std::string content = text("BT\n/F1 12 Tf 12 TL 18 756 Td\n", entries, "() Tj\nET");
    const std::string_view packed = deflater.whole(content);
    out.startObject(last + 1);
    out.put("\n<<\n/Type /Page\n", "/Resources <</ProcSet [/PDF /Text] /Font << /F1 5 0 R >>>>\n",
            "/MediaBox [0 0 612 792]\n", "/Parent 3 0 R\n", "/Contents ", last + 2, " 0 R\n", ">>\nendobj\n");
    out.startObject(last + 2);
    out.put("\n<< /Filter [/FlateDecode] /Length ", packed.size(), " >>\nstream\n");
    out.put(packed, "endstream\nendobj\n");
}

void putTextFoot(ObjectFile& out, int pages) {
    out.startObject(3);
    out.put("\n<<\n/Type /Pages\n/Kids [");
    for (int i = 0; i < pages; ++i) out.put(kTextHeadObjects + 1 + 2 * i, " 0 R ");
    out.put("]\n/Count ", pages, "\n>>\nendobj\n");
    const std::uint64_t table = out.position();
    out.putTable("xref\n0 ", "\n");
    putTrailer(out, table);
}

std::string octalEscape(unsigned char byte, TextCode code) {
    const auto letter = std::ranges::find(kDosLetters, byte, &DosLetter::dos);
    if (code == TextCode::kDos && letter != std::end(kDosLetters)) byte = letter->winAnsi;
    return text('\\', byte >> 6U, (byte >> 3U) & 7U, byte & 7U);
}

void appendEscaped(std::string& out, std::string_view line, TextCode code) {
    for (const char c : line) {
        const Class kind = classOf(c);
        const bool letter = code == TextCode::kDos ? kind == kDosLetter : static_cast<unsigned char>(c) > 127;
        if (kind == kEscaped)
            append(out, '\\', c);
        else if (letter)
            append(out, octalEscape(static_cast<unsigned char>(c), code));
        else
            out.push_back(c);
    }
}

void TextSetter::add(std::string_view bytes) {
    while (!bytes.empty() && !tooLong()) {
        const auto end = std::ranges::find_if(bytes, [](char c) { return classOf(c) == kControl; });
        addPlain(bytes.substr(0, static_cast<std::size_t>(end - bytes.begin())));
        if (end == bytes.end()) return;
        addSpecial(static_cast<unsigned char>(*end));
        bytes.remove_prefix(static_cast<std::size_t>(end - bytes.begin()) + 1);
    }
}

// A full line is set only when a further character follows, so that 80 characters make one entry.
void TextSetter::addPlain(std::string_view run) {
    if (run.empty()) return;
    afterReturn_ = false;
    lineBegun_ = true;
    while (!run.empty()) {
        if (line_.size() == kColumns) endLine();
        const std::size_t part = std::min(kColumns - line_.size(), run.size());
        line_.append(run.substr(0, part));
        run.remove_prefix(part);
    }
}

void TextSetter::addSpecial(unsigned char byte) {
    const bool secondOfPair = byte == '\n' && afterReturn_;
    afterReturn_ = byte == '\r';
    if (secondOfPair) return;
    if (byte == '\n' || byte == '\r') {
        endLine();
        lineBegun_ = false;
    } else if (byte == '\f') {
        if (lineBegun_) endLine();
        lineBegun_ = false;
        endPage();
    } else if (byte == '\t') {
        if (line_.size() == kColumns) endLine();
        addPlain(std::string(kTab - line_.size() % kTab, ' '));
    } else {
        addPlain(" ");
    }
}

void TextSetter::endLine() {
    entries_.push_back('(');
    appendEscaped(entries_, line_, code_);
    entries_.append(") ' ");
    line_.clear();
    if (++entryCount_ > kFullPage) endPage();
}

void TextSetter::endPage() {
    putTextPage(*out_, deflater_, entries_, kTextHeadObjects + 2 * pages_);
    ++pages_;
    entries_.clear();
    entryCount_ = 0;
}

void TextSetter::end() {
    if (lineBegun_) endLine();
    if (entryCount_ > 0 || pages_ == 0) endPage();
}

bool TextSetter::tooLong() const noexcept { return pages_ > (limits::kDeclaredSize - kTextHeadObjects - 1) / 2; }

}  // namespace varnpdf
