#!/bin/bash
# Keys and pass phrases of "varnpdf sign": every form that is read, a sentence for each that is not, nothing written then.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib-sign.sh"

echo geheim >pw
printf 'geheim\r\nmore\n' >pw-crlf
echo falsch >wrong
head -c 2000 /dev/zero | tr '\0' x >long
openssl pkey -in p256.key -aes256 -passout file:pw -out encrypted.key
openssl ec -in p256.key -aes128 -passout file:pw -out old-style.key 2>/dev/null
openssl pkcs12 -export -inkey p256.key -in p256.pem -certfile ca.pem -passout file:pw -out me.p12
openssl pkcs12 -export -inkey p256.key -in p256.pem -passout pass: -out open.p12
openssl pkcs12 -export -legacy -inkey p256.key -in p256.pem -passout file:pw -out rc2.p12 2>/dev/null
openssl pkcs12 -export -nokeys -in p256.pem -passout pass: -out nokey.p12
openssl genpkey -algorithm ED25519 -out other.key
openssl x509 -in p256.pem -signkey p256.key -not_before 20200101000000Z -not_after 20200102000000Z -out past.pem \
    2>/dev/null || openssl x509 -in p256.pem -signkey p256.key -days -1 -out past.pem 2>/dev/null
sed '3s/.*/AAAA/' p256.pem >broken.pem

good() {
    rm -f new.pdf
    run 0 '' sign in.pdf -o new.pdf "$@"
    run 0 '' verify new.pdf --trust ca.pem
}
good --key encrypted.key --cert p256.pem --pass-file pw
good --key old-style.key --cert p256.pem --pass-file pw
good --p12 me.p12 --pass-file pw-crlf
good --p12 open.p12
if [ -s rc2.p12 ]; then good --p12 rc2.p12 --pass-file pw; else echo 'not checked: RC2, openssl has no legacy provider'; fi
rm -f new.pdf
checks=$((checks + 1))
"$varnpdf" sign in.pdf -o new.pdf --p12 me.p12 --pass-fd 5 5<pw || { failures=$((failures + 1)); echo 'FAILED --pass-fd'; }
rm -f new.pdf
if command -v script >/dev/null; then
    echo geheim | script -qec "'$varnpdf' sign in.pdf -o new.pdf --p12 me.p12" typescript >/dev/null
    run 0 '' verify new.pdf
    has 'prompt' 'Pass phrase for me.p12' "$(cat typescript)"
    rm -f new.pdf typescript
else
    echo 'not checked without script: the prompt'
fi

listing
bad() { run 4 "$1" sign in.pdf -o new.pdf "${@:2}"; }
bad '^varnpdf: me.p12: the pass phrase does not fit$' --p12 me.p12 --pass-file wrong
bad '^varnpdf: encrypted.key: the pass phrase does not fit' --key encrypted.key --cert p256.pem --pass-file wrong
bad '^varnpdf: old-style.key: the pass phrase does not fit' --key old-style.key --cert p256.pem --pass-file wrong
bad '^varnpdf: missing: No such file' --p12 me.p12 --pass-file missing
bad '^varnpdf: long: .*at most 1023 bytes' --p12 me.p12 --pass-file long
bad 'file descriptor 9: Bad file' --p12 me.p12 --pass-fd 9
bad '^varnpdf: missing: No such file' --key missing --cert p256.pem
bad '^varnpdf: \.: Is a directory' --key p256.key --cert .
bad 'no private key in PEM form' --key p256.pem --cert p256.pem
bad 'no certificate in PEM form' --key p256.key --cert p256.key
bad 'cannot be read' --key p256.key --cert broken.pem
bad 'does not belong to the private key' --key other.key --cert p256.pem
bad 'no PKCS#12' --p12 p256.pem
bad 'no private key with its certificate' --p12 nokey.p12
for wrong in '--key p256.key' '--cert p256.pem' '--p12 me.p12 --key p256.key' '' '--p12 me.p12 --pass-file pw --pass-fd 0'; do
    # shellcheck disable=SC2086
    run 2 . sign in.pdf -o new.pdf $wrong
done
if command -v setsid >/dev/null; then
    has 'no terminal' 'no terminal to ask' "$(setsid -w "$varnpdf" sign in.pdf -o new.pdf --p12 me.p12 2>&1 </dev/null)"
fi
unchanged 'nothing written'

run 0 '^varnpdf: past.pem: warning: the certificate has expired$' sign in.pdf -o new.pdf --key p256.key --cert past.pem
finish
