// What every command of the program shares: how it registers, how it ends, what it says when something fails.
#pragma once

#include <functional>
#include <string>

namespace CLI {
class App;
}

namespace cli {

/// Exit codes of the program, as its help lists them.
enum ExitCode : int {
    kAllGood = 0,
    kUsage = 2,
    kSomeFailed = 3,
    kAllFailed = 4,
};

/// A command as the parser knows it and what runs it when it was chosen.
struct Command {
    CLI::App* parser = nullptr;
    std::function<int()> run;
};

Command addInfo(CLI::App& program);
Command addExtract(CLI::App& program);
Command addShow(CLI::App& program);
Command addSign(CLI::App& program);
Command addPrepare(CLI::App& program);
Command addEmbed(CLI::App& program);
Command addVerify(CLI::App& program);
Command addConvert(CLI::App& program);
Command addFields(CLI::App& program);
Command addFill(CLI::App& program);
Command addDss(CLI::App& program);
Command addAttach(CLI::App& program);
Command addAttachments(CLI::App& program);
Command addPortfolio(CLI::App& program);

/// "varnpdf: WHAT: SENTENCE" on standard error. `what` may be any bytes.
void complain(const std::string& what, const std::string& sentence);
/// The same with the meaning and the number of a library result.
void complain(const std::string& what, int code);

}  // namespace cli
