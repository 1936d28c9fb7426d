#!/usr/bin/env bash
# A store put into every signed document of the corpus holds what was put in and what was there, by the eyes of qpdf.
# Exit 77 is a skip.
# shellcheck source=tests/corpus/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh" qpdf python3
exec python3 "$here/store.py" "$program" "$corpus" "$here/../../examples/signer.pem"
