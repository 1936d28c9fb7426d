// A signature value put into a prepared document.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

/// Writes the signed file: `value` in its room of `room` bytes at `offset` of the prepared bytes. All of it or nothing;
/// false after a complaint.
bool writeSigned(const std::string& path, std::string_view prepared, std::size_t offset, std::string_view value,
                 std::size_t room);

}  // namespace cli
