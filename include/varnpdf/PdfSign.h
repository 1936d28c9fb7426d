// CPdfSign: preparing a document for a signature and inserting the value made elsewhere.
#pragma once

#include <cstdint>
#include <memory>

#include "varnpdf/FormfieldInfo.h"
#include "varnpdf/export.h"

class CPdf;

namespace varnpdf {
struct SignState;
}

/// The two steps of a signature: `SignPDFFile` prepares the document in memory, the host has a value made over the
/// prepared bytes, `SaveSignature` writes the signed file. One thread at a time; different objects are independent. The
/// constructor and `buildSignContent` throw std::bad_alloc without memory.
class VARNPDF_EXPORT CPdfSign {
public:
    CPdfSign();
    CPdfSign(const CPdfSign&) = delete;
    CPdfSign& operator=(const CPdfSign&) = delete;
    virtual ~CPdfSign();

    /// true (the default): /SubFilter /ETSI.CAdES.detached (ETSI EN 319 142-1); false: /adbe.pkcs7.detached.
    void setUserETSISubFilter(bool etsi);
    [[nodiscard]] bool isUserETSISubFilter() const;

    /// Prepares the file for signing by an appended update that is kept in memory; nothing is written to disk.
    /// @param pdfFile       path, at most 256 characters
    /// @param page          page index from 0; outside the pages: the last one
    /// @param posMode       from where x and y are measured into the page: 0 percent of it from the lower left corner,
    ///                      1 points from the lower left, 2 upper left, 3 lower right, 4 upper right corner
    /// @param x,y           the lower left corner of the signature, whatever corner it is measured from
    /// @param width,height  its size in points; 0 or less: invisible
    /// @param appearanceOption1 0
    /// @param reason,location   texts of at most 256 characters as they stand between the parentheses of a string
    /// @param name          UTF-8, escaped and written in ISO 8859-1
    /// @param signDate      PDF date (ISO 32000-2 7.9.4)
    /// @param contentsSize  bytes reserved for the value
    /// @param reservedFlag  ignored
    /// @param appearanceOption2 not 0: additional layers /n1 and /n3
    /// @param useImage,imageFile  not 0: background image, a PNG or JPEG, told by its first bytes. A JPEG goes in as it
    ///                      is (grey, colour or CMYK; an Exif orientation is not applied)
    /// @param fields,fieldCount   lines of text of the appearance
    /// @param lock          greater than 0: the signature locks the document's fields
    /// @param skipImageCheck the image is not examined for transparency
    /// @return 0, an open code, or -1001, -1004, -1005, -1006, -1007, -1009, -1021, -1022, -1024, -1030, -1033, -1034,
    ///         -1041, -1042, -1050, -1082, -1083 (see result_codes.inc); without memory the code of where it ran out,
    ///         -1014 or -1001
    int SignPDFFile(char* pdfFile, int page, int posMode, int x, int y, int width, int height, int appearanceOption1,
                    char* reason, char* location, char* name, char* signDate, unsigned int contentsSize,
                    bool reservedFlag, int appearanceOption2, int useImage, char* imageFile, FormfieldInfo_tag* fields,
                    int fieldCount, int lock, bool skipImageCheck);
    /// Loads the bytes and calls `SignPDF`; prepares nothing in this release. 0, or -1014 without memory.
    int SignPDFStream(unsigned char* pdfData, unsigned int pdfLen, int page, int posMode, int x, int y, int width,
                      int height, int appearanceOption1, char* reason, char* location, char* name, char* signDate,
                      unsigned int contentsSize, bool reservedFlag, int appearanceOption2, int useImage,
                      char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int lock);
    /// Does nothing in this release. Returns 0.
    int SignPDF(CPdf* pdf, int page, int posMode, int x, int y, int width, int height, int appearanceOption1,
                char* reason, char* location, char* name, char* signDate, unsigned int contentsSize, bool reservedFlag,
                int appearanceOption2, int useImage, char* imageFile, FormfieldInfo_tag* fields, int fieldCount,
                int lock);
    /// The preparation of an opened document; parameters and results as `SignPDFFile`, and -1014 without memory.
    int DummySign(CPdf* pdf, int page, int posMode, int x, int y, int width, int height, int appearanceOption1,
                  char* reason, char* location, char* name, char* signDate, unsigned int contentsSize,
                  bool reservedFlag, int appearanceOption2, int useImage, char* imageFile, FormfieldInfo_tag* fields,
                  int fieldCount, int lock, bool skipImageCheck);

    /// Writes the signed file: the prepared bytes with the value, as hexadecimal text padded with "31", in its room.
    /// `contentsSize` must be the one given to the preparation. A value longer than that is not reported: "<>" and
    /// zero bytes stand in its place.
    /// @return 0, or -1023: a null argument, or the file cannot be created or written (nothing is left then); without
    ///         memory as well
    int SaveSignature(char* pcSignedFile, unsigned char* sig, unsigned int sigLen, unsigned int contentsSize);
    /// The hexadecimal string of a value: `*outLen` is 2 * contentsSize + 2; `*out` (one byte longer, terminated) is
    /// freed by the caller with delete[]. Either may be null.
    static void buildSignContent(char** out, std::uint32_t* outLen, unsigned char* sig, std::uint32_t sigLen,
                                 std::uint32_t contentsSize);

    /// Looks for the frame that some office suites draw for an empty form field; the last one wins. Rectangle in points
    /// rounded down, page index from 0; untouched when there is none.
    /// @return 0, -1004 (no /Size, /Root or /Pages), -1014 (no memory), -1021 (encrypted)
    int TryFindOOField(CPdf* pdf, int* x, int* y, int* width, int* height, int* page);

    /// The prepared document with the room of the value, delimiters included, cut out: exactly the bytes to sign.
    /// Owned by this object, valid until the next preparation; null before the first.
    [[nodiscard]] const unsigned char* GetPreparedDocument() const;
    /// Number of those bytes.
    [[nodiscard]] std::uint32_t GetPreparedLength() const;
    /// Offset at which the value's hexadecimal string goes in; the second number of /ByteRange.
    [[nodiscard]] std::uint32_t GetContentsOffset() const;

private:
    std::unique_ptr<varnpdf::SignState> state_;
};
