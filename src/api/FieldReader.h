// Reads values of a document's signatures.
#pragma once

#include <memory>
#include <string>

#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

namespace varnpdf {

class FieldReader {
public:
    /// The buffer is as long as the document: every value that is given out fits. Pages of it that no value reaches
    /// cost nothing.
    explicit FieldReader(CPdf& pdf)
        : pdf_(pdf), buffer_(std::make_unique_for_overwrite<char[]>(std::size_t{pdf.GetContentLen()} + 1)) {}

    /// The result of `CPdf::GetSignatureField`; without a value it is empty.
    int read(int index, int tag, std::string& value) {
        int length = 0;
        const int code = pdf_.GetSignatureField(index, tag, buffer_.get(), &length);
        value.assign(buffer_.get(), code == VARNPDF_OK ? static_cast<std::size_t>(length) : 0);
        return code;
    }

private:
    CPdf& pdf_;
    std::unique_ptr<char[]> buffer_;
};

}  // namespace varnpdf
