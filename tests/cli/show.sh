#!/bin/bash
# "varnpdf show": trailers, the table of objects, and objects byte by byte.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"
signed=$examples/signed.pdf

run 0 '' show "$signed"
mapfile -t tables < <(grep -a -b '^xref' "$signed" | cut -d: -f1)
same 'trailers, the newest first' "% section 1 of 2: table at offset ${tables[1]}
trailer
<< /Size 9 /Root 1 0 R /Prev ${tables[0]} >>
% section 2 of 2: table at offset ${tables[0]}
trailer
<< /Size 6 /Root 1 0 R >>" "$(cat out)"
cp out default.txt
run 0 '' show "$signed" trailer
same 'the default is "trailer"' '' "$(diff out default.txt)"

run 0 '' show "$signed" 5
begin=$(grep -a -b '^5 0 obj' "$signed" | cut -d: -f1)
same 'an object as it stands' "$(tail -c +$((begin + 1)) "$signed" | sed '/endobj/q')" "$(cat out)"
run 0 '' show "$signed" xref
place=$(grep -a -b '^8 0 obj' "$signed" | cut -d: -f1)
has 'an object of the update' "^ +8 +0  $place +in use +/Sig\$" "$(cat out)"
has 'type and subtype' '^ +4 +0  [0-9]+ +in use +/Font /Type1$' "$(cat out)"

# Objects 4 and 5 stand in an object stream; the cross-reference stream has one byte for each field but the second.
bodies='4 0 5 16 << /Answer 42 >><< /Type /Late >>'
{
    printf '%%PDF-1.5\n'
    printf '1 0 obj\n%s\nendobj\n2 0 obj\n<< /Type /Pages /Kids [] /Count 0 >>\nendobj\n' "$catalogue"
    printf '3 0 obj\n<< /Type /ObjStm /N 2 /First 9 /Length %d >>\nstream\n%s\nendstream\nendobj\n' ${#bodies} "$bodies"
    printf '6 0 obj\n<< /Type /XRef /W [1 2 1] /Size 7 /Root 1 0 R /Length 28 >>\nstream\n'
} >stream.pdf
offset() { grep -a -b "^$1 0 obj" stream.pdf | cut -d: -f1; }
# shellcheck disable=SC2059
row() { printf "$(printf '\\x%02x' "$1" $(($2 / 256)) $(($2 % 256)) "$3")"; }
{
    row 0 0 255 && row 1 "$(offset 1)" 0 && row 1 "$(offset 2)" 0 && row 1 "$(offset 3)" 0
    row 2 3 0 && row 2 3 1 && row 1 "$(offset 6)" 0
    printf '\nendstream\nendobj\nstartxref\n%s\n%%%%EOF\n' "$(offset 6)"
} >rows
cat rows >>stream.pdf
run 0 '' show stream.pdf 4
same 'an object from a stream' '4 0 obj << /Answer 42 >> endobj' "$(tr -s '\r\n' ' ' <out | sed 's/ $//')"
run 0 '' show stream.pdf xref
has 'where it stands' '^ +5 +0  in stream 3 at 1 +in use +/Late$' "$(cat out)"
run 0 '' show stream.pdf
has 'dictionary of a stream' '^<< /Type /XRef /W \[1 2 1\] /Size 7 /Root 1 0 R /Length 28 >>$' "$(cat out)"
same 'without its data' 0 "$(grep -c endstream out)"
run 0 '' info --json stream.pdf
has 'kind of a stream' '"version":"1.5",.*"cross_reference":"stream","sections":1,"size":7' "$(cat out)"

run 4 'signed.pdf: there is no object 99$' show "$signed" 99
run 2 'neither an object number' show "$signed" catalogue
run 2 'neither an object number' show "$signed" -- -1
finish
