// What content streams name (ISO 32000-2 7.8.3): fonts and forms, each read once.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "content/Geometry.h"
#include "content/TextFont.h"
#include "model/Document.h"
#include "model/Stream.h"

namespace varnpdf {

/// A form (ISO 32000-2 8.10): content that is painted as a whole.
struct Form {
    const CPdfObj* object = nullptr;
    Matrix matrix;
    std::string_view resources;  ///< what it lacks is taken from the content that shows it
};

/// What the entry /Font of a graphics state sets (ISO 32000-2 table 57).
struct FontOfState {
    const TextFont* font = nullptr;
    double size = 0;
};

using SharedContent = std::shared_ptr<const StreamBytes>;

/// One resource dictionary.
class Resources {
public:
    Resources(const Document& document, std::string_view dictionary);
    /// The value of a name in a category ("/Font"); empty when there is none.
    [[nodiscard]] std::string_view find(std::string_view category, std::string_view name);

private:
    using Names = std::unordered_map<std::string, std::string_view>;
    const Document& document_;
    Dictionary dictionary_;
    std::unordered_map<std::string, Names> categories_;
};

/// All resources of a document's pages. What it hands out stays until the end of its life.
class ResourceCache {
public:
    /// `budget` pays for streams, fonts and dictionaries.
    ResourceCache(const Document& document, std::size_t& budget) : document_(document), budget_(budget) {}

    /// Of the view of a dictionary in the document; null for an empty one.
    Resources* resources(std::string_view dictionary);
    /// The dictionary of a page, or what it inherits.
    std::string_view resourcesOfPage(const CPdfObj& page);
    /// Null for a value that is no dictionary.
    const TextFont* font(std::string_view value);
    /// Null for what is no form.
    const Form* form(std::string_view value);
    /// Nothing for a graphics state that sets no font.
    std::optional<FontOfState> fontOfState(std::string_view value);
    /// What the stream of an object says, as much of it as can be had; empty when there is none.
    [[nodiscard]] StreamBytes content(const CPdfObj& object);
    /// The same for a form, kept for the next time as long as there is room.
    SharedContent contentOf(const Form& form);

private:
    const TextFont* readFont(std::string_view value);
    const Form* readForm(std::string_view value);

    const Document& document_;
    std::size_t& budget_;
    std::unordered_map<const char*, std::unique_ptr<Resources>> resources_;
    std::unordered_map<const CPdfObj*, std::string_view> inherited_;
    std::unordered_map<const char*, std::unique_ptr<TextFont>> fonts_;
    std::unordered_map<const CPdfObj*, std::unique_ptr<Form>> forms_;
    // By where the reference stands, so that it is followed once.
    std::unordered_map<const char*, const TextFont*> fontsByValue_;
    std::unordered_map<const char*, const Form*> formsByValue_;
    std::unordered_map<const char*, std::optional<FontOfState>> statesByValue_;
    std::unordered_map<const CPdfObj*, SharedContent> contents_;
    std::size_t keptContent_ = 0;
};

}  // namespace varnpdf
