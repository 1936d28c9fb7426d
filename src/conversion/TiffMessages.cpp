// What libtiff says while an image is converted.
#include "conversion/TiffMessages.h"

#include <tiffio.h>

#include <cstdio>
#include <mutex>
#include <string>

#include "support/Log.h"
#include "varnpdf/Convert.h"

namespace varnpdf {
namespace {

constinit ClassLogger logger{"VarnPDF.VarnImage"};

// The handlers belong to the process and cannot be exchanged atomically.
constinit std::mutex mutex;
int users = 0;
TIFFErrorHandler errorsBefore = nullptr;
TIFFErrorHandler warningsBefore = nullptr;

std::string formatted(const char* module, const char* format, std::va_list arguments) {
    char message[1024];
    std::vsnprintf(message, sizeof message, format, arguments);
    return text(module != nullptr ? module : "libtiff", ": ", message);
}

void logWarning(const char* module, const char* format, std::va_list arguments) {
    if (debugWanted(logger)) writeDebug(logger, formatted(module, format, arguments));
}

void logFailure(const char* module, const char* format, std::va_list arguments) {
    if (errorWanted(logger)) writeError(logger, formatted(module, format, arguments));
}

}  // namespace

TiffMessages::TiffMessages() {
    const std::lock_guard lock(mutex);
    if (users++ > 0) return;
    errorsBefore = TIFFSetErrorHandler(MyHandler);
    warningsBefore = TIFFSetWarningHandler(logWarning);
}

TiffMessages::~TiffMessages() {
    const std::lock_guard lock(mutex);
    if (--users > 0) return;
    TIFFSetErrorHandler(errorsBefore);
    TIFFSetWarningHandler(warningsBefore);
}

void logConversionError(const char* what, const char* sentence) { logError(logger, what, ": ", sentence); }

}  // namespace varnpdf

// Called from C, which no exception may pass.
void MyHandler(const char* module, const char* format, std::va_list arguments) {
    try {
        varnpdf::logFailure(module, format, arguments);
    } catch (...) {}
}
