// varnpdf verify: whether the signatures of documents are intact, and whose they are.
#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cms.h"
#include "command.h"
#include "document.h"
#include "fields.h"
#include "output.h"
#include "text.h"
#include "tokens.h"
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

/// The two ranges of /ByteRange, the first of which begins at 0.
struct Range {
    std::size_t firstLength = 0;
    std::size_t secondBegin = 0;
    std::size_t end = 0;
};

using Numbers = std::array<long long, 4>;

template <typename T>
Json orNull(const std::optional<T>& found) {
    return found ? Json(*found) : Json(nullptr);
}

std::string_view wholeFile(CPdf& pdf) { return {reinterpret_cast<const char*>(pdf.GetContent()), pdf.GetContentLen()}; }

std::optional<Numbers> numbersOf(std::optional<std::string_view> text) {
    if (!text || !text->starts_with('[')) return std::nullopt;
    std::string_view rest = text->substr(1);
    Numbers numbers{};
    for (long long& number : numbers) {
        rest = cli::trimmed(rest);
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
        if (error != std::errc() || number < 0) return std::nullopt;
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    }
    if (!cli::trimmed(rest).starts_with(']')) return std::nullopt;
    return numbers;
}

/// The hexadecimal string of /Contents with its delimiters, as it stands in the dictionary; "" when it is none.
std::string_view valueText(const cli::Dictionary& dictionary) {
    const std::optional<std::string_view> text = cli::lookUp(*dictionary.object, "Contents");
    return text && text->starts_with('<') && !text->starts_with("<<") ? *text : std::string_view();
}

/// A sentence when the range is not everything but the value; else it is filled in. An unsigned gap that holds more, or
/// lies elsewhere, could hide content.
std::optional<std::string> rangeProblem(CPdf& pdf, const cli::Dictionary& dictionary,
                                        const std::optional<Numbers>& numbers, Range& range) {
    if (!numbers) return "it has no byte range of four numbers";
    const auto [begin, length0, begin1, length1] = *numbers;
    const auto size = static_cast<long long>(pdf.GetContentLen());
    if (begin != 0) return "its byte range does not begin at the start of the file";
    if (length0 > begin1 || begin1 > size || length1 > size - begin1) return "its byte range lies outside of the file";
    const std::string_view text = valueText(dictionary);
    const std::optional<std::size_t> place = text.empty() ? std::nullopt : cli::offsetOf(dictionary, text);
    if (!place || *place != static_cast<std::size_t>(length0) ||
        text.size() != static_cast<std::size_t>(begin1 - length0)) {
        return "its byte range leaves out something else than its own value";
    }
    range = {static_cast<std::size_t>(length0), static_cast<std::size_t>(begin1),
             static_cast<std::size_t>(begin1 + length1)};
    return std::nullopt;
}

/// Sections of the cross-reference data that begin behind `end`. A companion stream belongs to the table that names it.
int updatesBehind(CPdf& pdf, std::size_t end) {
    std::set<int> sections;
    std::set<int> companions;
    for (int i = -1; i < pdf.GetTrailerCount(); ++i) {
        const CPdfTrailer* section = i < 0 ? pdf.GetLastTrailer() : pdf.GetTrailer(i);
        if (section == nullptr) continue;
        if (section->GetXRefStmAddr() > 0) companions.insert(section->GetXRefStmAddr());
        if (section->GetXRef() > 0 && static_cast<std::size_t>(section->GetXRef()) >= end) {
            sections.insert(section->GetXRef());
        }
    }
    for (const int companion : companions) sections.erase(companion);
    return static_cast<int>(sections.size());
}

void addCoverage(CPdf& pdf, const Range& range, Json& out) {
    out["covers_bytes"] = range.end;
    out["covers_whole_file"] = range.end == pdf.GetContentLen();
    out["later_updates"] = updatesBehind(pdf, range.end);
}

/// Digest, signature and chain.
void addValue(CPdf& pdf, const cli::Dictionary& dictionary, const Range& range, const Format& format,
              X509_STORE* anchors, Json& out) {
    const std::string_view all = wholeFile(pdf);
    const std::string value = CPdfText::StringBytes(valueText(dictionary)).value_or("");
    const std::string_view pieces[] = {all.substr(0, range.firstLength),
                                       all.substr(range.secondBegin, range.end - range.secondBegin)};
    const cli::ValueReport report = cli::checkValue(value, pieces, format.content);
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
Json blankSignature(const cli::SignatureField& field) {
    Json out = {{"field", orNull(field.name)}, {"in_form", field.inForm}, {"intact", false}};
    for (const char* key : {"problem", "trusted", "trust_problem", "signer", "subfilter", "digest", "date",
                            "byte_range", "covers_bytes", "covers_whole_file", "later_updates"}) {
        out[key] = nullptr;
    }
    return out;
}

Json checked(CPdf& pdf, const cli::SignatureField& field, X509_STORE* anchors) {
    Json out = blankSignature(field);
    if (anchors != nullptr) out["trusted"] = false;
    if (field.value.object == nullptr) {
        out["problem"] = "its field names no signature dictionary";
        return out;
    }
    const CPdfObj& dictionary = *field.value.object;
    out["date"] = orNull(cli::displayed(cli::lookUp(pdf, dictionary, "M")));
    const std::optional<std::string> subFilter = cli::displayed(cli::lookUp(pdf, dictionary, "SubFilter"));
    out["subfilter"] = orNull(subFilter);
    const std::optional<Numbers> numbers = numbersOf(cli::lookUp(pdf, dictionary, "ByteRange"));
    out["byte_range"] = orNull(numbers);
    Range range;
    if (const std::optional<std::string> problem = rangeProblem(pdf, field.value, numbers, range)) {
        out["problem"] = *problem;
        return out;
    }
    addCoverage(pdf, range, out);
    for (const Format& format : kFormats) {
        if (format.subFilter != subFilter.value_or("")) continue;
        addValue(pdf, field.value, range, format, anchors, out);
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
        cli::SignatureSearch search(pdf);
        for (const cli::SignatureField& field : search.run()) out["signatures"].push_back(checked(pdf, field, anchors));
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
