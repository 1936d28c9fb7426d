#!/usr/bin/env bash
# A sample of the matrix: documents made here, and every 45th of the corpus. ./run matrix takes all. Exit 77 is a skip.
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
: "${VARNPDF:?names the program to be tested}"
exec python3 "$here/matrix.py" --own --jobs 1 --every 45 --start 7
