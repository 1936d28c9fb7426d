// The named logger of a class.
#pragma once

#include <memory>
#include <mutex>

namespace log4cxx {
class Logger;
}

namespace varnpdf {

/// A logger by name, looked up at the first message that somebody wants to read. Until the host has configured the
/// back end nothing is looked up, so that the library never makes log4cxx read a configuration by itself.
class ClassLogger {
public:
    constexpr ClassLogger() noexcept = default;
    constexpr explicit ClassLogger(const char* name) noexcept : name_(name) {}

    /// Null while the back end is not configured, or without a name.
    [[nodiscard]] log4cxx::Logger* find() const;

private:
    const char* name_ = nullptr;
    mutable std::once_flag once_;
    mutable std::shared_ptr<log4cxx::Logger> logger_;
};

}  // namespace varnpdf
