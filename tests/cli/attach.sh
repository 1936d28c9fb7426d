#!/bin/bash
# "varnpdf attach" and "varnpdf attachments": two other readers find what was embedded, byte for byte, and nothing is
# written outside of the directory.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"
for tool in qpdf pdfdetach; do
    command -v $tool >/dev/null || { echo "$tool is missing"; exit 77; }
done
pdf in.pdf "${one_page[@]}"
cp in.pdf original.pdf
head -c 100000 /dev/urandom >random.bin
seq 20000 >Numbers.TXT
printf '<a/>' >'it "is" (a) [b].xml'

run 0 '' attach in.pdf random.bin
run 0 '' attach in.pdf Numbers.TXT 'it "is" (a) [b].xml' -o out.pdf
same 'the old bytes stay' "$(md5sum <original.pdf)" "$(head -c "$(wc -c <original.pdf)" out.pdf | md5sum)"
run 0 '' attachments out.pdf
same 'list' $'0\t100000\tapplication/octet-stream\trandom.bin
1\t'"$(wc -c <Numbers.TXT)"$'\ttext/plain\tNumbers.TXT\n2\t4\tapplication/xml\tit "is" (a) [b].xml' "$(cat out)"
same 'qpdf has no complaint' 'No syntax or stream encoding errors found; the file may still contain' \
    "$(qpdf --check out.pdf 2>&1 | grep -c WARN | grep -v '^0$'; qpdf --check out.pdf 2>&1 | grep -o 'No syntax.*contain')"
mkdir poppler
pdfdetach -saveall -o poppler out.pdf >/dev/null 2>&1
for file in random.bin Numbers.TXT 'it "is" (a) [b].xml'; do
    same "poppler: $file" 0 "$(cmp "$file" "poppler/$file" 2>&1; echo $?)"
done
for object in $(qpdf --json=2 --json-key=attachments out.pdf | grep -o '"filespec": "[0-9]* 0 R"' | grep -o '[0-9]* 0 R' | cut -d' ' -f1); do
    stream=$(qpdf --show-object="$object" out.pdf | grep -o '/F [0-9]* 0 R' | cut -d' ' -f2)
    qpdf --show-object="$stream" --filtered-stream-data out.pdf | md5sum
done | sort >sums
same 'qpdf' "$(md5sum random.bin Numbers.TXT it*.xml | sed 's/^\\//; s/ .*/  -/' | sort)" "$(cat sums)"
run 0 '' attachments out.pdf --extract ours
same 'our own' '' "$(for file in random.bin Numbers.TXT it*.xml; do cmp "$file" "ours/$file" 2>&1; done)"
run 0 '' attachments out.pdf --extract ours
same 'no file is overwritten' 6 "$(find ours -type f | wc -l)"
same 'numbers in front of the extension' 0 "$(cmp random.bin 'ours/random (2).bin'; echo $?)"

# --- dates: the zone is the one that held when the file was changed ---------------------------------------------------
while read -r changed date; do
    cp original.pdf dated.pdf
    touch -d "$changed" Numbers.TXT
    TZ=Europe/Berlin run 0 '' attach dated.pdf Numbers.TXT
    same "file of $changed" "/ModDate (D:$date)" "$(grep -a ModDate dated.pdf | tr -d '\r')"
done <<'TABLE'
2026-07-15T12:00:00Z 20260715140000+02'00'
2025-11-15T12:00:00Z 20251115130000+01'00'
TABLE

# --- mode, links, failures --------------------------------------------------------------------------------------------
cp original.pdf kept.pdf && chmod 604 kept.pdf && ln -s kept.pdf link.pdf
run 0 '' attach link.pdf Numbers.TXT
same 'mode and link' '604 kept.pdf' "$(stat -c %a kept.pdf) $(readlink link.pdf)"
: >empty.txt
cp original.pdf same.pdf
ls -A >before
while IFS='|' read -r pattern arguments; do
    # shellcheck disable=SC2086
    run 4 "$pattern" attach $arguments
done <<'TABLE'
missing.txt: .* \(-1171\)$|same.pdf missing.txt
empty.txt: .* \(-1172\)$|same.pdf empty.txt
README: .*\(-1171\)$|same.pdf README
\(-1172\)|same.pdf Numbers.TXT empty.txt
\(-1173\)|same.pdf /etc/passwd -o new.pdf
Numbers.TXT: .*\(-1029\)$|Numbers.TXT random.bin
No such file|missing.pdf random.bin Numbers.TXT
No such file|same.pdf random.bin -o nowhere/new.pdf
Is a directory|same.pdf random.bin -o ours
TABLE
same 'nothing changed' "$(md5sum <original.pdf)" "$(md5sum <same.pdf)"
same 'nothing left behind' "$(cat before)" "$(ls -A)"
limited=$(trap '' XFSZ; ulimit -f 20; "$varnpdf" attach same.pdf random.bin 2>&1; echo "$?")
has 'a full disk' '\(-1023\)' "$limited"
same 'a full disk changes nothing' "$(md5sum <original.pdf)" "$(md5sum <same.pdf)"

# --- a signature stays valid ------------------------------------------------------------------------------------------
cp "$examples/signed.pdf" signed.pdf
run 0 '' attach signed.pdf Numbers.TXT
if command -v pdfsig >/dev/null; then
    has 'pdfsig' 'Signature is Valid' "$(pdfsig -nocert signed.pdf 2>&1)"
else
    echo 'not checked without pdfsig: that a signature stays valid'
fi

# --- names that want out of the directory ------------------------------------------------------------------------------
spec() { printf '<< /Type /Filespec /F %s /EF << /F 5 0 R >> >>' "$1"; }
stream=$'<< /Length 2 >>\nstream\nhi\nendstream'
trap_names=('(../../up.txt)' '(/etc/passwd)' '(..)' '(a\000b.txt)' '(c:\\windows\\evil.txt)' '(x\nrm.txt)' '(link.txt)' '(.)' '<FEFF002E002E002F0075>' '()')
bodies=('<< /Type /Catalog /Pages 2 0 R /Names << /EmbeddedFiles 4 0 R >> >>' "${one_page[@]:1}")
names='' number=6
for name in "${trap_names[@]}"; do
    names+="(k) $number 0 R "
    number=$((number + 1))
done
bodies+=("<< /Names [ $names ] /Kids [ 4 0 R ] >>" "$stream")
for name in "${trap_names[@]}"; do bodies+=("$(spec "$name")"); done
pdf evil.pdf "${bodies[@]}"
mkdir -p deep/er/target
echo untouched >outside.txt && ln -s ../../../outside.txt deep/er/target/link.txt
find . -type f -not -path './deep/er/target/*' | sort >before
run 0 '' attachments evil.pdf --extract deep/er/target
same 'nothing outside' "$(cat before)" "$(find . -type f -not -path './deep/er/target/*' | sort)"
same 'the link is not followed' untouched "$(cat outside.txt)"
same 'all are there' "$(printf '%s\n' attachment 'attachment (2)' $'a\xef\xbf\xbdb.txt' evil.txt k 'link (2).txt' passwd u up.txt 'x rm.txt' | LC_ALL=C sort)" \
    "$(find deep/er/target -type f -printf '%f\n' | LC_ALL=C sort)"
run 4 'Not a directory' attachments evil.pdf --extract outside.txt
run 0 '' attachments "$examples/signed.pdf"
same 'a document without any' '' "$(cat out)"
run 4 '\(-1001\)' attachments missing.pdf
finish
