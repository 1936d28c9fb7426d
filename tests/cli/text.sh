#!/bin/bash
# Text strings and names of ISO 32000-2 7.3.4, 7.3.5 and 7.9.2.2 as "info --json" shows them.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"

# Raw string in the file, what JSON shows. Byte 1 becomes NUL.
table=(
    '(a (b) \(c)' 'a (b) (c'
    '(\12345\7x)' 'S45\u0007x'
    $'(J\xf6rg \x80\x9f)' 'Jörg •�'
    $'(\xfe\xff\1J\1\xf6)' 'Jö'
    '<feffd83d
     de00>' '😀'
    $'(\xef\xbb\xbfa\xc3)' 'a�'
    '/N#C3#A4me#20x' 'Näme x'
)
bodies=("${one_page[@]}")
expected=
for ((i = 0; i < ${#table[@]}; i += 2)); do
    bodies+=("<< /Type /Annot /FT /Sig /T ${table[i]} >>")
    expected+="\"${table[i + 1]}\""$'\n'
done
pdf text.pdf "${bodies[@]}"
run 0 '' info --json text.pdf
# One field per line: the name is all between its key and the next one.
same 'decoded names' "${expected%$'\n'}" "$(tr '{' '\n' <out | sed -n 's/^"name":\(.*\),"signed":false}.*/\1/p')"
same 'valid UTF-8' 0 "$(iconv -f UTF-8 -t UTF-8 out >/dev/null 2>&1; echo $?)"

# A string that an entry refers to, a name from the field above, no name at all, a reference to itself.
pdf indirect.pdf "${one_page[@]}" '<< /FT /Sig /T 5 0 R >>' '(else\tw\150ere)' '<< /FT /Sig /Parent 7 0 R >>' \
    '<< /T (above) /Kids [6 0 R] >>' '<< /FT /Sig >>' '<< /FT /Sig /T 9 0 R /Parent 9 0 R >>'
run 0 '' info --json indirect.pdf
has 'names from elsewhere' '"fields":\[\{"name":"else\\twhere","signed":false\},\{"name":"above",' "$(cat out)"
has 'no name' '"above","signed":false\},\{"name":null,' "$(cat out)"

# For people nothing may command the terminal: escape sequences and direction overrides are replaced.
pdf hostile.pdf "${one_page[@]}" '<< /FT /Sig /T <FEFF001B005B0032004A202E0078> >>'
run 0 '' info hostile.pdf
has 'harmless text' '�\[2J�x' "$(cat out)"
finish
