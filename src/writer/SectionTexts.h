// The texts of an appended update (ISO 32000-2 7.5.6): cross-reference table, cross-reference stream, trailer.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "varnpdf/PdfTrailer.h"
#include "varnpdf/PdfXRef.h"

namespace varnpdf {

/// Adds a subsection for one object in use.
void addObjectEntry(CPdfXRefContainer& xrefs, int number, int generation, std::size_t offset);

/// "xref" with the subsections in the container's order; entry lines have 20 bytes.
std::string crossReferenceTable(const CPdfXRefContainer& xrefs);

/// The trailer of an update from its dictionary to the end of the file.
std::string trailerText(const CPdfTrailer& trailer, std::size_t section);

/// Field widths of a cross-reference stream.
struct StreamFields {
    int type = 1;
    int second = 2;
    int third = 1;
};

/// The widths of an older section, widened where the entries do not fit; field 1 has at least one byte.
StreamFields fieldsFor(const CPdfXRefContainer& xrefs, std::string_view oldWidths);

/// How a cross-reference stream is laid out. "@@NL@@" in the head is the line end; "@@NR@@", "@@SIZE@@", "@@INFO@@",
/// "@@ROOT@@", "@@ID@@", "@@INDEX@@", "@@W@@", "@@LENGTH@@" and "@@PREV@@" are the values. A line whose value is
/// missing (/Info) is left out.
struct StreamLayout {
    std::string_view head =
        "@@NR@@ 0 obj@@NL@@<< @@NL@@"
        "/Type /XRef @@NL@@"
        "/Size @@SIZE@@ @@NL@@"
        "/Info @@INFO@@@@NL@@"
        "/Root @@ROOT@@ @@NL@@"
        "/ID @@ID@@@@NL@@"
        "/Index@@INDEX@@ @@NL@@"
        "/Filter /FlateDecode @@NL@@"
        "/W @@W@@@@NL@@"
        "/Length @@LENGTH@@@@NL@@"
        "/Prev @@PREV@@@@NL@@"
        ">>@@NL@@";
    std::string_view emptyId = "[]";
    std::string_view lineEnd = "\r\n";
};

/// A cross-reference stream that lists the container's entries and closes the file. The container must list the
/// stream itself. Nothing when the data cannot be compressed.
std::optional<std::string> crossReferenceStream(const CPdfXRefContainer& xrefs, const CPdfTrailer& trailer, int number,
                                                const StreamFields& fields, std::size_t section,
                                                const StreamLayout& layout = {});

/// The /Index array of a container.
std::string indexText(const CPdfXRefContainer& xrefs);

/// zlib data of the bytes; nothing when zlib fails.
std::optional<std::string> deflated(std::string_view bytes);

/// An object's text with the header that its entry promises, ended by a line end. Text read from a file may stop at
/// "endobj" or carry another number in its header, which stays where number or generation is not set (-1).
std::string objectText(int number, int generation, std::string_view content);

}  // namespace varnpdf
