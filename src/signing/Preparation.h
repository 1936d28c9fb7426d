// One preparation of a document for a signature: what must be written, under which numbers, and the prepared bytes.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Image.h"
#include "signing/Request.h"
#include "signing/SignatureObjects.h"
#include "writer/Update.h"

namespace varnpdf {

/// Works on an update beside the document, which itself changes only by the numbers reserved in its table.
class Preparation {
public:
    Preparation(Document& document, const SigningRequest& request);

    /// The number that new objects begin with.
    [[nodiscard]] int firstNumber() const noexcept { return firstNumber_; }
    /// 0 or the code of the first step that failed.
    int run();

    /// The appended part, complete.
    [[nodiscard]] std::string_view tail() { return update_.tail().text; }
    /// Offsets of the room of the value in the final file.
    [[nodiscard]] const SignatureRoom& room() const noexcept { return room_; }

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
    };

    int checkTexts();
    int examineImage();
    int loadPicture(bool examine);
    [[nodiscard]] bool hasMask() const noexcept { return picture_ && picture_->transparent; }
    int collectNames();
    void addNamesBehindOddStrings();
    int openTrailer();
    int findPage();
    int updateMetadata();
    int decideForm();
    int reserve();
    void logReserved() const;
    void updateInfo();
    void updateForm();
    void updateFormEntries(std::string& form);
    void addToFields(std::string& form);
    void writeNewForm();
    void writeFonts();
    void updateCatalogue();
    int updateAnnots();
    bool otherPageHas(const CPdfObj& annots);
    void newAnnots(std::string_view comment);
    int writeLocks();
    int writeObjects();
    [[nodiscard]] SignatureObjects objects() const;
    int closeSection();
    int fillByteRange();

    Document& document_;
    const SigningRequest& request_;
    int firstNumber_;
    Update update_;
    std::vector<std::string> names_;  // as the interface lists them
    std::vector<std::string> taken_;  // and all others that a viewer knows
    std::string name_;
    std::optional<JpegImage> picture_;
    CPdfObj* catalogue_ = nullptr;
    CPdfObj* page_ = nullptr;
    int rotation_ = 0;
    std::array<int, 4> rect_{};
    std::string_view formValue_;     // of the catalogue's /AcroForm
    CPdfObj* formObject_ = nullptr;  // null for a form that stands in the catalogue
    bool hasForm_ = false;
    bool needsFonts_ = true;
    Numbers numbers_;
    std::optional<std::string> metadata_;  // new text of the metadata object
    SignatureRoom room_;
};

}  // namespace varnpdf
