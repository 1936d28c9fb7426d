#!/usr/bin/env python3
"""Checks the extracted values and signed bytes of the corpus's signatures with openssl.

usage: signatures.py PROGRAM CORPUS EXPECTED

Every signature that pdfsig calls valid must be counted by the program, or belong to a file whose difference in
EXPECTED has a reason; openssl must accept its value over its signed bytes. Trust in the certificates is not a question
here.
"""
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import tempfile

DETACHED = {"adbe.pkcs7.detached", "ETSI.CAdES.detached"}


def run(*command):
    done = subprocess.run(command, capture_output=True, timeout=60)
    return done.returncode, done.stdout, done.stderr.decode(errors="replace").strip()


def pdfsig(file):
    """Byte range and judgement of each signature; no range when it has other than two parts."""
    text = run("pdfsig", "-nocert", str(file))[1].decode(errors="replace")
    for block in re.split(r"^Signature #\d+:$", text, flags=re.M)[1:]:
        ranges = re.search(r"Signed Ranges: \[(\d+) - (\d+)\], \[(\d+) - (\d+)\]", block)
        a, b, c, d = map(int, ranges.groups()) if ranges else (0, 0, 0, 0)
        yield [a, b - a, c, d - c] if ranges else None, "Signature is Valid" in block


def openssl_error(kind, value, signed, work):
    """What openssl has against the value; None when it accepts it."""
    if kind in DETACHED:
        code, _, err = run("openssl", "cms", "-verify", "-noverify", "-binary", "-inform", "DER", "-in", value,
                           "-content", signed, "-out", "/dev/null")
        return None if code == 0 else err
    if kind == "adbe.pkcs7.sha1":  # the value signs the digest of the bytes, which it holds
        code, content, err = run("openssl", "cms", "-verify", "-noverify", "-binary", "-inform", "DER", "-in", value)
        if code != 0:
            return err
        digest = hashlib.sha1(signed.read_bytes()).digest()
        return None if content == digest else "the digest in the value is not that of the signed bytes"
    if kind == "ETSI.RFC3161":  # the value signs a TSTInfo, which holds the digest of the bytes
        token = work / "tst"
        code, _, err = run("openssl", "cms", "-verify", "-noverify", "-binary", "-inform", "DER", "-in", value,
                           "-out", str(token))
        if code != 0:
            return err
        digests = [hashlib.new(name, signed.read_bytes()).digest() for name in ("sha1", "sha256", "sha384", "sha512")]
        return None if any(d in token.read_bytes() for d in digests) else "no digest of the signed bytes in the token"
    return f"a kind of signature this test does not know: {kind}"


def check_signature(program, file, signature, work):
    value, signed = work / "value.der", work / "signed.bin"
    for option, out in (("--pkcs7", value), ("--signed-bytes", signed)):
        code, _, err = run(program, "extract", str(file), "--signature", str(signature["index"]), option, "-o", str(out))
        if code != 0:
            return f"extract {option}: {err}"
    if signed.stat().st_size != signature["byte_range"][1] + signature["byte_range"][3]:
        return "the signed bytes are not as many as the byte range says"
    return openssl_error((signature["subfilter"] or "").lstrip("/"), value, signed, work)


def main(program, corpus, expected):
    corpus = pathlib.Path(corpus)
    explained = {line.split("\t")[0] for line in pathlib.Path(expected).read_text().splitlines()[1:]}
    facts = [line.split("\t") for line in (corpus / "facts.tsv").read_text().splitlines()[1:]]
    checked, missing, odd, failures = 0, 0, 0, []
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        for file in (corpus / row[0] for row in facts if int(row[3] if row[3].isdigit() else 0) > 0):
            short = str(file.relative_to(corpus))
            valid = [ranges for ranges, good in pdfsig(file) if good]
            if not valid:
                continue
            _, out, _ = run(program, "info", "--json", str(file))
            ours = {str(s["byte_range"]): s for s in json.loads(out).get("signatures") or []}
            for ranges in valid:
                signature = ours.get(str(ranges))
                if ranges is None:
                    odd += 1  # nothing can be cut out between the two parts
                elif signature is None and short in explained:
                    missing += 1
                elif signature is None:
                    failures.append(f"{short}: a valid signature is not counted")
                else:
                    checked += 1
                    error = check_signature(program, file, signature, work)
                    if error:
                        failures.append(f"{short}, signature {signature['index']}: {error}")
    for failure in failures:
        print("FAILED", failure)
    print(f"{checked} valid signatures checked, {len(failures)} failed; {missing} not counted for a known reason, "
          f"{odd} without two byte ranges")
    return 0 if checked > 0 and not failures else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
