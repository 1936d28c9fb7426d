// What "prepare" leaves for "embed": one file with a short readable header and the prepared bytes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace cli {

struct State {
    std::size_t offset = 0;  ///< where the value goes
    std::size_t room = 0;    ///< bytes for it
    std::string_view bytes;  ///< the prepared document, exactly the bytes to sign
};

/// False after a complaint.
bool writeState(const std::string& path, const State& state);
/// Reads the file into `buffer`, which the state looks into; nothing after a complaint.
std::optional<State> readState(const std::string& path, std::string& buffer);

/// A whole file; nothing after a complaint.
std::optional<std::string> readFile(const std::string& path);
/// Lower-case digit pairs.
std::string hexOf(std::string_view bytes);

}  // namespace cli
