// What a command is doing, for people who wait at a terminal.
#include "progress.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "text.h"

cli::Progress::Progress() {
    if (::isatty(STDERR_FILENO) == 1) thread_ = std::thread([this] { show(); });
}

cli::Progress::~Progress() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    ended_.notify_all();
    thread_.join();
}

void cli::Progress::now(const std::string& what) {
    const std::lock_guard lock(mutex_);
    what_ = printable(what);
}

void cli::Progress::show() {
    std::unique_lock lock(mutex_);
    int seconds = 0;
    while (!ended_.wait_for(lock, std::chrono::seconds(1), [this] { return stop_; })) {
        const std::string line = "\r\033[K" + what_ + " ... " + std::to_string(++seconds) + " s";
        std::fwrite(line.data(), 1, line.size(), stderr);
    }
    if (seconds > 0) std::fputs("\r\033[K", stderr);
}
