// The signature register.
#include "varnpdf/PdfSigInfo.h"

CPdfSigInfo::CPdfSigInfo() = default;
CPdfSigInfo::CPdfSigInfo(const CPdfSigInfo&) = default;
CPdfSigInfo& CPdfSigInfo::operator=(const CPdfSigInfo&) = default;
CPdfSigInfo::~CPdfSigInfo() = default;

void CPdfSigInfo::SetSignRef(int index, CPdfObj* obj) {
    if (index >= 0 && index < kRegister) SignRef[static_cast<std::size_t>(index)] = obj;
}

CPdfObj* CPdfSigInfo::GetSignRef(int index) const {
    return index >= 0 && index < kRegister ? SignRef[static_cast<std::size_t>(index)] : nullptr;
}

void CPdfSigInfo::SetRangePos(int pos) { RangePos = pos; }
int CPdfSigInfo::GetRangePos() const { return RangePos; }
void CPdfSigInfo::SetOffset0(int n) { Offset0 = n; }
int CPdfSigInfo::GetOffset0() const { return Offset0; }
void CPdfSigInfo::SetLen0(int n) { Len0 = n; }
int CPdfSigInfo::GetLen0() const { return Len0; }
void CPdfSigInfo::SetOffset1(int n) { Offset1 = n; }
int CPdfSigInfo::GetOffset1() const { return Offset1; }
void CPdfSigInfo::SetLen1(int n) { Len1 = n; }
int CPdfSigInfo::GetLen1() const { return Len1; }
void CPdfSigInfo::SetSigNum(int n) { SigNumber = n; }
int CPdfSigInfo::GetSigNumber() const { return SigNumber; }
