#!/usr/bin/env bash
# The library examples of the README do what they say. Reading: the value written from examples/signed.pdf is the one that
# the program takes out and that openssl accepts. Signing: the program, and pdfsig, accept the result as a whole.
set -euo pipefail

root=${VARNPDF_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
varnpdf=${VARNPDF:-$root/build/release/cli/varnpdf}
example=${READ_SIGNATURES:-$root/build/release/examples/read_signatures}
one_call=${ONE_CALL:-$root/build/release/examples/one_call}
signing=${SIGN_FILE:-$root/build/release/examples/sign_file}
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
"$varnpdf" extract "$signed" --signature 0 --signed-bytes -o signed.bin
"$one_call" "$signed" same.bin >out
cmp signed.bin same.bin || fail "one_call's bytes are not the program's"
[[ $(<out) == "0: /adbe.pkcs7.detached" ]] || fail "one_call lists something else: $(cat out)"
if command -v openssl >/dev/null; then
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
"$one_call" missing.pdf same.bin >out 2>err || status=$?
[[ $status == 1 && ! -s out ]] && grep -q '^missing.pdf: .* (-1001)$' err || fail "one_call: a missing file ends with $status"
status=0
"$example" 2>err || status=$?
[[ $status == 2 ]] || fail "wrong usage ends with $status"

if command -v openssl >/dev/null; then
    openssl req -x509 -newkey rsa:2048 -nodes -keyout key.pem -out cert.pem -days 30 -subj "/CN=Signer" 2>/dev/null
    "$signing" "$root/examples/agreement.pdf" out.pdf key.pem cert.pem
    cmp -n "$(stat -c %s "$root/examples/agreement.pdf")" "$root/examples/agreement.pdf" out.pdf ||
        fail "signing changed the document"
    "$varnpdf" verify out.pdf --trust cert.pem >verified || fail "the program does not accept: $(cat verified)"
    grep -q 'covers  *the whole file' verified || fail "not the whole file is signed"
    status=0
    "$signing" "$root/examples/agreement.pdf" none.pdf cert.pem cert.pem 2>err || status=$?
    [[ $status == 1 && ! -e none.pdf ]] || fail "a certificate as key ends with $status"
    status=0
    "$signing" missing.pdf none.pdf key.pem cert.pem 2>err || status=$?
    [[ $status == 1 && ! -e none.pdf ]] && grep -q '(-1001)$' err || fail "a missing file ends with $status: $(cat err)"
fi
echo "the example reads signed.pdf, value of $size bytes"
