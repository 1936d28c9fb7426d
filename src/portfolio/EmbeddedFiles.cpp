// The files embedded in a document.
#include "portfolio/EmbeddedFiles.h"

#include <algorithm>

#include "model/Lookup.h"
#include "support/Limits.h"
#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Text.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

// In the order in which a reader shall prefer them (ISO 32000-2 7.11.3, 7.11.4).
constexpr std::string_view kSystems[] = {"/UF", "/F", "/Unix", "/DOS", "/Mac"};

}  // namespace

EmbeddedFiles::EmbeddedFiles(const Document& document)
    : document_(document), room_(limits::kAttachmentBytesBase + limits::kAttachmentBytesPerByte * document.length) {
    if (!document.newest) return;
    readTree();
    readAnnotations();
}

void EmbeddedFiles::spend(std::size_t bytes) noexcept { room_ -= std::min(room_, bytes); }

// What a value stands for, as long as there is room: many nodes may lead to one large object.
std::string_view EmbeddedFiles::value(std::string_view text) {
    if (room_ == 0) return {};
    const auto [found, holder] = resolve(document_, text);
    spend(found.size() + (holder == nullptr ? 0 : holder->content().size()));
    return found;
}

// Depth first, left to right; a node met before ends its branch.
void EmbeddedFiles::readTree() {
    const std::string_view names = value(valueOf(value(document_.newest->root()), "/Names"));
    std::vector<std::string_view> nodes{valueOf(names, "/EmbeddedFiles")};
    std::set<const CPdfObj*> seen;
    for (std::size_t visited = 0; !nodes.empty() && visited < limits::kTreeReferences; ++visited) {
        const std::string_view next = nodes.back();
        nodes.pop_back();
        const CPdfObj* const object = objectOf(document_, next);
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

void EmbeddedFiles::readLeaf(std::string_view names) {
    Lexer lexer(names);
    if (lexer.next().kind != TokenKind::ArrayOpen) return;
    for (;;) {
        const auto key = lexer.nextValue();
        const auto spec = key ? lexer.nextValue() : std::nullopt;
        if (!spec || files_.size() == limits::kTreeReferences) return;
        add(stringOf(value(*key)).value_or(""), *spec);
    }
}

void EmbeddedFiles::readAnnotations() {
    document_.objects.forEach([&](int /*slot*/, const CPdfObj& object) { readAnnotation(object); });
}

void EmbeddedFiles::readAnnotation(const CPdfObj& object) {
    constexpr std::string_view kSubtype = "/FileAttachment";
    const std::string_view text = object.content();
    if (!contains(text, kSubtype) || valueOf(text, "/Subtype") != kSubtype) return;
    const std::string_view spec = valueOf(text, "/FS");
    const Dictionary embedded(value(valueOf(value(spec), "/EF")));
    const bool isNew = std::ranges::none_of(kSystems, [&](std::string_view system) {
        return listed_.contains(objectOf(document_, embedded.find(system)));
    });
    if (isNew && files_.size() < limits::kTreeReferences) add("", spec);
}

CPdfObj* EmbeddedFiles::stream(const Dictionary& embedded) {
    for (const std::string_view system : kSystems) {
        CPdfObj* const object = objectOf(document_, embedded.find(system));
        if (object == nullptr) continue;
        spend(object->content().size());
        return object;
    }
    return nullptr;
}

void EmbeddedFiles::add(std::string key, std::string_view spec) {
    const Dictionary entries(value(spec));
    if (!entries) return;
    File file{std::move(key), {}, value(entries.find("/Desc")), stream(Dictionary(value(entries.find("/EF"))))};
    for (const std::string_view system : kSystems) {
        const std::string_view name = value(entries.find(system));
        if (file.name.empty() && !stringOf(name).value_or("").empty()) file.name = name;
    }
    if (room_ == 0) return;
    if (file.stream != nullptr) listed_.insert(file.stream);
    files_.push_back(std::move(file));
}

std::string EmbeddedFiles::name(std::size_t index) const {
    const File& file = files_[index];
    return file.name.empty() ? file.key : stringOf(file.name).value_or("");
}

std::string EmbeddedFiles::description(std::size_t index) const {
    return stringOf(files_[index].description).value_or("");
}

std::string EmbeddedFiles::mimeType(std::size_t index) const {
    const CPdfObj* const stream = files_[index].stream;
    return stream == nullptr ? std::string() : nameOf(entryOf(document_, stream->content(), "/Subtype"));
}

long long EmbeddedFiles::statedSize(std::size_t index) const {
    const CPdfObj* const stream = files_[index].stream;
    if (stream == nullptr) return -1;
    const std::string_view params = entryOf(document_, stream->content(), "/Params");
    return integerOf(document_, valueOf(params, "/Size")).value_or(-1);
}

int EmbeddedFiles::content(std::size_t index, std::string_view& bytes) {
    const CPdfObj* const object = files_[index].stream;
    if (object == nullptr) return VARNPDF_EMBEDDED_FILE_MISSING;
    if (!unpacked_ || unpackedIndex_ != index) {
        const auto stream = streamOf(document_, *object);
        if (!stream) return VARNPDF_EMBEDDED_FILE_MISSING;
        const std::size_t packed = std::min(stream->data.size(), limits::kDocumentBytes);
        unpacked_.reset();
        unpacked_ = decoded(document_, *stream, std::min(limits::kInflateFactor * packed, limits::kDocumentBytes));
        if (!unpacked_) return VARNPDF_EMBEDDED_FILE_UNREADABLE;
        unpackedIndex_ = index;
    }
    bytes = unpacked_->view();
    return VARNPDF_OK;
}

}  // namespace varnpdf
