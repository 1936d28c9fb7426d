// Converting JPEG images, TIFF images and plain text to new PDF files (PDF 1.2).
#pragma once

#include <cstdarg>
#include <cstdio>

#include "varnpdf/export.h"
#include "varnpdf/result.h"

struct tiff;  // libtiff's TIFF

/// Converts a file by the extension of its name, in either case: .jpg and .jpeg (ITU-T T.81: the data becomes the image
/// byte for byte, one pixel 0.24 points), .tif and .tiff (see `ConvertTIFF`), .txt.
///
/// Text is set in Courier, 12 points, 80 columns and 55 lines a Letter page. Lines end with LF, CR LF or CR; a form
/// feed ends the page; tabs go to the next multiple of eight columns; other control characters become blanks. A file
/// that is UTF-8 throughout is shown as such, as far as WinAnsiEncoding reaches, with "?" for the rest. In any other
/// file the bytes 129, 132, 142, 148, 153, 154 and 225 are umlauts and sharp s of the DOS code page, and all other bytes
/// are WinAnsiEncoding.
///
/// The result is written beside `out` and renamed when it is complete: on failure nothing new is left and an existing
/// file keeps its content. A device or pipe is written directly. Different threads may convert different files at the
/// same time.
/// @param in   regular file
/// @param out  file to write; not the input file
/// @return 0, or
///         VARNPDF_CONVERT_INPUT (1: the input cannot be opened or read, or a path is null),
///         VARNPDF_CONVERT_OUTPUT (2: the output cannot be created, or is the input file),
///         VARNPDF_CONVERT_UNSUPPORTED (3: another extension, a JPEG that PDF cannot show - neither one nor three
///         components, not 8 bits, not sequential or progressive Huffman coding -, or text of too many pages),
///         VARNPDF_TIFF_UNREADABLE (-601: see `ConvertTIFF`),
///         VARNPDF_CONVERT_WRITE (-602: the output cannot be written or would have more than 1,000,000,000 bytes), or
///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
VARNPDF_EXPORT int VarnImage(char* in, char* out);

// The steps of the conversion. Files are the caller's, opened for writing in binary, and stay open; a document begins
// at the file's start. The head, the pages and the foot of one document are written in this order by one thread, which
// frames one document at a time: the offsets of the objects are remembered for the thread and the file.

/// Reads the JPEG frame header from the start of the file. `*gray` is 1 for one component, else 0. The pointers to
/// the results must not be null. Leaves the file behind the header.
/// @return 1, or 0 when there is no frame header in front of the image data, or no file
VARNPDF_EXPORT int scanhead(FILE* file, int* width, int* height, int* gray);
/// Writes everything in front of the JPEG data.
/// @param width, height  pixels
/// @param length  bytes of the JPEG data, which the caller writes next
/// @param gray    0 for three components, else one
/// @return 0 or VARNPDF_CONVERT_WRITE (-602)
VARNPDF_EXPORT int WriteHeader(FILE* file, int width, int height, int length, int gray);
/// Writes everything behind the JPEG data. Same values as given to `WriteHeader`.
/// @return 0 or VARNPDF_CONVERT_WRITE (-602, also when the thread wrote no head to this file)
VARNPDF_EXPORT int WriteFooter(FILE* file, int width, int height);
/// Begins a text document; its objects 1, 2, 4 and 5 are written and the pages follow from number 6.
/// @return 0 or VARNPDF_CONVERT_WRITE (-602)
VARNPDF_EXPORT int WriteHeaderTxt(FILE* file);
/// Writes one page.
/// @param lines  NUL-terminated entries, each an escaped string in parentheses, a blank, "'" and a blank
/// @param n      highest object number so far: 5 for the first page, then the last result
/// @return n + 2, or VARNPDF_CONVERT_WRITE (-602)
VARNPDF_EXPORT int WritePage(FILE* file, char* lines, int n);
/// Ends a text document.
/// @param objects  highest object number
/// @param pages    number of pages
/// @return 0 or VARNPDF_CONVERT_WRITE (-602, also when the numbers are not those of the pages written)
VARNPDF_EXPORT int WriteFooterTxt(FILE* file, int objects, int pages);
/// Escapes one line for a literal string in place: a backslash in front of "'", "(", ")" and backslash, and
/// `Char2Octet` for the seven bytes of the DOS code page that `VarnImage` names.
/// @param line  NUL-terminated, with room for 4 * strlen(line) + 1 bytes; null gives 0
/// @return the new length, or VARNPDF_PDF_MEMORY_ALLOCATION (-1014) with the line as it was
VARNPDF_EXPORT int ConvertTextLine(char* line);
/// Writes a backslash, three octal digits and NUL to `out` (5 bytes): the place in WinAnsiEncoding of the DOS code
/// page's umlauts and sharp s, and of any other byte its own value.
VARNPDF_EXPORT void Char2Octet(unsigned char byte, char* out);
/// Writes a TIFF as document, one page for each directory, the samples as RGB. Everything that libtiff's RGBA interface
/// reads can be converted; transparent pixels are laid over white. Pages have the size that the resolution tags give
/// when these are sane (20 to 10,000 dots per inch), else 0.24 points a pixel; the orientation tag turns the page.
/// A chain of directories that leads back ends there; it begins with the file's first, whichever is the current one.
/// Logs to "VarnPDF.VarnImage".
/// @param tif   open for reading; stays open
/// @param file  receives the document from its present position on; offsets count from there
/// @return 0, VARNPDF_TIFF_UNREADABLE (-601: a directory cannot be read, decoded or is too large, or there are too many
///         pages) or VARNPDF_CONVERT_WRITE (-602)
VARNPDF_EXPORT int ConvertTIFF(tiff* tif, FILE* file);
/// Bytes of the file, from its start. The position is kept.
/// @return -1 when it cannot be found, does not fit an int, or there is no file
VARNPDF_EXPORT int GetFileSize_varnimg(FILE* file);
/// Error handler for libtiff (`TIFFSetErrorHandler`): logs the message as an error of "VarnPDF.VarnImage". libtiff's
/// handlers belong to the process; `VarnImage` installs this one, and one that logs warnings at debug level, while any
/// thread converts a TIFF, and then puts back what was there. A host must not change the handlers meanwhile.
VARNPDF_EXPORT void MyHandler(const char* module, const char* format, std::va_list arguments);
