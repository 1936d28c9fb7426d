// varnpdf info: what a document is made of, and its signatures.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command.h"
#include "document.h"
#include "output.h"
#include "signatures.h"
#include "store.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFooter = R"(Examples:
  varnpdf info contract.pdf
  varnpdf info --json *.pdf > facts.jsonl     one object per file and line

"index" of a signature is the number that "varnpdf extract --signature" takes.
A file that cannot be opened is reported on standard error; with --json its object says "code" and "error".)";

struct Options {
    std::vector<std::string> files;
    bool json = false;
};

/// Order of the keys of one document; everything null.
Json blankDocument(const std::string& file) {
    Json out = {{"file", CPdfText::ValidUtf8(file)}};
    for (const char* key :
         {"code", "version", "line_end", "linearized", "encrypted", "cross_reference", "sections", "size", "file_bytes",
          "objects", "page_count", "pages", "locked", "security_store", "fields", "signatures"}) {
        out[key] = nullptr;
    }
    return out;
}

Json versionText(float version) {
    if (!(version > 0)) return nullptr;
    const std::string tenths = std::to_string(std::lround(version * 10));
    return (tenths.size() > 1 ? tenths.substr(0, tenths.size() - 1) : "0") + "." + tenths.back();
}

Json lineEnd(int type) {
    constexpr const char* kNames[] = {"CRLF", "LF", "CR"};
    return type >= 0 && type <= 2 ? Json(kNames[type]) : Json(nullptr);
}

const char* crossReference(const CPdfTrailer& newest) {
    if (newest.GetIsCrossRefStream()) return "stream";
    return newest.GetXRefStmAddr() > 0 ? "hybrid" : "table";
}

Json pages(CPdf& pdf) {
    Json out = Json::array();
    for (const PdfPage& page : CPdfPages::All(pdf)) {
        Json box = nullptr;
        if (std::ranges::any_of(page.mediaBox, [](double side) { return side != 0; })) {
            for (const double side : page.mediaBox) box.push_back(static_cast<long long>(side));
        }
        out.push_back({{"number", out.size() + 1}, {"object", page.object}, {"box", box}, {"rotation", page.rotation}});
    }
    return out;
}

/// What can be said of a document that opened.
void addContent(CPdf& pdf, Json& out) {
    out["sections"] = pdf.GetTrailerCount() + 1;
    const std::vector<CPdfObj*> objects = CPdfObjects::All(pdf);
    out["objects"] = std::ranges::count_if(objects, [](const CPdfObj* obj) { return obj->GetContentLen() > 0; });
    out["pages"] = pages(pdf);
    out["page_count"] = out["pages"].size();
    out["locked"] = pdf.get_lockstate() == 1;
    out["security_store"] = cli::securityStore(pdf);
    const CPdfSignatureList signatures(pdf);
    out["fields"] = cli::signatureFields(signatures);
    out["signatures"] = cli::signatures(pdf, signatures);
}

Json describe(CPdf& pdf, const std::string& file, int code) {
    Json out = blankDocument(file);
    out["code"] = code;
    if (code != 0) out["error"] = varnpdf_message(code);
    if (pdf.GetContentLen() > 0) {
        out["version"] = versionText(pdf.GetPDFVersion());
        out["line_end"] = lineEnd(pdf.GetLineEndType());
        out["linearized"] = pdf.get_IsLinearized();
        out["encrypted"] = pdf.PdfIsEncrypted() == 1;
        out["file_bytes"] = pdf.GetContentLen();
    }
    const CPdfTrailer* newest = pdf.GetLastTrailer();
    if (newest != nullptr && newest->GetSize() > 0) {
        out["cross_reference"] = crossReference(*newest);
        out["size"] = newest->GetSize();
    }
    if (code == 0) addContent(pdf, out);
    return out;
}

// --- for people -------------------------------------------------------------------------------------------------

std::string text(const Json& value) {
    if (value.is_null()) return "-";
    if (value.is_string()) return CPdfText::Printable(value.get<std::string>());
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    if (!value.is_array()) return value.dump();
    std::string out;
    for (const Json& item : value) out += (out.empty() ? "" : " ") + text(item);
    return out;
}

void line(int indent, std::string label, const std::string& content) {
    constexpr std::size_t kColumn = 22;
    label.insert(0, static_cast<std::size_t>(indent), ' ');
    if (label.size() < kColumn) label.resize(kColumn, ' ');
    cli::put(label + ' ' + content + '\n');
}

std::string counted(std::size_t count, const std::string& thing) {
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

std::string pageLook(const Json& page) {
    const int rotation = page["rotation"].get<int>();
    const std::string turned = rotation != 0 ? ", rotated by " + std::to_string(rotation) : "";
    const Json& box = page["box"];
    if (box.is_null()) return "no box" + turned;
    const auto side = [&](std::size_t from) {
        return std::to_string(box[from + 2].get<long long>() - box[from].get<long long>());
    };
    return side(0) + " x " + side(1) + " points (" + text(box) + ")" + turned;
}

/// Neighbouring pages that look alike share a line.
void printPages(const Json& all) {
    line(2, "pages", std::to_string(all.size()));
    for (std::size_t first = 0; first < all.size();) {
        std::size_t last = first;
        const std::string look = pageLook(all[first]);
        while (last + 1 < all.size() && pageLook(all[last + 1]) == look) ++last;
        const std::string range = std::to_string(first + 1) + (last > first ? "-" + std::to_string(last + 1) : "");
        line(4, range, look);
        first = last + 1;
    }
}

void printSignature(const Json& signature) {
    cli::put("  signature " + text(signature["index"]) + '\n');
    if (signature["pkcs7_code"].is_null()) {
        cli::put("    its field cannot be read\n");
        return;
    }
    constexpr const char* kShown[][2] = {
        {"field", "field"},
        {"reason", "reason"},
        {"location", "location"},
        {"date", "date"},
        {"name", "name"},
        {"filter", "filter"},
        {"subfilter", "format"},
        {"type", "type"},
        {"field_type", "field type"},
        {"r", "handler version"},
        {"contact_info", "contact"},
        {"cert", "certificates"},
        {"byte_range", "byte range"},
        {"covers_whole_file", "covers whole file"},
        {"contents_bytes", "room in bytes"},
    };
    for (const auto& [key, label] : kShown) line(4, label, text(signature[key]));
    const int code = signature["pkcs7_code"].get<int>();
    line(4, "PKCS#7 value",
         code == 0 ? text(signature["pkcs7_bytes"]) + " bytes"
                   : std::string(varnpdf_message(code)) + " (" + std::to_string(code) + ")");
}

std::string materialCounts(const Json& certificates, const Json& crls, const Json& responses) {
    const auto count = [](const Json& value) { return value.is_array() ? value.size() : value.get<std::size_t>(); };
    return counted(count(certificates), "certificate") + ", " + counted(count(crls), "CRL") + ", " +
           counted(count(responses), "OCSP response");
}

void printStore(const Json& store) {
    line(2, "security store", materialCounts(store["certificates"], store["crls"], store["ocsps"]));
    for (const Json& certificate : store["certificates"]) {
        line(4, "certificate", text(certificate["subject"]) + "; issued by " + text(certificate["issuer"]));
    }
    for (const Json& crl : store["crls"]) line(4, "CRL", "of " + text(crl["issuer"]));
    for (const Json& response : store["ocsps"]) line(4, "OCSP response", "of " + text(response["responder"]));
    for (const Json& entry : store["vri"]) {
        const bool known = !entry["signature"].is_null();
        line(4, known ? "for signature " + text(entry["signature"]) : "for no signature",
             materialCounts(entry["certificates"], entry["crls"], entry["ocsps"]) + "; key " + text(entry["key"]));
    }
}

void printForPeople(const Json& facts) {
    cli::put(text(facts["file"]) + '\n');
    line(2, "PDF version", text(facts["version"]) + ", line ends " + text(facts["line_end"]));
    line(2, "file size", counted(facts["file_bytes"].get<std::size_t>(), "byte"));
    line(2, "cross-reference",
         counted(facts["sections"].get<std::size_t>(), "section") + ", the newest is a " +
             text(facts["cross_reference"]));
    line(2, "objects", text(facts["objects"]) + " (size declared: " + text(facts["size"]) + ")");
    for (const char* key : {"linearized", "encrypted", "locked"}) line(2, key, text(facts[key]));
    printPages(facts["pages"]);
    line(2, "signature fields", std::to_string(facts["fields"].size()));
    for (const Json& field : facts["fields"]) {
        line(4, field["signed"].get<bool>() ? "signed" : "empty", text(field["name"]));
    }
    for (const Json& signature : facts["signatures"]) printSignature(signature);
    if (!facts["security_store"].is_null()) printStore(facts["security_store"]);
}

int run(const Options& options) {
    std::size_t failed = 0;
    for (const std::string& file : options.files) {
        CPdf pdf;
        const int code = cli::openDocument(pdf, file);
        failed += code != 0 ? 1 : 0;
        if (!options.json && code != 0) continue;
        const Json facts = describe(pdf, file, code);
        if (options.json) {
            cli::put(facts.dump() + '\n');
        } else {
            printForPeople(facts);
        }
    }
    if (failed == 0) return cli::kAllGood;
    return failed == options.files.size() ? cli::kAllFailed : cli::kSomeFailed;
}

}  // namespace

cli::Command cli::addInfo(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("info", "Says what documents are made of and who signed them");
    parser.option("FILE", options->files, "PDF files").required().shownAs(" ");
    parser.flag("--json", options->json, "Writes one JSON object per file, each on one line");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
