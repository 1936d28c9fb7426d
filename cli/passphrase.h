// The pass phrase of a key: from a file, a file descriptor or the terminal; never from the command line, which everybody
// on the machine can read.
#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace cli {

/// Where to ask; neither given: the terminal.
struct PassphraseSource {
    std::string file;
    int descriptor = -1;
};

/// A pass phrase, fetched when it is first needed and wiped at the end.
class Passphrase {
public:
    static constexpr std::size_t kLongest = 1023;

    explicit Passphrase(PassphraseSource source) : source_(std::move(source)) {}
    Passphrase(const Passphrase&) = delete;
    Passphrase& operator=(const Passphrase&) = delete;
    ~Passphrase();

    /// Fetches it once; false after a complaint. `what` is named in the prompt.
    bool fetch(const std::string& what);
    [[nodiscard]] bool fetched() const { return state_ == State::kFetched; }
    [[nodiscard]] bool failed() const { return state_ == State::kFailed; }
    /// NUL-terminated.
    [[nodiscard]] const char* text() const { return buffer_.data(); }
    [[nodiscard]] std::size_t length() const { return length_; }

private:
    enum class State { kOpen, kFetched, kFailed };
    bool readLine(int file, const std::string& name);
    bool ask(const std::string& what);

    PassphraseSource source_;
    State state_ = State::kOpen;
    std::array<char, kLongest + 1> buffer_{};
    std::size_t length_ = 0;
};

}  // namespace cli
