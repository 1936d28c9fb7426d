// CPdfTrailer: one cross-reference section with its trailer (ISO 32000-2 7.5.5, 7.5.8).
#pragma once

#include <memory>
#include <string_view>

#include "varnpdf/PdfObj.h"
#include "varnpdf/export.h"

/// A trailer, from a classic "trailer" dictionary or from a cross-reference stream. The object's text is the raw text
/// of the section. Whatever makes, keeps or reads one of its own texts throws std::bad_alloc without memory and leaves
/// the trailer as it is.
class VARNPDF_EXPORT CPdfTrailer : public CPdfObj {
public:
    /// Room of the text buffers in bytes, terminator included.
    static constexpr int kEncryptRoom = 100;
    static constexpr int kIdRoom = 10000;
    static constexpr int kInfoRoom = 1024;
    static constexpr int kRootRoom = 100;

    CPdfTrailer();
    CPdfTrailer(const CPdfTrailer&) = delete;
    CPdfTrailer& operator=(const CPdfTrailer&) = delete;
    ~CPdfTrailer() override;

    /// Offset of the section: of the "xref" keyword or of the cross-reference stream object.
    [[nodiscard]] int GetXRef() const;
    void SetXRef(int offset);
    /// /Size, the highest object number + 1.
    [[nodiscard]] int GetSize() const;
    void SetSize(int size);
    /// /Prev, 0 when there is none.
    [[nodiscard]] int GetPrev() const;
    void SetPrev(int offset);
    /// /XRefStm of a hybrid file, 0 when there is none.
    [[nodiscard]] int GetXRefStmAddr() const;
    void SetXRefStmAddr(int offset);

    /// The values as they stand in the trailer, writable, NUL-terminated, owned by the trailer, with room for 100,
    /// 1024, 100 and 10000 bytes. Empty when the trailer has no such entry.
    char* GetEncrypt();
    char* GetInfo();
    char* GetRoot();
    char* GetId();
    /// Sets the /ID text; what does not fit 9999 characters is refused and the text stays as it was.
    void SetId(char* id);

    [[nodiscard]] bool GetHasInfoFlag() const;
    void SetHasInfoFlag(bool has);
    [[nodiscard]] bool GetIsCrossRefStream() const;
    void SetIsCrossRefStream(bool isStream);

    /// Keeps a terminated copy of the /Index text.
    void Setm_cIndexField(unsigned char* text, int len);
    /// The /Index text or null. Owned by the trailer.
    unsigned char* Getm_cIndexField();
    /// Reads the /Index text as pairs (first object number, count): mode 1 the number of pairs, mode 2 the first
    /// object number and mode 3 the count of pair `index` (from 0). 0 without /Index or without such a pair.
    int Getm_IndexFieldInfos(int mode, int index);
    /// Renews the second part of /ID (ISO 32000-2 14.4) by random digits; the first stays. A literal first part
    /// becomes hexadecimal. Does nothing when `renew` is false. Returns 0.
    int UpdateId(bool renew);

    /// Read access to the texts without widening their buffers.
    [[nodiscard]] std::string_view encrypt() const;
    [[nodiscard]] std::string_view info() const;
    [[nodiscard]] std::string_view root() const;
    [[nodiscard]] std::string_view id() const;
    /// Set a text; false, and nothing changes, when it does not fit its room.
    bool setEncrypt(std::string_view text);
    bool setInfo(std::string_view text);
    bool setRoot(std::string_view text);
    bool setId(std::string_view text);

private:
    struct Texts;

    int xref_ = 0;
    int size_ = 0;
    int prev_ = 0;
    int xrefStm_ = 0;
    bool hasInfo_ = false;
    bool isStream_ = false;
    std::unique_ptr<Texts> texts_;
    std::unique_ptr<unsigned char[]> m_cIndexField;
};
