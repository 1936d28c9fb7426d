// CByteStream: the growable output buffer of an update.
#pragma once

#include <cstddef>
#include <memory>

#include "varnpdf/export.h"

/// Growable byte buffer with a write position. When an append does not fit, the buffer grows to what is needed plus
/// 20000 bytes. Not copyable; one thread at a time. The constructor and `init` throw std::bad_alloc without memory.
class VARNPDF_EXPORT CByteStream {
public:
    /// An empty stream with 20000 zeroed bytes of room.
    CByteStream();
    virtual ~CByteStream();
    CByteStream(const CByteStream&) = delete;
    CByteStream& operator=(const CByteStream&) = delete;

    /// Starts anew with 20000 bytes of (uncleared) room and remembers `oldSize`, the length of the document that an
    /// update extends.
    void init(unsigned int oldSize);
    /// Writes `n` bytes at the write position and moves it on. 0, or VARNPDF_PDF_MEMORY_ALLOCATION (-1014) with nothing
    /// written: without memory, or beyond 4 GB.
    int append(unsigned char* p, unsigned int n);
    /// Appends a NUL-terminated text without its terminator. 0 or -1014 likewise.
    int print(char* s);
    /// The buffer; valid until the next append or init. Owned by the stream.
    [[nodiscard]] unsigned char* data();
    [[nodiscard]] const unsigned char* data() const;
    /// The write position, which is also the number of bytes in use.
    [[nodiscard]] unsigned int tell() const;
    /// Sets the write position. A position beyond the room is taken as it is and the next append makes the room;
    /// the bytes between are then unspecified.
    void setseek(unsigned int n);
    /// Does nothing; the write position is always the end.
    void setseekend(unsigned int n);
    void setoldcontentsize(unsigned int n);
    [[nodiscard]] unsigned int getoldcontentsize() const;
    /// Bytes of room, used and unused.
    [[nodiscard]] unsigned int capacity() const;

private:
    VARNPDF_HIDDEN void makeRoom(std::size_t capacity);

    std::unique_ptr<unsigned char[]> data_;
    std::size_t allocated_ = 0;
    unsigned int size_ = 0;
    unsigned int capacity_ = 0;
    unsigned int oldContentSize_ = 0;
};
