// Collects what a logger says for the duration of a scope.
#include "support/LogCapture.h"

#include <log4cxx/appenderskeleton.h>
#include <log4cxx/helpers/transcoder.h>
#include <log4cxx/logger.h>

#include <algorithm>

namespace varnpdf::test {
namespace {

class Collector : public log4cxx::AppenderSkeleton {
public:
    void append(const log4cxx::spi::LoggingEventPtr& event, log4cxx::helpers::Pool&) override {
        std::string message;
        log4cxx::helpers::Transcoder::encodeUTF8(event->getRenderedMessage(), message);
        messages.push_back(std::move(message));
    }
    void close() override {}
    [[nodiscard]] bool requiresLayout() const override { return false; }

    std::vector<std::string> messages;
};

}  // namespace

struct LogCapture::Attached {
    log4cxx::LoggerPtr logger;
    log4cxx::LevelPtr level;
    std::shared_ptr<Collector> collector;
};

LogCapture::LogCapture(const std::string& name) {
    const auto logger = log4cxx::Logger::getLogger(name);
    attached_ = std::make_unique<Attached>(Attached{logger, logger->getLevel(), std::make_shared<Collector>()});
    logger->setLevel(log4cxx::Level::getDebug());
    logger->addAppender(attached_->collector);
}

LogCapture::~LogCapture() {
    attached_->logger->removeAppender(attached_->collector);
    attached_->logger->setLevel(attached_->level);
}

const std::vector<std::string>& LogCapture::messages() const { return attached_->collector->messages; }

bool LogCapture::has(std::string_view message) const { return std::ranges::count(messages(), message) > 0; }

}  // namespace varnpdf::test
