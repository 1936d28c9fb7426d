// CPdfHelper: readers of PDF syntax and the utilities on references and arrays.
#pragma once

#include <sys/timeb.h>

#include <memory>
#include <string>

#include "varnpdf/export.h"

class CPdfObj;
struct FormfieldInfo_tag;

/// Readers that recognise one kind of object (ISO 32000-2 7.3) at the start of a NUL-terminated text, copy its raw
/// text and say how far it reached, and small utilities on such texts.
///
/// Conventions of the readers: they return 1 for success and 0 for failure. Positions are byte offsets from `s`, with
/// the white space in front of the object counted; a length is the offset just behind the object, where the next
/// reader starts. `out` is a zero-filled buffer of the caller, at least strlen(`s`) + 1 bytes. White space and
/// delimiters are those of `CTokHelp`. Arrays and dictionaries nested deeper than 500 cannot be read.
///
/// Without memory a member that returns a pointer returns null, one that says 1 or true for success returns 0 or false,
/// one that says 0 returns VARNPDF_PDF_MEMORY_ALLOCATION (-1014); nothing is written then, and no exception leaves.
class VARNPDF_EXPORT CPdfHelper {
public:
    CPdfHelper();
    virtual ~CPdfHelper();

    // Readers

    /// Offset of the first byte that is not white space, at most `len`; `len` below 1 gives 0.
    static int SkipWhitespaces(const char* s, int len);
    /// Every byte of `s` is white space; true for "".
    static bool CheckOnlyWhiteSpaces(const char* s);
    /// Reads a number (ISO 32000-2 7.3.3): `*isFloat` 1 with `*f`, or 0 with `*i`; `*end` is the offset behind it.
    /// `len` bounds the white space in front. Only the first half of the token must be made of digits, signs and
    /// points, so that "12R" reads as 12. Values out of range become the largest or smallest of the type. Nothing is
    /// stored on failure. `flag` is ignored.
    static int ReadNumber(const char* s, unsigned len, float* f, int* i, int* isFloat, int* end, bool flag);
    /// Reads two numbers; nothing is stored unless both can be read.
    static int ReadPairOfNumbers(const char* s, float* f1, float* f2, int* i1, int* i2, int* isFloat1, int* isFloat2,
                                 int* end);
    /// Counts the numbers of an array, with or without brackets, into `*count`. 0 when an element is no number.
    static int GetNumArraySize(const char* s, int* count);
    /// Reads a string (ISO 32000-2 7.3.4): `*kind` 1 literal, 2 hexadecimal, 0 none; `*len` is the offset behind the
    /// closing delimiter, 0 when there is none. `out` receives the text from `s` on. `flag` is ignored.
    static int ReadString(const char* s, char* out, int* kind, int* len, bool flag);
    /// Reads an array (ISO 32000-2 7.3.6) through its "]". The empty array cannot be read.
    static int ReadArray(const char* s, char* out, int* len);
    /// Reads the first dictionary (ISO 32000-2 7.3.7) of the text. With `cut`, `out` receives the text through its ">>"
    /// and `*len` its length; without, the whole text. The empty dictionary cannot be read.
    static int ReadDict(const char* s, char* out, int* len, bool cut);
    /// Reads any object. `*type`: 0 nothing recognised, 1 boolean, 2 number, 3 string, 4 name, 5 array, 6 dictionary,
    /// 7 stream, 8 null, 9 reference; it is set on failure too, with `*len` 0. `out` receives the object's text without
    /// the white space in front. A boolean is recognised only when nothing follows; for " true" `*len` is one more than
    /// the text. A stream ends one byte before "endstream".
    static int ReadObject(const char* s, char* out, int* type, int* len);
    /// Reads element `index`, counted from 0, of an array of numbers and references.
    static int ReadArrayElement(const char* s, char* out, int index);
    /// Reads the value of `key`, with or without "/", from the first dictionary of the text; keys of nested
    /// dictionaries do not count. `*keyPos` is the offset of the key, `*end` the offset behind the value; both are 0 on
    /// failure. A key with ">>" behind it has an empty value.
    static int ReadDictEntry(const char* s, const char* key, char* out, int* keyPos, int* end);
    /// "xref" stands at the start, behind at most `len` bytes of white space.
    static bool IsTrailerDict(const char* s, int len);
    /// Reads the trailer dictionary (ISO 32000-2 7.5.5) behind a cross-reference table that starts with "xref".
    /// `*start` is the offset of its "<<", `*end` the offset behind its ">>". Each bracket that follows one like itself
    /// counts: where ">>>>" ends two dictionaries, the text ends with the third.
    static int ReadTrailerDict(const char* s, char* out, int* start, int* end);
    /// Copies what stands between "obj" with the white space behind it and "endobj", its length into `*outLen`.
    /// Without "obj" that is nothing, without "endobj" the rest. `len` is ignored. Returns 1.
    static int GetObjectContent(const char* s, int len, char* out, int* outLen);
    /// "[" stands behind at most `len` bytes of white space; `len` below 2 gives false.
    static bool IsArray(const char* s, int len);
    /// "<<" stands behind at most `len` bytes of white space; `len` below 3 gives false.
    static bool IsDict(const char* s, int len);
    /// A reference (ISO 32000-2 7.3.10) stands at the start: number, number, "R". `*num` and `*gen` receive the
    /// numbers, 0 for one with a decimal point; nothing is stored otherwise.
    static bool IsReference2(const char* s, int* num, int* gen);
    /// Puts a backslash before each parenthesis and backslash, except at the first byte and behind a backslash. `out`
    /// is zero-filled and twice as long as `in`; no terminator is written. Returns 1.
    static int CreateLiteralEscapeSeq(const char* in, char* out);
    /// Copies `in` without any backslash. Returns 1.
    static int RemoveLiteralEscapeSeq(const char* in, char* out);
    static int RemoveLiteralEscapeSeq(const char* in, std::string& out);

    // References and arrays. White space is what isspace() of the C locale accepts.

    /// `s` is one dictionary: "<<" to ">>" with as many "<" as ">" in it. White space around it does not matter.
    static bool IsDictionary(char* s);
    /// `IsDictionary` on the first `len` bytes.
    static bool IsDictionary2(char* s, int len);
    /// `s` holds no pair of brackets and scans as "word number number" or as "number number"; the numbers are stored.
    /// The "R" is not asked for. After a word with a single number behind it the result is true as well, with what can
    /// be read from the start stored.
    static bool IsReference(char* s, int* num, int* gen);
    /// The object's body is an array of one reference with white space between all tokens. Writes the accepted tokens
    /// to standard output.
    static bool IsReference_MS(CPdfObj* obj, int* num, int* gen);
    /// The rule of `IsReference_MS` from the start of the object's text.
    static bool IsReference(CPdfObj* obj, int* num, int* gen);
    /// The object's text contains "/Page" and does not contain "/Pages".
    static bool IsPageObject(CPdfObj* obj);
    /// `out` becomes the text of `in` from the first "[" through the first "]" behind it, "" without brackets.
    /// Returns 1.
    static int StripReferenceArray(char* in, char* out);
    /// Removes white space at both ends in place, then one opening bracket in front and one closing bracket at the end,
    /// where they stand: `kind` 1 [ ], 2 < >, any other ( ).
    static void StripBrackets(char* s, int kind);
    /// Puts `s` between [ ] (`kind` 1) or ( ) in place; needs two bytes of room.
    static void CreateBrackets(char* s, int kind);
    /// Number of references in an array text of `len` bytes: the "R" in the first `len` - 2 bytes of its body.
    static int GetArrayAnz(char* s, int len);
    /// 1 for an array of references, 2 when a number stands in front of the first reference, else 0.
    static int GetArrayType(char* s, int len);
    /// Copies from the first `len` - 2 bytes of an array's body: `which` -1 through the last "R", 0 up to the last "R"
    /// (nothing without "R"), any other the first byte; `len` below 3 copies the first byte. `out` is zero-filled; no
    /// terminator is written.
    static void GetArrayEntry(char* s, int len, int which, char* out);
    /// Converts the first `len` characters of hexadecimal text, carriage returns not counted, to `len` / 2 bytes. What
    /// is no digit counts 0. Returns 1.
    static int StringToHex(char* hex, unsigned len, unsigned char* out);
    /// Removes white space at the end in place.
    static void StringTrimRight(char* s);
    /// Cuts `s` to at most `n` characters in place and returns it.
    static char* left(char* s, int n);
    /// See `CTokHelp::String2Int`.
    static int String2Int(char* s);
    /// LF or CR.
    static bool IsEOL(char c);
    /// See `CTokHelp::AppendCharToString`.
    static void AppendCharToString(char* s, char c);
    /// `base` to the power of `exp`, wrapping at 32 bits; 1 for `exp` below 1.
    static int potenz(int base, int exp);
    /// Removes the first `flag` from `s` in place. 1, also for an empty flag; 0 when it does not occur.
    static int RemoveFlag(char* s, const char* flag);
    /// Offset of the first `pattern` in the `len` bytes at `buf`, 0 when there is none.
    static int FindPosition(char* buf, int len, std::string pattern);

    // Streams and DER

    /// Inflates one zlib stream (RFC 1950), despite the name. `*outLen` is the room of `out` and becomes the length of
    /// the result. The status of zlib's uncompress: 0, -3 (Z_DATA_ERROR: damaged, or it ends too early), -4
    /// (Z_MEM_ERROR), -5 (Z_BUF_ERROR: too little room); -2 (Z_STREAM_ERROR) for a null argument.
    static int Deflate(unsigned char* in, unsigned int inLen, unsigned char* out, unsigned long* outLen);
    /// Big-endian unsigned value of `width` bytes (ISO 32000-2 7.5.8.3); 0 for `width` below 1.
    static int getStreamValue(const void* bytes, int width);
    /// Undoes the predictor of decoded stream data (ISO 32000-2 7.4.4.4) as the decode parameters of `params` tell.
    /// `in` holds `inLen` bytes, `out` has room for `outLen`; `size` is the number of entries announced.
    static bool TransformxRef(unsigned char* in, int inLen, unsigned char* out, int outLen, CPdfObj* params, int size);
    /// Bytes of the DER or BER element at `der`, header and content together (ITU-T X.690 8.1); an indefinite length is
    /// followed to its end. -1 when the `len` bytes do not hold a header.
    static int getSeqLength(const unsigned char* der, int len);

    // Signing

    /// Rectangle (four int) of a signature of `size` (width, height) on a page: `pageBox` has four int, `pos` x and y.
    /// `posMode`: 0 percent of the page, 1 points from the lower left, 2 upper left, 3 lower right, 4 upper right
    /// corner of the page as it is seen. On a page turned by 180 degrees the corners come out in reversed order. 1 when
    /// the rectangle lies inside the page, whose own origin is not added; else 0.
    static int GetSignaturePos(int rotation, int* pageBox, int* size, int posMode, int* pos, int* rect);
    /// May the text stand between parentheses as it is (ISO 32000-2 7.3.4.2)? 0, VARNPDF_TEXT_TOO_LONG (-1005) when it
    /// is longer than `max`, VARNPDF_TEXT_BREAKS_STRING (-1006). Null counts as empty.
    static int CheckThis(const char* text, int max);
    /// The content stream of the text layer, terminated; `*length` its length. A null buffer asks for the length.
    /// Returns 0.
    static int GetTextStreamLayer(char* buffer, int* length, int width, int height, FormfieldInfo_tag* fields,
                                  int fieldCount);
    /// Resource name of a font, at most 7 characters and a terminator: family 0 Helvetica, 1 Times, 2 Courier, 3
    /// symbols; style 0 regular, 1 bold, 2 italic, 3 bold italic. Returns 0.
    static int IntFontname(char* out, int family, int style);

    // Dates. A PDF date (ISO 32000-2 7.9.4, after ISO 8824) is D:YYYYMMDDHHmmSS+HH'mm', ISO 8601 as XMP has it is
    // YYYY-MM-DDTHH:mm:SS+HH:mm. Zones are the process's (TZ); a `timeb` counts minutes west of UTC. No text is read
    // beyond its end: where fixed positions are taken from one that is too short, the result is empty, null or false.

    /// The current local time as PDF date in `out` (24 bytes). A zone that has daylight-saving rules is given one hour
    /// more all year. Returns 0.
    static int NowPDF(char* out);
    /// The local time of `t` with the zone of `t` in `out` (32 bytes), "" for a time outside the years 0 to 9999. West
    /// of UTC the zone's hour has one digit and zone minutes have a sign, e.g. -5'00'; see `Convert8824DoubleH`.
    /// Returns `out`.
    static char* TimeStruct2AdobeDateString(struct timeb* t, char* out);
    /// The same as text to show: `format` 0 "2026.11.15 02:33:51 ", 1 "2026-11-15 02:33:51 ", any other nothing, and the
    /// zone behind it.
    static char* TimeStruct2LocaleDateString(int format, struct timeb* t, char* out);
    /// `s` is a well-formed PDF date; fields at its end may be missing as a whole. The days of a month are not counted.
    static bool IsValidDateString(char* s);
    /// `s[from]` up to `s[to - 1]` are digits of a number from `min` to `max`, or `s` is shorter than `to`. `what` names
    /// the field in a debug line.
    static bool CheckDatePosValue(char* s, int from, int to, int min, int max, const char* what);
    /// `s[from]` is '+', '-' or 'Z', or `s` is shorter than `to`.
    static bool CheckDatePosUTValue(char* s, int from, int to);
    /// Fills `t` from a complete PDF date of the years 1970 to 2037. The date is taken as local time; its zone decides
    /// only whether daylight-saving time is assumed, and is stored.
    /// @return the text ctime has for `t`, valid until the thread's next call; null, with `t` untouched, on failure
    static char* AdobeDateString2TimeStruct(char* s, struct timeb* t);
    /// Always null: the time asked for (YYYYMMDDHHmmSSZ) must be a PDF date as well, and none is both.
    static char* GenTime2TimeStruct(char* s, struct timeb* t);
    /// The date with the one-digit hour of its zone widened to two digits. Valid until the thread's next call.
    static char* Convert8824DoubleH(char* s);
    /// The date as ISO 8601, "" for less than its 22 fixed positions. Valid until the thread's next call.
    static char* Convert8824to8601(char* s);
    /// Replaces the XMP date whose key stands at `pos`: element content, or an attribute value in apostrophes. `buf` has
    /// `size` bytes, the last 57 of them free. `*newLen` receives the length of the text. 1, or 0 with nothing changed
    /// when the value is not there (in double quotes, say) or the new one does not fit.
    static int ReplaceDateISO8601(char* buf, int pos, int size, char* date, int* newLen);
    /// Replaces the literal string that is the value of the key at `pos` likewise.
    static int ReplaceDateISO8824(char* buf, int pos, int size, char* date, int* newLen);
    /// Replaces the modification date in XMP metadata or in a document information dictionary by a PDF date. The first
    /// of pdf:ModDate, xmp:ModifyDate, xap:ModifyDate, xap:MetadataDate, ModDate that occurs is the one. Returns 1.
    static int ReplaceModDate(CPdfObj* obj, char* date);

private:
};
