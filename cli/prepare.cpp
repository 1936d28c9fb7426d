// varnpdf prepare: the first half of a signature whose value is made elsewhere.
#include <memory>
#include <optional>
#include <string>

#include "cms.h"
#include "command.h"
#include "output.h"
#include "preparation.h"
#include "state.h"

namespace {

constexpr const char* kFooter =
    R"(The value is a CMS SignedData (DER) without content of its own over exactly the bytes that --bytes writes. Reserve its
exact length: what is left of the room is filled up, and some validators then say that the file is not wholly signed.

Example:
  varnpdf prepare in.pdf --state in.state --reserve 2310 --bytes in.tosign
  openssl cms -sign -binary -cades -md sha256 -in in.tosign -signer cert.pem -inkey key.pem -outform DER -out value.der
  varnpdf embed in.state --value value.der -o out.pdf)";

struct Options {
    cli::PreparationOptions preparation;
    std::string state;
    unsigned int reserve = 0;
    std::string digest;
    std::string bytes;
};

int run(const Options& options) {
    std::optional<cli::Preparation> preparation = cli::Preparation::from(options.preparation);
    if (!preparation) return cli::kUsage;
    CPdfSign sign;
    if (!preparation->run(sign, options.reserve)) return cli::kAllFailed;
    const std::string_view bytes = cli::preparedBytes(sign);
    if (!cli::writeState(options.state, {sign.GetContentsOffset(), options.reserve, bytes})) return cli::kAllFailed;
    if (!options.bytes.empty() && !cli::writeFile(options.bytes, bytes)) return cli::kAllFailed;
    if (!options.digest.empty()) {
        const std::string_view pieces[] = {bytes};
        const auto digest = cli::digestOf(EVP_get_digestbyname(options.digest.c_str()), pieces);
        if (!digest) return cli::kAllFailed;
        cli::put(cli::hexOf(*digest) + '\n');
    }
    return cli::kAllGood;
}

}  // namespace

cli::Command cli::addPrepare(const Parser& program) {
    constexpr int kLargestRoom = 10'000'000;
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("prepare", "Prepares a document for a value that is made elsewhere");
    addPreparationOptions(parser, options->preparation);
    parser.option("--state", options->state, "File to write; \"varnpdf embed\" reads it").required().shownAs("STATE");
    parser.option("--reserve", options->reserve, "Room for the value in bytes")
        .required()
        .between(1, kLargestRoom)
        .shownAs("BYTES");
    parser.option("--print-digest", options->digest, "Prints the digest of the bytes to sign: sha256, sha384 or sha512")
        .among({"sha256", "sha384", "sha512"})
        .shownAs("DIGEST");
    parser.option("--bytes", options->bytes, "Writes the bytes to sign").shownAs("FILE");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
