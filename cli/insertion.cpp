// Writing of signed files.
#include "insertion.h"

#include <array>
#include <cstdint>
#include <memory>

#include "output.h"
#include "varnpdf/PdfSign.h"

bool cli::writeSigned(const std::string& path, std::string_view prepared, std::size_t offset, std::string_view value,
                      std::size_t room) {
    std::string bytes(value);
    char* text = nullptr;
    std::uint32_t length = 0;
    CPdfSign::buildSignContent(&text, &length, reinterpret_cast<unsigned char*>(bytes.data()),
                               static_cast<std::uint32_t>(bytes.size()), static_cast<std::uint32_t>(room));
    const std::unique_ptr<char[]> owner(text);
    const std::array<std::string_view, 3> pieces = {
        prepared.substr(0, offset), {text, length}, prepared.substr(offset)};
    return writeFile(path, pieces);
}
