// Logging through the host's log4cxx back end. Messages are UTF-8 and arrive intact whatever the locale.
#pragma once

#include <string>

#include "support/ClassLogger.h"
#include "support/Text.h"

namespace varnpdf {

/// True when a message of this level would reach an appender. Without a configured back end the library neither
/// formats messages nor lets log4cxx complain about the missing configuration.
bool debugWanted(const ClassLogger& logger);
bool errorWanted(const ClassLogger& logger);
void writeDebug(const ClassLogger& logger, const std::string& message);
void writeError(const ClassLogger& logger, const std::string& message);

// A message that cannot be made or written is left out: it never changes what an operation does.
template <typename... Parts>
void logDebug(const ClassLogger& logger, const Parts&... parts) noexcept {
    try {
        if (debugWanted(logger)) writeDebug(logger, text(parts...));
    } catch (...) {}
}

template <typename... Parts>
void logError(const ClassLogger& logger, const Parts&... parts) noexcept {
    try {
        if (errorWanted(logger)) writeError(logger, text(parts...));
    } catch (...) {}
}

}  // namespace varnpdf
