#!/usr/bin/env bash
# The matrix over documents made here, in forms a corpus may lack; it needs none. Exit 77 is a skip.
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
: "${VARNPDF:?names the program to be tested}"
VARNPDF_CORPUS='' exec python3 "$here/matrix.py" --own --jobs 1
