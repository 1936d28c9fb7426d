// Writing of the measured documents. They are as long as files get: everything is written once, in order.
#include "bench/Inputs.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>

#include "tests/support/PdfBuilder.h"

namespace varnpdf::bench {
namespace {

constexpr int kFirstFree = 4;  // behind catalogue, page tree and page
constexpr const char* kCatalogue = "<< /Type /Catalog /Pages 2 0 R >>";
constexpr const char* kPages = "<< /Type /Pages /Kids [3 0 R] /Count 1 >>";
constexpr const char* kPage = "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] >>";

/// 60 to 120 bytes of the kinds that fill long documents: annotations, structure, fonts, destinations.
std::string smallBody(int number) {
    const std::string n = std::to_string(number);
    switch (number % 4) {
        case 0:
            return "<< /Type /Annot /Subtype /Link /Border [0 0 0] /Rect [72 " + n + " 144 90] /Dest (chapter." + n +
                   ") >>";
        case 1:
            return "<< /Type /StructElem /S /P /P " + n + " 0 R /Pg 3 0 R /K " + n + " /Lang (de-DE) >>";
        case 2:
            return "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Name /F" + n +
                   " /Encoding /WinAnsiEncoding >>";
        default:
            return "<< /Title (Abschnitt " + n + ") /Parent 2 0 R /Dest [3 0 R /XYZ 72 " + n + " null] /Count 0 >>";
    }
}

std::string body(int number) {
    switch (number) {
        case 1:
            return kCatalogue;
        case 2:
            return kPages;
        case 3:
            return kPage;
        default:
            return smallBody(number);
    }
}

/// Appends objects with ascending numbers from 1 on and closes them with a table.
class Document {
public:
    Document() : bytes_("%PDF-1.7\n") {}
    [[nodiscard]] int next() const { return static_cast<int>(offsets_.size()) + 1; }
    void object(const std::string& text) {
        begin();
        bytes_.append(text).append("\nendobj\n");
    }
    void begin() {
        offsets_.push_back(flushed_ + bytes_.size());
        bytes_.append(std::to_string(offsets_.size())).append(" 0 obj\n");
    }
    std::string& bytes() { return bytes_; }
    [[nodiscard]] std::size_t at() const { return flushed_ + bytes_.size(); }
    [[nodiscard]] const std::vector<std::size_t>& offsets() const { return offsets_; }
    void flush(std::ofstream& out) {
        out.write(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
        flushed_ += bytes_.size();
        bytes_.clear();
    }
    void table() {
        const std::size_t section = at();
        const std::string size = std::to_string(next());
        bytes_ += "xref\n0 " + size + "\n0000000000 65535 f \n";
        char line[32];
        for (const std::size_t offset : offsets_) {
            std::snprintf(line, sizeof line, "%010zu 00000 n \n", offset);
            bytes_ += line;
        }
        bytes_ += "trailer\n<< /Size " + size + " /Root 1 0 R >>\nstartxref\n" + std::to_string(section) + "\n%%EOF\n";
    }

private:
    std::string bytes_;
    std::vector<std::size_t> offsets_;
    std::size_t flushed_ = 0;
};

void appendBigEndian(std::string& row, std::size_t value, int width) {
    for (int i = width - 1; i >= 0; --i) row.push_back(static_cast<char>(value >> (8 * i)));
}

/// An object stream with the objects `first` to `last` - 1; says where its data stands.
StreamPlace appendObjectStream(Document& document, int first, int last) {
    std::string head;
    std::string texts;
    for (int number = first; number < last; ++number) {
        head += std::to_string(number) + ' ' + std::to_string(texts.size()) + ' ';
        texts += body(number) + '\n';
    }
    const std::string data = test::deflated(head + texts);
    document.bytes() += "<< /Type /ObjStm /N " + std::to_string(last - first) + " /First " +
                        std::to_string(head.size()) + " /Filter /FlateDecode /Length " + std::to_string(data.size()) +
                        " >>\nstream\n";
    const StreamPlace place{document.at(), data.size(), head.size() + texts.size()};
    document.bytes().append(data).append("\nendstream\nendobj\n");
    return place;
}

/// Page contents as a word processor writes them: they deflate to about a third.
std::string pageText(int page) {
    std::mt19937 random(static_cast<unsigned>(page));
    std::string out = "BT /F1 11 Tf 72 770 Td 14 TL\n";
    for (int line = 0; line < 50; ++line) {
        out += "[(";
        for (int i = 0; i < 70; ++i) out.push_back(i % 7 == 6 ? ' ' : static_cast<char>('a' + random() % 26));
        out += ")] TJ T*\n";
    }
    return out + "ET\n";
}

std::string metadataText() {
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n<rdf:Description rdf:about=\"\" "
           "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\">\n<xmp:CreateDate>2024-01-01T12:00:00Z</xmp:CreateDate>\n"
           "<xmp:ModifyDate>2024-01-01T12:00:00Z</xmp:ModifyDate>\n</rdf:Description>\n</rdf:RDF>\n</x:xmpmeta>\n" +
           std::string(2000, ' ') + "\n<?xpacket end=\"w\"?>";
}

std::string derValue() {
    constexpr std::size_t kBytes = 7000;  // a CMS value with a chain of certificates and a time stamp
    std::string digits = "<30821b58";     // SEQUENCE of 7000 bytes
    for (std::size_t i = 0; i < kBytes; ++i) digits += "a5";
    return digits + std::string(2000, '0') + '>';
}

}  // namespace

Inputs::Inputs() {
    std::string name = (std::filesystem::temp_directory_path() / "varnpdf-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    directory_ = name;
}

Inputs::~Inputs() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

Input Inputs::save(const std::string& name, const std::string& bytes, int objects) {
    Input input{(directory_ / name).string(), bytes.size(), objects};
    std::ofstream out(input.path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush();
    if (!out) throw std::runtime_error("cannot write " + input.path);
    return input;
}

Input Inputs::plainObjects(int count) {
    Document document;
    while (document.next() <= count) document.object(body(document.next()));
    document.table();
    return save("plain-" + std::to_string(count), document.bytes(), count);
}

Input Inputs::megabyteStreams(int count) {
    constexpr std::size_t kMegabyte = 1'000'000;
    Input input{(directory_ / "streams").string()};
    std::ofstream out(input.path, std::ios::binary);
    std::mt19937_64 random(1);  // a fixed seed: the same file in every run
    Document document;
    for (const char* const text : {kCatalogue, kPages, kPage}) document.object(text);
    std::vector<std::uint64_t> noise(kMegabyte / sizeof(std::uint64_t));
    for (int i = 0; i < count; ++i) {
        std::ranges::generate(noise, random);
        document.begin();
        document.bytes() += "<< /Length " + std::to_string(kMegabyte) + " >>\nstream\n";
        document.bytes().append(reinterpret_cast<const char*>(noise.data()), kMegabyte);
        document.bytes() += "\nendstream\nendobj\n";
        document.flush(out);
    }
    document.table();
    document.flush(out);
    out.flush();
    if (!out) throw std::runtime_error("cannot write " + input.path);
    input.bytes = document.at();
    input.objects = count + 3;
    return input;
}

Input Inputs::packedObjects(int count) {
    constexpr int kPerStream = 150;
    struct Row {
        std::size_t first;
        int second;
    };
    std::vector<Row> packed;
    std::vector<StreamPlace> places;
    std::vector<std::size_t> offsets;
    Document document;
    const int firstStream = count + 1;
    for (int first = 1; first <= count; first += kPerStream) {
        const int last = std::min(first + kPerStream, count + 1);
        const int number = firstStream + static_cast<int>(places.size());
        for (int i = first; i < last; ++i) packed.push_back({static_cast<std::size_t>(number), i - first});
        offsets.push_back(document.at());
        document.bytes() += std::to_string(number) + " 0 obj\n";
        places.push_back(appendObjectStream(document, first, last));
    }
    const std::size_t section = document.at();
    offsets.push_back(section);
    std::string rows(7, '\0');  // object 0 is free
    for (const Row& row : packed) {
        rows.push_back('\2');
        appendBigEndian(rows, row.first, 4);
        appendBigEndian(rows, static_cast<std::size_t>(row.second), 2);
    }
    for (const std::size_t offset : offsets) {
        rows.push_back('\1');
        appendBigEndian(rows, offset, 4);
        appendBigEndian(rows, 0, 2);
    }
    const std::string data = test::deflated(rows);
    const int number = firstStream + static_cast<int>(places.size());
    document.bytes() += std::to_string(number) + " 0 obj\n<< /Type /XRef /Size " + std::to_string(number + 1) +
                        " /Root 1 0 R /W [1 4 2] /Filter /FlateDecode /Length " + std::to_string(data.size()) +
                        " >>\nstream\n";
    places.push_back({document.at(), data.size(), rows.size()});
    document.bytes() += data + "\nendstream\nendobj\nstartxref\n" + std::to_string(section) + "\n%%EOF\n";
    Input input = save("packed", document.bytes(), count);
    input.streams = std::move(places);
    return input;
}

Input Inputs::updates(int count) {
    constexpr int kObjects = 2000;
    constexpr int kChanged = 10;
    test::PdfBuilder builder;
    for (int number = 1; number <= kObjects; ++number) builder.object(number, body(number));
    builder.table();
    for (int i = 0; i < count; ++i) {
        for (int k = 0; k < kChanged; ++k) {
            const int number = kFirstFree + (i * kChanged + k) % (kObjects - kFirstFree);
            builder.object(number, body(number));
        }
        builder.table();
    }
    return save("updates", builder.bytes(), kObjects);
}

Input Inputs::signatures(int others) {
    constexpr int kSignatures = 25;
    test::PdfBuilder builder;
    int number = 1;
    for (; number < others + kFirstFree; ++number) builder.object(number, body(number));
    const std::string value = derValue();
    for (int i = 0; i < kSignatures; ++i, number += 2) {
        const std::string n = std::to_string(i);
        builder.object(number, "<< /Type /Annot /Subtype /Widget /FT /Sig /T (Sig" + n + ") /Rect [0 0 0 0] /V " +
                                   std::to_string(number + 1) + " 0 R >>");
        builder.signature(number + 1, value,
                          "/Filter /Adobe.PPKLite /SubFilter /ETSI.CAdES.detached /Reason (Freigabe " + n +
                              ") /Location <FEFF004B00F6006C006E> /M (D:20240101120000Z) /Name (N. N.) "
                              "/ContactInfo (mail) /R 1 /FT /Sig /Cert <3000>");
    }
    const std::string bytes = test::withByteRanges(builder.table().bytes());
    return save("signed-" + std::to_string(others), bytes, number - 1);
}

Input Inputs::textFile(int megabytes) {
    const std::size_t wanted = static_cast<std::size_t>(megabytes) << 20U;
    std::mt19937 random(1);
    std::string bytes;
    while (bytes.size() < wanted) {
        const auto value = random();
        bytes.append(std::to_string(value % 100000)).append(";Rechnung ").append(std::to_string(value >> 20U));
        bytes.append(value % 3 == 0 ? ";bezahlt;EUR\r\n" : ";offen;EUR\r\n");
    }
    return save("attach" + std::to_string(megabytes) + ".txt", bytes, 1);
}

Input Inputs::smallDocument() {
    constexpr int kObjects = 200;
    constexpr std::size_t kContents = 20'000;
    test::PdfBuilder builder;
    for (int number = 1; number <= kObjects; ++number) builder.object(number, body(number));
    builder.stream(kObjects + 1, "", std::string(kContents, 'q'));
    return save("small", builder.table().bytes(), kObjects + 1);
}

Input Inputs::tenPages() {
    constexpr int kPageCount = 10;
    constexpr int kFirstPage = 5;  // behind catalogue, page tree, /Info and metadata
    constexpr int kPerPage = 8;    // page, contents, two fonts, four links
    test::PdfBuilder builder;
    std::string kids;
    for (int i = 0; i < kPageCount; ++i) kids += std::to_string(kFirstPage + i * kPerPage) + " 0 R ";
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R /Metadata 4 0 R /Lang (de-DE) /PageMode /UseNone >>");
    builder.object(2, "<< /Type /Pages /Kids [" + kids + "] /Count " + std::to_string(kPageCount) + " >>");
    builder.object(3, "<< /Title (Bericht) /CreationDate (D:20240101120000Z) /ModDate (D:20240101120000Z) >>");
    builder.stream(4, "/Type /Metadata /Subtype /XML", metadataText());
    for (int i = 0; i < kPageCount; ++i) {
        const int page = kFirstPage + i * kPerPage;
        const auto reference = [page](int offset) { return std::to_string(page + offset) + " 0 R"; };
        builder.object(page, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents " + reference(1) +
                                 " /Resources << /ProcSet [/PDF /Text] /Font << /F1 " + reference(2) + " /F2 " +
                                 reference(3) + " >> >> /Annots [" + reference(4) + " " + reference(5) + " " +
                                 reference(6) + " " + reference(7) + "] >>");
        builder.stream(page + 1, "/Filter /FlateDecode", test::deflated(pageText(i)));
        for (const int offset : {2, 3}) builder.object(page + offset, smallBody(2));
        for (const int offset : {4, 5, 6, 7}) builder.object(page + offset, smallBody(4 * (page + offset)));
    }
    return save(
        "ten-pages",
        builder.table({.entries = "/Root 1 0 R /Info 3 0 R /ID [<0123456789ABCDEF> <0123456789ABCDEF>]"}).bytes(),
        kFirstPage + kPageCount * kPerPage - 1);
}

Inputs& inputs() {
    static Inputs all;
    return all;
}

}  // namespace varnpdf::bench
