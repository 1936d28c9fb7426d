// The text of pages.
#include "content/PageText.h"

#include "content/Interpreter.h"
#include "content/Resources.h"
#include "model/Lookup.h"
#include "support/Limits.h"
#include "syntax/Values.h"

namespace varnpdf {

struct PageTextReader::Parts {
    explicit Parts(const Document& of)
        : document(of),
          budget(limits::kContentBytesBase + limits::kContentBytesPerByte * of.view().size()),
          cache(of, budget) {}

    // The parts of a page's content are read as one, with a blank where two of them meet (ISO 32000-2 7.8.2).
    std::string contentOf(const CPdfObj& page) {
        const std::string_view contents = valueOf(page.content(), "/Contents");
        const auto parts = itemsOf(resolved(document, contents));
        std::string joined;
        for (const std::string_view part : parts ? *parts : std::vector{contents}) {
            const CPdfObj* const object = objectOf(document, part);
            if (object == nullptr || budget == 0 || joined.size() > limits::kContentBytes) continue;
            joined += cache.content(*object).view();
            joined += '\n';
        }
        return joined;
    }

    const Document& document;
    std::size_t budget;
    ResourceCache cache;
};

PageTextReader::PageTextReader(const Document& document) : parts_(std::make_unique<Parts>(document)) {}

PageTextReader::~PageTextReader() = default;

std::vector<PlacedGlyph> PageTextReader::read(const CPdfObj& page) {
    if (isExhausted()) return {};
    Interpreter interpreter(parts_->cache, parts_->budget);
    interpreter.run(parts_->contentOf(page), parts_->cache.resources(parts_->cache.resourcesOfPage(page)));
    return interpreter.take();
}

bool PageTextReader::isExhausted() const noexcept { return parts_->budget == 0; }

}  // namespace varnpdf
