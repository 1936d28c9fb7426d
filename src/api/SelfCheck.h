// The readers that the self-check asks, and how a table judges them.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace varnpdf {

/// The outcome of one table: the first input that gave something else, empty without one.
struct Judgement {
    int cases = 0;
    std::string failure;
};

/// Asks a reader with every row ("input -> results"). The reader gets a copy of the input, whose room ends with it.
Judgement judge(std::span<const std::string_view> rows, const std::function<std::string(std::string)>& ask);

struct ReaderCheck {
    const char* reader;
    Judgement (*run)();
};

/// One for each reader.
std::span<const ReaderCheck> readerChecks();

}  // namespace varnpdf
