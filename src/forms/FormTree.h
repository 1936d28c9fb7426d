// The fields of a document's form as viewers see them (ISO 32000-2 12.7.3, 12.7.4).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "forms/FieldLocks.h"
#include "forms/Font.h"
#include "model/Lookup.h"
#include "syntax/Dictionary.h"

namespace varnpdf {

/// Flags of /Ff (ISO 32000-2 tables 227, 228, 230, 231).
enum FieldFlag : unsigned {
    kReadOnly = 1U << 0U,
    kMultiline = 1U << 12U,
    kPassword = 1U << 13U,
    kComb = 1U << 24U,
};

/// Values that a field passes on to the fields and widgets below it, as written.
struct FieldAttributes {
    std::string_view type;
    std::string_view flags;
    std::string_view value;
    std::string_view appearance;
    std::string_view quadding;
    std::string_view maxLength;
};

/// A terminal field. The views are those of the document's objects and hold as long as these do not change.
struct FormField {
    std::string name;  ///< full name, UTF-8
    FieldAttributes attributes;
    CPdfObj* object = nullptr;  ///< the field's own dictionary
    std::vector<CPdfObj*> widgets;

    [[nodiscard]] unsigned flags() const;
};

/// A field that only holds others together.
struct FormGroup {
    std::string name;  ///< full name, UTF-8
    CPdfObj* object = nullptr;
};

/// A field that the form does not reach; it shows its value all the same when it is a widget.
FormField loneField(CPdfObj& object);

class FormTree : public References {
public:
    explicit FormTree(Document& document);

    [[nodiscard]] Document& document() const { return document_; }
    /// Terminal fields in the order of the tree.
    [[nodiscard]] const std::vector<FormField>& fields() const { return fields_; }
    /// Those above them, whether the form or only a page leads there.
    [[nodiscard]] const std::vector<FormGroup>& groups() const { return groups_; }
    [[nodiscard]] std::string_view follow(std::string_view value) const override;
    /// The object a reference names, or null.
    [[nodiscard]] CPdfObj* object(std::string_view reference) const;
    /// The form's own dictionary.
    [[nodiscard]] const Dictionary& form() const { return form_; }
    /// The object that holds it: the form, or the catalogue when the form stands in it; null without a form.
    [[nodiscard]] CPdfObj* formHolder() const { return formHolder_; }
    [[nodiscard]] bool formIsDirect() const { return formIsDirect_; }
    /// Index of the page (from 0) that shows the widget, -1 when none does.
    [[nodiscard]] int pageOf(const CPdfObj& widget) const;
    /// A signature that was made forbids to change the field.
    [[nodiscard]] bool isLocked(std::string_view name);
    /// Branches left out because their names are beyond all measure.
    [[nodiscard]] int omitted() const { return omitted_; }

private:
    struct Node {
        CPdfObj* object;
        std::string prefix;
        FieldAttributes attributes;
        std::size_t field;  // that a widget belongs to, `kNoField` for a field
        int depth;
    };
    void walk(std::vector<Node> stack);
    void walkWidgetsOutside(const FieldAttributes& defaults);
    [[nodiscard]] CPdfObj* topOf(CPdfObj* widget, std::unordered_set<const CPdfObj*>& climbed) const;
    void visit(Node node, std::vector<Node>& stack);
    [[nodiscard]] std::vector<CPdfObj*> kids(std::string_view array);
    void findPages(const CPdfObj& catalogue);
    void readLocks();

    Document& document_;
    mutable LookupCache lookup_;
    Dictionary form_;
    CPdfObj* formHolder_ = nullptr;
    bool formIsDirect_ = false;
    std::vector<FormField> fields_;
    std::vector<FormGroup> groups_;
    std::size_t nameBytes_ = 0;
    std::unordered_set<const CPdfObj*> seen_;
    std::unordered_set<const CPdfObj*> arrays_;  // of kids that have been read
    std::unordered_map<int, int> pages_;         // by number of the annotation
    std::vector<int> annotations_;               // in the order of the pages
    int omitted_ = 0;
    FieldLocks locks_;
    bool locksKnown_ = false;
};

}  // namespace varnpdf
