#!/usr/bin/env bash
# openssl accepts what is extracted from the signatures of the corpus. Exit 77 is a skip.
# shellcheck source=tests/corpus/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh" pdfsig openssl python3
exec python3 "$here/signatures.py" "$program" "$corpus" "$here/expected.tsv"
