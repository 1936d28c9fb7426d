// The command line as the commands see it. Only parser.cpp includes the library that reads it: its headers take longer
// to compile than all the rest of a command.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace cli {

/// An option or argument that was added to a parser; a handle, copies mean the same one.
class Option {
public:
    explicit Option(CLI::Option* option) : option_(option) {}

    const Option& required() const;
    /// What the help shows in place of the value's type.
    const Option& shownAs(const std::string& text) const;
    /// Only together with the other one, or never.
    const Option& needs(const Option& other) const;
    const Option& excludes(const Option& other) const;
    /// The values that are taken.
    const Option& among(const std::vector<std::string>& values) const;
    const Option& between(int least, int most) const;
    /// Takes one value each time it is given, also when it may be repeated.
    const Option& single() const;

private:
    CLI::Option* option_;
};

/// A command or a group of its options; a handle, copies mean the same one.
class Parser {
public:
    explicit Parser(CLI::App* app) : app_(app) {}

    [[nodiscard]] Parser command(const std::string& name, const std::string& description) const;
    /// One of its commands must be given.
    void requireCommand() const;
    /// Options of which `least` must be given and `most` may, 0 for any number.
    [[nodiscard]] Parser group(const std::string& name, const std::string& description, std::size_t least,
                               std::size_t most) const;
    void footer(const std::string& text) const;

    /// The target is set when the line is parsed and must still be there. A name without dashes is an argument.
    Option option(const std::string& name, std::string& target, const std::string& help) const;
    Option option(const std::string& name, std::vector<std::string>& target, const std::string& help) const;
    Option option(const std::string& name, int& target, const std::string& help) const;
    Option option(const std::string& name, unsigned int& target, const std::string& help) const;
    Option option(const std::string& name, std::optional<int>& target, const std::string& help) const;
    Option option(const std::string& name, std::optional<std::string>& target, const std::string& help) const;
    Option flag(const std::string& name, bool& target, const std::string& help) const;
    /// One that was added before.
    [[nodiscard]] Option added(const std::string& name) const;

    /// Was this command given?
    [[nodiscard]] bool parsed() const;

private:
    CLI::App* app_;
};

}  // namespace cli
