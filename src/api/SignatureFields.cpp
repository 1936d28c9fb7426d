// cPdfSignatureFields: the values of one signature as they were last read.
#include "varnpdf/SignatureFields.h"

#include <utility>

cPdfSignatureFields::cPdfSignatureFields(std::string pdfName, std::string pdfFileDate, int sigNr, std::string reason,
                                         std::string location, std::string date, std::string name, std::string filter,
                                         std::string subFilter, std::string byteRange, std::string contents,
                                         std::string formtag, std::string cert, std::string type, std::string r,
                                         std::string contactInfo, int count)
    : szPdfName(std::move(pdfName)),
      szPdfFileDate(std::move(pdfFileDate)),
      iSigNr(sigNr),
      szSigInfo_Reason(std::move(reason)),
      szSigInfo_Location(std::move(location)),
      szSigInfo_Date(std::move(date)),
      szSigInfo_Name(std::move(name)),
      szSigInfo_Filter(std::move(filter)),
      szSigInfo_SubFilter(std::move(subFilter)),
      szSigInfo_ByteRange(std::move(byteRange)),
      szSigInfo_Contents(std::move(contents)),
      szSigInfo_Formtag(std::move(formtag)),
      szSigInfo_Cert(std::move(cert)),
      szSigInfo_Type(std::move(type)),
      szSigInfo_R(std::move(r)),
      szSigInfo_ContactInfo(std::move(contactInfo)),
      sigCount(count) {}

cPdfSignatureFields::cPdfSignatureFields(const cPdfSignatureFields&) = default;
cPdfSignatureFields& cPdfSignatureFields::operator=(const cPdfSignatureFields&) = default;
cPdfSignatureFields::~cPdfSignatureFields() = default;

std::string cPdfSignatureFields::Get_szPdfName() const { return szPdfName; }
void cPdfSignatureFields::Set_szPdfName(std::string value) { szPdfName = std::move(value); }
std::string cPdfSignatureFields::Get_szPdfFileDate() const { return szPdfFileDate; }
void cPdfSignatureFields::Set_szPdfFileDate(std::string value) { szPdfFileDate = std::move(value); }
int cPdfSignatureFields::Get_iSigNr() const { return iSigNr; }
void cPdfSignatureFields::Set_iSigNr(int value) { iSigNr = value; }
std::string cPdfSignatureFields::Get_szSigInfo_Reason() const { return szSigInfo_Reason; }
void cPdfSignatureFields::Set_szSigInfo_Reason(std::string value) { szSigInfo_Reason = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Location() const { return szSigInfo_Location; }
void cPdfSignatureFields::Set_szSigInfo_Location(std::string value) { szSigInfo_Location = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Date() const { return szSigInfo_Date; }
void cPdfSignatureFields::Set_szSigInfo_Date(std::string value) { szSigInfo_Date = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Name() const { return szSigInfo_Name; }
void cPdfSignatureFields::Set_szSigInfo_Name(std::string value) { szSigInfo_Name = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Filter() const { return szSigInfo_Filter; }
void cPdfSignatureFields::Set_szSigInfo_Filter(std::string value) { szSigInfo_Filter = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_SubFilter() const { return szSigInfo_SubFilter; }
void cPdfSignatureFields::Set_szSigInfo_SubFilter(std::string value) { szSigInfo_SubFilter = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_ByteRange() const { return szSigInfo_ByteRange; }
void cPdfSignatureFields::Set_szSigInfo_ByteRange(std::string value) { szSigInfo_ByteRange = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Contents() const { return szSigInfo_Contents; }
void cPdfSignatureFields::Set_szSigInfo_Contents(std::string value) { szSigInfo_Contents = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Formtag() const { return szSigInfo_Formtag; }
void cPdfSignatureFields::Set_szSigInfo_Formtag(std::string value) { szSigInfo_Formtag = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Cert() const { return szSigInfo_Cert; }
void cPdfSignatureFields::Set_szSigInfo_Cert(std::string value) { szSigInfo_Cert = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_Type() const { return szSigInfo_Type; }
void cPdfSignatureFields::Set_szSigInfo_Type(std::string value) { szSigInfo_Type = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_R() const { return szSigInfo_R; }
void cPdfSignatureFields::Set_szSigInfo_R(std::string value) { szSigInfo_R = std::move(value); }
std::string cPdfSignatureFields::Get_szSigInfo_ContactInfo() const { return szSigInfo_ContactInfo; }
void cPdfSignatureFields::Set_szSigInfo_ContactInfo(std::string value) { szSigInfo_ContactInfo = std::move(value); }
int cPdfSignatureFields::Get_sigCount() const { return sigCount; }
