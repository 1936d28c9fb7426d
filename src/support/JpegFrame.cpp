// The frame header of a JPEG file (ITU-T T.81 B.2.2).
#include "support/JpegFrame.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace varnpdf {
namespace {

constexpr int kFill = 0xFF;
constexpr int kStart = 0xD8;
constexpr int kEnd = 0xD9;
constexpr int kScan = 0xDA;
constexpr int kAdobe = 0xEE;
constexpr std::string_view kAdobeName = "Adobe";

// The marker's second byte, behind any fill bytes. Decoders pass over stray bytes in front of a marker, and so do we.
int nextMarker(std::FILE* file) {
    int byte = std::fgetc(file);
    while (byte != kFill && byte != EOF) byte = std::fgetc(file);
    while (byte == kFill) byte = std::fgetc(file);
    return byte;
}

int word(std::FILE* file) {
    const int high = std::fgetc(file);
    const int low = std::fgetc(file);
    return high == EOF || low == EOF ? -1 : high * 256 + low;
}

// Read, not sought: tiny segments would cost a system call each.
bool skipBytes(std::FILE* file, int count) {
    std::array<char, 4096> room;
    while (count > 0) {
        const std::size_t part = std::min(room.size(), static_cast<std::size_t>(count));
        if (std::fread(room.data(), 1, part, file) != part) return false;
        count -= static_cast<int>(part);
    }
    return true;
}

// Reads the first of `count` bytes, which are taken off it: whether they are Adobe's name.
bool takesAdobeName(std::FILE* file, int& count) {
    std::array<char, kAdobeName.size()> name{};
    if (count < static_cast<int>(name.size())) return false;
    count -= static_cast<int>(name.size());
    return std::fread(name.data(), 1, name.size(), file) == name.size() &&
           std::string_view(name.data(), name.size()) == kAdobeName;
}

bool isFrame(int marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

}  // namespace

std::optional<JpegFrame> readFrame(std::FILE* file) {
    if (std::fgetc(file) != kFill || std::fgetc(file) != kStart) return {};
    bool adobe = false;
    for (;;) {
        const int marker = nextMarker(file);
        if (marker == EOF || marker == kEnd || marker == kScan) return {};
        int length = word(file) - 2;
        if (length < 0) return {};
        if (!isFrame(marker)) {
            if (marker == kAdobe && takesAdobeName(file, length)) adobe = true;
            if (!skipBytes(file, length)) return {};
            continue;
        }
        JpegFrame frame{.kind = marker, .adobe = adobe};
        frame.precision = std::fgetc(file);
        frame.height = word(file);
        frame.width = word(file);
        frame.components = std::fgetc(file);
        if (frame.height < 0 || frame.width < 0 || frame.components == EOF) return {};
        return frame;
    }
}

}  // namespace varnpdf
