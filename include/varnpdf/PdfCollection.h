// CPdfCollection: building a portfolio from several files.
#pragma once

#include <list>
#include <string>

#include "varnpdf/export.h"

class CPdf;

/// One input file of a portfolio. std::bad_alloc leaves members that copy a text when there is no memory for it.
class VARNPDF_EXPORT CPdfCollectionListItem {
public:
    /// Kinds of files. A PDF must open and be of version 1.4 or older; of the others only the bytes are looked at.
    enum FileType : int { ePdf = 1, eImage = 2, eText = 3, eOther = 4 };

    /// @param fileName     path of the file
    /// @param fileType     1 to 4, see `FileType`
    /// @param activePage   this document supplies the cover sheet and is the one shown first; it counts as a PDF
    /// @param description  UTF-8, shown by viewers
    CPdfCollectionListItem(std::string fileName, int fileType, bool activePage, std::string description);
    CPdfCollectionListItem(const CPdfCollectionListItem&);
    CPdfCollectionListItem& operator=(const CPdfCollectionListItem&);
    ~CPdfCollectionListItem();

    [[nodiscard]] std::string getFileName() const;
    void setFileName(std::string fileName);
    [[nodiscard]] int getFileType() const;
    [[nodiscard]] bool getIsActivePage() const;
    [[nodiscard]] std::string getDescription() const;
    void setDescription(std::string description);

private:
    std::string fileName_;
    int fileType_;
    bool activePage_;
    std::string description_;
};

/// Builds portfolios (ISO 32000-2 12.3.5). Holds nothing; different objects may be used by different threads at the
/// same time. std::bad_alloc leaves the members that return a text when there is no memory for it.
class VARNPDF_EXPORT CPdfCollection {
public:
    CPdfCollection();
    ~CPdfCollection();

    /// Writes a new document that holds every file of the list, compressed, with the first page of the active one as
    /// cover sheet. A file of this name is replaced; when anything fails nothing is written.
    /// @param path   the file to write
    /// @param items  stay the caller's
    /// @return 0, VARNPDF_COLLECTION_PATH_MISSING (-1300), VARNPDF_COLLECTION_EMPTY (-1301),
    ///         VARNPDF_COLLECTION_NAME_MISSING (-1302), VARNPDF_COLLECTION_FILE_TYPE (-1303),
    ///         VARNPDF_COLLECTION_ACTIVE (-1304), VARNPDF_COLLECTION_FILE_UNREADABLE (-1305),
    ///         VARNPDF_COLLECTION_NOT_WRITTEN (-1306), VARNPDF_COLLECTION_PDF_UNREADABLE (-1307),
    ///         VARNPDF_COLLECTION_PDF_VERSION (-1308), VARNPDF_TRAILER_INCOMPLETE (-1004: the active document has no
    ///         page) or VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int CreateCollection(char* path, std::list<CPdfCollectionListItem*> items);

    /// Copies an object of `source`, and everything it refers to except through /Parent, into the object array of
    /// `target`. The target's list of number pairs says what has been copied before; a target takes objects of one
    /// source only.
    /// @return the object's new number, VARNPDF_UPDATE_OBJECT_MISSING (-1024: a null document, or no such object) or
    ///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int CopyOldObjToNew(int objectNumber, CPdf* source, CPdf* target);

    /// The array of a name tree with one more pair. `array` is "" for none yet, `key` as it stands between parentheses,
    /// `reference` an object number.
    std::string AppendToNamesArray(std::string array, std::string key, std::string reference);
    /// What stands behind the last '/'.
    std::string JustFilename(std::string path);
    /// Copies what stands between "obj" and "endobj" of an object's text, without white space around it. `out` has room
    /// for `len` bytes and is not terminated. 1, or 0 with `*outLen` 0 when there is nothing.
    int StripRealContent(char* text, int len, char* out, int* outLen);
    /// The kind of a value as `CPdfHelper::ReadObject` numbers it: 1 boolean, 2 number, 3 string, 4 name, 5 array,
    /// 6 dictionary, 7 stream, 8 null, 0 none of them. References are followed; one that leads nowhere is null.
    int ExamineValue(std::string value, CPdf* source);
};
