// CPdfSigInfo: the signature register of a document and the byte ranges of a signature being prepared.
#pragma once

#include <array>

#include "varnpdf/export.h"

class CPdfObj;

/// Byte-range bookkeeping (ISO 32000-2 12.8.1) and register of signed signature fields.
class VARNPDF_EXPORT CPdfSigInfo {
public:
    /// Signatures that can be reached by index.
    static constexpr int kRegister = 100;

    CPdfSigInfo();
    virtual ~CPdfSigInfo();

    /// Registers the field object of a signature; an index outside 0 to 99 is ignored.
    void SetSignRef(int index, CPdfObj* obj);
    /// The registered field object, owned by its document; null for an index outside 0 to 99.
    [[nodiscard]] CPdfObj* GetSignRef(int index) const;

    /// Position in the update of the first blank behind "/ByteRange [".
    void SetRangePos(int pos) { RangePos = pos; }
    [[nodiscard]] int GetRangePos() const { return RangePos; }
    /// The four /ByteRange values, as offsets and lengths in the file.
    void SetOffset0(int n) { Offset0 = n; }
    [[nodiscard]] int GetOffset0() const { return Offset0; }
    void SetLen0(int n) { Len0 = n; }
    [[nodiscard]] int GetLen0() const { return Len0; }
    void SetOffset1(int n) { Offset1 = n; }
    [[nodiscard]] int GetOffset1() const { return Offset1; }
    void SetLen1(int n) { Len1 = n; }
    [[nodiscard]] int GetLen1() const { return Len1; }
    /// Number of registered signatures, or the number that a new field's name starts from.
    void SetSigNum(int n) { SigNumber = n; }
    [[nodiscard]] int GetSigNumber() const { return SigNumber; }

private:
    std::array<CPdfObj*, kRegister> SignRef{};
    int RangePos = 0;
    int Len1 = 0;
    int Offset1 = 0;
    int Len0 = 0;
    int Offset0 = 0;
    int SigNumber = 0;
};
