// Signing times.
#pragma once

#include <optional>
#include <string>

namespace cli {

/// A PDF date (ISO 32000-2 7.9.4) or one of ISO 8601 as complete PDF date, D:20261115023351+01'00'; now for "". What is
/// not said counts as the first of its kind, a missing zone as the local one. Nothing after a complaint.
std::optional<std::string> pdfDate(const std::string& text);

}  // namespace cli
