// A document as the commands read it: opening, walking its objects, values of its dictionaries.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "varnpdf/varnpdf.h"

namespace cli {

/// Opens a document for reading; 0, or the library's code after a complaint.
int openDocument(CPdf& pdf, const std::string& path);

/// Calls `visit(CPdfObj&)` for every object in ascending number.
template <typename Visit>
void forEachObject(CPdf& pdf, Visit visit) {
    int slot = 0;
    while (CPdfObj* obj = pdf.search_map_by_value(slot)) {
        visit(*obj);
        slot = std::max(slot, obj->GetObjNum()) + 1;
    }
}

/// The object that a reference ("12 0 R") at the start of `text` names, or null.
CPdfObj* referenced(CPdf& pdf, std::string_view text);
/// The object that an entry refers to, or null.
CPdfObj* referenced(CPdf& pdf, CPdfObj& obj, const char* key);
/// Text of an entry's value as it stands in the object. A literal string is only known to begin there: its end is
/// found by counting parentheses, which is left to `CPdfText::StringBytes`.
std::optional<std::string_view> entry(CPdfObj& obj, const char* key);
/// The same with references followed.
std::optional<std::string_view> value(CPdf& pdf, CPdfObj& obj, const char* key);
/// A value as people read it: strings decoded, names without slash, all else as it stands; nothing for null.
std::optional<std::string> displayed(std::optional<std::string_view> text);

}  // namespace cli
