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
    CPdfSigInfo(const CPdfSigInfo&);
    CPdfSigInfo& operator=(const CPdfSigInfo&);
    virtual ~CPdfSigInfo();

    /// Registers the field object of a signature; an index outside 0 to 99 is ignored.
    void SetSignRef(int index, CPdfObj* obj);
    /// The registered field object, owned by its document; null for an index outside 0 to 99.
    [[nodiscard]] CPdfObj* GetSignRef(int index) const;

    /// Position in the update of the first blank behind "/ByteRange [".
    void SetRangePos(int pos);
    [[nodiscard]] int GetRangePos() const;
    /// The four /ByteRange values, as offsets and lengths in the file.
    void SetOffset0(int n);
    [[nodiscard]] int GetOffset0() const;
    void SetLen0(int n);
    [[nodiscard]] int GetLen0() const;
    void SetOffset1(int n);
    [[nodiscard]] int GetOffset1() const;
    void SetLen1(int n);
    [[nodiscard]] int GetLen1() const;
    /// Number of registered signatures, or the number that a new field's name starts from.
    void SetSigNum(int n);
    [[nodiscard]] int GetSigNumber() const;

private:
    std::array<CPdfObj*, kRegister> SignRef{};
    int RangePos = 0;
    int Len1 = 0;
    int Offset1 = 0;
    int Len0 = 0;
    int Offset0 = 0;
    int SigNumber = 0;
};
