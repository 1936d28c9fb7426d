#!/bin/bash
# Facts, messages and exit codes of "varnpdf info", and the options all commands share.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"
signed=$examples/signed.pdf

# --- a signed document ------------------------------------------------------------------------------------------------
run 0 '' info --json "$signed"
json=$(cat out)
same 'one line per file' 1 "$(wc -l <out)"
bytes=$(wc -c <"$signed")
while read -r fact; do
    has "fact $fact" "$fact" "$json"
done <<EOT
"code":0,"version":"1.7","line_end":"LF","linearized":false,"encrypted":false,"cross_reference":"table","sections":2
"size":9,"file_bytes":$bytes,"objects":8,"page_count":1
"pages":\[\{"number":1,"object":3,"box":\[0,0,595,842\],"rotation":0\}\],"locked":false
"fields":\[\{"name":"Unterschrift1","signed":true\}\]
"signatures":\[\{"index":0,"field":"Unterschrift1","reason":"Prüfung abgeschlossen","location":"Düsseldorf \(Altstadt\)"
"date":"D:20[0-9]{12}Z","name":"Jörg Müßig","filter":"Example.Filter","subfilter":"adbe.pkcs7.detached"
"byte_range":\[0,[0-9]+,[0-9]+,[0-9]+\],"contents_bytes":2048,"field_type":null,"type":"Sig","r":null
"contact_info":null,"cert":null,"covers_whole_file":true,"pkcs7_code":0,"pkcs7_bytes":1[0-9]{3}\}\]\}\$
EOT
run 0 '' info "$signed"
has 'readable reason' '^    reason +Prüfung abgeschlossen$' "$(cat out)"
has 'readable page' '^    1 +595 x 842 points \(0 0 595 842\)$' "$(cat out)"

# Bytes behind the signed ranges, or in the gap between them, are not covered.
cp "$signed" longer.pdf && printf '\n' >>longer.pdf
run 0 '' info --json longer.pdf
has 'bytes behind' '"covers_whole_file":false' "$(cat out)"
LC_ALL=C sed 's/0000000000>$/7 0 obj[1]>/' "$signed" >gap.pdf
run 0 '' info --json gap.pdf
has 'object in the gap' '"covers_whole_file":false' "$(cat out)"

# An object number at the end of all numbers, from a table.
printf '%%PDF-1.7\n' >last.pdf
{
    printf '1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n2 0 obj\n<< /Type /Pages /Kids [] /Count 0 >>\nendobj\n'
    printf 'xref\n0 3\n0000000000 65535 f \n0000000009 00000 n \n0000000058 00000 n \n2147483647 1\n0000000009 00000 n \n'
    printf 'trailer\n<< /Size 3 /Root 1 0 R >>\nstartxref\n110\n%%%%EOF\n'
} >>last.pdf
for arguments in 'info last.pdf' 'show last.pdf xref'; do
    # shellcheck disable=SC2086
    same "$arguments ends" 0 "$(timeout 20 "$varnpdf" $arguments >/dev/null 2>&1; echo $?)"
done

# --- pages, forms of signature dictionaries ---------------------------------------------------------------------------
pdf pages.pdf "$catalogue" '<< /Type /Pages /Kids [3 0 R 4 0 R 5 0 R 6 0 R] /Count 4 /MediaBox [0 0 100 200] >>' \
    '<< /Type /Page /Parent 2 0 R >>' '<< /Type /Page /Parent 2 0 R >>' \
    '<< /Type /Page /Parent 2 0 R /Rotate -90 >>' '<< /Type /Page /Parent 2 0 R /MediaBox [10 20 5 10.9] >>'
run 0 '' info pages.pdf
has 'equal pages share a line' '^    1-2 +100 x 200 points \(0 0 100 200\)$' "$(cat out)"
has 'rotated page' '^    3 +100 x 200 points \(0 0 100 200\), rotated by 270$' "$(cat out)"
run 0 '' info --json pages.pdf
has 'page facts' '"page_count":4,.*"object":5,"box":\[0,0,100,200\],"rotation":270\}.*"fields":\[\],"signatures":\[\]\}$' \
    "$(cat out)"
pdf odd.pdf "${one_page[@]}" '<< /Type /Annot /FT /Sig /T (odd) /V 5 0 R >>' \
    '<< /Type /Sig /ByteRange [0 1 2] /Contents <3082> /Cert [<30> <31>] /R 7 >>' \
    '<< /FT /Sig /T (apart) /V 5 0 R >>'
run 0 '' info --json odd.pdf
has 'odd byte range' '"byte_range":null,"contents_bytes":2,.*"r":"7",.*"cert":2,"covers_whole_file":null' "$(cat out)"
has 'widget that stands apart' '"index":1,"field":"apart"' "$(cat out)"

# --- what cannot be opened --------------------------------------------------------------------------------------------
trailer='/Encrypt 3 0 R' pdf locked.pdf "${one_page[@]}"
printf 'no PDF at all\n' >text.pdf
: >empty.pdf
mkdir dir.pdf
run 4 '^varnpdf: locked.pdf: the document is encrypted \(-1021\)$' info locked.pdf
run 4 '^varnpdf: text.pdf: .* \(-1029\)$' info text.pdf
for file in missing.pdf empty.pdf dir.pdf /dev/null; do run 4 "^varnpdf: $file: .* \(-1001\)$" info "$file"; done
if [ "$(id -u)" != 0 ]; then
    cp pages.pdf unreadable.pdf && chmod 0 unreadable.pdf
    run 4 '^varnpdf: unreadable.pdf: .* \(-1001\)$' info unreadable.pdf
else
    echo 'not checked as root: a file without read permission'
fi
run 3 'missing.pdf: .* \(-1001\)' info --json missing.pdf locked.pdf pages.pdf
has 'error object' '^\{"file":"missing.pdf","code":-1001,.*"error":"[^"]+"\}$' "$(sed -n 1p out)"
has 'encrypted object' '"code":-1021,"version":"1.7",.*"encrypted":true,.*"error":"the document is encrypted"\}$' \
    "$(sed -n 2p out)"
has 'good object' '"code":0,' "$(sed -n 3p out)"
cp pages.pdf $'bad\xff\x1bname.pdf'
run 0 '' info --json $'bad\xff\x1bname.pdf'
has 'file name in JSON' '^\{"file":"bad�\\u001bname.pdf"' "$(cat out)"
if command -v python3 >/dev/null; then
    "$varnpdf" info --json "$signed" text.pdf ./*.pdf 2>/dev/null >all.jsonl
    same 'JSON parses' 0 "$(python3 -c 'import json; [json.loads(l) for l in open("all.jsonl", "rb")]' 2>&1; echo $?)"
else
    echo 'not checked without python3: that a parser takes the JSON'
fi

# --- usage, help, output that cannot be written -----------------------------------------------------------------------
run 2 '.' && run 2 '.' frobnicate && run 2 '.' info && run 2 '.' info --wrong pages.pdf && run 2 '.' --log loud info x
run 0 '' --version
same 'version' 'varnpdf 2.10.0' "$(cat out)"
run 0 '' --help
has 'exit codes in the help' '3 +some of the files failed' "$(cat out)"
for command in info extract show; do
    run 0 '' "$command" --help
    has "example of $command" "^  varnpdf $command " "$(cat out)"
done
for arguments in "info $signed" "show $signed" "extract $signed --signature 0 --pkcs7" --help; do
    # shellcheck disable=SC2086
    same "full disk: $arguments" '4 varnpdf: standard output: No space left on device' \
        "$("$varnpdf" $arguments 2>&1 >/dev/full | { message=$(cat); echo "$message"; } >err; echo "${PIPESTATUS[0]} $(cat err)")"
done
finish
