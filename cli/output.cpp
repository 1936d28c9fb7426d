// Writing of results, and the complaints of all commands.
#include "output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "command.h"
#include "varnpdf/PdfText.h"
#include "varnpdf/result.h"

namespace {

int outputError = 0;

std::string reason(int error) { return std::strerror(error); }

}  // namespace

void cli::put(std::string_view bytes) {
    if (outputError == 0 && std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) outputError = errno;
}

int cli::finishOutput(int code) {
    if (std::fflush(stdout) != 0 && outputError == 0) outputError = errno;
    if (outputError == 0) return code;
    complain("standard output", reason(outputError));
    return kAllFailed;
}

bool cli::outputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

bool cli::writeFile(const std::string& path, std::string_view bytes) { return writeFile(path, std::span(&bytes, 1)); }

bool cli::writeFile(const std::string& path, std::span<const std::string_view> pieces) {
    CPdfOutput file(path.c_str());
    for (const std::string_view piece : pieces) file.Write(piece);
    if (file.IsOpen() && file.Commit()) return true;
    complain(path, reason(errno));
    return false;
}

cli::WorkFile::WorkFile(const std::string& target, std::string_view bytes) : target_(target), file_(target.c_str()) {
    file_.Write(bytes);
    if (!isOpen()) complain(target, reason(file_.IsOpen() ? EINVAL : errno));
}

bool cli::WorkFile::commit() {
    if (file_.Commit()) return true;
    complain(target_, reason(errno));
    return false;
}

void cli::complain(const std::string& what, const std::string& sentence) {
    std::fflush(stdout);
    const std::string line = "varnpdf: " + CPdfText::Printable(what) + ": " + CPdfText::Printable(sentence) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void cli::complain(const std::string& what, int code) {
    complain(what, std::string(varnpdf_message(code)) + " (" + std::to_string(code) + ")");
}
