// The state file: lines "name value", an empty line, the prepared bytes.
#include "state.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cms.h"
#include "command.h"
#include "output.h"

namespace {

constexpr std::string_view kFirstLine = "varnpdf-state 1";

/// The value of the line "name value" at the front, which is taken off.
std::optional<std::string_view> takeLine(std::string_view& text, std::string_view name) {
    const std::size_t end = text.substr(0, 200).find('\n');
    if (end == std::string_view::npos || !text.starts_with(name)) return std::nullopt;
    std::string_view value = text.substr(name.size(), end - name.size());
    if (!value.starts_with(' ')) return std::nullopt;
    text.remove_prefix(end + 1);
    return value.substr(1);
}

bool takeSize(std::string_view& text, std::string_view name, std::size_t& size) {
    const std::optional<std::string_view> value = takeLine(text, name);
    if (!value) return false;
    const auto [end, error] = std::from_chars(value->data(), value->data() + value->size(), size);
    return error == std::errc() && end == value->data() + value->size();
}

std::string fingerprint(std::string_view bytes) {
    const std::string_view pieces[] = {bytes};
    return cli::hexOf(cli::digestOf(EVP_sha256(), pieces).value_or(""));
}

}  // namespace

bool cli::writeState(const std::string& path, const State& state) {
    const std::string header = std::string(kFirstLine) + "\ncontents-offset " + std::to_string(state.offset) +
                               "\nreserve " + std::to_string(state.room) + "\nlength " +
                               std::to_string(state.bytes.size()) + "\nsha256 " + fingerprint(state.bytes) + "\n\n";
    const std::array<std::string_view, 2> pieces = {header, state.bytes};
    return writeFile(path, pieces);
}

std::optional<cli::State> cli::readState(const std::string& path, std::string& buffer) {
    std::optional<std::string> whole = readFile(path);
    if (!whole) return std::nullopt;
    buffer = std::move(*whole);
    std::string_view rest = buffer;
    State state;
    std::size_t length = 0;
    const std::optional<std::string_view> version = takeLine(rest, "varnpdf-state");
    if (!version || *version != "1") {
        complain(path,
                 version ? "this state was written by a newer version" : "this is no state of \"varnpdf prepare\"");
        return std::nullopt;
    }
    std::optional<std::string_view> sum;
    if (takeSize(rest, "contents-offset", state.offset) && takeSize(rest, "reserve", state.room) &&
        takeSize(rest, "length", length)) {
        sum = takeLine(rest, "sha256");
    }
    if (sum && rest.starts_with('\n')) state.bytes = rest.substr(1);
    if (!sum || state.bytes.size() != length || state.offset > length || *sum != fingerprint(state.bytes)) {
        complain(path, "the state is damaged");
        return std::nullopt;
    }
    return state;
}

std::optional<std::string> cli::readFile(const std::string& path) {
    const std::unique_ptr<std::FILE, decltype([](std::FILE* f) { std::fclose(f); })> file(
        std::fopen(path.c_str(), "rb"));
    struct stat status {};
    std::string out;
    bool good = file != nullptr && ::fstat(::fileno(file.get()), &status) == 0;
    if (good && S_ISREG(status.st_mode)) {
        out.resize(static_cast<std::size_t>(status.st_size));
        out.resize(std::fread(out.data(), 1, out.size(), file.get()));
    }
    // What is no regular file, or grew meanwhile.
    char more[4096];
    for (std::size_t got = 0; good && (got = std::fread(more, 1, sizeof more, file.get())) > 0;) out.append(more, got);
    good = good && std::ferror(file.get()) == 0;
    if (good) return out;
    complain(path, std::strerror(errno));
    return std::nullopt;
}

std::string cli::hexOf(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string out;
    for (const char byte : bytes) {
        out += kDigits[static_cast<unsigned char>(byte) >> 4U];
        out += kDigits[static_cast<unsigned char>(byte) & 0xFU];
    }
    return out;
}
