// varnpdf convert: images and text as new PDF files.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "command.h"
#include "progress.h"
#include "varnpdf/Convert.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter =
    R"(The extension of a file says what it is:
  .jpg .jpeg   one page; the image data is taken over as it is, at 300 dots per inch
  .tif .tiff   one page for each image in the file, in the size that the file gives it
  .txt         Courier on Letter pages, 80 columns and 55 lines; a form feed starts a page.
               UTF-8, or else Windows-1252 with the umlauts of the DOS code page

One file IN becomes the file OUT, which is replaced when it exists. When OUT is a directory, each IN becomes a file
there, and without -o a file beside itself: the name of IN with .pdf for its extension. Such a file is replaced only
with --force. A PDF file appears when it is complete, or not at all.

Examples:
  varnpdf convert scan.tif -o scan.pdf
  varnpdf convert *.jpg notes.txt -o pages/)";

struct Options {
    std::vector<std::string> files;
    std::string out;
    bool force = false;
};

bool refuse(const std::string& what, const std::string& sentence) {
    cli::complain(what, sentence);
    return false;
}

bool isConvertible(const fs::path& file) {
    constexpr const char* kKnown[] = {".jpg", ".jpeg", ".tif", ".tiff", ".txt"};
    std::string extension = file.extension().string();
    for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    for (const char* const known : kKnown) {
        if (extension == known) return true;
    }
    const std::string found = extension.empty() ? "without an extension" : "with the extension " + extension;
    return refuse(file.string(), "files " + found + " are not converted; known are .jpg, .jpeg, .tif, .tiff and .txt");
}

bool isDirectory(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

/// Where the result goes, and whether that is our choice and not the user's.
struct Target {
    std::string path;
    bool derived = true;
};

Target targetOf(const Options& options, const fs::path& file) {
    if (options.out.empty()) return {fs::path(file).replace_extension(".pdf").string()};
    if (isDirectory(options.out)) return {(fs::path(options.out) / file.filename().replace_extension(".pdf")).string()};
    return {options.out, false};
}

bool mayWrite(const Target& target, const std::string& file, const Options& options, std::set<std::string>& written) {
    struct stat status {};
    std::error_code ignored;
    if (fs::equivalent(file, target.path, ignored)) return refuse(target.path, "this is the input itself");
    if (!written.insert(target.path).second) {
        return refuse(file, "not converted: " + target.path + " was already made from another input");
    }
    if (target.derived && !options.force && ::lstat(target.path.c_str(), &status) == 0) {
        return refuse(target.path, "the file exists; --force replaces it");
    }
    return true;
}

bool explain(const std::string& file, const std::string& out, int code) {
    if (code == VARNPDF_CONVERT_OUTPUT || code == VARNPDF_CONVERT_WRITE)
        cli::complain(out, code);
    else
        cli::complain(file, code);
    return false;
}

bool convert(const std::string& file, const Options& options, std::set<std::string>& written) {
    if (::access(file.c_str(), R_OK) != 0) return refuse(file, std::strerror(errno));
    if (!isConvertible(file)) return false;
    Target target = targetOf(options, file);
    if (!mayWrite(target, file, options, written)) return false;
    std::string in = file;
    const int code = VarnImage(in.data(), target.path.data());
    return code == VARNPDF_OK || explain(file, target.path, code);
}

int run(const Options& options) {
    if (options.files.size() > 1 && !options.out.empty() && !isDirectory(options.out)) {
        cli::complain(options.out, "several files are converted into a directory, and this is none");
        return cli::kUsage;
    }
    std::set<std::string> written;
    std::size_t good = 0;
    {
        cli::Progress progress("converting", options.files.size());
        for (const std::string& file : options.files) {
            progress.next(file);
            if (convert(file, options, written)) ++good;
        }
    }
    if (good == options.files.size()) return cli::kAllGood;
    return good > 0 ? cli::kSomeFailed : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addConvert(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("convert", "Makes PDF files of JPEG and TIFF images and of text");
    parser.option("IN", options->files, "Images and text files").required().shownAs(" ");
    parser.option("-o,--output", options->out, "File to write, or a directory for the files").shownAs("OUT");
    parser.flag("--force", options->force, "Replaces files whose names come from those of the inputs");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
