// The sentence of each result code.
#include "varnpdf/result.h"

namespace {

struct Row {
    int code;
    const char* meaning;
};

constexpr Row kRows[] = {
#define VARNPDF_RESULT(name, number, logText, meaning) {(number), (meaning)},
#include "varnpdf/result_codes.inc"
#undef VARNPDF_RESULT
};

}  // namespace

const char* varnpdf_message(int code) {
    for (const Row& row : kRows) {
        if (row.code == code) return row.meaning;
    }
    return "unknown result code";
}
