#!/usr/bin/env bash
# openssl accepts what is extracted from the signatures of the corpus. Exit 77 is a skip.
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${VARNPDF:?names the program to be tested}
corpus=${VARNPDF_CORPUS:-$here/../../../shared/corpus}
if [ ! -f "$corpus/facts.tsv" ]; then
    echo "skipped: no corpus at $corpus"
    exit 77
fi
for tool in pdfsig openssl python3; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: no $tool"
        exit 77
    fi
done
exec python3 "$here/signatures.py" "$program" "$corpus" "$here/expected.tsv"
