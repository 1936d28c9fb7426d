// Text as a document: Courier on Letter pages.
#pragma once

#include <string>
#include <string_view>

#include "conversion/Deflater.h"
#include "conversion/ObjectFile.h"

namespace varnpdf {

/// Number of the last object in front of the pages.
inline constexpr int kTextHeadObjects = 5;

void putTextHead(ObjectFile& out);
/// Objects `last` + 1 and `last` + 2.
void putTextPage(ObjectFile& out, Deflater& deflater, std::string_view entries, int last);
void putTextFoot(ObjectFile& out, int pages);

/// How the bytes of a file are meant.
enum class TextCode {
    kDos,      ///< WinAnsiEncoding but for the umlauts and sharp s of the DOS code page
    kWinAnsi,  ///< WinAnsiEncoding
};

/// The byte's octal escape, four characters; the DOS code page's umlauts and sharp s get their place in WinAnsiEncoding.
std::string octalEscape(unsigned char byte, TextCode code);
/// `line` for the inside of a literal string.
void appendEscaped(std::string& out, std::string_view line, TextCode code);

/// Sets bytes in lines and pages as they come.
class TextSetter {
public:
    TextSetter(ObjectFile& out, TextCode code) : out_(&out), code_(code) {}
    void add(std::string_view bytes);
    /// The rest: at least one page is written.
    void end();
    [[nodiscard]] int pages() const noexcept { return pages_; }
    /// More pages than an object table may have; nothing further is set.
    [[nodiscard]] bool tooLong() const noexcept;

private:
    void addPlain(std::string_view run);
    void addSpecial(unsigned char byte);
    void endLine();
    void endPage();

    ObjectFile* out_;
    TextCode code_;
    Deflater deflater_;
    std::string line_;     ///< at most 80 characters
    std::string entries_;  ///< of the page
    int entryCount_ = 0;
    int pages_ = 0;
    bool lineBegun_ = false;
    bool afterReturn_ = false;
};

}  // namespace varnpdf
