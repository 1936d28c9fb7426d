// What a host wants of a signature.
#pragma once

#include <array>
#include <span>

#include "varnpdf/FormfieldInfo.h"

namespace varnpdf {

struct SigningRequest {
    bool etsi = true;  ///< /SubFilter /ETSI.CAdES.detached, else /adbe.pkcs7.detached
    int page = 0;
    int posMode = 0;
    std::array<int, 2> position{};
    std::array<int, 2> size{};
    const char* reason = nullptr;
    const char* location = nullptr;
    const char* name = nullptr;
    const char* signDate = nullptr;
    unsigned contentsSize = 0;
    bool layers = false;
    const char* imageFile = nullptr;  ///< background image, null without one
    std::span<const FormfieldInfo_tag> fields;
    bool lock = false;
    bool skipImageCheck = false;

    [[nodiscard]] bool visible() const noexcept { return size[0] > 0 && size[1] > 0; }
    [[nodiscard]] bool hasPicture() const noexcept { return visible() && imageFile != nullptr; }
};

}  // namespace varnpdf
