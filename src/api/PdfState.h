// What stands behind a CPdf: the document, and what a host keeps beside it.
#pragma once

#include <new>
#include <string>

#include "reader/Open.h"
#include "varnpdf/ByteStream.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"
#include "writer/NewDocument.h"

namespace varnpdf {

/// A document that is read and one from nothing are one class to hosts.
struct PdfState : NewDocument {
    CByteStream output;  ///< of an update, or of the whole file with one
    std::string fileName;
    FileHandle file;
    CPdfSigInfo signatures;
    bool signaturesCounted = false;
    int signatureCount = 0;
    int fieldCounter = 0;
    bool etsiSubFilter = false;
    bool incomplete = false;  ///< reading ended early, for lack of memory: what is held is not the whole document
};

/// The way from the exported class to what it stands for.
struct Access {
    static PdfState& state(CPdf& pdf) noexcept { return *pdf.state_; }
};
/// Throws std::bad_alloc when the text does not fit.
inline void print(PdfState& state, std::string_view text) {
    auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(text.data()));
    if (state.output.append(bytes, static_cast<unsigned int>(text.size())) != VARNPDF_OK) throw std::bad_alloc();
}
/// Takes back what is printed from here on, unless it is kept.
class Printed {
public:
    explicit Printed(PdfState& state) noexcept : output_(state.output), begin_(output_.tell()) {}
    Printed(const Printed&) = delete;
    Printed& operator=(const Printed&) = delete;
    ~Printed() { output_.setseek(kept_ ? output_.tell() : begin_); }
    void keep() noexcept { kept_ = true; }

private:
    CByteStream& output_;
    unsigned int begin_;
    bool kept_ = false;
};
/// Gives a trailer (null: none) back what an update changes in it, unless that is kept.
class UpdatedTrailer {
public:
    /// Throws std::bad_alloc; the way back needs no memory.
    explicit UpdatedTrailer(CPdfTrailer* trailer) : trailer_(trailer) {
        if (trailer == nullptr) return;
        size_ = trailer->GetSize();
        xref_ = trailer->GetXRef();
        id_ = trailer->id();
        trailer->setId(id_);  // a text that was set keeps its room
    }
    UpdatedTrailer(const UpdatedTrailer&) = delete;
    UpdatedTrailer& operator=(const UpdatedTrailer&) = delete;
    ~UpdatedTrailer() {
        if (trailer_ == nullptr) return;
        trailer_->SetSize(size_);
        trailer_->SetXRef(xref_);
        trailer_->setId(id_);
    }
    void keep() noexcept { trailer_ = nullptr; }

private:
    CPdfTrailer* trailer_;
    int size_ = 0;
    int xref_ = 0;
    std::string id_;
};
/// The place in the resulting file where the output goes on in tail mode.
inline std::size_t filePosition(const PdfState& state) noexcept {
    return std::size_t{state.output.getoldcontentsize()} + state.output.tell();
}
inline Document& documentOf(CPdf& pdf) noexcept { return Access::state(pdf).document; }

}  // namespace varnpdf
