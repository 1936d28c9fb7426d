// Opening of documents for all commands.
#include "document.h"

#include "command.h"

int cli::openDocument(CPdf& pdf, const std::string& path) {
    const int code = pdf.Open(path.c_str(), "rb");
    if (code != 0) complain(path, code);
    return code;
}
