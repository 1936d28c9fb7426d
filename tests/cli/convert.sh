#!/bin/bash
# "varnpdf convert": names of results, what is refused, and results that other programs read as the source has it.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"

# A grey ramp of 64 x 40 samples as TIFF (little-endian, one strip), once or twice in the file.
tiff() {
    python3 - "$1" "$2" <<'PYTHON'
import struct, sys
width, height, pages = 64, 40, int(sys.argv[2])
data = bytes((x * 4 + y) % 256 for y in range(height) for x in range(width))
out = b"II*\0" + struct.pack("<I", 8)
for page in range(pages):
    tags = [(256, 3, width), (257, 3, height), (258, 3, 8), (259, 3, 1), (262, 3, 1), (273, 4, 0), (277, 3, 1),
            (278, 3, height), (279, 4, len(data))]
    end = len(out) + 2 + 12 * len(tags) + 4
    out += struct.pack("<H", len(tags))
    for tag, kind, value in tags:
        out += struct.pack("<HHII", tag, kind, 1, end if tag == 273 else value)
    out += struct.pack("<I", end + len(data) if page + 1 < pages else 0) + data
open(sys.argv[1], "wb").write(out)
open(sys.argv[1] + ".rgb", "wb").write(bytes(v for v in data for _ in range(3)))
PYTHON
}

sound() {
    local report
    report=$(qpdf --check "$1" 2>&1)
    same "qpdf --check $1" 0 $?
    has "qpdf on $1" 'No syntax or stream encoding errors' "$report"
}

tiff scan.tif 2
printf 'It'"'"'s (one)\n\tä\n%0200d\n' 0 >notes.txt
yes line | head -n 120 >long.TXT

# --- one file ---------------------------------------------------------------------------------------------------------
run 0 '' convert scan.tif -o scan.pdf
sound scan.pdf
pdfimages scan.pdf page
same 'two pages' 'page-000.ppm page-001.ppm' "$(echo page-*.ppm)"
for page in page-*.ppm; do
    same "pixels of $page" 0 "$(tail -c 7680 "$page" | cmp - scan.tif.rgb 2>&1; echo $?)"
done

run 0 '' convert notes.txt -o notes.pdf
sound notes.pdf
same 'text' "It's (one)/        ä/80/80/40" \
    "$(pdftotext -layout notes.pdf - | tr -d '\f' | awk '/^0+$/ { print length; next } /./' | paste -sd/)"
run 0 '' convert long.TXT -o long.pdf
sound long.pdf
same 'lines on pages' '55 55 10' \
    "$(for page in 1 2 3; do pdftotext -f "$page" -l "$page" long.pdf - | grep -c line; done | paste -sd' ')"

# A JPEG made by another program; its data comes out as it went in.
pdftoppm -r 300 -f 1 -l 1 -jpeg scan.pdf photo
mv photo-*.jpg photo.jpg
run 0 '' convert photo.jpg
sound photo.pdf
pdfimages -j photo.pdf out
same 'JPEG data' 0 "$(cmp photo.jpg out-000.jpg 2>&1; echo $?)"
has 'size of the page' 'Page size: +15.36 x 9.6 pts' "$(pdfinfo photo.pdf)"

# --- several ----------------------------------------------------------------------------------------------------------
mkdir pages
run 0 '' convert scan.tif photo.jpg notes.txt -o pages
same 'names' 'notes.pdf photo.pdf scan.pdf' "$(cd pages && echo *)"
run 4 'pages/scan.pdf: the file exists; --force' convert scan.tif -o pages
run 0 '' convert scan.tif -o pages --force
run 0 '' convert scan.tif -o scan.pdf
cp scan.tif notes.tif
rm pages/*
run 3 'notes.txt: not converted: pages/notes.pdf was already made' convert notes.tif notes.txt -o pages/
run 2 'scan.pdf: several files are converted into a directory' convert scan.tif photo.jpg -o scan.pdf

# --- refusals ---------------------------------------------------------------------------------------------------------
cp scan.tif picture.bmp
head -c 200 scan.tif >cut.tif
cp photo.jpg plain
ls -A >before
while IFS='|' read -r in out pattern; do
    run 4 "^varnpdf: $pattern" convert "$in" -o "$out"
done <<'TABLE'
missing.tif|x.pdf|missing.tif: No such file
picture.bmp|x.pdf|picture.bmp: files with the extension .bmp are not converted; known are .jpg
plain|x.pdf|plain: files without an extension are not converted
cut.tif|x.pdf|cut.tif: the TIFF image cannot be .*\(-601\)
notes.txt|notes.txt|notes.txt: this is the input itself
notes.txt|none/x.pdf|none/x.pdf: the output cannot be created.*\(2\)
notes.txt|/dev/full|/dev/full: the converted document cannot be written.*\(-602\)
TABLE
ls -A | grep -v '^after$' >after
same 'nothing was left' '' "$(diff before after | grep -v before)"
run 2 . convert
finish
