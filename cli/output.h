// Results on standard output or in a file; nothing half written is left behind.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace cli {

/// Writes to standard output. A failure is remembered for `finishOutput`.
void put(std::string_view bytes);
/// Flushes standard output; `code`, or `kAllFailed` with a complaint when something could not be written.
[[nodiscard]] int finishOutput(int code);
[[nodiscard]] bool outputIsTerminal();
/// Puts `bytes` under this name, all of them or nothing: a temporary file beside it is written, synced and renamed.
/// A device or pipe is written directly. False after a complaint.
[[nodiscard]] bool writeFile(const std::string& path, std::string_view bytes);
/// The same for bytes that stand in several places.
[[nodiscard]] bool writeFile(const std::string& path, std::span<const std::string_view> pieces);

}  // namespace cli
