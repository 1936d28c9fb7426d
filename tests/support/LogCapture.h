// Collects what a logger says for the duration of a scope.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf::test {

class LogCapture {
public:
    /// Debug level and above of the logger, e.g. "VarnPDF.CPdf".
    explicit LogCapture(const std::string& logger);
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The messages so far, as UTF-8 bytes, in order.
    [[nodiscard]] const std::vector<std::string>& messages() const;
    /// The message was logged.
    [[nodiscard]] bool has(std::string_view message) const;

private:
    struct Attached;
    std::unique_ptr<Attached> attached_;
};

}  // namespace varnpdf::test
