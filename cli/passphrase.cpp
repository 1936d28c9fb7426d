// Fetching of a pass phrase.
#include "passphrase.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "command.h"
#include "varnpdf/PdfText.h"

cli::Passphrase::~Passphrase() { OPENSSL_cleanse(buffer_.data(), buffer_.size()); }

bool cli::Passphrase::fetch(const std::string& what) {
    if (state_ != State::kOpen) return state_ == State::kFetched;
    bool good = false;
    if (!source_.file.empty()) {
        const int file = ::open(source_.file.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) {
            complain(source_.file, std::strerror(errno));
        } else {
            good = readLine(file, source_.file);
            ::close(file);
        }
    } else if (source_.descriptor >= 0) {
        good = readLine(source_.descriptor, "file descriptor " + std::to_string(source_.descriptor));
    } else {
        good = ask(what);
    }
    state_ = good ? State::kFetched : State::kFailed;
    return good;
}

/// The first line without its end. Single bytes: what follows in a pipe may be meant for somebody else.
bool cli::Passphrase::readLine(int file, const std::string& name) {
    for (;;) {
        char c = '\0';
        const ssize_t got = ::read(file, &c, 1);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) {
            complain(name, std::strerror(errno));
            return false;
        }
        if (got == 0 || c == '\n') break;
        if (c == '\0' || length_ == kLongest) {
            complain(name, "this is no pass phrase of at most " + std::to_string(kLongest) + " bytes");
            return false;
        }
        buffer_[length_++] = c;
    }
    if (length_ > 0 && buffer_[length_ - 1] == '\r') --length_;
    buffer_[length_] = '\0';
    return true;
}

bool cli::Passphrase::ask(const std::string& what) {
    // Without a terminal OpenSSL would read from standard input, which may be anything.
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (terminal < 0) {
        complain(what,
                 "it is protected by a pass phrase, and there is no terminal to ask for it; use --pass-file or "
                 "--pass-fd");
        return false;
    }
    ::close(terminal);
    const std::string prompt = "Pass phrase for " + CPdfText::Printable(what) + ": ";
    if (EVP_read_pw_string(buffer_.data(), static_cast<int>(buffer_.size()), prompt.c_str(), 0) != 0) {
        complain(what, "no pass phrase was given");
        return false;
    }
    length_ = std::strlen(buffer_.data());
    return true;
}
