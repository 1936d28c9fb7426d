// CPdf: dictionary entries of its objects.
#include <cstring>

#include "model/DictionaryEntry.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

int CPdf::ReadDictionaryEntry(CPdfObj* obj, const char* key, char* out, int* keyPos, int* endPos) {
    return obj == nullptr ? 0 : obj->ReadDictionaryEntry(key, out, keyPos, endPos, 0, nullptr, 1);
}

int CPdf::ReadDictionaryEntryWithInDict(CPdfObj* obj, const char* key, char* out, int* keyPos, int* endPos) {
    if (obj == nullptr || key == nullptr) return 0;
    const std::string_view text = obj->content();
    const auto entry = findEntry(text, key, {.nested = true});
    if (keyPos != nullptr) *keyPos = entry ? static_cast<int>(entry->key) : 0;
    if (endPos != nullptr) *endPos = entry ? static_cast<int>(entry->end) : 0;
    if (out != nullptr) *out = '\0';
    if (!entry) return 0;
    if (out != nullptr) std::memcpy(out, text.data() + entry->value.begin, entry->value.size());
    return 1;
}
