// Where the library's log goes: nowhere, or to standard error in UTF-8.
#pragma once

#include <string>
#include <vector>

namespace cli {

/// The levels that `configureLog` knows.
std::vector<std::string> logLevels();
/// Sends messages of this level and above to standard error; "off" keeps the log silent, whatever configuration file
/// lies in the working directory.
void configureLog(const std::string& level);

}  // namespace cli
