// Every bound that hostile input may meet, in one place. Functions take them as default arguments.
#pragma once

#include <cstddef>

namespace varnpdf::limits {

/// Longest document that is opened, in bytes.
inline constexpr std::size_t kDocumentBytes = 1'000'000'000;
/// Largest /Size of the newest trailer.
inline constexpr int kDeclaredSize = 499'999;
/// Object records of one document: twice the accepted /Size leaves room for tables that list more than they declare.
inline constexpr std::size_t kObjectRecords = 1'000'000;
/// Nesting of arrays and dictionaries, of page-tree nodes and of indefinite-length DER values.
inline constexpr int kNesting = 500;
/// References followed in one walk over the page or field tree; nodes may share their kids.
inline constexpr std::size_t kTreeReferences = 600'000;
/// Links followed from a page or field to its /Parent.
inline constexpr int kParents = 500;
/// Sections of one /Prev chain. Each costs a record, so the chain is bounded although it cannot loop.
inline constexpr std::size_t kSections = 100'000;
/// Widest field of a cross-reference stream in bytes; a number of the file has at most four.
inline constexpr int kFieldWidth = 1024;
/// Growth factors of the inflate buffers: a stream that inflates to more than this times its length is refused.
inline constexpr std::size_t kInflateFactor = 1490;
/// What all streams of a document may inflate to together, the texts of unpacked objects included:
/// a fixed part for small files and a part that grows with the file.
inline constexpr std::size_t kInflatedBytesBase = std::size_t{256} << 20U;
inline constexpr std::size_t kInflatedBytesPerByte = 20;
/// Filters of one stream; each may unfold what the one before it gave.
inline constexpr std::size_t kStreamFilters = 8;
/// White space between the data of a stream and the keyword that ends it.
inline constexpr std::size_t kBlanksBehindStream = 4096;
/// References to references that are followed; a loop ends here.
inline constexpr int kReferenceChain = 8;
/// Objects may overlap in damaged files; together they may cover the file only so many times.
inline constexpr std::size_t kObjectBytesBase = std::size_t{64} << 20U;
inline constexpr std::size_t kObjectBytesPerByte = 8;
/// Pixels of one side of a TIFF page and of the whole page; a square metre at 400 dots per inch has 248 million.
inline constexpr std::size_t kImageSide = 1'000'000;
inline constexpr std::size_t kImagePixels = std::size_t{1} << 28U;
/// Largest piece of a TIFF page that is held decoded at a time, and largest block that libtiff may allocate.
inline constexpr std::size_t kImagePieceBytes = std::size_t{256} << 20U;
/// What must be gone through for all pages of a TIFF together - samples, what is decoded and what is read for it: one
/// page of the largest size, and as much as deflate can unfold from the file.
inline constexpr std::size_t kImageBytesBase = 3 * kImagePixels;
inline constexpr std::size_t kImageBytesPerByte = 4'000;
/// Background image of a signature: bytes of its file, and pixels, of which each takes four bytes when it is decoded.
inline constexpr std::size_t kPictureBytes = std::size_t{256} << 20U;
inline constexpr std::size_t kPicturePixels = 100'000'000;
/// Levels of the field tree, and the length of a field's full name in bytes: far beyond what any form has.
inline constexpr int kFieldDepth = 64;
inline constexpr std::size_t kFieldNameBytes = 32'767;
/// What all full names of a form may take together.
inline constexpr std::size_t kFieldNamesBytes = std::size_t{64} << 20U;
/// Length of one partial name as it is written, escapes included.
inline constexpr std::size_t kFieldNameWritten = 4 * kFieldNameBytes;
/// Field locks that are honoured, and partial names in all of them; with more of these everything is locked.
inline constexpr std::size_t kFieldLocks = 1000;
inline constexpr std::size_t kFieldLockNames = 500'000;
/// Fonts that are listed of a form.
inline constexpr int kFormFonts = 100'000;
/// Longest content of an appearance whose text is replaced, and what all of them may inflate to together.
inline constexpr std::size_t kAppearanceBytes = std::size_t{4} << 20U;
inline constexpr std::size_t kAppearancesBytes = std::size_t{256} << 20U;
/// Fields that share one signature dictionary and are given it; hosts make something of it for each.
inline constexpr std::size_t kSharedSignature = 100;
/// Longest content of a stream of a security store that is given out.
inline constexpr std::size_t kStoredBytes = std::size_t{16} << 20U;
/// What is gone through to list the embedded files: many names may lead to one large object.
inline constexpr std::size_t kAttachmentBytesBase = std::size_t{16} << 20U;
inline constexpr std::size_t kAttachmentBytesPerByte = 16;
/// What the text of pages is read through: content, forms each time they are shown, fonts. A fixed part and one that
/// grows with the file. Then the most for one stream of content, for forms that are kept, and for one stream of a font.
inline constexpr std::size_t kContentBytesBase = std::size_t{64} << 20U;
inline constexpr std::size_t kContentBytesPerByte = 20;
inline constexpr std::size_t kContentBytes = std::size_t{256} << 20U;
inline constexpr std::size_t kKeptContentBytes = std::size_t{64} << 20U;
inline constexpr std::size_t kFontBytes = std::size_t{16} << 20U;
/// Glyphs of one page, forms within forms, saved graphics states, operands of one operator, code spaces of a font.
inline constexpr std::size_t kPageGlyphs = 1'000'000;
inline constexpr std::size_t kFormDepth = 24;
inline constexpr std::size_t kGraphicsStates = 1'000;
inline constexpr std::size_t kOperands = 64;
inline constexpr std::size_t kCodeSpaces = 100;
/// Longest text that is sought, and hits that are reported.
inline constexpr std::size_t kSoughtCharacters = 1'000;
inline constexpr std::size_t kTextHits = 100'000;
/// Longest XMP metadata whose dates are renewed.
inline constexpr std::size_t kMetadataBytes = std::size_t{64} << 20U;
/// Longest name of a new field in bytes.
inline constexpr std::size_t kNewFieldName = 1'000;
/// Stream data copied from a document; objects whose streams overlap could multiply it.
inline constexpr std::size_t kCopiedBytesPerByte = 4;

}  // namespace varnpdf::limits
