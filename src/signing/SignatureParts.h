// What the objects of one signature are written from.
#pragma once

#include <string_view>

#include "signing/Image.h"

class CPdfLockInfo;
class CPdfObj;
class CPdfSigInfo;
class CPdfXRef;
struct FormfieldInfo_tag;

namespace varnpdf {

struct SignatureParts {
    CPdfXRef* xref = nullptr;  ///< gets an entry for each object
    CPdfObj* widget = nullptr;
    CPdfObj* page = nullptr;
    CPdfObj* fieldLock = nullptr;
    CPdfObj* metadata = nullptr;  ///< null when it does not change
    int mode = 0;                 ///< 0 signed
    bool visible = false;
    CPdfSigInfo* info = nullptr;
    int* rect = nullptr;
    int* size = nullptr;
    int rotation = 0;
    char* reason = nullptr;
    char* location = nullptr;
    char* name = nullptr;
    char* signDate = nullptr;
    unsigned contentsSize = 0;
    bool layers = false;
    const JpegImage* picture = nullptr;  ///< background image, null without one
    FormfieldInfo_tag* fields = nullptr;
    int fieldCount = 0;
    CPdfLockInfo* lock = nullptr;
};

}  // namespace varnpdf
