// What a value stands for: references followed, in one way and up to one limit.
#pragma once

#include <optional>
#include <string_view>
#include <unordered_map>

#include "model/Document.h"

namespace varnpdf {

/// A value behind its references (ISO 32000-2 7.3.10), and the object it was found in.
struct Resolved {
    std::string_view value;     ///< of a stream its dictionary; empty for null and for what leads nowhere
    CPdfObj* holder = nullptr;  ///< null for a value that is no reference, or leads nowhere
};
Resolved resolve(const Document& document, std::string_view value);

/// The object that a reference leads to; null for a value that is none.
CPdfObj* objectOf(const Document& document, std::string_view value);
/// What a value stands for, itself when it is no reference.
std::string_view resolved(const Document& document, std::string_view value);
/// What the entry of a dictionary stands for: `text` is a dictionary, or an object that is one.
std::string_view entryOf(const Document& document, std::string_view text, std::string_view key);

/// `resolve` with memory: many may refer to one long object, which is read once. The objects must not change meanwhile.
class LookupCache {
public:
    explicit LookupCache(const Document& document) : document_(document) {}
    Resolved resolve(std::string_view value);

private:
    const Document& document_;
    std::unordered_map<const CPdfObj*, std::string_view> values_;
};

/// A number as integer or with its fraction, also behind references.
std::optional<int> integerOf(const Document& document, std::string_view value);
std::optional<double> realOf(const Document& document, std::string_view value);

}  // namespace varnpdf
