// Preparing a document for a signature: the options that "sign" and "prepare" share, and what they come to.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "measure.h"
#include "textplace.h"
#include "varnpdf/PdfSign.h"

namespace cli {

/// As the command line says.
struct PreparationOptions {
    std::string file;
    std::string subFilter = "cades";
    PlacementOptions placement;
    TextPlaceOptions at;
    std::string image;
    std::vector<std::string> texts;
    std::string font = "helvetica";
    std::string style = "regular";
    int fontSize = 0;
    std::string reason;
    std::string location;
    std::string name;
    std::string date;
    bool lock = false;
};

void addPreparationOptions(const Parser& parser, PreparationOptions& options);

/// Everything converted and checked, ready for the library.
class Preparation {
public:
    /// Nothing after a complaint: the options are wrong.
    static std::optional<Preparation> from(const PreparationOptions& options);

    /// Names the signer where the options do not; a name that cannot be written is left out.
    void nameSigner(const std::string& name);
    /// Prepares the document with `room` bytes for the value; false after a complaint.
    bool run(CPdfSign& sign, unsigned int room);
    [[nodiscard]] bool cades() const { return cades_; }

private:
    bool takeTexts(const PreparationOptions& options);
    bool addLine(const std::string& label, const std::string& value);
    bool addDefaultLines();
    bool settlePlace();

    std::string file_;
    bool cades_ = true;
    Placement placement_;
    std::optional<TextPlace> at_;  ///< instead of the placement's page and place
    std::string boxNote_;          ///< why a place may lie outside
    std::string image_;
    int font_ = 0;
    int style_ = 0;
    int fontSize_ = 0;
    std::vector<FormfieldInfo_tag> lines_;
    bool defaultLines_ = false;
    std::string reason_;    // as written between parentheses
    std::string location_;  // likewise
    std::string name_;      // for the library to escape
    std::string shownName_;
    std::string shownReason_;
    std::string date_;
    bool lock_ = false;
};

/// The bytes to sign, in one view; valid until the next preparation.
std::string_view preparedBytes(const CPdfSign& sign);

}  // namespace cli
