// CPdf: one document held whole in memory. The operations are grouped by what they do.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "varnpdf/ByteStream.h"
#include "varnpdf/PdfObj.h"
#include "varnpdf/PdfSigInfo.h"
#include "varnpdf/PdfTrailer.h"
#include "varnpdf/PdfXRef.h"
#include "varnpdf/export.h"

namespace varnpdf {
struct Access;
struct PdfState;
}  // namespace varnpdf

class CPdfFieldContainer;
class CPdfLockInfo;
struct FormfieldInfo_tag;
struct SigPosStruct;

/// One document. Construct, `Open` (or `ParseContent`), read; `Close` or destroy at the end. A `CPdf` is used for one
/// document and by one thread at a time; different documents may be used by different threads at the same time.
///
/// Without memory a member with result codes returns VARNPDF_PDF_MEMORY_ALLOCATION (-1014), one that returns a pointer,
/// a bool, a position or an index what it returns when there is nothing. Constructor, members without a result and those
/// that return a std::string throw std::bad_alloc. Nothing is changed then, but sections may have been read in part.
class VARNPDF_EXPORT CPdf {
public:
    CPdf();
    CPdf(const CPdf&) = delete;
    CPdf& operator=(const CPdf&) = delete;
    virtual ~CPdf();

    // --- opening ---------------------------------------------------------------------------------------------------

    /// Opens a document: reads the whole file, checks it, reads every cross-reference section and all objects and
    /// evaluates the lock state. `mode` is passed to fopen ("rb"). A document that memory did not suffice to read to the
    /// end cannot be opened again: -1014 every time.
    /// @return 0, or VARNPDF_CAN_NOT_LOAD_PDF_FILE (-1001), VARNPDF_PDF_MAXSIZE (-1013),
    ///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014), -1018 (cross-reference data or objects unreadable, /Size below 1
    ///         or above 499,999), VARNPDF_PDF_ENCRYPTED (-1021), VARNPDF_NO_PDF_FILE (-1029), VARNPDF_NO_ROOT (-1060),
    ///         VARNPDF_ROOT_OBJECT_MISSING (-1061)
    int Open(const char* filename, const char* mode);
    /// `Open` again with the stored file name.
    int Reopen(char* mode);
    /// Loads a document from memory; the bytes are copied. No check of the document is made: use `Open` for files from
    /// outside. `release` has no effect: a document that already holds content takes no other.
    /// @return 0, -1 when `data` is null, `len` is 0 or content is already held, or VARNPDF_PDF_MEMORY_ALLOCATION
    ///         (-1014)
    int ParseContent(unsigned char* data, unsigned int len, bool release);
    /// Header, "startxref" and cross-reference keyword are where a PDF has them. Stores the version. `content` is the
    /// NUL-terminated content of this document.
    bool IsPDF(char* content);
    /// Line end of the first 99 bytes: 0 CR LF, 1 LF, 2 CR, -1 none or no PDF header.
    int CheckLineEndType(char* content);
    /// The document's line end as text, "" when unknown.
    [[nodiscard]] std::string the_line_end() const;
    /// The stored line-end type, as `CheckLineEndType` returns it.
    [[nodiscard]] int GetLineEndType() const;
    /// Closes the file if it is open; content and objects stay.
    void Close();
    void set_pdf_file_name(char* name);
    /// Header version, e.g. 1.7.
    [[nodiscard]] float GetPDFVersion() const;
    /// 1 when the newest trailer carries /Encrypt, else 0.
    [[nodiscard]] int PdfIsEncrypted() const;
    [[nodiscard]] bool get_IsLinearized() const;
    /// The document's bytes, NUL-terminated, owned by the document; null when none are held.
    [[nodiscard]] unsigned char* GetContent();
    /// Number of bytes of the document; in a document made from nothing the terminator counts as well.
    [[nodiscard]] unsigned int GetContentLen() const;

    // --- searching the bytes ---------------------------------------------------------------------------------------

    /// Offset of the last occurrence of a keyword that stands alone (white space around it, or '<' behind it), -1
    /// without one. "startxref" is sought in the last 1024 bytes only.
    int GotoLastId(const char* keyword);
    /// The first such occurrence behind `start`.
    int GotoNextId(const char* keyword, int start);
    /// The engine of both: mode 1 next, mode 2 last. 0 when no content is held.
    int GotoIdGeneral(const char* keyword, int mode, int start);
    /// Copies the line at `pos` into `out`, terminated, line ends in front of it skipped. `out` must hold the line;
    /// returns the offset behind its last character.
    int GetLine(char* out, int pos);
    /// At most `max` characters of it; `out` holds `max` + 1 bytes.
    int GetLine(char* out, int pos, int max);

    // --- object table ----------------------------------------------------------------------------------------------

    /// Stores an object under a free slot; the document then owns it. When the slot is taken nothing changes and the
    /// object stays the caller's.
    void set_pdf_obj_to_map(int slot, CPdfObj* obj);
    /// The object of a slot or null. Owned by the document.
    CPdfObj* get_pdf_obj_from_map(int slot);
    /// The object with the lowest slot not below the given one, or null.
    CPdfObj* search_map_by_value(int slot);
    /// The largest object number of all objects; 0 without objects.
    int get_max_obj_num_from_map();
    /// The largest object number in slots 0 to object count - 1; 0 without objects.
    int GetMaxObjNumFromPDFArray();
    /// The highest slot below the object count whose object has this number; 0 when none has.
    int GetArrayNum(int objnum);
    /// No effect; returns 1.
    int SetPdfObjArraySize(int size);
    /// No effect; returns 1.
    int SetPdfObjArrayResize(int size);
    /// Always 1.
    int IstObjPosKorrekt(int objnum, int offset);
    [[nodiscard]] int GetObjNum() const;
    void SetObjNum(int count);
    /// Takes over a pair of object numbers.
    void AddListItem(CPdfObjTransferListItem* item);
    [[nodiscard]] int GetListItemCount() const;
    /// One of the pairs (from 0), or null. Owned by the document.
    [[nodiscard]] const CPdfObjTransferListItem* GetListItem(int index) const;
    /// Logs the object table at debug level.
    void DebugShowObjectInfo();
    /// Logs the trailers at debug level.
    void DebugShowTrailerInfo();

    // --- trailers and cross-reference sections ---------------------------------------------------------------------

    /// Finds the newest cross-reference section from "startxref" and fills the last and the update trailer.
    void RetrieveLastPdfTrailer();
    /// Fills `trailer` from the section at `*offset`. Always true; a section that cannot be read has no content.
    bool RetrievePdfTrailer(CPdfTrailer* trailer, int* offset);
    /// Sets or clears the linearized flag (ISO 32000-2 annex F).
    void CheckLinearization();
    /// Records every entry of a section in the object table; false when the section cannot be read.
    bool ExtractTrailer(CPdfTrailer* trailer);
    /// Records the entries of the companion stream of a hybrid file at the trailer's /XRefStm.
    bool ExtractXRefStm(CPdfTrailer* trailer);
    /// Records one cross-reference entry: `type` is the keyword, "f" or "n".
    void SetPdfObjArrayData(int objnum, int offset, int gen, char* type, int streamObjNr, int indexInStream,
                            bool compressed);
    /// Reads all sections and loads all objects; false when that cannot be done.
    bool RetrieveObjects();
    /// The newest section's trailer, or null. Owned by the document.
    [[nodiscard]] CPdfTrailer* GetLastTrailer() const;
    /// The trailer prepared for an update, or null. Owned by the document.
    [[nodiscard]] CPdfTrailer* GetUpdateTrailer() const;
    /// Number of sections behind the newest one, in the order they were read.
    [[nodiscard]] int GetTrailerCount() const;
    /// One of them (from 0), or null. Owned by the document.
    [[nodiscard]] CPdfTrailer* GetTrailer(int index) const;

    // --- dictionary entries ----------------------------------------------------------------------------------------

    /// One entry of an object's dictionary; of two occurrences the later wins. `out` holds the object's content length
    /// + 1 bytes, zeroed by the caller. 1 when found, else 0.
    int ReadDictionaryEntry(CPdfObj* obj, const char* key, char* out, int* keyPos, int* endPos);
    /// The same, nested dictionaries and arrays included; the first occurrence wins.
    int ReadDictionaryEntryWithInDict(CPdfObj* obj, const char* key, char* out, int* keyPos, int* endPos);

    // --- pages -----------------------------------------------------------------------------------------------------

    /// The page with the 0-based index in document order, its box (four int, lower left corner first, fractions
    /// dropped) and rotation (degrees as written, a negative value plus 360), both inherited (ISO 32000-2 7.7.3.4). Null
    /// when there is no such
    /// page. `mediaBox` and `rotate` may be null. Owned by the document.
    CPdfObj* GetPdfPageObject(CPdfObj* pagesRoot, int pageIndex, int* mediaBox, int* rotate);
    /// Depth-first search of one level of the page tree, given as reference list without brackets. `*counter` counts
    /// the pages passed.
    CPdfObj* GetPageObjectFromArray(char* refList, int* counter, int pageIndex);
    /// Finds a text (terminated UTF-8) on the pages, by the rules of `CPdfTextSearch`.
    /// @param count      in: how many records there is room for; out: how many places were found, 0 on an error
    /// @param positions  gets as many of them as there is room for; null: they are only counted
    /// @return 0, VARNPDF_TEXT_NOT_FOUND (-1821), VARNPDF_TEXT_UNUSABLE (-1822), VARNPDF_SEARCH_INCOMPLETE (-1823),
    ///         VARNPDF_ROOT_OBJECT_MISSING (-1061), VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int SearchSigPos_PDFFile(int* count, SigPosStruct* positions, char* text);
    /// Page index (from 0) of a page object; -1 when no page has this number, no catalogue or an encrypted document.
    int GetPageNoFromObjRef(int* objNum, int* genNum);

    // --- signatures ------------------------------------------------------------------------------------------------
    // A null buffer asks for the size; a second call with a buffer of that size and the length holding it fetches the
    // value. Signature indexes count from 0 in ascending order of the fields' object numbers. Where a result is a code,
    // a lack of memory is VARNPDF_PDF_MEMORY_ALLOCATION (-1014).

    /// Counts the signed signature fields and refills the register.
    int PdfGetNumSignatures();
    /// The field object of a signature, or null for an index that is negative or not below the number of signatures,
    /// as last counted by `GetSignatureField`, minus one. Lets std::bad_alloc out.
    CPdfObj* GetPdfObjBySigIndex(int index);
    /// Appends the /T text of every signature field, signed or empty, as it stands in the file. Lets std::bad_alloc out.
    void create_vectorlist_of_signatures(std::vector<std::string>& names);
    /// One entry of an object; `buffer` holds the object's content length + 1 bytes. `*length` (may be null) receives
    /// the strlen of the value. 1 when found, else 0.
    int GetSignRefVal(CPdfObj* obj, char* key, char* buffer, int* length);
    /// One value of a signature dictionary (ISO 32000-2 table 255) by tag: 1 /Reason, 2 /Location, 3 /M, 4 /Name,
    /// 5 /Filter, 6 /SubFilter, 7 /ByteRange, 8 /Contents, 9 /FT, 10 /Cert, 11 /Type, 12 /R, 13 /ContactInfo.
    /// @param buffer  room for the signature dictionary's text; the document's length always does. Null asks for the
    ///                length
    /// @param length  receives the value's length in bytes; an absent key gives an empty value
    /// @return 0, or VARNPDF_NO_SIGNATURE_VALUE (-1): no such signature, its field has no /V, no such tag, or the value
    ///         is longer than the document
    int GetSignatureField(int index, int tag, char* buffer, int* length);
    /// The signed bytes. The length of the buffer is neither read nor written when one is given.
    /// @return 0, -1, VARNPDF_NO_SIGNATURE (-113) or VARNPDF_BYTE_RANGE_UNUSABLE (-22)
    int GetSignatureBlob(int index, unsigned char* buffer, unsigned long* length);
    /// The PKCS#7 value (RFC 5652), without the padding of its room.
    /// @return 0, -1, -22, VARNPDF_PKCS7_EMPTY (-114) or VARNPDF_PKCS7_UNREADABLE (-115)
    int GetSignaturePKCS7(int index, unsigned char* buffer, unsigned long* length);
    /// The PKCS#1 value (a DER OCTET STRING in /Contents) as hexadecimal text; the size counts bytes, the buffer holds
    /// twice as many characters.
    /// @return 0, -1, -22 or VARNPDF_PKCS1_UNREADABLE (-117)
    int GetSignPKCS1(int index, unsigned char* buffer, unsigned int* length);
    /// The same value as bytes; `*length` becomes the size. A length below it is refused with -117.
    int GetSignaturePKCS1(int index, unsigned char* buffer, unsigned long* length);
    /// Text of one certificate of /Cert, terminated: hexadecimal digits (the size counts bytes, half as many) or the
    /// value as it stands. The buffer holds 2 * size + 2 bytes.
    /// @return 0, VARNPDF_CERTIFICATE_MISSING (-118) or VARNPDF_INDEX_NEGATIVE (-1008)
    int GetSignPKCS1Cert(int index, int certificate, unsigned char* buffer, unsigned int& length);
    /// The same certificate as bytes; also -117 when its digits cannot be decoded.
    int GetSignaturePKCS1Cert(int index, int certificate, unsigned char* buffer, unsigned long* length);
    /// The register filled by `PdfGetNumSignatures`. Owned by the document.
    [[nodiscard]] CPdfSigInfo* GetSigInfo();

    // --- appended updates ------------------------------------------------------------------------------------------
    // Full mode: the stream first receives the old document. Tail mode: it receives the appended part only, and file
    // offsets are its position plus the old document's length.

    /// Starts the output stream anew; `size` is the old document's length.
    void ResetByteStream(unsigned int size);
    /// Appends the whole old document to the stream (full mode). 0 or -1014.
    int WriteOld2ByteStream();
    /// The stream's bytes, owned by the document, valid until the next write.
    [[nodiscard]] const char* GetByteStream() const;
    [[nodiscard]] int GetByteStreamLen() const;
    /// Writes one object and records it in the container, at its offset in full mode.
    void WriteTextAnnotation(CPdfTrailer* trailer, CPdfXRefContainer* xrefs, CPdfObj* obj);
    /// Writes the text of a new or changed object, with its own number and generation, and records it in the container
    /// at the place where it stands in the file: `tailMode` as for `WriteTrailer`.
    /// @return 0, VARNPDF_UPDATE_OBJECT_MISSING (-1024: a null pointer, or an object without number or text) or
    ///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int WriteContent(CPdfXRefContainer* xrefs, CPdfObj* obj, bool tailMode);
    /// Writes the cross-reference table of the container and the trailer; `renewId` renews the second part of /ID.
    /// 0 or -1014.
    int WriteTrailer(CPdfXRefContainer* xrefs, CPdfTrailer* trailer, bool renewId, bool tailMode);

    // --- form fields -----------------------------------------------------------------------------------------------

    /// The object that carries the form's /Fields: the AcroForm dictionary, or the catalogue when the form stands in it
    /// directly; null without a form. Owned by the document.
    CPdfObj* GetObjWithFieldsEntry();
    /// Reads the form's fonts and the text fields: every object with a literal /T, except the one with the highest
    /// number. Sets the object count to /Size. Names and values are the texts between the parentheses, escapes and all.
    /// Fields whose widgets stand apart, full names and other field types: see `CPdfForm`.
    /// @return the caller deletes it; empty when the document has no fields, null when there is no memory
    CPdfFieldContainer* ReadFields();
    /// Copies the streams that each field's /AP names (/N, /R, /D in this order) into the field.
    void ReadApperanceObjects(CPdfFieldContainer* container);
    /// Writes every field marked new (`CPdfField::GetIsNew`), then its appearances, with `WriteTextAnnotation`. An
    /// appearance that several fields share is written once.
    /// @return the number of fields in the container, or VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int AppendObjects(CPdfTrailer* trailer, CPdfXRefContainer* xrefs, CPdfFieldContainer* container);

    // --- documents from nothing ------------------------------------------------------------------------------------
    // SetHeader, CreateObject for each object (the catalogue by CreateRoot), WriteObjArrayToContent, WriteXrefToContent,
    // WriteTrailerToContent, then WriteAndClose or GetContent. Without memory, or beyond 2 GB, those that return a code
    // return VARNPDF_PDF_MEMORY_ALLOCATION (-1014) with nothing changed; std::bad_alloc or std::length_error leaves the
    // others.

    /// Makes the object with the number object count + 1, generation 0, in slot object count, and counts it.
    /// @param comment  line behind the object's head, without "%"; "" for none
    /// @param body     `bodyLen` bytes between head and tail, which `type` chooses: dictionary (64), array (32), any
    ///                 other body (2); other values give neither
    /// @return 0, or -1 with nothing changed when the slot is taken
    int CreateObject(std::string comment, int ignored, const char* body, int bodyLen, CPdfObj::ContentType type);
    /// Puts the file header in front of the content.
    void SetHeader(char* header);
    /// Appends `len` bytes; with `setPos` the object of `slot` records where.
    void AppendToContent(char* data, int len, bool setPos, int slot);
    /// Appends the objects of the slots 0 to object count - 1, which record their offsets. 0, or -1 with nothing
    /// appended when a slot is empty.
    int WriteObjArrayToContent();
    /// Appends the cross-reference table of these objects and keeps its offset. 0 or -1 likewise.
    int WriteXrefToContent();
    /// Appends the trailer, with `id` as both file identifiers.
    int WriteTrailerToContent(int size, std::string id);
    /// Writes the content to the file named by `set_pdf_file_name` and closes the input file. A file that cannot be
    /// written whole is removed. 0, or -1 when there is no content or it cannot be written.
    int WriteAndClose();
    /// Sets the fixed file identifier of documents from nothing, <123456>.
    void CreateIdent();
    [[nodiscard]] std::string GetIdent() const;
    /// Makes the catalogue of a portfolio and sets the root object number. The arguments are values as they stand in
    /// the file: `collection` the further entries of the collection dictionary, the last three "" for no such entry.
    /// @return the result of `CreateObject`
    int CreateRoot(std::string openAction, std::string names, std::string pages, std::string collection,
                   std::string metadata, std::string pageLabels, std::string outputIntents);
    [[nodiscard]] int GetRootObjNum() const;
    void SetRootObjNum(int objnum);
    [[nodiscard]] int GetPagesParent() const;
    void SetPagesParent(int objnum);
    /// Offset of the cross-reference table of a document from nothing.
    [[nodiscard]] int GetXRefStartPos() const;
    void SetXRefStartPos(int pos);

    // --- objects of the table --------------------------------------------------------------------------------------

    /// `CPdfObj::AddStream` on the object of the slot; an empty slot changes nothing.
    void AddStreamInPdfArray(int slot, char* data, int len);
    /// `CPdfObj::AddDictionaryEntry` on the object of the slot; 0 for an empty slot.
    int AddDictionaryEntryInPdfArray(int slot, const char* key, const char* value);
    /// Adds `item`, e.g. " 12 0 R", to an array text in place: in front of its last "]", or at the end of a text without
    /// brackets. Every "null" goes, with one blank behind it. `array` has room for the item.
    void AppendToRefArray(char* array, const char* item);
    /// The same with a reference to the object.
    void AppendToRefArray(char* array, CPdfObj* obj);

    // --- signing ---------------------------------------------------------------------------------------------------

    /// true: /SubFilter /ETSI.CAdES.detached, false (the default): /adbe.pkcs7.detached.
    void setUserETSISubFilter(bool etsi);
    [[nodiscard]] bool isUserETSISubFilter() const;
    /// The AcroForm object of the catalogue, or null when it has none or a direct one. Sets the object count to /Size.
    CPdfObj* GetAcroFormObj();
    /// The `index`-th terminal field below a reference list without brackets, counting every field with /FT; the
    /// caller resets the counter first.
    CPdfObj* GetSigObjectFromArray(char* refList, int index);
    void ResetFieldCounter();
    /// Rectangle (fractions dropped) and page index of a signature. 0, -1 when there is none with this index, or -1014.
    int GetSignaturePositions(int sigIndex, int* x1, int* y1, int* x2, int* y2, int* page);
    /// Writes its name to the debug log; changes nothing in this release.
    void correct_annots();
    /// Writes all objects of a signature into the update: widget, signature dictionary, appearance, metadata. Numbers
    /// count from the widget's; every object becomes an entry of `xref`.
    /// @param mode 0 signed; the int behind the first-signature flag are unused (-1)
    /// @return 0, or -1014 (no memory), -1041 (compressing failed), -1083 (image unreadable)
    int WriteSignature(CPdfXRef* xref, CPdfObj* widget, CPdfObj* page, CPdfObj* fieldLock, CPdfObj* metadata, int mode,
                       int visible, CPdfSigInfo* info, int* rect, int* size, int rotation, int appearanceOption1,
                       char* reason, char* location, char* name, char* signDate, bool firstSignature, int unused1,
                       int unused2, int unused3, int unused4, int existingSignatures, unsigned int contentsSize,
                       int additionalLayers, int useImage, char* imageFile, FormfieldInfo_tag* fields, int fieldCount,
                       int transparentImage, CPdfLockInfo* lock);
    /// Writes the widget merged with its field; fills `entry`.
    void write_annot(CPdfXRefEntry* entry, CPdfObj* widget, CPdfObj* page, CPdfSigInfo* info, int* rect, int mode,
                     std::vector<std::string> names, CPdfObj* fieldLock, CPdfLockInfo* lock);
    /// Writes the signature dictionary with its placeholders; fills `entry` and the byte ranges of `info`.
    void WriteSigBlock(CPdfXRefEntry* entry, int objnum, int gen, CPdfSigInfo* info, char* reason, char* location,
                       char* name, char* signDate, std::uint32_t contentsSize, CPdfLockInfo* lock);

    // --- lock state ------------------------------------------------------------------------------------------------

    /// Evaluates whether a signature locks the document against every further change; `Open` does this.
    void check_lockstate();
    /// 1 when everything is locked, else 0.
    [[nodiscard]] int get_lockstate() const;

private:
    friend struct varnpdf::Access;

    std::unique_ptr<varnpdf::PdfState> state_;
};

/// Position of the first occurrence of `needle` in `haystack`, both lowered; -1 without one.
VARNPDF_EXPORT int stringfind_lower(std::string haystack, std::string needle);
