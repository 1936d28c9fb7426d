#!/bin/bash
# "varnpdf sign": texts, places and dates arrive as they were meant, and a failure leaves everything as it was.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib-sign.sh"

# --- texts: as qpdf reads them, PDFDocEncoding and Latin-1 as bytes -----------------------------------------------------
decoded() { qpdf --json text.pdf | sed -nE "s/^ *\"\/$1\": \"([ub]:.*)\",?$/\1/p"; }
command -v qpdf >/dev/null || echo 'not checked without qpdf: reason, location and name'
while IFS='~' read -r text wanted; do
    text=${text//@/$'\n'}
    run 0 '' sign in.pdf -o text.pdf "${me[@]}" --reason "$text" --location "$text"
    run 0 '' verify text.pdf
    command -v qpdf >/dev/null || continue
    same "reason $text" "$wanted" "$(decoded Reason)"
    same "location $text" "$wanted" "$(decoded Location)"
done <<'TABLE'
Grüße („alle“) € \ Ende)~b:4772fcdf6520288c616c6c658d2920a0205c20456e646529
Привет 7 мир~u:Привет 7 мир
日本 0 😀 (~u:日本 0 😀 (
zwei@Zeilen~u:zwei\nZeilen
þÿ~u:þÿ
x\~u:x\\
[a,b]~u:[a,b]
~u:
TABLE
while IFS='~' read -r name wanted; do
    run 0 '' sign in.pdf -o text.pdf "${me[@]}" --name "$name"
    run 0 '' verify text.pdf
    command -v qpdf >/dev/null && same "name $name" "$wanted" "$(decoded Name)"
done <<'TABLE'
Jörg Müßig~b:4af67267204dfcdf6967
(Dr.) Ä~u:(Dr.) Ä
x\~u:x\\
a\(b\\c)~u:a\\(b\\\\c)
a\(b~u:a\\(b
TABLE
run 2 'mark an encoding' sign in.pdf -o text.pdf "${me[@]}" --name 'þÿx'
run 0 '' sign in.pdf -o text.pdf "${me[@]}"
has 'the certificate names the signer' "$(printf 'J\xf6rg p256' | od -An -tx1 | tr -d '\n')" \
    "$(entry text.pdf Name | od -An -v -tx1 | tr -d '\n')"

# --- places: options and the rectangle on a page of 612 by 792 --------------------------------------------------------
while read -r rectangle options; do
    # shellcheck disable=SC2086
    run 0 '' sign in.pdf -o place.pdf "${me[@]}" $options
    same "rectangle of: $options" "${rectangle//,/ }" "$(entry place.pdf Rect | tr -d '[]' | xargs)"
done <<'TABLE'
0,0,0,0
36,36,236,96       --size 200,60
30,40,230,100      --size 200,60 --position 30,40
30,692,230,752     --size 200,60 --position 30,40 --corner upper-left
382,40,582,100     --size 200,60 --position 30,40 --corner lower-right
382,692,582,752    --size 200,60 --position 30,40 --corner upper-right
28,57,226,114      --size 70mm,2cm --position 10mm,20mm
72,72,144,90       --size 1in,18pt --position 1in,1in
306,79,406,139     --size 100,60 --position 50%,10%
TABLE
# a box of the same size that begins at 10 20
for turned in 0 90 180 270; do
    pdf "box$turned.pdf" "${one_page[@]:0:2}" \
        "<< /Type /Page /Parent 2 0 R /MediaBox [10 20 622 812] /Rotate $turned >>"
done
while read -r turned rectangle options; do
    # shellcheck disable=SC2086
    run 0 '' sign "box$turned.pdf" -o place.pdf "${me[@]}" --size 100,60 --page last $options
    same "rectangle on a box turned by $turned: $options" "${rectangle//,/ }" "$(entry place.pdf Rect | tr -d '[]' | xargs)"
done <<'TABLE'
0   40,60,140,120    --position 30,40
0   163,257,263,317  --position 25%,30%
0   482,682,582,742  --position 40,70 --corner upper-right
90  522,50,582,150   --position 30,40
90  60,682,120,782   --position 30,50 --corner upper-right
180 592,772,492,712  --position 30,40
270 50,682,110,782   --position 30,40
TABLE
run 4 'begins at 10 20, and signatures are only placed between 0 0 and 612 792 \(-1022\)$' \
    sign box0.pdf -o outside.pdf "${me[@]}" --size 100,60 --position 0,0 --corner upper-right
run 0 '' sign in.pdf -o place.pdf "${me[@]}" --size 300,60 --text 'Prüfer=€ – „J“ 100%' --text '=a=b' --font times \
    --style bold --font-size 11
if command -v pdftotext >/dev/null; then
    same 'text of the appearance' 'Prüfer: € – „J“ 100%|a=b|' "$(pdftotext -layout place.pdf - | tr -d '\f' | sed 's/^ *//;/^$/d' | tr '\n' '|')"
fi

# --- dates ------------------------------------------------------------------------------------------------------------
export TZ=Europe/Berlin
while IFS='|' read -r given written; do
    run 0 '' sign in.pdf -o date.pdf "${me[@]}" --date "$given"
    same "date $given" "(D:$written)" "$(entry date.pdf M)"
done <<'TABLE'
2026-11-15T02:33:51-05:30|20261115023351-05'30'
D:2026|20260101000000+01'00'
TABLE
unset TZ

# --- refusals ---------------------------------------------------------------------------------------------------------
echo old >kept.pdf
cp in.pdf noimage.png
pdf encrypted.pdf "${one_page[@]}"
sed -i 's|/Root 1 0 R|/Root 1 0 R /Encrypt 9 0 R|' encrypted.pdf
listing
# shellcheck disable=SC2034
long=$(printf 'x%.0s' {1..257})
while IFS='|' read -r code pattern options; do
    eval "arguments=($options)"
    # shellcheck disable=SC2154
    run "$code" "$pattern" sign in.pdf -o kept.pdf "${me[@]}" "${arguments[@]}"
done <<'TABLE'
2|--reason: this text is too long: it takes 257 bytes|--reason $long
2|--location: this text is not UTF-8|--location $'\xff'
2|--name: the character "Ł" \(U\+0141\) cannot be written|--name Łukasz
2|--text: the character "日" \(U\+65E5\) cannot be written|--size 99,99 --text =日
2|must not contain "%"|--size 99,99 --text 'a%=b'
2|no "=" between|--size 99,99 --text ab
2|neither a PNG nor a JPEG image|--size 99,99 --image noimage.png
2|noimage: No such file|--size 99,99 --image noimage
2|no date such as|--date 2026-02-29
2|no width and height|--size 0,5
2|no width and height|--size 5%,5%
2|no place such as|--size 9,9 --position 5%,5
2|lower left corner only|--size 9,9 --position 5%,5% --corner upper-left
2|whole numbers|--size 9,9 --position 2.5%,5%
2|neither a number|--page 0
2|requires --size|--position 5,5
4|there is no page 2|--page 2
4|\(-1022\)|--size 700,60
TABLE
run 4 '\(-1021\)' sign encrypted.pdf -o kept.pdf "${me[@]}"
run 4 '\(-1001\)' sign missing.pdf -o kept.pdf "${me[@]}"
run 4 'No such file' sign in.pdf -o nowhere/new.pdf "${me[@]}"
run 4 'Is a directory' sign in.pdf -o . "${me[@]}"
run 4 'No space left' sign in.pdf -o /dev/full "${me[@]}"
(trap '' XFSZ; ulimit -f 1; "$varnpdf" sign in.pdf -o kept.pdf "${me[@]}" 2>/dev/null)
same 'a full disk' 4 $?
unchanged 'nothing changed'

# --- in place ---------------------------------------------------------------------------------------------------------
cp in.pdf place.pdf && chmod 640 place.pdf
run 0 '' sign place.pdf -o place.pdf "${me[@]}"
run 0 '' sign place.pdf -o place.pdf "${me[@]}" --page last --size 200,50
same 'mode is kept' 640 "$(stat -c %a place.pdf)"
run 0 '' verify place.pdf --trust ca.pem
same 'two signatures' 2 "$(grep -c '  result  *intact' out)"
finish
