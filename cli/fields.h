// The signatures of a document as a viewer finds them: by the form's tree of fields, and by what else claims to be one.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "varnpdf/varnpdf.h"

namespace cli {

/// A dictionary that can be read like an object, whether it is one or stands inside of one.
struct Dictionary {
    CPdfObj* object = nullptr;
    std::optional<std::size_t> begin;  ///< offset in the file of the object's text; none inside an object stream
};

struct SignatureField {
    std::optional<std::string> name;  ///< full name, partial names joined by dots (ISO 32000-2 12.7.4.2)
    Dictionary value;                 ///< the signature dictionary; no object when the field's /V leads nowhere
    bool inForm = true;               ///< reached from the form's /Fields
};

/// Finds them. What it hands out is valid as long as it and the document are.
class SignatureSearch {
public:
    explicit SignatureSearch(CPdf& pdf) : pdf_(&pdf) {}
    /// Every signed field: those of the form first, then the others in object order.
    std::vector<SignatureField> run();

private:
    struct Node {
        Dictionary field;
        std::string prefix;
        bool signature;  // /FT of an ancestor
        int depth;
    };
    void walkForm();
    void walkObjects();
    void visit(const Node& node, bool inForm);
    void pushKids(const Node& node, const std::string& name, bool signature, std::vector<Node>& stack);
    std::vector<Dictionary> elements(std::string_view array);
    std::optional<Dictionary> resolve(std::string_view text);
    Dictionary wrap(std::string_view text);
    [[nodiscard]] std::optional<std::size_t> fileOffset(std::string_view text) const;
    [[nodiscard]] std::optional<std::size_t> fileOffset(const CPdfObj& obj) const;
    [[nodiscard]] bool firstVisit(const CPdfObj& obj);
    bool isSignature(const CPdfObj& field, bool inherited);
    std::string fullName(const CPdfObj& field, const std::string& prefix);

    CPdf* pdf_;
    std::deque<std::unique_ptr<CPdfObj>> direct_;
    std::set<int> seen_;
    std::vector<SignatureField> found_;
};

/// Offset in the file of a text inside a dictionary's object.
std::optional<std::size_t> offsetOf(const Dictionary& dictionary, std::string_view inside);

}  // namespace cli
