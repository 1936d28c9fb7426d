// The named loggers of the exported classes.
#pragma once

#include "support/Log.h"

namespace varnpdf::loggers {

inline constinit ClassLogger pdf{"VarnPDF.CPdf"};
inline constinit ClassLogger object{"VarnPDF.CPdfObj"};
inline constinit ClassLogger trailer{"VarnPDF.CPdfTrailer"};
inline constinit ClassLogger helper{"VarnPDF.CPdfHelper"};
inline constinit ClassLogger sign{"VarnPDF.CPdfSign"};
inline constinit ClassLogger info{"VarnPDF.CPdfInfo"};
inline constinit ClassLogger document{"VarnPDF.CPdfDoc"};
inline constinit ClassLogger store{"VarnPDF.c_pdf_dss"};
inline constinit ClassLogger attach{"VarnPDF.CPdfAttach"};
inline constinit ClassLogger collection{"VarnPDF.CPdfCollection"};
inline constinit ClassLogger form{"VarnPDF.CPdfForm"};
inline constinit ClassLogger fields{"VarnPDF.CPdfFieldContainer"};
inline constinit ClassLogger image{"VarnPDF.VarnImage"};
inline constinit ClassLogger test{"VarnPDF.CPdfTestObj"};

}  // namespace varnpdf::loggers
