// What every command of the program shares: how it registers, how it ends, what it says when something fails.
#pragma once

#include <functional>
#include <string>

#include "parser.h"

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
    Parser parser;
    std::function<int()> run;
};

Command addInfo(const Parser& program);
Command addExtract(const Parser& program);
Command addShow(const Parser& program);
Command addSign(const Parser& program);
Command addPrepare(const Parser& program);
Command addEmbed(const Parser& program);
Command addVerify(const Parser& program);
Command addConvert(const Parser& program);
Command addFind(const Parser& program);
Command addFields(const Parser& program);
Command addFill(const Parser& program);
Command addField(const Parser& program);
Command addDss(const Parser& program);
Command addAttach(const Parser& program);
Command addAttachments(const Parser& program);
Command addPortfolio(const Parser& program);
Command addSelfcheck(const Parser& program);

/// "varnpdf: WHAT: SENTENCE" on standard error. `what` may be any bytes.
void complain(const std::string& what, const std::string& sentence);
/// The same with the meaning and the number of a library result.
void complain(const std::string& what, int code);

}  // namespace cli
