// What a command is doing, for people who wait at a terminal.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace cli {

/// While it lives, and after a first second, a line on standard error says what is being done and for how long. Nothing
/// is shown where standard error is no terminal.
class Progress {
public:
    Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();
    void now(const std::string& what);

private:
    void show();

    std::mutex mutex_;
    std::condition_variable ended_;
    bool stop_ = false;
    std::string what_;
    std::thread thread_;
};

}  // namespace cli
