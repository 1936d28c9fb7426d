#!/usr/bin/env bash
# Makes result-codes.md from include/varnpdf/result_codes.inc.
# Usage: docs/make-result-codes.sh [OUT]      (default: result-codes.md beside this script; - is standard output)
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
rows=$here/../include/varnpdf/result_codes.inc
out=${1:-$here/result-codes.md}

page() {
    cat <<'TEXT'
# Result codes

<!-- Made by docs/make-result-codes.sh from include/varnpdf/result_codes.inc: change a row there, then run it. -->

Operations on a document return one of these numbers; 0 is success. The constants stand in `varnpdf/result.h`.
`varnpdf_message(code)` returns the meaning as text. Where several constants share a number, it returns the meaning of
the first of them. The log text, where there is one, is what the library logs as an error.

Operations on a single object are not in this table: they return 1 when they found or did something and 0 when not,
unless their header says otherwise.

| Code | Constant | Log text | Meaning |
|---:|---|---|---|
TEXT
    # A row: VARNPDF_RESULT(name, number, "log text", "meaning"). Quotes inside a text would need more than this.
    awk '
        !/^VARNPDF_RESULT/ { next }
        {
            fields = split($0, text, "\"")
            head = text[1]
            sub(/^VARNPDF_RESULT\(/, "", head)
            parts = split(head, name, /[ ,]+/)
            if (fields != 5 || parts < 2 || name[1] !~ /^[A-Z0-9_]+$/ || name[2] !~ /^-?[0-9]+$/ || text[5] != ")") {
                print "make-result-codes.sh: not understood: " $0 > "/dev/stderr"
                failed = 1
                exit
            }
            gsub(/\|/, "\\|", text[2])
            gsub(/\|/, "\\|", text[4])
            log_text = text[2] == "" ? "" : "`" text[2] "`"
            printf "| %s | `VARNPDF_%s` | %s | %s |\n", name[2], name[1], log_text, text[4]
            count++
        }
        END { exit failed || count == 0 }
    ' "$rows"
}

table=$(page)
if [[ $out == - ]]; then
    printf '%s\n' "$table"
else
    printf '%s\n' "$table" >"$out"
fi
