#!/usr/bin/env bash
# A store put into every signed document of the corpus holds what was put in and what was there, by the eyes of qpdf.
# Exit 77 is a skip.
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${VARNPDF:?names the program to be tested}
corpus=${VARNPDF_CORPUS:-$here/../../../shared/corpus}
if [ ! -f "$corpus/facts.tsv" ]; then
    echo "skipped: no corpus at $corpus"
    exit 77
fi
for tool in qpdf python3; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: no $tool"
        exit 77
    fi
done
exec python3 "$here/store.py" "$program" "$corpus" "$here/../../examples/signer.pem"
