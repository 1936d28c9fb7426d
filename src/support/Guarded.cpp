// What exceptions mean at the border.
#include "support/Guarded.h"

#include <exception>
#include <new>
#include <stdexcept>

#include "support/Loggers.h"

namespace varnpdf {

int codeOfException(int memoryCode, int otherCode) noexcept {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return memoryCode;
    } catch (const std::length_error&) {
        return memoryCode;
    } catch (const std::exception& error) {
        logError(loggers::pdf, "Unerwartete Ausnahme: ", error.what());
    } catch (...) {
        logError(loggers::pdf, "Unerwartete Ausnahme");
    }
    return otherCode;
}

}  // namespace varnpdf
