// The command line as the commands see it, by CLI11.
#include "parser.h"

#include <CLI/CLI.hpp>

namespace cli {

const Option& Option::required() const {
    option_->required();
    return *this;
}

const Option& Option::shownAs(const std::string& text) const {
    option_->option_text(text);
    return *this;
}

const Option& Option::needs(const Option& other) const {
    option_->needs(other.option_);
    return *this;
}

const Option& Option::excludes(const Option& other) const {
    option_->excludes(other.option_);
    return *this;
}

const Option& Option::among(const std::vector<std::string>& values) const {
    option_->check(CLI::IsMember(values));
    return *this;
}

const Option& Option::between(int least, int most) const {
    option_->check(CLI::Range(least, most));
    return *this;
}

const Option& Option::single() const {
    option_->allow_extra_args(false);
    return *this;
}

Parser Parser::command(const std::string& name, const std::string& description) const {
    CLI::App* const app = app_->add_subcommand(name, description);
    app->fallthrough();
    return Parser(app);
}

void Parser::requireCommand() const { app_->require_subcommand(1); }

Parser Parser::group(const std::string& name, const std::string& description, std::size_t least,
                     std::size_t most) const {
    CLI::App* const app = app_->add_option_group(name, description);
    app->require_option(least, most);
    return Parser(app);
}

void Parser::footer(const std::string& text) const { app_->footer(text); }

Option Parser::option(const std::string& name, std::string& target, const std::string& help) const {
    return Option(app_->add_option(name, target, help));
}

Option Parser::option(const std::string& name, std::vector<std::string>& target, const std::string& help) const {
    return Option(app_->add_option(name, target, help));
}

Option Parser::option(const std::string& name, int& target, const std::string& help) const {
    return Option(app_->add_option(name, target, help));
}

Option Parser::option(const std::string& name, unsigned int& target, const std::string& help) const {
    return Option(app_->add_option(name, target, help));
}

Option Parser::option(const std::string& name, std::optional<int>& target, const std::string& help) const {
    return Option(app_->add_option(name, target, help));
}

Option Parser::option(const std::string& name, std::optional<std::string>& target, const std::string& help) const {
    return Option(app_->add_option(name, target, help));
}

Option Parser::flag(const std::string& name, bool& target, const std::string& help) const {
    return Option(app_->add_flag(name, target, help));
}

Option Parser::added(const std::string& name) const { return Option(app_->get_option(name)); }

bool Parser::parsed() const { return app_->parsed(); }

}  // namespace cli
