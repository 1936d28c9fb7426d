// varnpdf verify: whether the signatures of documents are intact, and whose they are.
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cms.h"
#include "command.h"
#include "document.h"
#include "output.h"
#include "signatures.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFooter =
    R"(A signature is intact when its byte range begins at the start of the file and leaves out nothing but the signature value
itself, when these bytes have the digest that was signed, and when the value was made with the key of the certificate
in it. With --trust that certificate must also lead to one in the file given, valid now.

The exit code is 0 only when every signature is intact (and trusted). A document without signatures counts as failed.
What was added behind a signature does not break it: "covers" tells how much of the file it speaks for.

Examples:
  varnpdf verify contract.pdf --trust ca.pem
  varnpdf verify --json *.pdf | jq -r 'select(.ok | not) | .file')";

struct Options {
    std::vector<std::string> files;
    std::string trust;
    bool json = false;
};

struct Format {
    std::string_view subFilter;
    cli::ValueContent content;
};
constexpr Format kFormats[] = {
    {"ETSI.CAdES.detached", cli::ValueContent::kBytes},
    {"adbe.pkcs7.detached", cli::ValueContent::kBytes},
    {"adbe.pkcs7.sha1", cli::ValueContent::kSha1},
    {"ETSI.RFC3161", cli::ValueContent::kTimeStamp},
};

template <typename T>
Json orNull(const std::optional<T>& found) {
    return found ? Json(*found) : Json(nullptr);
}

void addCoverage(const PdfSignature& signature, Json& out) {
    if (signature.coverage != PdfCoverage::Complete && signature.coverage != PdfCoverage::InsideRevision) return;
    out["covers_bytes"] = signature.coveredBytes;
    out["covers_whole_file"] = signature.coversWholeFile;
    out["later_updates"] = signature.laterUpdates;
}

/// Digest, signature and chain.
void addValue(CPdf& pdf, const PdfSignature& signature, const Format& format, X509_STORE* anchors, Json& out) {
    const std::string_view all(reinterpret_cast<const char*>(pdf.GetContent()), pdf.GetContentLen());
    const auto first = static_cast<std::size_t>(signature.byteRange[1]);
    const auto second = static_cast<std::size_t>(signature.byteRange[2]);
    const std::string_view pieces[] = {all.substr(0, first), all.substr(second, signature.coveredBytes - second)};
    const cli::ValueReport report = cli::checkValue(signature.value, pieces, format.content);
    out["intact"] = report.state == cli::ValueState::kIntact;
    if (!out["intact"]) out["problem"] = cli::sentenceOf(report.state);
    if (!report.digest.empty()) out["digest"] = report.digest;
    if (report.signer) out["signer"] = CPdfText::ValidUtf8(cli::subjectName(report.signer.get()));
    if (anchors == nullptr) return;
    const std::optional<std::string> untrusted = cli::chainProblem(report, anchors);
    out["trusted"] = !untrusted;
    out["trust_problem"] = orNull(untrusted);
}

/// Order of the keys of one signature; everything null.
Json blankSignature(const PdfSignatureField& field) {
    Json out = {{"field", cli::nameOrNull(field)}, {"in_form", field.inForm}, {"intact", false}};
    for (const char* key : {"problem", "trusted", "trust_problem", "signer", "subfilter", "digest", "date",
                            "byte_range", "covers_bytes", "covers_whole_file", "later_updates"}) {
        out[key] = nullptr;
    }
    return out;
}

Json checked(CPdf& pdf, const PdfSignatureField& field, X509_STORE* anchors) {
    Json out = blankSignature(field);
    if (anchors != nullptr) out["trusted"] = false;
    if (field.signature == nullptr) {
        out["problem"] = "its field names no signature dictionary";
        return out;
    }
    const PdfSignature& signature = *field.signature;
    if (signature.texts.contains("M")) out["date"] = signature.text("M");
    if (signature.texts.contains("SubFilter")) out["subfilter"] = signature.text("SubFilter");
    if (!signature.byteRange.empty()) out["byte_range"] = signature.byteRange;
    addCoverage(signature, out);
    if (signature.coverage != PdfCoverage::Complete) {
        out["problem"] = varnpdf_coverage_message(signature.coverage);
        return out;
    }
    for (const Format& format : kFormats) {
        if (format.subFilter != signature.text("SubFilter")) continue;
        addValue(pdf, signature, format, anchors, out);
        return out;
    }
    out["problem"] = "its format (/SubFilter) is unsupported";
    return out;
}

bool isGood(const Json& signature) { return signature["intact"] == true && signature["trusted"] != false; }

Json checkFile(const std::string& file, X509_STORE* anchors, std::size_t& size) {
    Json out = {{"file", CPdfText::ValidUtf8(file)}, {"ok", false}, {"code", nullptr}, {"error", nullptr}};
    out["signatures"] = Json::array();
    CPdf pdf;
    int code = cli::openDocument(pdf, file);
    size = pdf.GetContentLen();
    if (code == 0) {
        const CPdfSignatureList list(pdf);
        for (const PdfSignatureField& field : list.GetFields()) {
            if (field.isSigned) out["signatures"].push_back(checked(pdf, field, anchors));
        }
        if (out["signatures"].empty()) {
            code = VARNPDF_NO_SIGNATURE;
            cli::complain(file, code);
        }
    }
    out["code"] = code;
    if (code != 0) out["error"] = varnpdf_message(code);
    out["ok"] = code == 0;
    for (const Json& signature : out["signatures"]) {
        if (!isGood(signature)) out["ok"] = false;
    }
    return out;
}

// --- for people -------------------------------------------------------------------------------------------------

std::string text(const Json& value) {
    return value.is_null() ? "-" : CPdfText::Printable(value.is_string() ? value.get<std::string>() : value.dump());
}

void line(std::string label, const std::string& content) {
    constexpr std::size_t kColumn = 14;
    label.resize(std::max(label.size(), kColumn), ' ');
    cli::put("    " + label + content + '\n');
}

std::string coverage(const Json& signature, std::size_t size) {
    if (signature["covers_bytes"].is_null()) return "-";
    if (signature["covers_whole_file"] == true) return "the whole file";
    const auto covered = signature["covers_bytes"].get<std::size_t>();
    const int updates = signature["later_updates"].get<int>();
    return "the first " + std::to_string(covered) + " bytes; behind them " +
           (updates == 0 ? std::to_string(size - covered) + " bytes that belong to no update"
                         : std::to_string(updates) + (updates == 1 ? " later update" : " later updates"));
}

void printForPeople(const Json& facts, std::size_t size) {
    cli::put(text(facts["file"]) + '\n');
    for (const Json& signature : facts["signatures"]) {
        cli::put("  signature in field " + text(signature["field"]) + '\n');
        const bool intact = signature["intact"] == true;
        line("result", intact ? "intact" : "NOT INTACT: " + text(signature["problem"]));
        if (!signature["trusted"].is_null()) {
            const std::string why = signature["trust_problem"].is_null() ? "" : ": " + text(signature["trust_problem"]);
            line("trust", signature["trusted"] == true ? "trusted" : "NOT TRUSTED" + why);
        }
        line("signer", text(signature["signer"]));
        line("date", text(signature["date"]));
        line("format", text(signature["subfilter"]) + ", " + text(signature["digest"]));
        line("covers", coverage(signature, size));
        if (signature["in_form"] == false) line("note", "the field is not part of the document's form");
    }
}

int run(const Options& options) {
    cli::StorePtr anchors;
    if (!options.trust.empty()) {
        anchors = cli::trustedCertificates(options.trust);
        if (!anchors) return cli::kAllFailed;
    }
    std::size_t failed = 0;
    for (const std::string& file : options.files) {
        std::size_t size = 0;
        const Json facts = checkFile(file, anchors.get(), size);
        failed += facts["ok"] == true ? 0 : 1;
        if (options.json) {
            cli::put(facts.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
        } else if (facts["code"] == 0) {
            printForPeople(facts, size);
        }
    }
    if (failed == 0) return cli::kAllGood;
    return failed == options.files.size() ? cli::kAllFailed : cli::kSomeFailed;
}

}  // namespace

cli::Command cli::addVerify(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("verify", "Checks the signatures of documents");
    parser.option("FILE", options->files, "PDF files").required().shownAs(" ");
    parser.option("--trust", options->trust, "Certificates (PEM) that signers must lead to").shownAs("PEM");
    parser.flag("--json", options->json, "Writes one JSON object per file, each on one line");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
