#!/bin/bash
# "varnpdf dss" with a PKI made here: what is put in, by the eyes of another tool; validation from the file's own store;
# what is refused.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib-sign.sh"
for tool in qpdf python3; do
    command -v "$tool" >/dev/null && continue
    echo "$tool is missing"
    exit 77
done

# --- a PKI: a CA with database, a signer, an OCSP responder, a revoked certificate --------------------------------------
mkdir db && : >db/index.txt && echo 01 >db/serial && echo 01 >db/crlnumber
cat >ca.cnf <<'CONF'
[ca]
default_ca = here
[here]
dir = db
database = db/index.txt
serial = db/serial
crlnumber = db/crlnumber
new_certs_dir = db
certificate = ca.pem
private_key = ca.key
default_md = sha256
default_days = 20
default_crl_days = 20
policy = any
[any]
commonName = supplied
[signer]
keyUsage = digitalSignature
[responder]
extendedKeyUsage = OCSPSigning
CONF
issue() {
    openssl req -new -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -keyout "$1.key" -subj "/CN=$1" -out "$1.csr" 2>/dev/null
    openssl ca -config ca.cnf -batch -notext -extensions "$2" -in "$1.csr" -out "$1.pem" 2>/dev/null
}
issue signer signer && issue responder responder && issue bad signer
openssl ca -config ca.cnf -revoke bad.pem 2>/dev/null
openssl ca -config ca.cnf -gencrl -out ca.crl 2>/dev/null
openssl crl -in ca.crl -outform DER -out crl.der
openssl x509 -in signer.pem -outform DER -out signer.der
openssl ocsp -issuer ca.pem -cert signer.pem -reqout question.der 2>/dev/null
openssl ocsp -index db/index.txt -CA ca.pem -rsigner responder.pem -rkey responder.key -reqin question.der \
    -respout answer.der -ndays 10 >/dev/null 2>&1
for made in signer.der crl.der answer.der; do
    [ -s $made ] && continue
    echo "openssl did not make $made"
    exit 1
done

# What the store holds, by qpdf: "store.txt" with the key and the sizes of the arrays of each entry, all streams as files.
cat >read.py <<'PYTHON'
import hashlib, json, subprocess, sys
path, out = sys.argv[1:]
document = json.loads(subprocess.run(["qpdf", "--json=2", "--json-stream-data=none", path], capture_output=True).stdout)
objects = document["qpdf"][1]
def get(value):
    while isinstance(value, str) and value.endswith(" R") and "obj:" + value in objects:
        item = objects["obj:" + value]
        value = item["value"] if "value" in item else item["stream"]["dict"]
    return value
def data(reference):
    return subprocess.run(["qpdf", "--raw-stream-data", "--show-object=" + ",".join(reference.split()[:2]), path],
                          capture_output=True, check=True).stdout
store = get(get(objects["trailer"]["value"]["/Root"])["/DSS"])
for key in ("/Certs", "/CRLs", "/OCSPs"):
    for i, reference in enumerate(get(store.get(key, []))):
        open(f"{out}{key[1:]}{i}", "wb").write(data(reference))
    print(key, len(get(store.get(key, []))))
raw = open(path, "rb").read()
keys = []
for item in objects.values():
    value = item.get("value")
    if isinstance(value, dict) and value.get("/FT") == "/Sig" and "/V" in value:
        contents = get(value["/V"])["/Contents"]
        keys.append("/" + hashlib.sha1(bytes.fromhex(contents[2:])).hexdigest().upper())
for key, value in sorted(get(store["/VRI"]).items(), key=lambda kv: keys.index(kv[0]) if kv[0] in keys else 99):
    value = get(value)
    print("signature", keys.index(key) if key in keys else "?", *(len(get(value.get(k, []))) for k in ("/Cert", "/CRL", "/OCSP")))
PYTHON
contents() { python3 read.py "$1" "$2-" | tr '\n' ';'; }

# --- put in, in all three kinds of file ---------------------------------------------------------------------------------
qpdf --object-streams=generate in.pdf streams.pdf
signer=(--key signer.key --cert signer.pem)
for kind in in streams; do
    run 0 '' sign "$kind.pdf" -o one.pdf "${signer[@]}"
    run 0 '' sign one.pdf -o two.pdf "${signer[@]}"
    run 0 '' dss two.pdf -o "$kind-dss.pdf" --signature 0 --cert signer.der ca.pem --crl ca.crl --ocsp answer.der
    same "old bytes of $kind" '' "$(cmp -n "$(wc -c <two.pdf)" two.pdf "$kind-dss.pdf")"
    same "store of $kind" '/Certs 2;/CRLs 1;/OCSPs 1;signature 0 2 1 1;signature 1 0 0 0;' "$(contents "$kind-dss.pdf" one)"
    same "qpdf --check of $kind" 0 "$(qpdf --check "$kind-dss.pdf" >/dev/null 2>&1; echo $?)"
    run 0 '' verify "$kind-dss.pdf" --trust ca.pem
    same "signatures of $kind" 2 "$(grep -c '  result  *intact' out)"
    if command -v pdfsig >/dev/null; then
        same "pdfsig on $kind" 2 "$(pdfsig -nocert "$kind-dss.pdf" 2>/dev/null | grep -c 'Signature is Valid')"
    fi
    # The last signature; a second run extends, and in place.
    run 0 '' dss "$kind-dss.pdf" -o "$kind-dss.pdf" --crl crl.der
    same "second store of $kind" '/Certs 2;/CRLs 2;/OCSPs 1;signature 0 2 1 1;signature 1 0 1 0;' \
        "$(contents "$kind-dss.pdf" two)"
    same "second check of $kind" 0 "$(qpdf --check "$kind-dss.pdf" >/dev/null 2>&1; echo $?)"
    run 0 '' verify "$kind-dss.pdf" --trust ca.pem
    for pair in 'one-Certs0 signer.der' 'one-CRLs0 crl.der' 'two-CRLs1 crl.der' 'one-OCSPs0 answer.der'; do
        # shellcheck disable=SC2086
        same "bytes of $pair in $kind" '' "$(cmp $pair 2>&1)"
    done
done

# --- validated from the file's own store, without network ---------------------------------------------------------------
for file in one-Certs0 one-Certs1; do openssl x509 -inform DER -in $file -out $file.pem; done
openssl crl -inform DER -in one-CRLs0 -out stored.crl
same 'CRL check' 'one-Certs0.pem: OK' \
    "$(openssl verify -crl_check -CAfile one-Certs1.pem -CRLfile stored.crl one-Certs0.pem 2>&1)"
has 'the CRL does revoke' 'certificate revoked' \
    "$(openssl verify -crl_check -CAfile one-Certs1.pem -CRLfile stored.crl bad.pem 2>&1)"
has 'OCSP check' 'one-Certs0.pem: good' "$(openssl ocsp -respin one-OCSPs0 -CAfile one-Certs1.pem -issuer one-Certs1.pem \
    -cert one-Certs0.pem -no_nonce 2>&1)"
taken in-dss.pdf
cat one-Certs1.pem stored.crl >anchors.pem
has 'the value, with stored certificates' 'Verification successful' "$(openssl cms -verify -inform DER -in value.der \
    -content signed.bin -binary -CAfile anchors.pem -crl_check -purpose any -out /dev/null 2>&1)"

# --- shown by info ------------------------------------------------------------------------------------------------------
run 0 '' info in-dss.pdf
while read -r pattern; do has "info: $pattern" "$pattern" "$(cat out)"; done <<'TABLE'
^  security store +2 certificates, 2 CRLs, 1 OCSP response$
^    certificate +CN = signer; issued by CN = Test CA$
^    CRL +of CN = Test CA$
^    OCSP response +of CN = responder$
^    for signature 0 +2 certificates, 1 CRL, 1 OCSP response; key [0-9A-F]{40}$
^    for signature 1 +0 certificates, 1 CRL, 0 OCSP responses; key [0-9A-F]{40}$
TABLE
run 0 '' info --json in-dss.pdf
while read -r pattern; do has "json: $pattern" "$pattern" "$(cat out)"; done <<'TABLE'
"security_store":\{"object":[0-9]+,"certificates":\[\{"object":[0-9]+,"subject":"CN = signer","issuer":"CN = Test CA"\},
"crls":\[\{"object":[0-9]+,"issuer":"CN = Test CA"\},.*"ocsps":\[\{"object":[0-9]+,"responder":"CN = responder"\}\]
"vri":\[\{"key":"[0-9A-F]{40}","signature":0,"certificates":2,"crls":1,"ocsps":1,"time":null\},
TABLE
run 0 '' info --json in.pdf
has 'no store' '"security_store":null' "$(cat out)"
# Stores that lie: packed and damaged streams, loops, wrong types.
pdf odd.pdf '<< /Type /Catalog /Pages 2 0 R /DSS 4 0 R >>' "${one_page[@]:1}" \
    '<< /Certs [4 0 R 9 0 R 5 0 R 5 0 R (x)] /CRLs 4 0 R /OCSPs [6 0 R] /VRI << /AB 4 0 R /CD 7 /EF << /Cert 4 0 R /TU (D:2026) >> >> >>' \
    $'<< /Length 99999 >>\nstream\nx\nendstream' $'<< /Length 4 /Filter [/FlateDecode] >>\nstream\nxxxx\nendstream'
run 0 '' info --json odd.pdf
has 'odd store' '"certificates":\[\{"object":4,"subject":null,.*"vri":\[\{"key":"AB",.*"time":"D:2026"\}\]' "$(cat out)"

# --- refusals -----------------------------------------------------------------------------------------------------------
cp two.pdf kept.pdf
printf 'x' >rest && cat signer.der rest >longer.der
printf '\x30\x03\x0a\x01\x06' >refused.der
cp in.pdf unsigned.pdf
pdf broken.pdf 7 "${one_page[@]:1}" '<< /Type /Annot /FT /Sig /V 5 0 R >>' '<< /Type /Sig /Contents <00> >>'
printf 'no PDF' >text.pdf
listing
while IFS='|' read -r code pattern arguments; do
    # shellcheck disable=SC2086
    run "$code" "$pattern" dss $arguments -o kept.pdf
done <<'TABLE'
2|nothing to put in|one.pdf
2|signature|one.pdf --signature -1 --cert ca.pem
4|crl.der: this is no certificate in PEM or DER|one.pdf --cert ca.pem crl.der
4|ca.key: this is no certificate in PEM or DER|one.pdf --cert ca.key
4|longer.der: this is no certificate in PEM or DER|one.pdf --cert longer.der
4|ca.pem: this is no certificate revocation list|one.pdf --crl ca.pem
4|ca.crl: this is no OCSP response|one.pdf --ocsp ca.crl
4|question.der: this is no OCSP response|one.pdf --ocsp question.der
4|refused.der: this OCSP response holds no answer|one.pdf --ocsp refused.der
4|missing: No such file|one.pdf --cert missing
4|there is no signature 1; the last one is 0|one.pdf --signature 1 --cert ca.pem
4|unsigned.pdf: the document has no signature \(-113\)|unsigned.pdf --cert ca.pem
4|broken.pdf: the document catalogue .* \(-1413\)|broken.pdf --cert ca.pem
4|text.pdf: .* \(-1029\)|text.pdf --cert ca.pem
4|missing.pdf: .* \(-1001\)|missing.pdf --cert ca.pem
TABLE
run 4 'nowhere/new.pdf: the output cannot be created or written \(-1406\)' dss one.pdf -o nowhere/new.pdf --cert ca.pem
run 4 '\(-1406\)' dss one.pdf -o . --cert ca.pem
run 4 '\(-1406\)' dss one.pdf -o /dev/full --cert ca.pem
(trap '' XFSZ; ulimit -f 1; "$varnpdf" dss one.pdf -o kept.pdf --cert ca.pem 2>/dev/null)
same 'a full disk' 4 $?
unchanged 'nothing changed'
run 0 '' dss --help
finish
