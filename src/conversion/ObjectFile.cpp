// A PDF file written object by object into a stream.
#include "conversion/ObjectFile.h"

#include <cstdlib>

#include "syntax/Dates.h"

namespace varnpdf {

void appendPart(std::string& out, Hundredths length) {
    append(out, length.value < 0 ? "-" : "", std::abs(length.value) / 100, '.',
           Digits{std::abs(length.value) % 100, 2});
}

void ObjectFile::putBytes(std::string_view bytes) {
    flush();
    position_ += bytes.size();
    if (good() && std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) good_ = false;
}

void ObjectFile::startObject(int number) {
    const auto index = static_cast<std::size_t>(number);
    if (index >= offsets_.size()) offsets_.resize(index + 1);
    offsets_[index] = position_;
    put(number, " 0 obj");
}

// An entry has 20 bytes with its line end (ISO 32000-2 7.5.4).
void ObjectFile::putTable(std::string_view head, std::string_view headEnd) {
    put(head, offsets_.size(), headEnd);
    put("0000000000 65535 f \n");
    for (std::size_t i = 1; i < offsets_.size(); ++i) {
        const bool used = offsets_[i] != 0;
        put(Digits{static_cast<long long>(offsets_[i]), 10}, used ? " 00000 n \n" : " 65535 f \n");
    }
}

bool ObjectFile::flush() noexcept {
    if (good() && !pending_.empty()) {
        good_ = std::fwrite(pending_.data(), 1, pending_.size(), file_) == pending_.size();
    }
    pending_.clear();
    return good();
}

std::string creationDate() { return pdfDate(std::time(nullptr)); }

void putTrailer(ObjectFile& out, std::uint64_t table) {
    out.put("trailer\n", "<<\n", "/Size ", out.size(), "\n", "/Root 2 0 R\n", "/Info 1 0 R\n", "/ID ", kIdentifier,
            "\n", ">>\n", "startxref\n", table, "\n", "%%EOF\n");
}

}  // namespace varnpdf
