#!/bin/bash
# "varnpdf verify": finds every signature, says what is wrong with it, and never calls a changed document intact.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib-sign.sh"
openssl req -x509 -newkey rsa:2048 -nodes -keyout rsa.key -out rsa.pem -subj '/CN=Somebody else' -days 30 2>/dev/null

result() { sed -nE 's/^    result +//p' out | tr '\n' '|'; }

# --- changed after signing --------------------------------------------------------------------------------------------
run 0 '' sign in.pdf -o good.pdf "${me[@]}"
run 0 '' verify good.pdf --trust ca.pem
has 'whole file' '^    covers +the whole file$' "$(cat out)"
has 'trusted' '^    trust +trusted$' "$(cat out)"
run 4 '' verify good.pdf --trust rsa.pem
has 'not trusted' '^    trust +NOT TRUSTED: unable to get local issuer certificate$' "$(cat out)"
same 'but intact' 'intact|' "$(result)"
run 4 'No such file' verify good.pdf --trust missing
run 4 'no certificate in PEM form' verify good.pdf --trust in.pdf

# changed NAME SED-SCRIPT RESULT: same length, so that nothing moves.
changed() {
    LC_ALL=C sed "$2" good.pdf >changed.pdf
    checks=$((checks + 1))
    if cmp -s good.pdf changed.pdf || [ "$(stat -c %s good.pdf)" != "$(stat -c %s changed.pdf)" ]; then
        failures=$((failures + 1))
        echo "FAILED $1: the file was not changed as meant"
    fi
    run 4 '' verify changed.pdf
    has "$1" "^NOT INTACT: $3" "$(result)"
}
changed 'a byte of the page' 's/0 0 612 792/0 0 612 793/' '.*message digest differs'
changed 'a byte behind the value' 's/^\/Filter \/Korvane/\/Filter \/KorvanE/' '.*message digest differs'
digit=$(entry good.pdf Contents | tail -c 3 | head -c 1 | tr 0-9A-F 1-9A-F0)
changed 'the last digit of the value' "/^\/Contents/s/.>/$digit>/" "the signature does not fit"
changed 'the first digits of the value' '/^\/Contents/s/<30/<31/' 'the signature value is no CMS'
changed 'start of the range' 's/^\/ByteRange \[ 0/\/ByteRange [ 1/' 'its byte range does not begin'
changed 'no range' 's/^\/ByteRange/\/ByteRanGe/' 'it has no byte range'
changed 'another format' 's/ETSI.CAdES.detached/ETSI.CAdES.attached/' '.*unsupported'

# --- added behind -----------------------------------------------------------------------------------------------------
{ cat good.pdf; printf 'more\n'; } >more.pdf
run 0 '' verify more.pdf
has 'bytes of no update' "the first $(stat -c %s good.pdf) bytes; behind them 5 bytes that belong to no update" "$(cat out)"
run 0 '' sign good.pdf -o twice.pdf --key rsa.key --cert rsa.pem --size 100,50
run 0 '' sign twice.pdf -o thrice.pdf "${me[@]}" --subfilter pkcs7
run 0 '' verify thrice.pdf
same 'all intact' 'intact|intact|intact|' "$(result)"
same 'coverage' '2 later updates|1 later update|the whole file|' \
    "$(sed -nE 's/^    covers +//p' out | sed 's/.*behind them //' | tr '\n' '|')"
run 4 '' verify thrice.pdf --trust ca.pem
same 'trust of each' 'trusted|NOT TRUSTED|trusted|' "$(sed -nE 's/^    trust +//p' out | sed 's/:.*//' | tr '\n' '|')"

# --- where signatures hide --------------------------------------------------------------------------------------------
# craft FILE SUBFILTER GAP BODY...: @ in a body is a signature dictionary, which is then signed. GAP bytes more than the
# value are left out of the range.
craft() {
    local file=$1 gap=$3 zeros dictionary from to size
    zeros=$(printf '0%.0s' {1..4000})
    dictionary="<< /Type /Sig /Filter /X /SubFilter /$2 /ByteRange [0 AAAAAAAA BBBBBBBB CCCCCCCC] /Contents <$zeros> /K (x) >>"
    shift 3
    pdf "$file" "${@//@/$dictionary}"
    from=$(LC_ALL=C grep -a -b -o "<$zeros" "$file" | cut -d: -f1)
    to=$((from + ${#zeros} + 2 + gap))
    size=$(stat -c %s "$file")
    sed -i "s/AAAAAAAA/$(printf '%08d' "$from")/;s/BBBBBBBB/$(printf '%08d' "$to")/;s/CCCCCCCC/$(printf '%08d' $((size - to)))/" "$file"
    { head -c "$from" "$file"; tail -c +$((to + 1)) "$file"; } >bytes
    case $file in
        sha1*) openssl dgst -sha1 -binary bytes >digest && openssl cms -sign -binary -nodetach -in digest "${signer[@]}" ;;
        *) openssl cms -sign -binary -in bytes "${signer[@]}" ;;
    esac
    od -An -v -tx1 v.der | tr -d ' \n' | dd of="$file" bs=1 seek=$((from + 1)) conv=notrunc status=none
}
signer=(-signer p256.pem -inkey p256.key -md sha256 -outform DER -out v.der)
form='<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [4 0 R] /SigFlags 3 >> >>'
page=("${one_page[@]:1}")
detached=adbe.pkcs7.detached
# CODE, RESULT and FIELD of the file made before.
expect() {
    run "$1" '' verify "$file"
    same "$file: result" "$2|" "$(result)"
    same "$file: field" "$3" "$(sed -n 's/^  signature in field //p' out | tr '\n' ' ' | sed 's/ $//')"
}
file=separate.pdf  # the field is no annotation itself
craft $file $detached 0 "$form" "${page[@]}" '<< /FT /Sig /T (a) /V 5 0 R /Kids [6 0 R] >>' @ '<< /Type /Annot /Parent 4 0 R >>'
expect 0 intact a
file=outside.pdf
craft $file $detached 0 "${one_page[0]}" "${page[@]}" '<< /Type /Annot /FT /Sig /T (a) /V 5 0 R >>' @
expect 0 intact a
has 'outside the form' 'not part of the document' "$(cat out)"
file=sha1.pdf
craft $file adbe.pkcs7.sha1 0 "$form" "${page[@]}" '<< /FT /Sig /T (a) /V 5 0 R >>' @
expect 0 intact a
# What stands in the room beside the value is not signed.
digits='NOT INTACT: something else than hexadecimal digits stands in the room of its value'
while IFS='|' read -r bytes code result; do
    file=room.pdf
    craft $file $detached 0 "$form" "${page[@]}" '<< /FT /Sig /T (a) /V 5 0 R >>' @
    value_at=$(LC_ALL=C grep -a -b -o '/Contents <' $file | cut -d: -f1)
    printf '%b' "$bytes" | dd of=$file bs=1 seek=$((value_at + 3900)) conv=notrunc status=none
    expect "$code" "$result" a
done <<TABLE
0000|0|intact
7 0 obj[6 0 R]|4|$digits
%%EOF|4|$digits
1234|4|NOT INTACT: something else than padding stands behind its value
TABLE
file=gap.pdf
craft $file $detached 3 "$form" "${page[@]}" '<< /FT /Sig /T (a) /V 5 0 R >>' @
expect 4 'NOT INTACT: its byte range leaves out something else than its own value' a
file=borrowed.pdf  # a second dictionary with the same range and value
craft $file $detached 0 "${form/4 0 R/4 0 R 6 0 R}" "${page[@]}" '<< /FT /Sig /T (a) /V 5 0 R >>' @ \
    '<< /FT /Sig /T (b) /V 7 0 R >>' '<< /SubFilter /adbe.pkcs7.detached /ByteRange [0 9 9 9] /Contents <00> >>'
expect 4 'intact|NOT INTACT: its byte range leaves out something else than its own value' 'a b'

# A later update in which another field takes over range and value: all fits, only the value stands elsewhere.
file=stolen.pdf
craft $file $detached 0 "$form" "${page[@]}" '<< /FT /Sig /T (a) /V 5 0 R >>' @
range=$(LC_ALL=C grep -a -o '/ByteRange [^]]*]' $file)
value=$(LC_ALL=C grep -a -o '/Contents <[^>]*>' $file)
previous=$(tail -n 2 $file | head -n 1)
catalogue_at=$(stat -c %s $file)
printf '1 0 obj\n%s\nendobj\n' "${form/4 0 R/4 0 R 6 0 R}" >>$file
field_at=$(stat -c %s $file)
printf '6 0 obj\n<< /FT /Sig /T (b) /V 7 0 R >>\nendobj\n' >>$file
stolen_at=$(stat -c %s $file)
printf '7 0 obj\n<< /Type /Sig /SubFilter /%s %s %s >>\nendobj\n' $detached "$range" "$value" >>$file
table=$(stat -c %s $file)
printf 'xref\n1 1\n%010d 00000 n \n6 2\n%010d 00000 n \n%010d 00000 n \n' "$catalogue_at" "$field_at" "$stolen_at" >>$file
printf 'trailer\n<< /Size 8 /Root 1 0 R /Prev %d >>\nstartxref\n%d\n%%%%EOF\n' "$previous" "$table" >>$file
expect 4 'intact|NOT INTACT: its byte range leaves out something else than its own value' 'a b'

pdf null.pdf "$form" "${page[@]}" '<< /FT /Sig /T (a) /V null >>'
pdf lost.pdf "$form" "${page[@]}" '<< /FT /Sig /T (a) /V 9 0 R >>'
run 4 '\(-113\)$' verify null.pdf
run 4 '' verify lost.pdf
same 'lost dictionary' 'NOT INTACT: its field names no signature dictionary|' "$(result)"

# --- a certificate that merely has the signer's key, issuer and number is not the one that signed ----------------------
serial=0x$(openssl x509 -in p256.pem -noout -serial | cut -d= -f2)
openssl req -new -key p256.key -utf8 -subj '/CN=Jürg p256' |
    openssl x509 -req -CA ca.pem -CAkey ca.key -set_serial "$serial" -days 20 -outform DER -out twin.der 2>/dev/null
openssl x509 -in p256.pem -outform DER -out true.der
hex() { od -An -v -tx1 "$1" | tr -d ' \n' | tr a-f A-F; }
# The twin has another signature length now and then; then it does not fit the room.
if [ "$(stat -c %s twin.der)" = "$(stat -c %s true.der)" ]; then
    LC_ALL=C sed "s/$(hex true.der)/$(hex twin.der)/" good.pdf >twin.pdf
    run 4 '' verify twin.pdf
    same 'another certificate' "NOT INTACT: the signature does not fit the signer's certificate|" "$(result)"
else
    echo 'not checked: the twin certificate came out longer'
fi

# --- several files, JSON ----------------------------------------------------------------------------------------------
run 4 '\(-113\)$' verify in.pdf
run 3 '\(-113\)$' verify good.pdf in.pdf
run 4 '\(-1001\)$' verify missing.pdf
run 3 '.' verify --json good.pdf in.pdf changed.pdf
same 'one line per file' 3 "$(wc -l <out)"
has 'json of a good one' '^\{"file":"good.pdf","ok":true,.*"intact":true,"problem":null,"trusted":null' "$(sed -n 1p out)"
has 'json of none' '^\{"file":"in.pdf","ok":false,"code":-113,.*"signatures":\[\]\}$' "$(sed -n 2p out)"
has 'json of a bad one' '^\{"file":"changed.pdf","ok":false,"code":0,.*"intact":false,"problem":"' "$(sed -n 3p out)"
run 2 . verify
finish
