#!/bin/bash
# "varnpdf sign" with every kind of key: what it makes verifies elsewhere, fills its room and has no signing time.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib-sign.sh"

identity rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
identity pss -algorithm RSA-PSS -pkeyopt rsa_keygen_bits:2048
identity pss384 -algorithm RSA-PSS -pkeyopt rsa_keygen_bits:2048 -pkeyopt rsa_pss_keygen_md:sha384 \
    -pkeyopt rsa_pss_keygen_mgf1_md:sha384 -pkeyopt rsa_pss_keygen_saltlen:48
identity p384 -algorithm EC -pkeyopt ec_paramgen_curve:P-384
identity p521 -algorithm EC -pkeyopt ec_paramgen_curve:P-521
identity ed -algorithm ED25519
identity ed448 -algorithm ED448

verified() {
    openssl cms -verify -binary "$@" -inform DER -in value.der -content signed.bin -CAfile ca.pem -purpose any \
        -out /dev/null 2>&1 | tail -n 1
}

# NAME, DIGEST, SIGNATURE ALGORITHM, OPTIONS
while read -r name digest algorithm options; do
    # shellcheck disable=SC2086
    run 0 '' sign in.pdf -o "$name.pdf" --key "$name.key" --cert "$name.pem" --chain ca.pem $options
    taken "$name.pdf"
    same "$name: old bytes" 0 "$(cmp -n "$(stat -c %s in.pdf)" in.pdf "$name.pdf" 2>&1; echo $?)"
    same "$name: no padding" "$(stat -c %s value.der)" "$(($(entry "$name.pdf" Contents | wc -c) / 2 - 1))"
    # openssl 3.0 does not check Ed25519 inside CMS; below it is checked by hand.
    [ "$name" = ed ] || same "$name: openssl" 'CAdES Verification successful' "$(verified -cades)"
    has "$name: digest" "algorithm: $digest " "$(grep -A1 digestAlgorithm: value.txt)"
    has "$name: algorithm" "algorithm: $algorithm " "$(grep -A1 signatureAlgorithm: value.txt)"
    same "$name: attributes" 'contentType id-smime-aa-signingCertificateV2 messageDigest' \
        "$(sed -nE 's/^            object: ([^ ]*) .*/\1/p' value.txt | sort | tr '\n' ' ' | sed 's/ $//')"
    run 0 '' verify "$name.pdf" --trust ca.pem
done <<'TABLE'
rsa    sha256 sha256WithRSAEncryption
rsa    sha256 rsassaPss --pss
pss    sha256 rsassaPss
pss384 sha384 rsassaPss
p256   sha256 ecdsa-with-SHA256
p384   sha384 ecdsa-with-SHA384
p521   sha512 ecdsa-with-SHA512
ed     sha512 ED25519
TABLE

# RFC 5652 5.4: signed are the attributes with the tag of a SET, which stand [0] behind the digest algorithm.
read -r offset header length <<<"$(openssl asn1parse -inform DER -in value.der |
    sed -nE 's/^ *([0-9]+):d=5 +hl=([0-9]+) +l= *([0-9]+) cons: cont \[ 0 \].*/\1 \2 \3/p')"
{ printf '\x31'; tail -c +$((offset + 2)) value.der | head -c $((header + length - 1)); } >attributes
tail -c 64 value.der >signature
has 'Ed25519 by hand' 'Verified Successfully' \
    "$(openssl pkeyutl -verify -rawin -in attributes -sigfile signature -certin -inkey ed.pem 2>&1)"

# --- what cannot sign -------------------------------------------------------------------------------------------------
listing
run 4 'ED448 cannot sign here' sign in.pdf -o new.pdf --key ed448.key --cert ed448.pem
run 4 'needs an RSA key' sign in.pdf -o new.pdf "${me[@]}" --pss
unchanged 'nothing written'

# --- ECDSA values vary in length, their room does not -----------------------------------------------------------------
for _ in 1 2 3 4 5 6 7 8 9 10 11 12; do
    run 0 '' sign in.pdf -o again.pdf "${me[@]}"
    taken again.pdf
    same 'room' "$(stat -c %s value.der)" "$(($(entry again.pdf Contents | wc -c) / 2 - 1))"
done

# --- the other kind; certificates, each once --------------------------------------------------------------------------
cat p256.pem ca.pem ca.pem >all.pem
run 0 '' sign in.pdf -o plain.pdf --key p256.key --cert all.pem --chain ca.pem --subfilter pkcs7
taken plain.pdf
same 'subfilter' /adbe.pkcs7.detached "$(entry plain.pdf SubFilter)"
same 'openssl' 'CMS Verification successful' "$(verified)"
same 'attributes' 'contentType messageDigest' \
    "$(sed -nE 's/^            object: ([^ ]*) .*/\1/p' value.txt | sort | tr '\n' ' ' | sed 's/ $//')"
same 'certificates' 2 "$(grep -c 'd.certificate:' value.txt)"
finish
