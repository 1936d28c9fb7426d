#!/usr/bin/env bash
# docs/result-codes.md is what its script makes of the rows, and the script leaves no row out.
set -euo pipefail

root=${VARNPDF_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$root/docs/make-result-codes.sh" "$work/made.md"
if ! diff -u --label kept --label made "$root/docs/result-codes.md" "$work/made.md"; then
    echo "run docs/make-result-codes.sh" >&2
    exit 1
fi

rows=$(grep -c 'VARNPDF_RESULT(' "$root/include/varnpdf/result_codes.inc")
lines=$(grep -c '`VARNPDF_' "$work/made.md")
if ((rows == 0 || rows != lines)); then
    echo "$rows rows, but $lines lines in the table" >&2
    exit 1
fi
echo "docs/result-codes.md has all $rows rows"
