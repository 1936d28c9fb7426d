# Shared by the tests of signing: throw-away keys, a document, and looks into a signature value.
# shellcheck shell=bash disable=SC2010,SC2034,SC2154
# shellcheck source-path=SCRIPTDIR
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
if ! command -v openssl >/dev/null; then
    echo 'openssl is missing'
    exit 77
fi

openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem -subj '/CN=Test CA' -days 30 2>/dev/null

# identity NAME GENPKEY-ARGUMENTS...: NAME.key and NAME.pem, issued by ca.pem.
identity() {
    local name=$1
    shift
    openssl genpkey "$@" -out "$name.key" 2>/dev/null
    openssl req -new -key "$name.key" -utf8 -subj "/CN=Jörg $name" |
        openssl x509 -req -CA ca.pem -CAkey ca.key -CAcreateserial -days 20 -out "$name.pem" 2>/dev/null
}
identity p256 -algorithm EC -pkeyopt ec_paramgen_curve:P-256

pdf in.pdf "${one_page[@]}"
me=(--key p256.key --cert p256.pem)

# taken FILE: its last signature as value.der, value.txt and signed.bin.
taken() {
    "$varnpdf" extract "$1" --signature 0 --pkcs7 -o value.der
    "$varnpdf" extract "$1" --signature 0 --signed-bytes -o signed.bin
    openssl cms -cmsout -print -inform DER -in value.der >value.txt 2>&1
}

# entry FILE KEY: what stands behind the key in the file.
entry() { LC_ALL=C grep -a -o "^/$2 .*" "$1" | tail -n 1 | tr -d '\r' | cut -d' ' -f2-; }

# unchanged NAME: the directory holds what it held at "listing".
files() { ls -lA --time-style=full-iso | grep -vE '^total|^-.* (out|err|before)$'; }
listing() { files >before; }
unchanged() { same "$1" '' "$(files | diff before -)"; }
