// varnpdf sign: a signature made here, with the key at hand.
#include <memory>
#include <optional>
#include <string>

#include "cms.h"
#include "command.h"
#include "insertion.h"
#include "keys.h"
#include "preparation.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  varnpdf sign in.pdf -o out.pdf --p12 me.p12
  varnpdf sign in.pdf -o out.pdf --key key.pem --cert cert.pem --chain ca.pem --reason "I agree"
  varnpdf sign in.pdf -o out.pdf --p12 me.p12 --pass-file secret --page last --size 70mm,25mm \
      --corner lower-right --position 20mm,15mm --text "Signed by=Jane Doe" --image seal.png
  varnpdf sign in.pdf -o out.pdf --p12 me.p12 --size 60mm,20mm --at "Signature:" --at-hit last --at-offset 25mm,-5mm

Without --size the signature is invisible. Lengths are points, or have a unit: mm, cm, in, pt. --position also takes
whole percentages of the page. A visible signature without --text and --image shows signer, date and reason.
A pass phrase is asked for on the terminal unless --pass-file or --pass-fd names a place; it is never an argument.
The value is a CMS SignedData with SHA-256 or better, without a signing time of its own: that is /M, see --date.
IN and OUT may be the same file; OUT is replaced only when everything could be written.)";

struct Options {
    cli::PreparationOptions preparation;
    cli::KeyOptions key;
    bool pss = false;
    std::string out;
};

int run(const Options& options) {
    if (!cli::keyOptionsFit(options.key)) return cli::kUsage;
    std::optional<cli::Preparation> preparation = cli::Preparation::from(options.preparation);
    if (!preparation) return cli::kUsage;
    const std::optional<cli::Identity> identity = cli::readIdentity(options.key);
    if (!identity) return cli::kAllFailed;
    const cli::ValueKind kind = preparation->cades() ? cli::ValueKind::kCades : cli::ValueKind::kPkcs7;
    std::optional<cli::ValueMaker> maker = cli::ValueMaker::create(*identity, kind, options.pss);
    if (!maker) return cli::kAllFailed;

    // The room is exactly the length of the value: what padding would stand behind it is not signed, and some
    // validators then say so.
    const std::optional<std::size_t> length = maker->length();
    if (!length) return cli::kAllFailed;
    preparation->nameSigner(cli::subjectName(identity->certificate.get()));
    CPdfSign sign;
    if (!preparation->run(sign, static_cast<unsigned int>(*length))) return cli::kAllFailed;

    const std::string_view bytes[] = {cli::preparedBytes(sign)};
    const std::optional<std::string> digest = cli::digestOf(maker->digest(), bytes);
    if (!digest) {
        cli::complain(options.preparation.file, "OpenSSL cannot make the digest: " + cli::opensslReason());
        return cli::kAllFailed;
    }
    const std::optional<std::string> value = maker->make(*digest, *length);
    if (!value) return cli::kAllFailed;
    return cli::writeSigned(options.out, bytes[0], sign.GetContentsOffset(), *value, *length) ? cli::kAllGood
                                                                                              : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addSign(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("sign", "Signs a document");
    addPreparationOptions(parser, options->preparation);
    parser.option("-o,--output", options->out, "File to write").required().shownAs("OUT");
    addKeyOptions(parser, options->key);
    parser.flag("--pss", options->pss, "RSA with PSS padding; a key of that kind needs no flag");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
