// A file that appears under its name complete or not at all.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace varnpdf {

/// Writes the pieces to a temporary file beside `path` and gives it the name. A file that is there keeps its mode and,
/// where the process may do that, its owner, and goes only when the new bytes are on the disk; a symbolic link stays and
/// what it names is replaced. A device or pipe is written directly. False, with errno set and nothing changed, when that
/// cannot be done.
bool replaceFile(const std::string& path, std::span<const std::string_view> pieces) noexcept;

}  // namespace varnpdf
