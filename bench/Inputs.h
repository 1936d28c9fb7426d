// The documents that are measured, made in a temporary directory of this run.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace varnpdf::bench {

/// Where the data of a stream stands in its file.
struct StreamPlace {
    std::size_t offset;
    std::size_t packed;
    std::size_t unpacked;
};

struct Input {
    std::string path;
    std::size_t bytes = 0;
    int objects = 0;
    std::vector<StreamPlace> streams = {};  ///< of documents whose objects are packed
};

/// The directory is removed with everything in it at the end of the program.
class Inputs {
public:
    Inputs();
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;
    ~Inputs();

    /// Small dictionaries and a classic table.
    Input plainObjects(int count);
    /// Streams of a megabyte that cannot be compressed.
    Input megabyteStreams(int count);
    /// The same small dictionaries, 150 to an object stream, and a cross-reference stream.
    Input packedObjects(int count);
    /// 2,000 objects and updates that change ten of them each.
    Input updates(int count);
    /// 25 signatures between `others` other objects.
    Input signatures(int others);
    /// Lines of text with numbers, which pack to about a third.
    Input textFile(int megabytes);
    /// About 50 kB: 200 objects and some page contents.
    Input smallDocument();
    /// About 50 kB: ten pages with packed contents, fonts and links, /Info and a metadata stream.
    Input tenPages();

private:
    Input save(const std::string& name, const std::string& bytes, int objects);
    std::filesystem::path directory_;
};

/// Those of this run.
Inputs& inputs();

}  // namespace varnpdf::bench
