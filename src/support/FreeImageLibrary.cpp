// FreeImage, loaded when the first PNG is.
#include "support/FreeImageLibrary.h"

#include <dlfcn.h>

#include <optional>

namespace varnpdf {
namespace {

constexpr const char* kName = "libfreeimage.so.3";

// Takes the functions out of the library one by one.
class Functions {
public:
    explicit Functions(void* library) : library_(library) {}
    template <typename Function>
    void find(Function& function, const char* name) {
        function = reinterpret_cast<Function>(library_ == nullptr ? nullptr : dlsym(library_, name));
        complete_ = complete_ && function != nullptr;
    }
    [[nodiscard]] bool complete() const { return complete_; }

private:
    void* library_;
    bool complete_ = true;
};

// It stays loaded: its own libraries start threads and keep state for the process.
std::optional<FreeImageLibrary> loadLibrary() {
    Functions functions(dlopen(kName, RTLD_LAZY | RTLD_LOCAL));
    FreeImageLibrary library{};
    functions.find(library.loadFromMemory, "FreeImage_LoadFromMemory");
    functions.find(library.unload, "FreeImage_Unload");
    functions.find(library.width, "FreeImage_GetWidth");
    functions.find(library.height, "FreeImage_GetHeight");
    functions.find(library.colourType, "FreeImage_GetColorType");
    functions.find(library.isTransparent, "FreeImage_IsTransparent");
    functions.find(library.channel, "FreeImage_GetChannel");
    functions.find(library.to32Bits, "FreeImage_ConvertTo32Bits");
    functions.find(library.to24Bits, "FreeImage_ConvertTo24Bits");
    functions.find(library.toGreyscale, "FreeImage_ConvertToGreyscale");
    functions.find(library.openMemory, "FreeImage_OpenMemory");
    functions.find(library.closeMemory, "FreeImage_CloseMemory");
    functions.find(library.saveToMemory, "FreeImage_SaveToMemory");
    functions.find(library.acquireMemory, "FreeImage_AcquireMemory");
    return functions.complete() ? std::optional(library) : std::nullopt;
}

}  // namespace

const FreeImageLibrary* FreeImageLibrary::get() {
    static const std::optional<FreeImageLibrary> library = loadLibrary();
    return library ? &*library : nullptr;
}

}  // namespace varnpdf
