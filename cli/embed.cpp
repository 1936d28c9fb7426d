// varnpdf embed: the second half of a signature whose value was made elsewhere.
#include <memory>
#include <optional>
#include <string>

#include "cms.h"
#include "command.h"
#include "insertion.h"
#include "state.h"

namespace {

constexpr const char* kFooter =
    R"(The value is refused when it is too long, is no CMS SignedData (DER), or was not made over the prepared bytes.

Example:
  varnpdf embed in.state --value value.der -o out.pdf)";

struct Options {
    std::string state;
    std::string value;
    std::string out;
};

bool refuse(const std::string& path, const std::string& sentence) {
    cli::complain(path, sentence);
    return false;
}

bool fits(const Options& options, const cli::State& state, const std::string& value) {
    if (cli::valueLength(value) != value.size()) {
        return refuse(options.value, "this is no CMS SignedData in DER");
    }
    if (value.size() > state.room) {
        return refuse(options.value, "the value is too long: it takes " + std::to_string(value.size()) +
                                         " bytes, and there is room for " + std::to_string(state.room) +
                                         "; prepare again with --reserve " + std::to_string(value.size()));
    }
    const std::string_view pieces[] = {state.bytes};
    const cli::ValueState found = cli::checkValue(value, pieces, cli::ValueContent::kBytes).state;
    if (found == cli::ValueState::kUnsupported) {
        cli::complain(options.value, std::string("warning: not checked: ") + cli::sentenceOf(found));
    } else if (found != cli::ValueState::kIntact) {
        return refuse(options.value, cli::sentenceOf(found));
    }
    if (value.size() < state.room) {
        cli::complain(options.value,
                      "warning: the value is " + std::to_string(state.room - value.size()) +
                          " bytes shorter than its room; some validators will say that the file is not wholly signed. "
                          "Prepare with --reserve " +
                          std::to_string(value.size()) + " to avoid that");
    }
    return true;
}

int run(const Options& options) {
    std::string buffer;
    const std::optional<cli::State> state = cli::readState(options.state, buffer);
    const std::optional<std::string> value = state ? cli::readFile(options.value) : std::nullopt;
    if (!value || !fits(options, *state, *value)) return cli::kAllFailed;
    return cli::writeSigned(options.out, state->bytes, state->offset, *value, state->room) ? cli::kAllGood
                                                                                           : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addEmbed(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("embed", "Puts a value that was made elsewhere into its document");
    parser.option("STATE", options->state, "File that \"varnpdf prepare\" has written").required().shownAs(" ");
    parser.option("--value", options->value, "The signature value: CMS SignedData (DER)").required().shownAs("FILE");
    parser.option("-o,--output", options->out, "File to write").required().shownAs("OUT");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
