// References and streams of a document, for work on whole streams.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "varnpdf/Pdf.h"

namespace varnpdf {

/// The object that a value refers to ("12 0 R"), or null.
CPdfObj* referenced(CPdf& pdf, std::string_view value);
/// What a value stands for, behind at most a few references: itself, or the body of an object. Empty when a reference
/// leads nowhere.
std::string_view resolved(CPdf& pdf, std::string_view value);

/// An object's text taken apart.
struct ObjectParts {
    std::string_view body;  ///< behind "obj": through the ">>" of a stream's dictionary, else without "endobj"
    std::optional<std::string_view> data;  ///< of a stream
    bool lengthHolds = false;              ///< the data is as long as /Length says
};
/// /Length decides where a stream ends when "endstream" stands there: packed data may hold any keyword, and the text
/// of an object ends at the first "endobj".
ObjectParts partsOf(CPdf& pdf, const CPdfObj& object);

}  // namespace varnpdf
