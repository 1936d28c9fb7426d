// The utilities of CPdfHelper that look at an object record.
#include <cstdio>

#include "syntax/Cursor.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfObj.h"

using namespace varnpdf;

namespace {

std::string_view takeToken(Cursor& cursor, std::string_view text) {
    cursor.skip(kIsCSpace);
    return cursor.takeUntil(kIsCSpace).of(text);
}

// "[", two numbers, "R" and "]", each behind white space. Every accepted token is echoed to standard output.
bool referenceArrayTokens(std::string_view text, std::size_t begin, int* num, int* gen) {
    const auto echo = [](std::string_view token) { std::fwrite(token.data(), 1, token.size(), stdout); };
    Cursor cursor(text, begin);
    if (const auto open = takeToken(cursor, text); open == "[") {
        echo(open);
    } else {
        return false;
    }
    for (int i = 0; i < 2; ++i) {
        const auto token = takeToken(cursor, text);
        const auto number = Cursor(token).takeInt();
        if (!number) return false;
        if (i == 0) *num = *number;
        *gen = *number;
        echo(token);
    }
    for (const std::string_view expected : {"R", "]"}) {
        const auto token = takeToken(cursor, text);
        if (token != expected) return false;
        echo(token);
    }
    return true;
}

}  // namespace

bool CPdfHelper::IsReference_MS(CPdfObj* obj, int* num, int* gen) {
    if (obj == nullptr) return false;
    const std::string_view text = obj->content();
    const std::size_t keyword = text.find("obj");
    return keyword != std::string_view::npos && referenceArrayTokens(text, keyword + 3, num, gen);
}

bool CPdfHelper::IsReference(CPdfObj* obj, int* num, int* gen) {
    return obj != nullptr && referenceArrayTokens(obj->content(), 0, num, gen);
}

bool CPdfHelper::IsPageObject(CPdfObj* obj) {
    if (obj == nullptr) return false;
    const std::string_view text = obj->content();
    return text.find("/Pages") == std::string_view::npos && text.find("/Page") != std::string_view::npos;
}
