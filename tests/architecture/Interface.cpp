// The exported classes as a host compiles them: prints their sizes, and its debug information is what abi.sh and
// private.py read. Needs the headers only.
#include <varnpdf/varnpdf.h>

#include <cstdio>

#define FOR_EACH_CLASS(ROW)      \
    ROW(CAcroFormObj)            \
    ROW(CByteStream)             \
    ROW(CFontObj)                \
    ROW(CPdf)                    \
    ROW(CPdfAttach)              \
    ROW(CPdfAttachments)         \
    ROW(CPdfCollection)          \
    ROW(CPdfCollectionListItem)  \
    ROW(CPdfDoc)                 \
    ROW(CPdfField)               \
    ROW(CPdfFieldContainer)      \
    ROW(CPdfFontContainer)       \
    ROW(CPdfForm)                \
    ROW(CPdfFormField)           \
    ROW(CPdfHelper)              \
    ROW(CPdfInfo)                \
    ROW(CPdfLockInfo)            \
    ROW(CPdfObj)                 \
    ROW(CPdfObjTransferListItem) \
    ROW(CPdfObjects)             \
    ROW(CPdfOutput)              \
    ROW(CPdfPages)               \
    ROW(CPdfSigInfo)             \
    ROW(CPdfSign)                \
    ROW(CPdfSignatureList)       \
    ROW(CPdfStore)               \
    ROW(CPdfTestObj)             \
    ROW(CPdfText)                \
    ROW(CPdfTextSearch)          \
    ROW(CPdfTrailer)             \
    ROW(CPdfXRef)                \
    ROW(CPdfXRefContainer)       \
    ROW(CPdfXRefEntry)           \
    ROW(CSHA)                    \
    ROW(CTokHelp)                \
    ROW(IMessageDigest)          \
    ROW(cPdfSignatureFields)     \
    ROW(c_pdf_dss)               \
    ROW(FormfieldInfo_tag)       \
    ROW(SigPosStruct)            \
    ROW(pdf_dss_struct)          \
    ROW(PdfNewField)             \
    ROW(PdfPage)                 \
    ROW(PdfPosition)             \
    ROW(PdfSignature)            \
    ROW(PdfSignatureField)       \
    ROW(PdfSignatureLock)        \
    ROW(PdfStoreEntry)           \
    ROW(PdfStoreMaterial)

// A function that others could call keeps the class it takes in the description.
#define MENTION(name)                             \
    VARNPDF_EXPORT void takes(const name& value); \
    void takes(const name&) {}
FOR_EACH_CLASS(MENTION)

int main() {
#define PRINT_SIZE(name) std::printf("%s %zu\n", #name, sizeof(name));
    FOR_EACH_CLASS(PRINT_SIZE)
}
