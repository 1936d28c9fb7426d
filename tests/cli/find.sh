#!/bin/bash
# "varnpdf find" and "sign --at": where a text stands, and signatures that stand there.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib-sign.sh"

# page TURN: an A6 page with a text at 100 200 and another at 100 100.
page() {
    local content='BT /F 10 Tf 100 200 Td (Signature:) Tj 0 -100 Td (Signature:) Tj ET'
    {
        printf '%%PDF-1.7\n1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n'
        printf '2 0 obj\n<< /Type /Pages /Kids [3 0 R] /Count 1 >>\nendobj\n'
        printf '3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 400] /Rotate %s /Contents 4 0 R ' "$1"
        printf '/Resources << /Font << /F 5 0 R >> >> >>\nendobj\n'
        printf '4 0 obj\n<< /Length %s >>\nstream\n%s\nendstream\nendobj\n' "${#content}" "$content"
        printf '5 0 obj\n<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>\nendobj\n'
    } >body
    local offsets
    offsets=$(LC_ALL=C grep -abo '^[1-5] 0 obj' body | cut -d: -f1)
    {
        cat body
        printf 'xref\n0 6\n0000000000 65535 f \n'
        # shellcheck disable=SC2086
        printf '%010d 00000 n \n' $offsets
        printf 'trailer\n<< /Size 6 /Root 1 0 R >>\nstartxref\n%s\n%%%%EOF\n' "$(wc -c <body)"
    } >page.pdf
}
rect() { LC_ALL=C grep -ao '/Rect *\[[^]]*\]' signed.pdf | tail -n 1 | tr -s '[] \r\n' ' ' | sed 's/^.Rect //; s/ $//'; }

page 0
run 0 '' find page.pdf Signature:
same 'places' $'1\t100 197.93 145.58 207.18\n1\t100 97.93 145.58 107.18' "$(cat out)"
run 0 '' find page.pdf --json ature
same 'places as JSON' '{"file":"page.pdf","text":"ature","hits":[{"page":1,"rect":[120.01,197.93,142.8,207.18]},{"page":1,"rect":[120.01,97.93,142.8,107.18]}]}' \
    "$(tr -d '\n ' <out)"
run 4 'not found' find page.pdf --json signature
same 'no places as JSON' '{"file":"page.pdf","text":"signature","hits":[]}' "$(tr -d '\n ' <out)"
run 2 'blank' find page.pdf ' '
run 4 'page2.pdf' find page2.pdf x

# Turned pages are signed where the reader sees the lower left corner of the text.
while IFS='~' read -r turn options wanted; do
    page "$turn"
    # shellcheck disable=SC2086
    run 0 '' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at Signature: $options
    same "turned by $turn: $options" "$wanted" "$(rect)"
done <<'TABLE'
0~~100 198 150 218
0~--at-hit last~100 98 150 118
0~--at-hit 2 --at-offset 10mm,-5mm~128 84 178 104
90~--at-offset 3,4~122 201 142 251
180~--at-offset 3,4~143 203 93 183
270~--at-offset 3,4~104 154 124 204
TABLE

rm signed.pdf
run 4 'not found' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at Unterschrift
run 4 'stands there 2 times' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at Signature: --at-hit 3
run 4 'does not fit' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at Signature: --at-offset 0,900
run 2 'at-hit' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at Signature: --at-hit 0
run 2 'at-offset' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at Signature: --at-offset 1
run 2 'excludes' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at Signature: --page 1
run 4 'blank' sign page.pdf -o signed.pdf "${me[@]}" --size 50,20 --at ''
run 2 'requires' sign page.pdf -o signed.pdf "${me[@]}" --at Signature:
same 'nothing is written' '' "$(ls signed.pdf 2>/dev/null)"
finish
