// New fields of a form as an appended update: the fields, their appearances, and the way to them from form and page.
#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "forms/FieldWidget.h"
#include "forms/FormTree.h"
#include "forms/FormUpdate.h"
#include "writer/EntryPlace.h"

namespace varnpdf {

class NewFields {
public:
    explicit NewFields(Document& document);
    NewFields(const NewFields&) = delete;
    NewFields& operator=(const NewFields&) = delete;

    /// Makes a field.
    /// @return VARNPDF_OK, or with nothing made VARNPDF_LOCKED, _FIELD_LOCKED, _FIELD_UNUSABLE, _FIELD_NAME_TAKEN,
    ///         _PAGE_NOT_FOUND, _FIELD_OUTSIDE_PAGE, _FIELD_VALUE_UNSHOWABLE, _IMAGE_UNREADABLE,
    ///         _TRAILER_INCOMPLETE
    int add(const NewField& field);
    /// Puts the update together, once.
    /// @return VARNPDF_OK, VARNPDF_PDF_MAXSIZE or VARNPDF_COMPRESSING_FAILED
    int write();
    /// What stands behind the old document.
    [[nodiscard]] std::vector<std::string_view> pieces() const { return update_.pieces(); }

private:
    [[nodiscard]] int checkName(std::string_view name);
    [[nodiscard]] CPdfObj* pageOf(const NewField& field) const;
    [[nodiscard]] int checkPlace(const NewField& field);
    CPdfObj& newObject();
    CPdfObj* parentOf(std::string_view name);
    std::string fontFor(const NewField& field);
    EntryPlace formPlace();
    void writeForm();

    Document& document_;
    FormTree tree_;
    FormUpdate update_;
    CPdfObj* catalogue_ = nullptr;
    std::vector<CPdfObj*> pages_;
    std::deque<CPdfObj> objects_;                            // new ones that are still changed
    std::set<std::string, std::less<>> names_;               // of all fields
    std::map<std::string, CPdfObj*, std::less<>> groups_;    // fields that only hold others
    std::vector<int> rootFields_;                            // new ones of the form itself
    std::map<CPdfObj*, std::vector<int>> kids_;              // new ones by the field that holds them
    std::map<CPdfObj*, std::vector<int>> annotations_;       // new ones by page
    std::map<std::string, std::string, std::less<>> fonts_;  // new ones of the form, references by name
    bool signatures_ = false;
};

}  // namespace varnpdf
