// Opening of documents for all commands.
#include "document.h"

#include "command.h"

int cli::openDocument(CPdf& pdf, const std::string& path) {
    const int code = pdf.Open(path.c_str(), "rb");
    if (code != 0) complain(path, code);
    return code;
}

void cli::warnIfSigned(CPdfForm& form, const std::string& path) {
    for (int i = 0; i < form.GetFieldNum(); ++i) {
        if (std::string_view(form.GetType(i)) != "Sig" || form.GetValue(i) == nullptr) continue;
        complain(path,
                 "warning: the document is signed; the signatures stay intact, and viewers will say "
                 "that it was changed after signing");
        return;
    }
}
