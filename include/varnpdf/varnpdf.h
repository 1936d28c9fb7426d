// Everything a host of libvarnpdf includes.
#pragma once

#include "varnpdf/ByteStream.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfAttach.h"
#include "varnpdf/PdfCollection.h"
#include "varnpdf/PdfDoc.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfLockInfo.h"
#include "varnpdf/PdfObj.h"
#include "varnpdf/PdfSigInfo.h"
#include "varnpdf/PdfSign.h"
#include "varnpdf/PdfTrailer.h"
#include "varnpdf/PdfXRef.h"
#include "varnpdf/TokHelp.h"
#include "varnpdf/result.h"
