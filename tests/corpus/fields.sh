#!/usr/bin/env bash
# The fields of the corpus as qpdf lists them, and filled. Exit 77 is a skip.
# shellcheck source=tests/corpus/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh" qpdf pdfsig python3
exec python3 "$here/fields.py" "$program" "$corpus"
