// Results on standard output or in a file; nothing half written is left behind.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "varnpdf/PdfOutput.h"

namespace cli {

/// Writes to standard output. A failure is remembered for `finishOutput`.
void put(std::string_view bytes);
/// Flushes standard output; `code`, or `kAllFailed` with a complaint when something could not be written.
[[nodiscard]] int finishOutput(int code);
[[nodiscard]] bool outputIsTerminal();
/// Puts `bytes` under this name, all of them or nothing.
/// False after a complaint.
[[nodiscard]] bool writeFile(const std::string& path, std::string_view bytes);
/// The same for bytes that stand in several places.
[[nodiscard]] bool writeFile(const std::string& path, std::span<const std::string_view> pieces);

/// A file beside the one that is to be written, for results that are made in steps. Without `commit` it vanishes.
class WorkFile {
public:
    /// Creates it with these bytes. Check `isOpen`; a complaint has been made.
    WorkFile(const std::string& target, std::string_view bytes);
    [[nodiscard]] bool isOpen() const { return !path().empty(); }
    [[nodiscard]] std::string path() const { return file_.GetWorkPath(); }
    /// Puts it in the place of the target. False after a complaint.
    [[nodiscard]] bool commit();

private:
    std::string target_;
    CPdfOutput file_;
};

}  // namespace cli
