// One preparation of a document for a signature: what must be written, under which numbers, and the prepared bytes.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "api/PdfState.h"
#include "reader/Objects.h"
#include "reader/Pages.h"
#include "signing/Image.h"
#include "support/Log.h"
#include "support/Loggers.h"
#include "varnpdf/PdfLockInfo.h"
#include "varnpdf/PdfSign.h"

namespace varnpdf {

struct SigningRequest {
    int page = 0;
    int posMode = 0;
    int position[2] = {};
    int size[2] = {};
    int appearanceOption1 = 0;
    char* reason = nullptr;
    char* location = nullptr;
    char* name = nullptr;
    char* signDate = nullptr;
    unsigned contentsSize = 0;
    bool layers = false;
    bool useImage = false;
    char* imageFile = nullptr;
    FormfieldInfo_tag* fields = nullptr;
    int fieldCount = 0;
    bool lock = false;
    bool skipImageCheck = false;

    [[nodiscard]] bool visible() const noexcept { return size[0] > 0 && size[1] > 0; }
    [[nodiscard]] bool hasPicture() const noexcept { return visible() && useImage && imageFile != nullptr; }
};

/// Works on copies of the document's objects; the document itself changes only by the numbers reserved in its table.
class Preparation {
public:
    Preparation(CPdf& pdf, const SigningRequest& request, const ClassLogger& logger)
        : pdf_(pdf), request_(request), logger_(logger) {}

    /// 0 or the code of the first step that failed.
    int run();

    [[nodiscard]] std::size_t oldLength() const noexcept { return documentOf(pdf_).length; }
    /// The appended part, complete.
    [[nodiscard]] std::string_view tail() const noexcept;
    /// Offsets of the room of the value in the final file.
    [[nodiscard]] std::size_t roomBegin() const noexcept { return static_cast<std::size_t>(info_.GetLen0()); }
    [[nodiscard]] std::size_t roomEnd() const noexcept { return static_cast<std::size_t>(info_.GetOffset1()); }

private:
    // Numbers of new objects. What a case does not need stays 0.
    struct Numbers {
        int annots = 0;
        int fields = 0;
        int form = 0;
        int symbols = 0;
        int helvetica = 0;
        int encoding = 0;
        int fieldLock = 0;
        int lockParams = 0;
        int widget = 0;
        int metadata = 0;
        int next = 0;
    };

    int checkTexts();
    int loadPicture(bool examine);
    int examineImage();
    [[nodiscard]] bool hasMask() const noexcept { return picture_ && picture_->transparent; }
    int collectNames();
    int openTrailer();
    int findPage();
    void updateInfo();
    int updateMetadata();
    int decideForm();
    void reserve();
    void logReserved() const;
    void updateForm();
    void updateFormEntries(CPdfObj& form);
    void addToFields(CPdfObj& form);
    void writeNewForm();
    void writeFonts();
    void updateCatalogue();
    bool otherPageHas(const CPdfObj& annots);
    void updateAnnots();
    void newAnnots(std::string_view comment);
    void writeLocks();
    int writeObjects();
    int closeSection(CPdfXRefContainer& xrefs);
    int fillByteRange();

    CPdfObj& changed(CPdfObj& original);
    CPdfObj* changedReference(std::string_view value);
    void addNew(int number, std::string text);

    CPdf& pdf_;
    const SigningRequest& request_;
    const ClassLogger& logger_;
    CPdfLockInfo lock_;
    CPdfSigInfo info_;
    std::vector<std::string> names_;
    std::string name_;
    std::optional<JpegImage> picture_;
    CPdfObj* catalogue_ = nullptr;
    CPdfObj* page_ = nullptr;
    int pageBox_[4] = {};
    int rotation_ = 0;
    int rect_[4] = {};
    bool hasForm_ = false;
    bool needsFonts_ = false;
    Numbers numbers_;
    std::optional<std::string> metadata_;  // new text of the metadata object, from "obj" on
    std::map<int, CPdfObj> changed_;       // copies of objects of the document, by number
    std::map<int, std::string> new_;       // texts of new objects
};

}  // namespace varnpdf
