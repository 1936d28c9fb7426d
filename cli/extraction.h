// Writing files whose names come from a document into a directory, and nowhere else.
#pragma once

#include <string>
#include <string_view>

namespace cli {

class Extraction {
public:
    /// Opens the directory, which is made when it is not there. Check `isOpen`; a complaint has been made.
    explicit Extraction(const std::string& directory);
    Extraction(const Extraction&) = delete;
    Extraction& operator=(const Extraction&) = delete;
    ~Extraction();
    [[nodiscard]] bool isOpen() const { return handle_ >= 0; }
    /// Writes a new file under a harmless form of the name, with a number where it is taken. Its path, or "" after a
    /// complaint.
    std::string write(const std::string& name, std::string_view bytes);

private:
    bool fill(const std::string& temporary, std::string_view bytes);

    std::string directory_;
    int handle_;
};

/// The last part of a name without control characters, at most 200 bytes; "attachment" where nothing is left.
std::string harmlessName(const std::string& utf8);

}  // namespace cli
