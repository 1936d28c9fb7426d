// CPdfDoc: work on documents by file name.
#pragma once

#include "varnpdf/export.h"

class CPdf;

/// Operations that open, read and close a document of their own. Holds nothing; one thread at a time uses an object.
/// Signature indexes count from 0. A null buffer asks for the size; a second call with a buffer of that size and the
/// length holding it fetches the value. The file may change between the two: a length below the size then is refused
/// with the operation's code for a value that cannot be used, and nothing is written behind the buffer. An error of
/// `CPdf::Open` is returned as it is; VARNPDF_PDF_MEMORY_ALLOCATION (-1014) also where memory runs out later, and
/// VARNPDF_NO_SIGNATURE_VALUE (-1) where there is no signature with the index, but others.
class VARNPDF_EXPORT CPdfDoc {
public:
    CPdfDoc();
    virtual ~CPdfDoc();

    /// The bytes covered by /ByteRange (ISO 32000-2 12.8.1), read from the file.
    /// @return 0, an open code, -1, VARNPDF_NO_SIGNATURE (-113), VARNPDF_BYTE_RANGE_UNUSABLE (-22) or
    ///         VARNPDF_REOPEN_FAILED (-3: the file is gone or shorter when its bytes are read)
    int GetSignatureBlob(char const* file, int index, unsigned char* buffer, unsigned int* length);
    /// The PKCS#7 value (RFC 5652) as hexadecimal text, without padding. The size counts bytes; the buffer holds twice
    /// as many characters, no terminator.
    /// @return 0, an open code, -1, -113, -22, -3, VARNPDF_PKCS7_EMPTY (-114) or VARNPDF_PKCS7_UNREADABLE (-115)
    int GetSignPKCS7(char const* file, int index, unsigned char* buffer, unsigned int* length);
    /// The PKCS#1 value (a DER OCTET STRING) as hexadecimal text; sizes as above.
    /// @return 0, an open code, -1, -113, -22, -3 or VARNPDF_PKCS1_UNREADABLE (-117)
    int GetSignPKCS1(char* file, int index, unsigned char* buffer, unsigned int* length);
    /// Whether /Cert of the signature can be read; no count.
    /// @return 0 (also without /Cert), an open code, -1 or -113
    int GetSignPKCS1CertNum(char* file, int index);
    /// Text of one certificate of /Cert, terminated: hexadecimal digits (the size counts bytes) or the bytes of a
    /// literal string with its escapes undone. The buffer holds 2 * size + 2 bytes.
    /// @return 0, an open code, -113, VARNPDF_CERTIFICATE_MISSING (-118) or VARNPDF_PATH_MISSING (-1008: null path or
    ///         negative index)
    int GetSignPKCS1Cert(char* file, int index, int certificate, unsigned char* buffer, unsigned int& length);

    /// Writes a time stamp's authority and date into the text fields "stampAuthority" and "stampDate" by an appended
    /// update in the document's output stream (`CPdf::GetByteStream`).
    /// @param date  PDF date (ISO 32000-2 7.9.4), written into its field as DD-MM-YYYY
    /// @return 0 (also when no such field changed: the stream then holds the old document only), or
    ///         VARNPDF_NO_FORM_FIELDS (-1016)
    int MergePKCS7PDF(CPdf* doc, char* authority, char* date);

    /// Converts a JPEG, TIFF or text file to PDF; results as `VarnImage`.
    int ConvertImage2Pdf(char* in, char* out);

private:
};
