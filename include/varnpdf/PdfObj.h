// CPdfObj: one indirect object, held as the text it has in the file.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "varnpdf/export.h"

class CFontObj;

/// One indirect object (ISO 32000-2 7.3.10): number, generation, raw text from the object number through "endobj",
/// position in the file and how the cross-reference data stores it. There is no parsed tree; questions are answered
/// by scanning the text.
///
/// An object that was read from a document borrows its text from the document's buffer until it is changed, copied or
/// asked for a terminated `GetContent()`. It must not outlive that document.
///
/// Without memory an object stays as it is. A member that returns a pointer returns null then, an edit whose result is 1
/// or 0 returns 0, one with result codes VARNPDF_PDF_MEMORY_ALLOCATION (-1014). The others that make or edit text throw
/// std::bad_alloc.
class VARNPDF_EXPORT CPdfObj {
public:
    /// Result of classification.
    enum ContentType : std::int32_t {
        eContentUndefined = 0,    ///< not classified
        eContentOther = 2,        ///< any other body, e.g. a stream with its dictionary
        eContentArray = 32,       ///< the body contains an array
        eContentDictionary = 64,  ///< the body is a dictionary; also the kind of a trailer
        eContentUnknown = 256,    ///< the text could not be classified
    };

    CPdfObj();
    CPdfObj(int objNum, int genNum, int fromPos, int toPos);
    CPdfObj(const CPdfObj&) = delete;
    virtual ~CPdfObj();

    /// Resets the fields to those of a new object, except the place in an object stream.
    void Init();
    /// Copies number, generation, positions, text (a fresh copy), in-use keyword, status and object type. Dictionary
    /// types, object-stream placement and decode parameters are not copied.
    void CopyFrom(CPdfObj* other);
    CPdfObj& operator=(CPdfObj& other);

    [[nodiscard]] int GetObjNum() const;
    void SetObjNum(int n);
    [[nodiscard]] int GetGenNumber() const;
    void SetGenNumber(int n);
    /// Byte offset of the object's first byte in the file, -1 when unknown.
    [[nodiscard]] int GetFromPos() const;
    void SetFromPos(int pos);
    [[nodiscard]] int GetToPos() const;
    void SetToPos(int pos);
    void SetPosition(int from, int to);

    /// The text, NUL-terminated (it may hold NULs itself: use `GetContentLen`), or null. Owned by the object, valid
    /// until its next change. To change the text use the operations below.
    unsigned char* GetContent();
    /// Bytes of text, the terminator not counted.
    [[nodiscard]] int GetContentLen() const;
    /// Sets the recorded length only. A length beyond the stored text is recorded but never read.
    void SetContentLen(int len);
    /// The text without copying it: as much of the recorded length as is stored. Valid until the next change of this
    /// object and, for an object read from a document, as long as the document.
    [[nodiscard]] std::string_view content() const noexcept;

    [[nodiscard]] bool GetStatus() const;
    void SetStatus(bool status);
    [[nodiscard]] ContentType GetObjectType() const;
    void SetObjectType(ContentType type);
    [[nodiscard]] bool GetIsCompressed() const;
    void SetIsCompressed(bool compressed);
    /// Number of the object stream that holds the object (ISO 32000-2 7.5.7).
    [[nodiscard]] int GetCompressStreamObjNr() const;
    void SetCompressStreamObjNr(int n);
    /// Index of the object inside its object stream, from 0.
    [[nodiscard]] int GetPositioninStreamArray() const;
    void SetPositioninStreamArray(int n);
    [[nodiscard]] bool IsInUse() const;
    /// Stores 'f' or 'n'; any other character is ignored.
    void SetInUseKeyword(char c);

    [[nodiscard]] bool GetbHasDecodeParms_Colums() const;
    [[nodiscard]] bool GetbHasDecodeParms_Predictor() const;
    [[nodiscard]] long GetiDecodeParms_Colums() const;
    [[nodiscard]] long GetiDecodeParms_Predictor() const;
    /// Stores /Columns; the has-flag says whether it is 0 or more.
    void SetiDecodeParms_Colums(int columns);
    /// Stores /Predictor; the has-flag says whether it is 1, 2 or 10 to 15 (ISO 32000-2 table 10).
    void SetiDecodeParms_Predictor(int predictor);

    /// Value of /Type as it stood when the text was last set, e.g. "/Sig", or null. Owned by the object.
    char* get_dictionary_type();
    /// Value of /Subtype likewise.
    char* get_dictionary_subtype();

    /// Takes a copy of `len` bytes of text. Null or a length below 1 removes the text and leaves the recorded length.
    /// Without memory for the copy the object keeps the text it has.
    void SetContent(unsigned char* text, int len);
    /// `SetContent` with a debug line.
    void SetContentDummy(unsigned char* text, int len);
    /// Sets only the recorded length to `len`; the text is not taken.
    void SetContentDummySpezial(unsigned char* text, int len);
    /// Puts a stream of `len` bytes in front of "endobj". Without "endobj" nothing changes.
    void AddStream(char* data, int len);
    /// Rewrites /Length to the length of the stream data. Without stream or /Length nothing changes.
    void UpdateLengthTag();
    /// True when the first `len` bytes of `buf` contain "endobj" or "ENDOBJ".
    bool FindEndObjinNext(char* buf, int len);
    /// Classifies object text: `eContentArray` when a '[' stands anywhere behind "obj", else `eContentUnknown`.
    ContentType check_object_type(char* text, int len);

    /// Takes number and generation from a reference text, with or without a word in front. 1 when read, else 0.
    int GetIdFromReference(char* ref);
    /// Takes them from the `index`-th reference (from 0) of an array text. 1, or 0 when there are too few references.
    int GetIdFromReferenceArray(char* array, int index);
    /// Number of references: the 'R' between the first '[' and ']', or in the whole text without brackets.
    int GetNumberOfIDs(char* text);
    /// Copies this object's text from its first '[' through its first ']', terminated, into `out` (content length + 1
    /// bytes). 0, or -1 for an index above 0, no text or no brackets.
    int GetArrayContent(char* out, int index);

    /// Finds a key at the top level of a dictionary text in one pass, skipping strings, arrays and nested
    /// dictionaries. Keys and values are not told apart: a name value equal to the key matches as well.
    /// @param text,len       the text; may hold NULs
    /// @param key            with or without its leading '/'
    /// @param out            room for `len` bytes, zeroed by the caller: the value is not terminated
    /// @param keyPos,endPos  offsets of the key's '/' and just behind the value; 0 when not found
    /// @param trimEnd        1 ends the value before any trailing white space (for splicing), 0 before spaces only
    /// @param outLen         when not null and found, the value's length
    /// @param namesAsValues  0: a name behind the key is the next key and the value is empty
    /// @param start          offset at which the scan begins
    /// @return 1 when found, else 0
    static int ReadDictionaryEntry2(char* text, int len, const char* key, char* out, int* keyPos, int* endPos,
                                    int trimEnd, int* outLen, int namesAsValues, int start);
    /// The plain lookup in a text: `ReadDictionaryEntry2` from its start, names as values.
    static int ReadDictionaryEntry(char* text, int len, const char* key, char* out, int* keyPos, int* endPos);
    /// The lookup in the object's own text; of two occurrences the later wins. `out` needs content length + 1 bytes.
    int ReadDictionaryEntry(const char* key, char* out, int* keyPos, int* endPos, int trimEnd, int* outLen,
                            int namesAsValues);
    /// Inserts `entry` before the last ">>", completed with CR LF when it does not end a line. 1, or 0 without ">>".
    int AddDictionaryEntry(char* entry);
    /// Inserts "key value" likewise.
    int AddDictionaryEntry(const char* key, const char* value);
    /// Removes an entry. The lookup's result.
    int DeleteDictionaryEntry(const char* key, int namesAsValues);
    /// Puts "key value" in place of an entry. The lookup's result.
    int ReplaceDictionaryEntry(const char* key, char* value);
    /// Inserts text into the first text-showing operation ("Tj") of a content stream. 0, or -1801 without one.
    int ReplaceTjValue(char* text);
    /// Replaces the data of a stream, packed again when it was packed by /FlateDecode; /Length fits.
    /// @return 0, VARNPDF_NO_STREAM (-1802) with nothing changed: no stream, or one with another filter, or
    ///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int ReplaceStream(unsigned char* data, int len);
    /// Lets the appearance stream of a text field show another value: between "/Tx BMC" and its "EMC", in the font, size
    /// and place of the text that stood there. Without text a line is made that fits /BBox, in `font` (null: Helv).
    /// @param value   UTF-8; text that is not UTF-8 is taken to be Latin-1. Shown in WinAnsiEncoding, what it lacks as ?
    /// @param inField 1: in the marked part, which is made when there is none; 0: the first text of the whole content
    /// @return 0, -1802 or -1014 likewise, or VARNPDF_NO_TJ (-1801): no text to replace (`inField` 0)
    int ReplaceValue(const char* value, CFontObj* font, int inField);

    /// The first entry of a dictionary text, or of what is left of one, by the rules of the lookups.
    /// @param key,value  room for `len` + 1 bytes each; terminated. The key has its '/'
    /// @param keyPos,valuePos,endPos  offsets in `text` of the key, of the value and just behind the value
    /// @return 1, or 0 when the dictionary ends or cannot be read
    static int ReadFirstDictionaryEntry(char* text, int len, char* key, char* value, int* keyPos, int* valuePos,
                                        int* endPos);
    /// The same on `text` + `offset`, from where the offsets are counted as well. Go on with the sum of `offset` and the
    /// end of the entry before.
    static int ReadNextDictionaryEntry(char* text, int len, int offset, char* key, char* value, int* keyPos,
                                       int* valuePos, int* endPos);

    /// `SetContent` with a view.
    void setContent(std::string_view text);
    /// Takes text that somebody else keeps alive and unchanged, without copying it. For the reader.
    void borrowContent(std::string_view text) noexcept;
    /// Lets changes of the text count up `*revision` (null: nobody is told). For the owner of an object table.
    void reportChangesTo(std::uint64_t* revision) noexcept;
    /// The value of /Type by the object lookup (of two occurrences the later), empty when there is none. Scanned once
    /// for each state of the text.
    [[nodiscard]] std::string_view typeEntry();
    /// The value of /FT (ISO 32000-2 12.7.4) likewise.
    [[nodiscard]] std::string_view fieldTypeEntry();

private:
    VARNPDF_HIDDEN void assign(std::string_view text);
    VARNPDF_HIDDEN void splice(std::size_t begin, std::size_t end, std::string_view replacement);
    VARNPDF_HIDDEN void rememberDictionaryTypes();
    VARNPDF_HIDDEN void findEntries();
    VARNPDF_HIDDEN void changed() noexcept;

    ContentType objectType_ = eContentUndefined;
    char inUseKeyword_ = 'f';
    bool status_ = true;
    bool isCompressed_ = false;
    bool hasColumns_ = false;
    bool hasPredictor_ = true;
    bool typesKnown_ = true;
    bool entriesKnown_ = false;
    int streamObjNr_ = 0;
    int positionInStream_ = 0;
    int objNum_ = -1;
    int genNum_ = -1;
    int fromPos_ = -1;
    int toPos_ = -1;
    int contentLen_ = 0;
    int storedLen_ = 0;
    int predictor_ = 1;
    int columns_ = 0;
    std::uint32_t typeEntryPos_ = 0;
    std::uint32_t typeEntryLen_ = 0;
    std::uint32_t fieldTypePos_ = 0;
    std::uint32_t fieldTypeLen_ = 0;
    const char* text_ = nullptr;              // borrowed, or owned_.get()
    std::unique_ptr<unsigned char[]> owned_;  // terminated copy, when there is one
    std::unique_ptr<char[]> dictionaryType_;
    std::unique_ptr<char[]> dictionarySubtype_;
    std::uint64_t* revision_ = nullptr;
};

/// Pair of an object's number in the document it is copied from and in the one it is copied to.
class VARNPDF_EXPORT CPdfObjTransferListItem {
public:
    CPdfObjTransferListItem(int oldNr, int newNr);
    [[nodiscard]] int getOldObjNr() const;
    [[nodiscard]] int getNewObjNr() const;
    void setOldObjNr(int n);
    void setNewObjNr(int n);

private:
    int oldNr_;
    int newNr_;
};

/// True when the first `len` bytes of `buf` contain "endobj" or "ENDOBJ".
VARNPDF_EXPORT bool FindEndObjinNext(char* buf, int len);
