#!/bin/bash
# "varnpdf portfolio": other readers take it for a portfolio, show its cover and find every file in it.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"
for tool in qpdf pdfdetach pdftotext; do
    command -v $tool >/dev/null || { echo "$tool is missing"; exit 77; }
done
content='BT /F1 12 Tf 20 50 Td (The cover) Tj ET'
pdf cover.pdf '<< /Type /Catalog /Pages 2 0 R /PageLabels << /Nums [0 << /S /r >>] >> >>' \
    '<< /Type /Pages /Kids [3 0 R 6 0 R] /Count 2 /MediaBox [0 0 300 100] /Resources << /Font << /F1 4 0 R >> >> >>' \
    '<< /Type /Page /Parent 2 0 R /Contents 5 0 R >>' '<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>' \
    $'<< /Length '${#content}$' >>\nstream\n'"$content"$'\nendstream' '<< /Type /Page /Parent 2 0 R >>'
sed -i '1s/1\.7/1.4/' cover.pdf
head -c 30000 /dev/urandom >data.bin
seq 1000 >'numbers (a).txt'
mkdir other && echo other >'other/numbers (a).txt'

run 0 '' portfolio -o out.pdf --cover cover.pdf data.bin 'numbers (a).txt' 'other/numbers (a).txt' --description 'Übersicht'
same 'qpdf' '0' "$(qpdf --check out.pdf >check 2>&1; echo $?; grep WARN check)"
has 'text of the cover' 'The cover' "$(pdftotext out.pdf - 2>&1)"
has 'size of the cover' '300 x 100' "$(pdfinfo out.pdf)"
same 'one page' 1 "$(qpdf --show-npages out.pdf)"
has 'initial document' '/D \(cover.pdf\)' "$(qpdf --show-object=trailer out.pdf >/dev/null; grep -a '/Collection' out.pdf)"
mkdir poppler
pdfdetach -list out.pdf >list 2>&1
for i in 1 2 3 4; do pdfdetach -save $i -o poppler/$i out.pdf >/dev/null 2>&1; done
same 'files' "$(md5sum cover.pdf data.bin n*.txt other/n*.txt | cut -d' ' -f1 | sort)" "$(md5sum poppler/* | cut -d' ' -f1 | sort)"
same 'names' "$(printf '%s\n' cover.pdf data.bin 'numbers (a).txt' 'numbers (a).txt')" "$(sed -n 's/^[0-9]*: //p' list | sort)"
run 0 '' attachments out.pdf
has 'description' 'cover.pdf	Übersicht' "$(cat out)"
for key in cover.pdf data.bin 'numbers (a).txt (2)'; do
    same "qpdf finds $key by its key" 0 "$(qpdf --show-attachment="$key" out.pdf >/dev/null 2>&1; echo $?)"
done

# --- refusals ---------------------------------------------------------------------------------------------------------
pdf new.pdf "${one_page[@]}"
sed 's/1\.4/1.6/' cover.pdf >newer.pdf
: >empty.txt
cp out.pdf kept.pdf
ls -A >before
while IFS='|' read -r pattern arguments; do
    # shellcheck disable=SC2086
    run 4 "$pattern" portfolio -o fresh.pdf $arguments
done <<'TABLE'
newer.pdf: this is PDF 1.6, .* 1.4 .*\(-1308\)|--cover newer.pdf data.bin
new.pdf: this is PDF 1.7|--cover cover.pdf new.pdf
data.bin: .*\(-1029\)|--cover data.bin cover.pdf
missing: .*\(-1305\)|--cover cover.pdf missing
other: .*\(-1305\)|--cover cover.pdf other
TABLE
run 4 'nowhere/fresh.pdf: .*\(-1306\)' portfolio -o nowhere/fresh.pdf --cover cover.pdf
run 2 'more descriptions' portfolio -o fresh.pdf --cover cover.pdf --description a --description b
run 2 '.' portfolio -o fresh.pdf cover.pdf
same 'nothing left behind' "$(cat before)" "$(ls -A)"
limited=$(trap '' XFSZ; ulimit -f 10; "$varnpdf" portfolio -o kept.pdf --cover cover.pdf data.bin 2>&1; echo "$?")
has 'a full disk' '\(-1306\)' "$limited"
same 'a full disk keeps the old file' 0 "$(cmp out.pdf kept.pdf; echo $?)"
run 0 '' portfolio -o fresh.pdf --cover cover.pdf empty.txt
run 0 '' attachments fresh.pdf --extract files
same 'an empty file' '0' "$(stat -c %s files/empty.txt)"
finish
