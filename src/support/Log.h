// Logging through the host's log4cxx back end. Messages are UTF-8 and arrive intact whatever the locale.
#pragma once

#include <memory>
#include <string>

#include "support/Text.h"

namespace log4cxx {
class Logger;
}

namespace varnpdf {

using LoggerRef = std::shared_ptr<log4cxx::Logger>;

/// True when a message of this level would reach an appender. Without a configured back end the library neither
/// formats messages nor lets log4cxx complain about the missing configuration.
bool debugWanted(const LoggerRef& logger);
bool errorWanted(const LoggerRef& logger);
void writeDebug(const LoggerRef& logger, const std::string& message);
void writeError(const LoggerRef& logger, const std::string& message);

template <typename... Parts>
void logDebug(const LoggerRef& logger, const Parts&... parts) {
    if (debugWanted(logger)) writeDebug(logger, text(parts...));
}

template <typename... Parts>
void logError(const LoggerRef& logger, const Parts&... parts) {
    if (errorWanted(logger)) writeError(logger, text(parts...));
}

}  // namespace varnpdf
