// CPdfInfo: what is signed in a file, one call per question.
#pragma once

#include <list>
#include <string>

#include "varnpdf/SignatureFields.h"
#include "varnpdf/export.h"

/// Every call opens the file, answers and closes it; ask `CPdf` for more than a few values of one document. Signature
/// indexes count from 0, tags are those of `CPdf::GetSignatureField`. An error of `CPdf::Open` is returned as it is,
/// VARNPDF_PDF_MEMORY_ALLOCATION (-1014) also where memory runs out later.
///
/// Sizes: a null buffer asks for the size in bytes; a second call with a buffer of that size and the length holding it
/// fetches the value. A length below the size, as when the file has changed between the calls, is refused with the
/// code for a value that cannot be used, and nothing is written behind the buffer. `*length` becomes the size.
///
/// `GetSignatureFieldEx`, `GetNumSignatureEx` and `clearSigFieldList` share `m_PdfSigF` without a lock: no two of them
/// may run at the same time. All others may.
class VARNPDF_EXPORT CPdfInfo {
public:
    CPdfInfo();
    virtual ~CPdfInfo();

    /// @return the number of signatures, or an open code
    static int GetNumSignature(char* file);
    /// The same from the record of signature 0, which is read when there is none for the file as it is now.
    static int GetNumSignatureEx(char* file);
    /// `CPdf::GetSignatureField` on the file. A value that cannot be read is empty.
    /// @param buffer  as long as the file, which is enough for any value; null asks for the length
    /// @param length  receives the value's length in bytes
    /// @return 0, also when there is no such signature or value, or an open code
    static int GetSignatureField(char const* file, int index, int tag, char* buffer, int* length);
    /// One value from the records in `records`. Without a record of this file, index and file date, all values are read
    /// and become the last record; of ten or more the first goes. The file date has whole seconds: a file that is
    /// written twice in one second may keep its record.
    /// @param result   receives the value: as `CPdf::GetSignatureField` gives it, but /Name without backslashes and
    ///                 /Cert in lower-case hexadecimal digits, two per character; empty for a tag outside 1 to 13
    /// @param records  owns what it points to; usually `m_PdfSigF`
    /// @return 0, also when there is no such signature (all its values are empty), or an open code
    static int GetSignatureFieldEx(std::string const& file, int index, int tag, std::string* result,
                                   std::list<cPdfSignatureFields*>& records);
    /// Appends ",mkhskjdhksajdhaskjdhkj" and returns 0.
    static int GetSignatureField_1(std::string* text);
    /// The bytes covered by /ByteRange (ISO 32000-2 12.8.1).
    /// @return 0, an open code, VARNPDF_NO_SIGNATURE_VALUE (-1), VARNPDF_NO_SIGNATURE (-113),
    ///         VARNPDF_BYTE_RANGE_UNUSABLE (-22) or VARNPDF_REOPEN_FAILED (-3)
    static int GetSignatureBlob(char* file, int index, unsigned char* buffer, unsigned long* length);
    /// The PKCS#7 value (RFC 5652), without the padding of its room.
    /// @return 0, an open code, -1, -113, -22, -3, VARNPDF_PKCS7_EMPTY (-114) or VARNPDF_PKCS7_UNREADABLE (-115)
    static int GetSignaturePKCS7(char* file, int index, unsigned char* buffer, unsigned long* length);
    /// The PKCS#1 value (a DER OCTET STRING in /Contents).
    /// @return 0, an open code, -1, -113, -22, -3 or VARNPDF_PKCS1_UNREADABLE (-117)
    static int GetSignaturePKCS1(char* file, int index, unsigned char* buffer, unsigned long* length);
    /// Whether /Cert can be read; no count.
    /// @return 0 (also without /Cert), an open code, -1 or -113
    static int GetSignaturePKCS1CertNum(char* file, int index);
    /// One certificate of /Cert.
    /// @return 0, an open code, -113, VARNPDF_CERTIFICATE_MISSING (-118), VARNPDF_PATH_MISSING (-1008: null path or
    ///         negative index) or -117 (its digits cannot be decoded)
    static int GetSignaturePKCS1Cert(char* file, int index, int certificate, unsigned char* buffer,
                                     unsigned long* length);
    /// @return 0 when the file is not encrypted, VARNPDF_PDF_ENCRYPTED (-1021) when it is, or another open code
    static int CheckEncryption(char* file);
    /// Destroys all records of `m_PdfSigF`.
    static void clearSigFieldList();
    /// Writes the text to the log at debug level.
    static void OutputDebugString(char const* text);

    /// The process's records, at most ten, oldest first; owned by the list.
    static std::list<cPdfSignatureFields*> m_PdfSigF;

private:
};
