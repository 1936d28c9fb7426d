// A PDF file written object by object into a stream; the offsets of the objects are noted.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "support/Limits.h"
#include "support/Text.h"

namespace varnpdf {

/// A length in hundredths of a point, written with two decimals whatever the locale.
struct Hundredths {
    long long value;
};
void appendPart(std::string& out, Hundredths length);

/// Pixels of a scan with 300 dots per inch.
constexpr Hundredths scanned(int pixels) { return {pixels * 24LL}; }

class ObjectFile {
public:
    /// The file stays the caller's. Offsets count from `position`, where the file stands.
    explicit ObjectFile(std::FILE* file, std::uint64_t position = 0) : file_(file), position_(position) {}

    template <typename... Parts>
    void put(const Parts&... parts) {
        const std::size_t before = pending_.size();
        append(pending_, parts...);
        position_ += pending_.size() - before;
        if (pending_.size() >= kPendingBytes) flush();
    }
    /// Large bytes, passed on without a copy.
    void putBytes(std::string_view bytes);
    /// "3 0 obj", with the offset noted and no line end behind it.
    void startObject(int number);
    /// The table of all objects up to the highest number; those that were not written are free.
    /// @param head       keyword and subsection, up to the number of entries
    /// @param headEnd    what stands behind the number of entries
    void putTable(std::string_view head, std::string_view headEnd);
    [[nodiscard]] int size() const noexcept { return static_cast<int>(offsets_.size()); }

    /// Hands over what is pending; false when anything could not be written or the document is too long.
    bool flush() noexcept;
    [[nodiscard]] bool good() const noexcept { return good_ && position_ <= limits::kDocumentBytes; }
    [[nodiscard]] std::FILE* file() const noexcept { return file_; }
    [[nodiscard]] std::uint64_t position() const noexcept { return position_; }
    /// What others wrote to the file meanwhile.
    void setPosition(std::uint64_t position) noexcept { position_ = position; }

private:
    static constexpr std::size_t kPendingBytes = std::size_t{64} << 10U;

    std::FILE* file_;
    std::uint64_t position_;
    std::string pending_;
    std::vector<std::uint64_t> offsets_ = {0};  ///< by number; 0 stands for none
    bool good_ = true;
};

/// Every document of the converter has this identifier.
inline constexpr std::string_view kIdentifier =
    "[<4b36819ed116b6c689b6003bbae1cc53><4b36819ed116b6c689b6003bbae1cc53>]";
inline constexpr std::string_view kMaker = "https://varnpdf.example";

/// The moment as PDF date.
std::string creationDate();
/// Trailer of a document whose catalogue is object 2 and whose information dictionary is object 1.
void putTrailer(ObjectFile& out, std::uint64_t table);

}  // namespace varnpdf
