// Lock parameters of a signature.
#include "varnpdf/PdfLockInfo.h"

#include <utility>

CPdfLockInfo::CPdfLockInfo() = default;
CPdfLockInfo::~CPdfLockInfo() = default;

void CPdfLockInfo::set_digestvalue(std::string value) { digestvalue = std::move(value); }
