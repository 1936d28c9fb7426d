// Tables of the syntax tests: an input and the readable form of everything it gives.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

/// Each row is "input -> results". The function gets the input to work on and returns what `shown` makes of its
/// results.
template <typename Results>
void check(std::initializer_list<std::string> rows, Results results) {
    constexpr std::string_view kArrow = " -> ";
    for (const std::string& row : rows) {
        const std::size_t arrow = row.find(kArrow);
        std::string in = row.substr(0, arrow);
        EXPECT_EQ(results(in), row.substr(arrow + kArrow.size())) << "row: " << row;
    }
}

template <typename... Values>
std::string shown(const Values&... values) {
    std::ostringstream out;
    ((out << values << ' '), ...);
    std::string text = out.str();
    text.pop_back();
    return text;
}

/// A zero-filled buffer as small as an operation allows, so that sanitizers see a byte too many.
struct Out {
    explicit Out(std::size_t size) : bytes(size) {}
    explicit Out(const std::string& text) : Out(text.size() + 1) {}
    operator char*() { return bytes.data(); }
    std::vector<char> bytes;
};
inline std::ostream& operator<<(std::ostream& os, const Out& out) { return os << out.bytes.data(); }
