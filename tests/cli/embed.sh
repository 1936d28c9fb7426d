#!/bin/bash
# "varnpdf prepare" and "varnpdf embed": a value made elsewhere goes in, any other is refused.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib-sign.sh"

run 0 '' prepare in.pdf --state state --reserve 3000 --bytes tosign --print-digest sha384 --reason 'Ä'
same 'digest' "$(sha384sum <tosign | cut -d' ' -f1)" "$(cat out)"
same 'header' "varnpdf-state 1 reserve 3000 length $(stat -c %s tosign) sha256 $(sha256sum <tosign | cut -d' ' -f1)" \
    "$(head -n 5 state | LC_ALL=C grep -a -v contents-offset | tr '\n' ' ' | sed 's/ $//')"
value() { openssl cms -sign -binary -in "$1" -signer p256.pem -inkey p256.key -md sha256 -outform DER "${@:2}" -out v.der; }

value tosign -cades
size=$(stat -c %s v.der)
run 0 "^varnpdf: v.der: warning: .*$((3000 - size)) bytes shorter .*--reserve $size" embed state --value v.der -o signed.pdf
run 0 '' verify signed.pdf --trust ca.pem
taken signed.pdf
same 'the bytes were those' 0 "$(cmp signed.bin tosign 2>&1; echo $?)"

# An RSA value has a fixed length and fills its room.
identity rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
fixed() { openssl cms -sign -binary -in "$1" -signer rsa.pem -inkey rsa.key -outform DER "${@:2}" -out v.der; }
fixed tosign
size=$(stat -c %s v.der)
run 0 '' prepare in.pdf --state exact --reserve "$size" --bytes tosign.exact --size 100,50 --subfilter pkcs7
fixed tosign.exact
run 0 '' embed exact --value v.der -o exact.pdf
run 0 '' verify exact.pdf --trust ca.pem
fixed tosign.exact -noattr  # a signature over the content itself
run 0 'shorter' embed exact --value v.der -o exact.pdf
run 0 '' verify exact.pdf --trust ca.pem

# --- refusals ---------------------------------------------------------------------------------------------------------
run 0 '' prepare in.pdf --state small --reserve 100
value tosign
value in.pdf && mv v.der other.der
value tosign
openssl cms -sign -binary -in tosign -signer p256.pem -inkey p256.key -outform PEM -out v.pem
openssl cms -encrypt -binary -in tosign -outform DER -out enveloped.der rsa.pem
{ cat v.der; echo; } >tail.der
head -c 200 v.der >cut.der
value tosign -nocerts && mv v.der nocerts.der
value tosign
length=$(stat -c %s v.der)
{ head -c $((length - 1)) v.der; tail -c 1 v.der | LC_ALL=C tr '\000-\377' '\001-\377\000'; } >wrong.der
sed 's/^sha256 ./sha256 x/' state >damaged
sed '1s/1/2/' state >newer
head -c $(($(stat -c %s state) - 1)) state >short
listing
while IFS='|' read -r state value pattern; do
    run 4 "$pattern" embed "$state" --value "$value" -o new.pdf
done <<'TABLE'
small|v.der|too long: it takes [0-9]+ bytes, and there is room for 100
state|other.der|message digest differs
state|wrong.der|does not fit the signer's certificate
state|nocerts.der|does not hold its signer's certificate
state|v.pem|no CMS SignedData
state|enveloped.der|no CMS SignedData
state|tail.der|no CMS SignedData
state|cut.der|no CMS SignedData
state|in.pdf|no CMS SignedData
state|missing|missing: No such file
damaged|v.der|damaged
short|v.der|damaged
newer|v.der|newer version
in.pdf|v.der|no state of
TABLE
run 4 'No space left' embed state --value v.der -o /dev/full
unchanged 'nothing written'
run 2 . prepare in.pdf --state new
run 2 . prepare in.pdf --state new --reserve 0
run 4 '\(-1001\)' prepare missing.pdf --state new --reserve 10
unchanged 'nothing written by prepare'
finish
