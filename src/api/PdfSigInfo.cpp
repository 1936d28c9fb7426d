// The signature register.
#include "varnpdf/PdfSigInfo.h"

CPdfSigInfo::CPdfSigInfo() = default;
CPdfSigInfo::~CPdfSigInfo() = default;

void CPdfSigInfo::SetSignRef(int index, CPdfObj* obj) {
    if (index >= 0 && index < kRegister) SignRef[static_cast<std::size_t>(index)] = obj;
}

CPdfObj* CPdfSigInfo::GetSignRef(int index) const {
    return index >= 0 && index < kRegister ? SignRef[static_cast<std::size_t>(index)] : nullptr;
}
