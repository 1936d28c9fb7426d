// CPdfDoc: its logger.
#include "varnpdf/PdfDoc.h"

constinit varnpdf::ClassLogger CPdfDoc::m_logger{"VarnPDF.CPdfDoc"};
