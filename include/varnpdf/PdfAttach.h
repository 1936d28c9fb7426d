// CPdfAttach: embedding a file into a document; CPdfAttachments: reading what is embedded.
#pragma once

#include <memory>
#include <string>

#include "varnpdf/MimeTypes.h"
#include "varnpdf/export.h"

class CPdf;

namespace varnpdf {
class EmbeddedFiles;
}

/// Embeds files by an appended update (ISO 32000-2 7.11.4). Holds nothing; different objects may be used by different
/// threads at the same time.
class VARNPDF_EXPORT CPdfAttach {
public:
    CPdfAttach();
    ~CPdfAttach();

    /// Embeds the file `filePath` into the document `pdfPath` under its name without directories: compressed, with
    /// media type and dates, listed in the embedded-files name tree. The document is replaced in one step and keeps
    /// its mode and, where the process may do that, its owner; when anything fails it stays as it was. Its old bytes
    /// stand unchanged at the start of the new ones, so that signatures stay valid.
    /// @param pdfPath,filePath  terminated, at most 256 bytes; the names in UTF-8
    /// @param reserved          without effect
    /// @return 0, VARNPDF_PATH_MISSING (-1008), VARNPDF_FILE_NAME_TOO_LONG (-1007), VARNPDF_ATTACHMENT_UNREADABLE
    ///         (-1171), VARNPDF_ATTACHMENT_EMPTY (-1172), VARNPDF_MIME_TYPE_UNKNOWN (-1173), an open code of
    ///         `CPdf::Open`, VARNPDF_PDF_MAXSIZE (-1013: the document would become larger than can be opened),
    ///         VARNPDF_NAME_TREE_UNUSABLE (-1174), VARNPDF_SAVE_FAILED (-1023), VARNPDF_PDF_MEMORY_ALLOCATION (-1014),
    ///         or a zlib error (-2 to -6)
    int AttachFileToPDF(unsigned char* pdfPath, unsigned char* filePath, int reserved);
};

/// The files embedded in an opened document: those of the name tree in its order, then those of file attachment
/// annotations (ISO 32000-2 12.5.6.15). Used by one thread at a time and not longer than the document. std::bad_alloc
/// leaves the members that return a text when there is no memory for it.
class VARNPDF_EXPORT CPdfAttachments {
public:
    /// Looks through the document, which must be open. Damaged parts of the tree are passed over; the list
    /// ends early when names lead to the same large objects again and again, and is empty for want of memory.
    explicit CPdfAttachments(CPdf* pdf);
    CPdfAttachments(const CPdfAttachments&) = delete;
    CPdfAttachments& operator=(const CPdfAttachments&) = delete;
    ~CPdfAttachments();

    [[nodiscard]] int GetCount() const;
    /// Texts of one file (from 0) as the document encodes them (a text string, ISO 32000-2 7.9.2.2): the key in the name
    /// tree, the name (/UF, /F or those of older systems, else the key) and the description. Empty when there is none.
    [[nodiscard]] std::string GetKey(int index) const;
    [[nodiscard]] std::string GetName(int index) const;
    [[nodiscard]] std::string GetDescription(int index) const;
    /// The media type, "" when the document does not say.
    [[nodiscard]] std::string GetMimeType(int index) const;
    /// The size that the document states in bytes, -1 when it does not.
    [[nodiscard]] long long GetSize(int index) const;
    /// The file's bytes: a null buffer asks for the length, a second call with room for it fetches them.
    /// @return 0, VARNPDF_EMBEDDED_FILE_MISSING (-1175: no such file, or it has no stream),
    ///         VARNPDF_EMBEDDED_FILE_UNREADABLE (-1176: a filter for images, an unknown one, or damaged data) or
    ///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int GetContent(int index, unsigned char* buffer, unsigned long* length);

private:
    std::unique_ptr<varnpdf::EmbeddedFiles> list_;
};
