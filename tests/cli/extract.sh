#!/bin/bash
# "varnpdf extract": the parts are exactly what the file holds, and a failure leaves nothing behind.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"
signed=$examples/signed.pdf

# --- the signed example, cut by hand ----------------------------------------------------------------------------------
read -r _ first second rest <<<"$(grep -a -o '/ByteRange \[[0-9 ]*' "$signed" | cut -d'[' -f2)"
{ head -c "$first" "$signed"; tail -c "$rest" "$signed"; } >wanted.bin
run 0 '' extract "$signed" --signature 0 --signed-bytes -o signed.bin
same 'signed bytes' 0 "$(cmp wanted.bin signed.bin 2>&1; echo $?)"
run 0 '' extract "$signed" --signature 0 --pkcs7 -o value.der
head -c $((second - 1)) "$signed" | tail -c +$((first + 2)) | tr -d '\n' | tr 'A-F' 'a-f' >room.hex
value=$(od -An -v -tx1 value.der | tr -d ' \n')
same 'value is the start of the room' "$value" "$(head -c ${#value} room.hex)"
same 'only padding behind it' '' "$(tail -c +$((${#value} + 1)) room.hex | tr -d 0)"
run 0 '' extract "$signed" --signature 0 --pkcs7
same 'standard output' 0 "$(cmp out value.der 2>&1; echo $?)"
if command -v openssl >/dev/null; then
    # Not the clock is tested here: -no_check_time.
    verify() { openssl cms -verify -inform DER -in value.der -content "$1" -CAfile "$examples/signer.pem" \
        -purpose any -no_check_time -binary -out /dev/null 2>&1 | tail -n 1; }
    has 'openssl verifies' 'successful' "$(verify signed.bin)"
    sed 's/of our own/of our owN/' signed.bin >changed.bin
    same 'openssl notices a change' 0 "$(verify changed.bin | grep -c successful)"
else
    echo 'not checked without openssl: that the value verifies'
fi

# --- PKCS#1 and certificates ------------------------------------------------------------------------------------------
contents=0481030A0B0C
pdf plain.pdf "${one_page[@]}" '<< /Type /Annot /FT /Sig /T (p) /V 5 0 R >>' \
    "<< /Type /Sig /SubFilter /adbe.x509.rsa_sha1 /ByteRange [0 AAA BBB CCC ] /Contents <$contents> /Cert [<3001> <300203>] >>"
at=$(grep -a -b -o "<$contents>" plain.pdf | cut -d: -f1)
end=$((at + ${#contents} + 2))
sed -i "s/AAA BBB CCC/$at $end $(($(wc -c <plain.pdf) - end))/" plain.pdf  # three digits each: nothing moves
run 0 '' extract plain.pdf --signature 0 --pkcs1
same 'PKCS#1 value' '0481030a0b0c' "$(od -An -tx1 out | tr -d ' ')"
run 0 '' extract plain.pdf --signature 0 --certificate 1
same 'certificate' '300203' "$(od -An -tx1 out | tr -d ' ')"
run 4 '^varnpdf: plain.pdf: .* \(-118\)$' extract plain.pdf --signature 0 --certificate 2

# --- failures ---------------------------------------------------------------------------------------------------------
pdf none.pdf "${one_page[@]}"
ls -A >before
run 4 '\(-113\)$' extract none.pdf --signature 0 --pkcs7 -o new.der
run 4 'no signature 1; the last one is 0' extract "$signed" --signature 1 --pkcs7 -o new.der
run 4 '\(-1001\)$' extract missing.pdf --signature 0 --pkcs7 -o new.der
run 4 'No such file' extract "$signed" --signature 0 --pkcs7 -o nowhere/new.der
run 4 'Is a directory' extract "$signed" --signature 0 --pkcs7 -o "$work"
run 4 'No space left' extract "$signed" --signature 0 --pkcs7 -o /dev/full
# The disk fills up in the middle of the value.
limited=$(trap '' XFSZ; ulimit -f 1; "$varnpdf" extract "$signed" --signature 0 --pkcs7 -o new.der 2>&1; echo " $?")
same 'half a write' $'varnpdf: new.der: File too large\n 4' "$limited"
same 'nothing left behind' "$(cat before)" "$(ls -A)"
for wrong in '--signature 0' '--signature 0 --pkcs7 --pkcs1' '--signature -1 --pkcs7' '--pkcs7'; do
    # shellcheck disable=SC2086
    run 2 '.' extract "$signed" $wrong
done
# A result that is replaced keeps its mode; a link is followed, not replaced.
echo old >target.der && chmod 640 target.der && ln -s target.der link.der
run 0 '' extract "$signed" --signature 0 --pkcs7 -o link.der
same 'through the link' '0 640 target.der' "$(cmp target.der value.der; echo $? "$(stat -c %a target.der)" "$(readlink link.der)")"
if command -v script >/dev/null; then
    has 'no binary data on a terminal' 'not written to a terminal' \
        "$(script -qec "'$varnpdf' extract '$signed' --signature 0 --pkcs7" /dev/null </dev/null | tr -d '\0')"
else
    echo 'not checked without script: the refusal to write to a terminal'
fi
finish
