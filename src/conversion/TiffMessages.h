// What libtiff says while an image is converted.
#pragma once

namespace varnpdf {

/// While one of these lives, in any thread, libtiff's errors and warnings go to the log and not to standard error. The
/// handlers that were there before return with the last of them.
class TiffMessages {
public:
    TiffMessages();
    TiffMessages(const TiffMessages&) = delete;
    TiffMessages& operator=(const TiffMessages&) = delete;
    ~TiffMessages();
};

/// Logs an error of the conversion.
void logConversionError(const char* what, const char* sentence);

}  // namespace varnpdf
