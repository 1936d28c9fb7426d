// The varnpdf program: its table of commands, common options and exit codes.
#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "command.h"
#include "log.h"
#include "output.h"

namespace {

constexpr const char* kVersion = "varnpdf 2.10.0";

using Adder = cli::Command (*)(const cli::Parser&);
constexpr Adder kCommands[] = {cli::addInfo,        cli::addExtract,   cli::addShow,    cli::addSign,
                               cli::addPrepare,     cli::addEmbed,     cli::addVerify,  cli::addDss,
                               cli::addFind,        cli::addFields,    cli::addFill,    cli::addField,   cli::addAttach,
                               cli::addAttachments, cli::addPortfolio, cli::addConvert, cli::addSelfcheck};

constexpr const char* kFooter = R"(Exit codes:
  0  all good
  2  wrong usage
  3  some of the files failed
  4  all of them failed, or the output could not be written

"varnpdf COMMAND --help" explains a command and gives examples.
"--" ends the options: what follows is a file, whatever it begins with.)";

int parseAndRun(int argc, char** argv) {
    CLI::App program{"Reads, signs and verifies PDF files, and makes them of images and text.", "varnpdf"};
    program.set_version_flag("--version", kVersion);
    program.require_subcommand(1);
    program.footer(kFooter);
    std::string level = "off";
    program.add_option("--log", level, "Sends the library's log to standard error; before or after the command")
        ->check(CLI::IsMember(cli::logLevels()))
        ->type_name("debug|info|warn|error|off")
        ->option_text("debug|info|warn|error|off");

    std::vector<cli::Command> commands;
    for (const Adder add : kCommands) commands.push_back(add(cli::Parser(&program)));
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        // Help and version come this way too; they are no errors.
        return program.exit(end) == 0 ? cli::finishOutput(cli::kAllGood) : cli::kUsage;
    }
    cli::configureLog(level);
    for (const cli::Command& command : commands) {
        if (command.parser.parsed()) return cli::finishOutput(command.run());
    }
    return cli::kUsage;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return parseAndRun(argc, argv);
    } catch (const std::bad_alloc&) {
        cli::complain("out of memory", "nothing more was done");
    } catch (const std::exception& error) {
        cli::complain("unexpected end", error.what());
    }
    return cli::kAllFailed;
}
