// What a long command is doing, for people who wait at a terminal.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace cli {

/// From the second second on, one line on standard error that renews itself and goes away at the end; nothing when
/// standard error is no terminal.
class Progress {
public:
    /// @param verb   what happens, such as "converting"
    /// @param total  how many times `next` will be called
    Progress(std::string verb, std::size_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void next(const std::string& item);

private:
    void show();

    std::string verb_;
    std::size_t total_;
    std::size_t number_ = 0;
    std::string item_;
    bool ended_ = false;
    std::mutex mutex_;
    std::condition_variable end_;
    std::thread thread_;
};

}  // namespace cli
