// The signature fields of a document as viewers find them (ISO 32000-2 12.7.4, 12.7.5.5).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "inspection/Values.h"

namespace varnpdf {

/// A dictionary: the value of an object, or one that stands in it.
struct HeldDictionary {
    CPdfObj* holder = nullptr;
    std::string_view text;  ///< "<<" through ">>"; empty when there is none

    [[nodiscard]] bool isObject() const;
};

/// The views are those of the document's objects and hold as long as these do not change.
struct SignatureField {
    std::string name;     ///< full name, UTF-8
    int index = -1;       ///< of a signature: those that `signatureFields` counts first, then the others in this order
    bool inForm = false;  ///< reached from the form's /Fields
    bool isSigned = false;  ///< there is a value, wherever it leads
    HeldDictionary field;
    HeldDictionary signature;  ///< what the value is; without holder when it leads to no dictionary
    HeldDictionary widget;     ///< the first; without holder when there is none
};

/// Signed and empty ones: those of the form in its order, then what else is one in the order of the objects, as viewers
/// find it by the page or count it.
std::vector<SignatureField> shownSignatures(Document& document, Values& values);

}  // namespace varnpdf
