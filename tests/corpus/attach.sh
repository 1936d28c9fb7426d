#!/usr/bin/env bash
# Attaching to every n-th file of the corpus (VARNPDF_STRIDE, 20): the old bytes stay, the file comes back byte for byte,
# and qpdf has no more to say than before.
# shellcheck source=tests/corpus/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh" qpdf pdfdetach
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
seq 3000 >"$work/numbers.txt"
failures=0 attached=0 number=0

fail() {
    failures=$((failures + 1))
    printf 'FAILED %s: %s\n' "$1" "$2"
}
complaints() { timeout 60 qpdf --check "$1" >"$work/check" 2>&1; echo $?; }
listed() { timeout 60 pdfdetach -list "$1" 2>/dev/null | grep -c ': '; }

while read -r file; do
    number=$((number + 1))
    [ $((number % ${VARNPDF_STRIDE:-20})) -eq 0 ] || continue
    before=$("$program" attachments "$file" 2>/dev/null | wc -l)
    "$program" attach "$file" "$work/numbers.txt" -o "$work/out.pdf" 2>/dev/null || continue
    attached=$((attached + 1))
    cmp -s -n "$(stat -c %s "$file")" "$file" "$work/out.pdf" || fail "$file" 'the old bytes changed'
    [ "$("$program" attachments "$work/out.pdf" | wc -l)" -eq $((before + 1)) ] || fail "$file" 'not one more embedded file'
    [ "$(listed "$work/out.pdf")" -eq $(($(listed "$file") + 1)) ] || fail "$file" 'poppler does not find one more'
    [ "$(complaints "$work/out.pdf")" -le "$(complaints "$file")" ] || fail "$file" "qpdf: $(head -3 "$work/check")"
    rm -rf "$work/all" && "$program" attachments "$work/out.pdf" --extract "$work/all" >/dev/null 2>&1
    found=0
    for each in "$work"/all/*; do cmp -s "$each" "$work/numbers.txt" && found=1; done
    [ $found -eq 1 ] || fail "$file" 'the file does not come back'
done < <(find "$corpus" -name '*.pdf' | LC_ALL=C sort)
echo "$attached of every ${VARNPDF_STRIDE:-20}th of $number files, $failures failures"
[ $attached -gt 0 ] && [ $failures -eq 0 ]
