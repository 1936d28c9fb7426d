// Logging through the host's log4cxx back end.
#include "support/Log.h"

#include <log4cxx/logger.h>

namespace varnpdf {
namespace {

bool hasAppender(log4cxx::LoggerPtr logger) {
    for (; logger; logger = logger->getParent()) {
        if (!logger->getAllAppenders().empty()) return true;
        if (!logger->getAdditivity()) return false;
    }
    return false;
}

bool wanted(const LoggerRef& logger, const log4cxx::LevelPtr& level) {
    return logger && logger->isEnabledFor(level) && hasAppender(logger);
}

// The char* macros of log4cxx decode by locale, which spoils umlauts under LC_ALL=C; its own string type is UTF-8.
void write(const LoggerRef& logger, const log4cxx::LevelPtr& level, const std::string& message) {
    logger->forcedLogLS(level, message, log4cxx::spi::LocationInfo::getLocationUnavailable());
}

}  // namespace

bool debugWanted(const LoggerRef& logger) { return wanted(logger, log4cxx::Level::getDebug()); }
bool errorWanted(const LoggerRef& logger) { return wanted(logger, log4cxx::Level::getError()); }
void writeDebug(const LoggerRef& logger, const std::string& message) {
    write(logger, log4cxx::Level::getDebug(), message);
}
void writeError(const LoggerRef& logger, const std::string& message) {
    write(logger, log4cxx::Level::getError(), message);
}

}  // namespace varnpdf
