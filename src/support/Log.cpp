// Logging through the host's log4cxx back end.
#include "support/Log.h"

#include <log4cxx/logger.h>
#include <log4cxx/logmanager.h>
#include <log4cxx/spi/loggerrepository.h>

namespace varnpdf {
namespace {

bool hasAppender(const log4cxx::Logger* logger) {
    log4cxx::LoggerPtr parent;
    while (logger != nullptr) {
        if (!logger->getAllAppenders().empty()) return true;
        if (!logger->getAdditivity()) return false;
        parent = logger->getParent();
        logger = parent.get();
    }
    return false;
}

bool wanted(const ClassLogger& owner, const log4cxx::LevelPtr& level) {
    const log4cxx::Logger* const logger = owner.find();
    return logger != nullptr && logger->isEnabledFor(level) && hasAppender(logger);
}

// The char* macros of log4cxx decode by locale, which spoils umlauts under LC_ALL=C; its own string type is UTF-8.
void write(const ClassLogger& owner, const log4cxx::LevelPtr& level, const std::string& message) {
    if (log4cxx::Logger* const logger = owner.find(); logger != nullptr) {
        logger->forcedLogLS(level, message, log4cxx::spi::LocationInfo::getLocationUnavailable());
    }
}

}  // namespace

log4cxx::Logger* ClassLogger::find() const {
    if (name_ == nullptr || !log4cxx::LogManager::getLoggerRepository()->isConfigured()) return nullptr;
    std::call_once(once_, [this] { logger_ = log4cxx::Logger::getLogger(name_); });
    return logger_.get();
}

bool debugWanted(const ClassLogger& logger) { return wanted(logger, log4cxx::Level::getDebug()); }
bool errorWanted(const ClassLogger& logger) { return wanted(logger, log4cxx::Level::getError()); }
void writeDebug(const ClassLogger& logger, const std::string& message) {
    write(logger, log4cxx::Level::getDebug(), message);
}
void writeError(const ClassLogger& logger, const std::string& message) {
    write(logger, log4cxx::Level::getError(), message);
}

}  // namespace varnpdf
