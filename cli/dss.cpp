// varnpdf dss: material for long-term validation put into a signed document.
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "document.h"
#include "material.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  varnpdf dss signed.pdf -o lasting.pdf --cert ca.pem --crl ca.crl
  varnpdf dss signed.pdf -o lasting.pdf --signature 0 --cert signer.pem ca.pem --ocsp answer.der

The files hold PEM or DER; of a PEM file every block of the kind is taken. What the document has already stays.
The material is not checked against the signature. "varnpdf info" shows what a document holds.
IN and OUT may be the same file; OUT is replaced only when everything could be written.)";

struct Options {
    std::string file;
    std::string out;
    int signature = -1;
    std::vector<std::string> certificates;
    std::vector<std::string> crls;
    std::vector<std::string> responses;
};

std::string base64(const std::string& bytes) {
    return base64_encode(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
}

/// One record for each value of each file; nothing after a complaint.
std::optional<std::vector<pdf_dss_struct>> records(const Options& options) {
    std::vector<pdf_dss_struct> out;
    const struct {
        cli::Material kind;
        const std::vector<std::string>& paths;
        std::string pdf_dss_struct::*field;
    } sources[] = {{cli::Material::kCertificate, options.certificates, &pdf_dss_struct::certificate},
                   {cli::Material::kCrl, options.crls, &pdf_dss_struct::crl},
                   {cli::Material::kOcsp, options.responses, &pdf_dss_struct::ocsp}};
    for (const auto& source : sources) {
        for (const std::string& path : source.paths) {
            const auto values = cli::readMaterial(path, source.kind);
            if (!values) return std::nullopt;
            for (const std::string& value : *values) {
                out.push_back({options.signature, "", "", ""});
                out.back().*source.field = base64(value);
            }
        }
    }
    return out;
}

/// The signature is there; false after a complaint.
bool signatureFits(const Options& options) {
    CPdf pdf;
    if (cli::openDocument(pdf, options.file) != 0) return false;
    const int count = CPdfSignatureList(pdf).GetSignatureNum();
    if (count == 0) {
        cli::complain(options.file, VARNPDF_NO_SIGNATURE);
        return false;
    }
    if (options.signature < count) return true;
    cli::complain(options.file, "there is no signature " + std::to_string(options.signature) + "; the last one is " +
                                    std::to_string(count - 1));
    return false;
}

int run(const Options& options) {
    if (options.certificates.empty() && options.crls.empty() && options.responses.empty()) {
        cli::complain("dss", "there is nothing to put in: give --cert, --crl or --ocsp");
        return cli::kUsage;
    }
    std::optional<std::vector<pdf_dss_struct>> material = records(options);
    if (!material || !signatureFits(options)) return cli::kAllFailed;
    std::string in = options.file;
    std::string out = options.out;
    const int code =
        c_pdf_dss().append_dss(in.data(), out.data(), material->data(), static_cast<int>(material->size()), true);
    if (code == VARNPDF_OK) return cli::kAllGood;
    cli::complain(code == VARNPDF_DSS_OUTPUT_FAILED ? out : in, code);
    return cli::kAllFailed;
}

}  // namespace

cli::Command cli::addDss(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("dss", "Puts certificates, CRLs and OCSP responses into a document");
    parser.option("IN", options->file, "Signed PDF file").required().shownAs(" ");
    parser.option("-o,--output", options->out, "File to write").required().shownAs("OUT");
    parser.option("--signature", options->signature, "Which one: the index that \"varnpdf info\" shows; else the last")
        .between(0, std::numeric_limits<int>::max())
        .shownAs("N");
    parser.option("--cert", options->certificates, "Certificates").shownAs("FILE...");
    parser.option("--crl", options->crls, "Certificate revocation lists").shownAs("FILE...");
    parser.option("--ocsp", options->responses, "OCSP responses").shownAs("FILE...");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
