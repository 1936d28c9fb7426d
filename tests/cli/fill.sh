#!/bin/bash
# "varnpdf fields" and "varnpdf fill": what is listed, filled and refused, and what poppler shows of it.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"

widget='/Subtype /Widget /FT /Tx /P 3 0 R'
form=('<< /Type /Catalog /Pages 2 0 R /AcroForm << /DA (/Helv 10 Tf 0 g) /DR << /Font << /Helv 4 0 R >> >>
       /Fields [5 0 R 7 0 R 8 0 R 9 0 R] >> >>'
    '<< /Type /Pages /Kids [3 0 R] /Count 1 >>'
    '<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 200] /Annots [6 0 R 7 0 R 8 0 R 9 0 R] >>'
    '<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>'
    '<< /T (person) /Kids [6 0 R] >>'
    "<< /Parent 5 0 R /T (name) /V (old) $widget /Rect [10 150 200 170] >>"
    "<< /T (note) /Ff 4096 $widget /Rect [10 60 200 140] >>"
    "<< /T (fixed) /Ff 1 /V (stays) $widget /Rect [10 30 200 50] >>"
    '<< /T (box) /FT /Btn /Subtype /Widget /V /Off /Rect [10 5 20 15] >>')
trailer='/ID [<01> <02>]' pdf form.pdf "${form[@]}"

run 0 '' fields form.pdf
same 'listed' 'person.name  text  page 1  = old
note  text  page 1 multiline
fixed  text  page 1 read-only  = stays
box  check box  page 1  = Off' "$(cat out)"
run 0 '' fields form.pdf --json
same 'as JSON' '{"name":"note","type":"text","value":null,"page":1,"object":7,"widgets":1,"flags":["multiline"],"flag_bits":4096,"max_length":null,"locked":false}' \
    "$(python3 -c 'import json;print(json.dumps(json.load(open("out"))["fields"][1],separators=(",",":")))')"

printf '\xef\xbb\xbfnote=eins (1)\r\n\r\nnote=zwei =\\' >values
run 0 '' fill form.pdf -o out.pdf --from values --set person.name=Müller
same 'the old bytes' "$(cat form.pdf)" "$(head -c "$(stat -c %s form.pdf)" out.pdf)"
run 0 '' fields out.pdf
same 'filled' 'person.name  text  page 1  = Müller
note  text  page 1 multiline  = zwei =\' "$(head -n 2 out)"
run 0 '' fill out.pdf -o out.pdf --set person.name='Çelik (Ж)'  # over itself, with a letter that no font here has
run 0 '' fill out.pdf -o out.pdf --set person.name='Çelik'
run 0 '' fields out.pdf
has 'filled again' 'person.name .* = Çelik$' "$(cat out)"
if command -v qpdf >/dev/null; then same 'qpdf' 0 "$(qpdf --check out.pdf >/dev/null 2>&1; echo $?)"; fi
if command -v pdftotext >/dev/null; then
    same 'shown' 'stays|zwei =\|Çelik|' "$(pdftotext out.pdf - | tr -d '\f' | grep . | LC_ALL=C sort | tr '\n' '|')"
fi

# --- refusals: nothing is written --------------------------------------------------------------------------------------
while IFS='|' read -r code set pattern; do
    run "$code" "$pattern" fill form.pdf -o new.pdf --set person.name=x --set "$set"
    same "nothing for $set" missing "$([ -e new.pdf ] && echo there || echo missing)"
done <<'TABLE'
4|name=x|form.pdf: name: the form has no field of this name
4|fixed=x|fixed: the field is read-only
4|box=x|box: the field is no text field
2|name|no "=" between name and value: name
TABLE
run 2 . fill form.pdf -o new.pdf
run 4 'nowhere' fill form.pdf -o new.pdf --from nowhere
run 4 '\(-1001\)' fill missing.pdf -o new.pdf --set a=b
run 4 'No space left' fill form.pdf -o /dev/full --set note=x
trailer='/Encrypt 9 0 R' pdf locked.pdf "${form[@]}"
run 4 '\(-1021\)' fill locked.pdf -o new.pdf --set note=x
finish
