// A file read and packed for embedding.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

#include "support/Inflate.h"

namespace varnpdf {

struct PackedFile {
    Bytes data;                ///< zlib data (RFC 1950)
    std::size_t length = 0;    ///< bytes of the file
    std::time_t changed = 0;   ///< time of its last status change
    std::time_t modified = 0;  ///< time of its last modification
};

enum class PackResult { Good, Unreadable, Empty, TooLarge, ZlibFailed };

/// Reads a regular file piece by piece; only what it packs to is kept in memory. Throws std::bad_alloc.
PackResult packFile(const char* path, PackedFile& file, int* zlibCode = nullptr);

/// What can be told before the file is packed.
PackResult examineFile(const char* path);

/// What stands behind the last '/'.
std::string_view justFilename(std::string_view path);

/// A time as PDF date with the zone that holds then.
std::string fileDate(std::time_t time);

}  // namespace varnpdf
