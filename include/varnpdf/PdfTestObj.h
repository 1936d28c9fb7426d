// CPdfTestObj: the self-check of the readers of PDF syntax.
#pragma once

#include <memory>
#include <string>

#include "varnpdf/export.h"

/// Runs the exported readers of PDF syntax (`CPdfHelper`, dictionary entries of `CPdfObj`) over fixed inputs with known
/// results, so that a host can tell whether the library it was given works as built. Takes about a millisecond, reads
/// and writes no file. `CPdfHelper::IsReference_MS`, which writes to standard output, is left out. One thread at a time;
/// different objects are independent. Indexes count from 0; for one out of range a text is empty and a number 0. The
/// constructor, `GetLine` and `GetFailure` throw std::bad_alloc without memory.
class VARNPDF_EXPORT CPdfTestObj {
public:
    CPdfTestObj();
    CPdfTestObj(const CPdfTestObj&) = delete;
    CPdfTestObj& operator=(const CPdfTestObj&) = delete;
    virtual ~CPdfTestObj();

    /// Checks every reader and logs a line for each to "VarnPDF.CPdfTestObj": its name and "....Okay" at debug level, or
    /// "....FAILED" as an error.
    /// @return how many readers fail, or VARNPDF_PDF_MEMORY_ALLOCATION (-1014) with no results
    int RunAll();

    /// Readers that the last `RunAll` has checked.
    [[nodiscard]] int GetReaderNum() const;
    /// Name of a reader as its member is called. Owned by the library.
    [[nodiscard]] const char* GetReaderName(int index) const;
    /// Number of inputs.
    [[nodiscard]] int GetCaseNum(int index) const;
    /// 1 when every result was the expected one, else 0.
    [[nodiscard]] int GetOkay(int index) const;
    /// The line that was logged.
    [[nodiscard]] std::string GetLine(int index) const;
    /// The first input whose result was another, with both; empty without one. May hold any byte.
    [[nodiscard]] std::string GetFailure(int index) const;

private:
    struct Results;
    std::unique_ptr<Results> results_;
};
