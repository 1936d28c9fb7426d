#!/bin/bash
# Shows what varnpdf reads from a signed PDF and lets openssl (and pdfsig, where installed) check the result.
# VARNPDF names the program; without it the release build's is taken. Ends non-zero when a check fails.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
varnpdf=${VARNPDF:-$here/../build/release/cli/varnpdf}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

say() { printf '\n== %s\n' "$*"; }

say "What signed.pdf is made of: varnpdf info examples/signed.pdf"
"$varnpdf" info "$here/signed.pdf"

say "Its signature value and the bytes it signs: varnpdf extract"
"$varnpdf" extract "$here/signed.pdf" --signature 0 --pkcs7 -o "$work/value.der"
"$varnpdf" extract "$here/signed.pdf" --signature 0 --signed-bytes -o "$work/signed.bin"
printf 'value.der %s bytes, signed.bin %s bytes\n' "$(wc -c <"$work/value.der")" "$(wc -c <"$work/signed.bin")"

say "Does the value sign these bytes? openssl cms -verify"
openssl cms -verify -inform DER -in "$work/value.der" -content "$work/signed.bin" -CAfile "$here/signer.pem" \
    -purpose any -binary -out /dev/null

if command -v pdfsig >/dev/null; then
    say "Does another reader agree? pdfsig"
    pdfsig "$here/signed.pdf" | tee "$work/pdfsig.txt"
    grep -q "Signature is Valid" "$work/pdfsig.txt"
else
    say "pdfsig is not installed: not asked"
fi
say "All checks passed"
