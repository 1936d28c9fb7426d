// One file on its way into one document (ISO 32000-2 7.11.4), by an appended update.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "portfolio/PackedFile.h"
#include "writer/Update.h"

namespace varnpdf {

/// What is embedded.
struct AttachedFile {
    std::string_view name;  ///< without directories, cut to what a file system takes
    std::string type;       ///< media type as the rest of a name
    PackedFile packed;
};
/// Reads and packs a file; 0 or the first reason why it cannot be embedded. The name is a view into `path`.
int readAttachedFile(const char* path, AttachedFile& file);

class Attachment {
public:
    /// Both are used until the pieces are written.
    Attachment(Document& document, const AttachedFile& file) : document_(document), file_(file), update_(document) {}

    /// Puts the update together; 0 or a result code.
    int run();
    /// The appended part, complete; the packed file is not copied.
    [[nodiscard]] std::vector<std::string_view> pieces() const { return update_.pieces(); }

private:
    void writeStream(int number);
    void writeFileSpec(int number, int stream);
    [[nodiscard]] std::string key() const;

    Document& document_;
    const AttachedFile& file_;
    Update update_;
};

}  // namespace varnpdf
