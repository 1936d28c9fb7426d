// cPdfSignatureFields: the values of one signature as they were last read.
#pragma once

#include <string>

#include "varnpdf/export.h"

/// The values of one signature of one file, by tag as `CPdf::GetSignatureField` counts them. A record of the cache that
/// `CPdfInfo::GetSignatureFieldEx` keeps; file name, file date and index tell which. Copying
/// and the getters let std::bad_alloc out.
class VARNPDF_EXPORT cPdfSignatureFields {
public:
    /// Every value, in the order of the fields.
    cPdfSignatureFields(std::string pdfName, std::string pdfFileDate, int sigNr, std::string reason,
                        std::string location, std::string date, std::string name, std::string filter,
                        std::string subFilter, std::string byteRange, std::string contents, std::string formtag,
                        std::string cert, std::string type, std::string r, std::string contactInfo, int count);
    cPdfSignatureFields(const cPdfSignatureFields&);
    cPdfSignatureFields& operator=(const cPdfSignatureFields&);
    virtual ~cPdfSignatureFields();

    /// File name as the caller gave it.
    [[nodiscard]] std::string Get_szPdfName() const;
    void Set_szPdfName(std::string value);
    /// When the file was last modified, in UTC: year since 1900, month from 0, day, time, as in "126.10.15-2:24:6".
    [[nodiscard]] std::string Get_szPdfFileDate() const;
    void Set_szPdfFileDate(std::string value);
    /// Index of the signature, from 0.
    [[nodiscard]] int Get_iSigNr() const;
    void Set_iSigNr(int value);
    /// Tag 1 /Reason.
    [[nodiscard]] std::string Get_szSigInfo_Reason() const;
    void Set_szSigInfo_Reason(std::string value);
    /// Tag 2 /Location.
    [[nodiscard]] std::string Get_szSigInfo_Location() const;
    void Set_szSigInfo_Location(std::string value);
    /// Tag 3 /M.
    [[nodiscard]] std::string Get_szSigInfo_Date() const;
    void Set_szSigInfo_Date(std::string value);
    /// Tag 4 /Name, without backslashes.
    [[nodiscard]] std::string Get_szSigInfo_Name() const;
    void Set_szSigInfo_Name(std::string value);
    /// Tag 5 /Filter.
    [[nodiscard]] std::string Get_szSigInfo_Filter() const;
    void Set_szSigInfo_Filter(std::string value);
    /// Tag 6 /SubFilter.
    [[nodiscard]] std::string Get_szSigInfo_SubFilter() const;
    void Set_szSigInfo_SubFilter(std::string value);
    /// Tag 7 /ByteRange.
    [[nodiscard]] std::string Get_szSigInfo_ByteRange() const;
    void Set_szSigInfo_ByteRange(std::string value);
    /// Tag 8 /Contents.
    [[nodiscard]] std::string Get_szSigInfo_Contents() const;
    void Set_szSigInfo_Contents(std::string value);
    /// Tag 9 /FT.
    [[nodiscard]] std::string Get_szSigInfo_Formtag() const;
    void Set_szSigInfo_Formtag(std::string value);
    /// Tag 10 /Cert, each character as two lower-case hexadecimal digits.
    [[nodiscard]] std::string Get_szSigInfo_Cert() const;
    void Set_szSigInfo_Cert(std::string value);
    /// Tag 11 /Type.
    [[nodiscard]] std::string Get_szSigInfo_Type() const;
    void Set_szSigInfo_Type(std::string value);
    /// Tag 12 /R.
    [[nodiscard]] std::string Get_szSigInfo_R() const;
    void Set_szSigInfo_R(std::string value);
    /// Tag 13 /ContactInfo.
    [[nodiscard]] std::string Get_szSigInfo_ContactInfo() const;
    void Set_szSigInfo_ContactInfo(std::string value);
    /// Number of signatures in the file.
    [[nodiscard]] int Get_sigCount() const;

private:
    std::string szPdfName;
    std::string szPdfFileDate;
    int iSigNr;
    std::string szSigInfo_Reason;
    std::string szSigInfo_Location;
    std::string szSigInfo_Date;
    std::string szSigInfo_Name;
    std::string szSigInfo_Filter;
    std::string szSigInfo_SubFilter;
    std::string szSigInfo_ByteRange;
    std::string szSigInfo_Contents;
    std::string szSigInfo_Formtag;
    std::string szSigInfo_Cert;
    std::string szSigInfo_Type;
    std::string szSigInfo_R;
    std::string szSigInfo_ContactInfo;
    int sigCount;
};
