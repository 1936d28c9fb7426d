#!/usr/bin/env bash
# Places of words on real files, compared with pdftotext. Exit 77 is a skip.
# shellcheck source=tests/corpus/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh" pdftotext pdfinfo qpdf python3
exec python3 "$here/find.py" "$program" "$corpus" 97
