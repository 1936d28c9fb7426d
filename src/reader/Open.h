// Opening a document: its bytes, the early checks, the order in which it is read.
#pragma once

#include <cstdio>
#include <memory>
#include <string_view>

#include "model/Document.h"

namespace varnpdf {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// Logs that a document is going to be opened and opens its file; null when that cannot be done, or for what is no
/// regular file: only those have a length that can be trusted.
FileHandle openFile(const char* path, const char* mode);
/// The document in a file; 0 or a result code, which is logged. Whether it is locked is left open.
int openDocument(Document& document, const char* path);

/// Reads the bytes of an open file into an empty document; 0 or a result code, which is logged.
int readBytes(Document& document, std::FILE* file);
/// Takes a copy of bytes into an empty document. Throws std::bad_alloc.
void takeBytes(Document& document, std::string_view bytes);
/// Checks a document whose bytes are there and reads its trailers and objects; 0 or a result code, which is logged.
int readDocument(Document& document);
/// 0, or the code for a document without a catalogue.
int findRoot(const Document& document);

/// Header, "startxref" and cross-reference keyword are where a PDF has them. Stores the version.
bool isPdf(Document& document);
/// Line end of the first bytes of a text that begins like a PDF.
LineEnd lineEndOf(std::string_view head) noexcept;
/// That line end as text, empty when unknown.
std::string_view lineEndText(LineEnd type) noexcept;

}  // namespace varnpdf
