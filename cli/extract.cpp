// varnpdf extract: the parts of a signature as files.
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "command.h"
#include "document.h"
#include "output.h"
#include "signatures.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  varnpdf extract signed.pdf --signature 0 --pkcs7 -o value.der
  varnpdf extract signed.pdf --signature 0 --signed-bytes -o signed.bin
  openssl cms -verify -inform DER -in value.der -content signed.bin -binary -CAfile ca.pem -out /dev/null

The file OUT is replaced only when everything could be written.)";

struct Options {
    std::string file;
    int signature = 0;
    bool pkcs7 = false;
    bool signedBytes = false;
    bool pkcs1 = false;
    int certificate = -1;
    std::string out = "-";
};

int fetch(CPdf& pdf, const Options& options, unsigned char* buffer, unsigned long* length) {
    if (options.pkcs7) return pdf.GetSignaturePKCS7(options.signature, buffer, length);
    if (options.signedBytes) return pdf.GetSignatureBlob(options.signature, buffer, length);
    if (options.pkcs1) return pdf.GetSignaturePKCS1(options.signature, buffer, length);
    return pdf.GetSignaturePKCS1Cert(options.signature, options.certificate, buffer, length);
}

int fetchRegistered(CPdf& pdf, const Options& options, std::string& bytes) {
    unsigned long length = 0;
    const int code = fetch(pdf, options, nullptr, &length);
    if (code != 0) return code;
    bytes.resize(length);
    return fetch(pdf, options, reinterpret_cast<unsigned char*>(bytes.data()), &length);
}

int fetchFurther(CPdf& pdf, const Options& options, const PdfSignature& signature, std::string& bytes) {
    constexpr char kOctetString = 0x04;
    if (options.pkcs7) {
        bytes = signature.value;
        return bytes.empty() ? VARNPDF_PKCS7_UNREADABLE : VARNPDF_OK;
    }
    if (options.pkcs1) {
        bytes = signature.value;
        return bytes.starts_with(kOctetString) ? VARNPDF_OK : VARNPDF_PKCS1_UNREADABLE;
    }
    if (options.signedBytes) {
        if (signature.coveredBytes == 0) return VARNPDF_BYTE_RANGE_UNUSABLE;
        const std::string_view all(reinterpret_cast<const char*>(pdf.GetContent()), signature.coveredBytes);
        bytes = all.substr(0, static_cast<std::size_t>(signature.byteRange[1]));
        bytes += all.substr(static_cast<std::size_t>(signature.byteRange[2]));
        return VARNPDF_OK;
    }
    const auto wanted = static_cast<std::size_t>(options.certificate);
    if (wanted >= signature.certificates.size()) return VARNPDF_CERTIFICATE_MISSING;
    bytes = signature.certificates[wanted];
    return VARNPDF_OK;
}

/// The wanted part, or nothing after a complaint.
std::optional<std::string> part(CPdf& pdf, const Options& options) {
    const CPdfSignatureList list(pdf);
    const int count = list.GetSignatureNum();
    if (count > 0 && options.signature >= count) {
        cli::complain(options.file, "there is no signature " + std::to_string(options.signature) +
                                        "; the last one is " + std::to_string(count - 1));
        return std::nullopt;
    }
    std::string bytes;
    int code = count == 0 ? VARNPDF_NO_SIGNATURE : VARNPDF_NO_SIGNATURE_VALUE;
    const PdfSignatureField* const field = list.GetSignature(options.signature);
    if (cli::isRegistered(pdf, options.signature)) {
        code = fetchRegistered(pdf, options, bytes);
    } else if (field != nullptr && field->signature != nullptr) {
        code = fetchFurther(pdf, options, *field->signature, bytes);
    }
    if (code == 0) return bytes;
    cli::complain(options.file, code);
    return std::nullopt;
}

int run(const Options& options) {
    const bool toStandardOutput = options.out == "-";
    if (toStandardOutput && cli::outputIsTerminal()) {
        cli::complain("extract", "binary data is not written to a terminal; use -o FILE or redirect the output");
        return cli::kUsage;
    }
    CPdf pdf;
    if (cli::openDocument(pdf, options.file) != 0) return cli::kAllFailed;
    const std::optional<std::string> bytes = part(pdf, options);
    if (!bytes) return cli::kAllFailed;
    if (toStandardOutput) {
        cli::put(*bytes);
        return cli::kAllGood;
    }
    return cli::writeFile(options.out, *bytes) ? cli::kAllGood : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addExtract(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("extract", "Takes a signature's value or the bytes it signs out");
    parser.option("FILE", options->file, "PDF file").required().shownAs(" ");
    parser.option("--signature", options->signature, "Which one: the index that \"varnpdf info\" shows, from 0")
        .required()
        .between(0, std::numeric_limits<int>::max())
        .shownAs("N");
    const Parser what = parser.group("what", "exactly one of them", 1, 1);
    what.flag("--pkcs7", options->pkcs7, "The PKCS#7 or CAdES value (DER), without the padding of its room");
    what.flag("--signed-bytes", options->signedBytes, "The bytes that the signature covers");
    what.flag("--pkcs1", options->pkcs1, "The PKCS#1 value (a DER OCTET STRING)");
    what.option("--certificate", options->certificate, "A certificate of /Cert, from 0")
        .between(0, std::numeric_limits<int>::max())
        .shownAs("K");
    parser.option("-o,--output", options->out, "File to write; without it, or with -, standard output").shownAs("OUT");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
