#!/bin/bash
# Signs a document visibly with a key made for the occasion, checks the result with varnpdf, pdfsig and qpdf, and leaves
# a picture of the signed page. VARNPDF names the program (without it the one ./run demo builds), DEMO_OUT the
# directory for the results (without it build/demo). Ends non-zero when a check fails.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
varnpdf=${VARNPDF:-$here/../build/program/cli/varnpdf}
out=${DEMO_OUT:-$(cd "$here/.." && pwd)/build/demo}
mkdir -p "$out"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

say() { printf '\n== %s\n' "$*"; }

say "A key and a certificate for today"
openssl req -x509 -newkey rsa:2048 -nodes -keyout "$work/key.pem" -out "$work/cert.pem" -days 30 \
    -subj "/CN=Marta Beispiel/O=Registry of Example Town" 2>/dev/null
openssl x509 -in "$work/cert.pem" -noout -subject

say "varnpdf sign agreement.pdf: text and a seal on the last page"
"$varnpdf" sign "$here/agreement.pdf" -o "$out/agreement-signed.pdf" --key "$work/key.pem" --cert "$work/cert.pem" \
    --page last --corner lower-left --position 25mm,55mm --size 84mm,28mm --image "$here/seal.png" \
    --text "Signed by=Marta Beispiel" --text "Office=Archive" --text "Reason=Records accepted" \
    --reason "Records accepted" --location "Example Town"
before=$(stat -c %s "$here/agreement.pdf")
after=$(stat -c %s "$out/agreement-signed.pdf")
echo "$before bytes before, $after behind"

say "Is what was there untouched? cmp"
cmp -n "$before" "$here/agreement.pdf" "$out/agreement-signed.pdf"
echo "the first $before bytes are the same"

say "varnpdf verify"
"$varnpdf" verify "$out/agreement-signed.pdf" --trust "$work/cert.pem"

say "Do others agree? qpdf --check and pdfsig"
qpdf --check "$out/agreement-signed.pdf" | tail -n 2
pdfsig "$out/agreement-signed.pdf" | tee "$work/pdfsig.txt"
grep -q "Signature is Valid" "$work/pdfsig.txt"
grep -q "Total document signed" "$work/pdfsig.txt"

say "Does verify notice one changed byte?"
LC_ALL=C sed 's/(Records accepted)/(Records Accepted)/' "$out/agreement-signed.pdf" >"$work/changed.pdf"
if cmp -s "$out/agreement-signed.pdf" "$work/changed.pdf"; then
    echo "the change found nothing to change" >&2
    exit 1
fi
if "$varnpdf" verify "$work/changed.pdf" >"$work/changed.txt"; then
    echo "no: the changed file passed" >&2
    exit 1
fi
grep result "$work/changed.txt"

say "The signed page"
pdftoppm -r 72 -png -singlefile "$out/agreement-signed.pdf" "$out/agreement-signed"
printf '%s\n' "$out/agreement-signed.pdf" "$out/agreement-signed.png"

say "All checks passed"
