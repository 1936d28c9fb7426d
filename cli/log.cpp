// Appender for the library's log. It writes messages as they are, in UTF-8: the stock console appender recodes them
// for the locale and turns umlauts into question marks under LC_ALL=C.
#include "log.h"
#include "varnpdf/PdfText.h"

#include <log4cxx/appenderskeleton.h>
#include <log4cxx/helpers/loglog.h>
#include <log4cxx/level.h>
#include <log4cxx/logger.h>
#include <log4cxx/logmanager.h>
#include <log4cxx/spi/loggerrepository.h>

#include <cstdio>
#include <memory>

namespace {

// The macros below name the library's types without their namespace.
using namespace log4cxx;

class StandardErrorAppender : public AppenderSkeleton {
public:
    DECLARE_LOG4CXX_OBJECT(StandardErrorAppender)
    BEGIN_LOG4CXX_CAST_MAP()
    LOG4CXX_CAST_ENTRY(StandardErrorAppender)
    LOG4CXX_CAST_ENTRY_CHAIN(AppenderSkeleton)
    END_LOG4CXX_CAST_MAP()

    StandardErrorAppender() = default;
    void close() override {}
    bool requiresLayout() const override { return false; }

protected:
    void append(const spi::LoggingEventPtr& event, helpers::Pool&) override {
        // Messages quote the document: one event stays one line, and nothing in it commands the terminal.
        const std::string line = event->getLevel()->toString() + ' ' + event->getLoggerName() + ": " +
                                 CPdfText::Printable(event->getMessage()) + '\n';
        std::fwrite(line.data(), 1, line.size(), stderr);
    }
};

IMPLEMENT_LOG4CXX_OBJECT(StandardErrorAppender)

}  // namespace

std::vector<std::string> cli::logLevels() { return {"debug", "info", "warn", "error", "off"}; }

void cli::configureLog(const std::string& level) {
    // Counting as configured keeps log4cxx from reading log4cxx.properties in the working directory, which may be
    // anybody's.
    LogManager::getLoggerRepository()->setConfigured(true);
    helpers::LogLog::setQuietMode(true);
    const LoggerPtr root = Logger::getRootLogger();
    root->removeAllAppenders();
    root->setLevel(Level::toLevel(level, Level::getOff()));
    if (level != "off") root->addAppender(std::make_shared<StandardErrorAppender>());
}
