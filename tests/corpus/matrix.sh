#!/usr/bin/env bash
# A sample of the matrix: every 45th document of the corpus. ./run matrix takes all. Exit 77 is a skip.
# shellcheck source=tests/corpus/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh" python3
exec python3 "$here/matrix.py" --jobs 1 --every 45 --start 7
