// CPdfAttachments: the embedded files of a document.
#include <algorithm>
#include <limits>
#include <new>
#include <set>
#include <string_view>
#include <vector>

#include "portfolio/Streams.h"
#include "support/Inflate.h"
#include "support/Limits.h"
#include "syntax/Cursor.h"
#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfAttach.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

// In the order in which a reader shall prefer them (ISO 32000-2 7.11.3, 7.11.4).
constexpr std::string_view kSystems[] = {"/UF", "/F", "/Unix", "/DOS", "/Mac"};

std::string textOf(CPdf& pdf, std::string_view dictionary, std::string_view key) {
    return stringOf(resolved(pdf, valueOf(dictionary, key))).value_or("");
}

// The data as it is, or inflated; nothing for other filters and for rows that are predicted.
std::optional<std::string> decoded(CPdf& pdf, const ObjectParts& parts) {
    std::string_view filter = resolved(pdf, valueOf(parts.body, "/Filter"));
    if (filter.starts_with('[')) {
        Lexer lexer(filter, 1);
        const auto first = lexer.nextValue();
        if (first && lexer.nextValue()) return std::nullopt;
        filter = first ? resolved(pdf, *first) : std::string_view{};
    }
    if (filter.empty() || filter == "null") return std::string(*parts.data);
    if (filter != "/FlateDecode" && filter != "/Fl") return std::nullopt;
    if (parts.body.find("/Predictor") != std::string_view::npos) return std::nullopt;
    const std::size_t bound = std::min(limits::kInflateFactor * parts.data->size(), limits::kDocumentBytes);
    const auto bytes = inflateAll(*parts.data, bound);
    return bytes ? std::optional<std::string>(bytes->view()) : std::nullopt;
}

}  // namespace

struct CPdfAttachments::List {
    struct File {
        std::string key;
        std::string_view spec;  // the dictionary of the file specification
        const CPdfObj* stream;
    };

    explicit List(CPdf& document)
        : pdf(document),
          room(limits::kAttachmentBytesBase + limits::kAttachmentBytesPerByte * document.GetContentLen()) {}
    void spend(std::size_t bytes) { room -= std::min(room, bytes); }
    std::string_view value(std::string_view text);
    void readTree();
    void readLeaf(std::string_view names);
    void readAnnotations();
    void add(std::string key, std::string_view spec);
    [[nodiscard]] const File* at(int index) const {
        const bool exists = index >= 0 && static_cast<std::size_t>(index) < files.size();
        return exists ? &files[static_cast<std::size_t>(index)] : nullptr;
    }

    CPdf& pdf;
    std::size_t room;  // bytes that may still be gone through; at 0 the list ends
    std::vector<File> files;
    std::set<const CPdfObj*> listed;
    int unpackedIndex = -1;
    std::string unpacked;  // of the file asked for last: the two calls for it inflate once
};

// `resolved`, as long as there is room: many nodes may lead to one large object.
std::string_view CPdfAttachments::List::value(std::string_view text) {
    if (room == 0) return {};
    if (const CPdfObj* const object = referenced(pdf, text)) spend(object->content().size());
    const std::string_view found = resolved(pdf, text);
    spend(found.size());
    return found;
}

// Depth first, left to right; a node met before ends its branch.
void CPdfAttachments::List::readTree() {
    const std::string_view names = value(valueOf(value(pdf.GetLastTrailer()->root()), "/Names"));
    std::vector<std::string_view> nodes{valueOf(names, "/EmbeddedFiles")};
    std::set<const CPdfObj*> seen;
    for (std::size_t visited = 0; !nodes.empty() && visited < limits::kTreeReferences; ++visited) {
        const std::string_view next = nodes.back();
        nodes.pop_back();
        const CPdfObj* const object = referenced(pdf, next);
        if (object != nullptr && !seen.insert(object).second) continue;
        const std::string_view node = value(next);
        readLeaf(value(valueOf(node, "/Names")));
        const std::string_view kids = value(valueOf(node, "/Kids"));
        Lexer lexer(kids);
        if (lexer.next().kind != TokenKind::ArrayOpen) continue;
        const auto first = static_cast<std::ptrdiff_t>(nodes.size());
        while (const auto kid = lexer.nextValue()) {
            if (nodes.size() < limits::kTreeReferences) nodes.push_back(*kid);
        }
        std::reverse(nodes.begin() + first, nodes.end());
    }
}

void CPdfAttachments::List::readLeaf(std::string_view names) {
    Lexer lexer(names);
    if (lexer.next().kind != TokenKind::ArrayOpen) return;
    for (;;) {
        const auto key = lexer.nextValue();
        const auto spec = key ? lexer.nextValue() : std::nullopt;
        if (!spec || files.size() == limits::kTreeReferences) return;
        add(stringOf(value(*key)).value_or(""), *spec);
    }
}

void CPdfAttachments::List::readAnnotations() {
    constexpr std::string_view kSubtype = "/FileAttachment";
    int slot = 0;
    while (const CPdfObj* const object = pdf.search_map_by_value(slot)) {
        const std::string_view text = object->content();
        if (text.find(kSubtype) != std::string_view::npos && valueOf(text, "/Subtype") == kSubtype) {
            const std::string_view spec = value(valueOf(text, "/FS"));
            const std::string_view file = value(valueOf(spec, "/EF"));
            const bool isNew = std::ranges::none_of(kSystems, [&](std::string_view key) {
                const CPdfObj* const stream = referenced(pdf, valueOf(file, key));
                return stream != nullptr && listed.contains(stream);
            });
            if (isNew) add("", spec);
        }
        slot = std::max(slot, object->GetObjNum());
        if (slot++ == std::numeric_limits<int>::max()) return;
    }
}

void CPdfAttachments::List::add(std::string key, std::string_view spec) {
    spec = value(spec);
    const std::string_view embedded = value(valueOf(spec, "/EF"));
    const CPdfObj* stream = nullptr;
    for (const std::string_view system : kSystems) {
        if (stream == nullptr) stream = referenced(pdf, valueOf(embedded, system));
    }
    if (!spec.starts_with("<<")) return;
    // What the list is asked for later.
    for (const std::string_view system : kSystems) value(valueOf(spec, system));
    value(valueOf(spec, "/Desc"));
    if (stream != nullptr) spend(stream->content().size());
    if (room == 0) return;
    if (stream != nullptr) listed.insert(stream);
    files.push_back({std::move(key), spec, stream});
}

CPdfAttachments::CPdfAttachments(CPdf* pdf) {
    if (pdf == nullptr || pdf->GetLastTrailer() == nullptr) return;
    try {
        list_ = std::make_unique<List>(*pdf);
        list_->readTree();
        list_->readAnnotations();
    } catch (...) {
        list_.reset();
    }
}

CPdfAttachments::~CPdfAttachments() = default;

int CPdfAttachments::GetCount() const { return list_ ? static_cast<int>(list_->files.size()) : 0; }

std::string CPdfAttachments::GetKey(int index) const {
    const List::File* const file = list_ ? list_->at(index) : nullptr;
    return file == nullptr ? std::string() : file->key;
}

std::string CPdfAttachments::GetName(int index) const {
    const List::File* const file = list_ ? list_->at(index) : nullptr;
    if (file == nullptr) return {};
    for (const std::string_view system : kSystems) {
        std::string name = textOf(list_->pdf, file->spec, system);
        if (!name.empty()) return name;
    }
    return file->key;
}

std::string CPdfAttachments::GetDescription(int index) const {
    const List::File* const file = list_ ? list_->at(index) : nullptr;
    return file == nullptr ? std::string() : textOf(list_->pdf, file->spec, "/Desc");
}

std::string CPdfAttachments::GetMimeType(int index) const {
    const List::File* const file = list_ ? list_->at(index) : nullptr;
    if (file == nullptr || file->stream == nullptr) return {};
    const std::string_view name = resolved(list_->pdf, valueOf(file->stream->content(), "/Subtype"));
    return nameOf(name);
}

long long CPdfAttachments::GetSize(int index) const {
    const List::File* const file = list_ ? list_->at(index) : nullptr;
    if (file == nullptr || file->stream == nullptr) return -1;
    const std::string_view params = resolved(list_->pdf, valueOf(file->stream->content(), "/Params"));
    return Cursor(resolved(list_->pdf, valueOf(params, "/Size"))).takeInt().value_or(-1);
}

int CPdfAttachments::GetContent(int index, unsigned char* buffer, unsigned long* length) {
    const List::File* const file = list_ ? list_->at(index) : nullptr;
    if (file == nullptr || file->stream == nullptr || length == nullptr) return VARNPDF_EMBEDDED_FILE_MISSING;
    try {
        if (list_->unpackedIndex != index) {
            const ObjectParts parts = partsOf(list_->pdf, *file->stream);
            if (!parts.data) return VARNPDF_EMBEDDED_FILE_MISSING;
            auto bytes = decoded(list_->pdf, parts);
            if (!bytes) return VARNPDF_EMBEDDED_FILE_UNREADABLE;
            list_->unpacked = std::move(*bytes);
            list_->unpackedIndex = index;
        }
    } catch (...) {
        return VARNPDF_EMBEDDED_FILE_UNREADABLE;
    }
    *length = list_->unpacked.size();
    if (buffer != nullptr) list_->unpacked.copy(reinterpret_cast<char*>(buffer), list_->unpacked.size());
    return VARNPDF_OK;
}
