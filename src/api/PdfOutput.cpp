// CPdfOutput: the face of staged files.
#include "varnpdf/PdfOutput.h"

#include <cerrno>

#include "support/StagedFile.h"

using namespace varnpdf;

CPdfOutput::CPdfOutput(const char* path) {
    errno = ENOENT;
    if (path == nullptr || *path == '\0') return;
    file_ = std::make_unique<StagedFile>(path);
    if (!file_->isOpen()) file_.reset();
}

CPdfOutput::~CPdfOutput() = default;

bool CPdfOutput::IsOpen() const noexcept { return file_ != nullptr; }

void CPdfOutput::Write(std::string_view bytes) noexcept {
    if (file_) file_->write(bytes);
}

const char* CPdfOutput::GetWorkPath() const noexcept { return file_ ? file_->temporary().c_str() : ""; }

bool CPdfOutput::Commit() noexcept {
    if (!file_) return false;
    const bool good = file_->commit();
    const int error = errno;
    file_.reset();
    errno = error;
    return good;
}
