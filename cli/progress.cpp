// What a long command is doing, for people who wait at a terminal.
#include "progress.h"
#include "varnpdf/PdfText.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <utility>

namespace {

constexpr std::string_view kEraseLine = "\r\033[K";

void write(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stderr); }

}  // namespace

cli::Progress::Progress(std::string verb, std::size_t total) : verb_(std::move(verb)), total_(total) {
    if (::isatty(STDERR_FILENO) == 1) thread_ = std::thread([this] { show(); });
}

cli::Progress::~Progress() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    end_.notify_one();
    if (thread_.joinable()) thread_.join();
}

void cli::Progress::next(const std::string& item) {
    const std::lock_guard lock(mutex_);
    item_ = item;
    ++number_;
}

void cli::Progress::show() {
    std::unique_lock lock(mutex_);
    int seconds = 0;
    while (!end_.wait_for(lock, std::chrono::seconds(1), [this] { return ended_; })) {
        std::string line(kEraseLine);
        line += verb_ + ' ' + CPdfText::Printable(item_);
        if (total_ > 1) line += " (" + std::to_string(number_) + " of " + std::to_string(total_) + ')';
        write(line + ", " + std::to_string(++seconds) + " s");
    }
    if (seconds > 0) write(std::string(kEraseLine));
}
