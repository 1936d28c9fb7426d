#!/usr/bin/env bash
# The library example of the README does on examples/signed.pdf what it says, and the value it writes is the one that
# the program takes out and that openssl accepts.
set -euo pipefail

root=${VARNPDF_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
varnpdf=${VARNPDF:-$root/build/release/cli/varnpdf}
example=${READ_SIGNATURES:-$root/build/release/examples/read_signatures}
signed=$root/examples/signed.pdf
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
    echo "$1" >&2
    exit 1
}

"$example" "$signed" value.der >out
size=$(wc -c <value.der)
printf 'signatures: 1\n0: reason "Pr\\374fung abgeschlossen", PKCS#7 value of %s bytes\n' "$size" >expected
diff -u expected out || fail "the example lists something else"

"$varnpdf" extract "$signed" --signature 0 --pkcs7 -o same.der
cmp value.der same.der || fail "the example's value is not the program's"
if command -v openssl >/dev/null; then
    "$varnpdf" extract "$signed" --signature 0 --signed-bytes -o signed.bin
    openssl cms -verify -inform DER -in value.der -content signed.bin -CAfile "$root/examples/signer.pem" -purpose any \
        -binary -out /dev/null || fail "openssl refuses the value"
else
    echo "openssl is not installed: not asked"
fi

# What cannot be done is said and ends with 1, wrong usage with 2.
status=0
"$example" missing.pdf value.der >out 2>err || status=$?
[[ $status == 1 && ! -s out ]] || fail "a missing file ends with $status"
grep -q '^missing.pdf: .* (-1001)$' err || fail "a missing file is not explained: $(cat err)"
status=0
"$example" "$signed" missing/value.der >out 2>err || status=$?
[[ $status == 1 ]] && grep -q 'missing/value.der: cannot be written' err || fail "a lost value goes unnoticed ($status)"
status=0
"$example" 2>err || status=$?
[[ $status == 2 ]] || fail "wrong usage ends with $status"
echo "the example reads signed.pdf, value of $size bytes"
