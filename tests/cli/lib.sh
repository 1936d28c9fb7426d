# Shared by the program's tests: a work directory, checks that are counted, and PDF files made on the spot.
# shellcheck shell=bash disable=SC2034
set -u
varnpdf=${VARNPDF:?names the program to be tested}
examples=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../examples" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0
checks=0

# same NAME EXPECTED ACTUAL
same() {
    checks=$((checks + 1))
    [ "$2" = "$3" ] && return
    failures=$((failures + 1))
    printf 'FAILED %s\n  expected: %s\n  found:    %s\n' "$1" "$2" "$3"
}

# has NAME PATTERN TEXT: the extended regular expression matches somewhere.
has() {
    checks=$((checks + 1))
    grep -Eq -- "$2" <<<"$3" && return
    failures=$((failures + 1))
    printf 'FAILED %s\n  expected to match: %s\n  found: %s\n' "$1" "$2" "$3"
}

# run CODE STDERR-PATTERN ARGUMENTS...: an empty pattern wants silence. Standard output is left in the file "out".
run() {
    local code=$1 pattern=$2
    shift 2
    local status=0
    "$varnpdf" "$@" >out 2>err </dev/null || status=$?
    same "exit code of: $*" "$code" "$status"
    if [ -n "$pattern" ]; then has "stderr of: $*" "$pattern" "$(cat err)"; else same "stderr of: $*" "" "$(cat err)"; fi
}

finish() {
    printf '%d checks, %d failed\n' "$checks" "$failures"
    [ "$checks" -gt 0 ] && [ "$failures" -eq 0 ]
    exit
}

# pdf FILE BODY...: objects 1, 2, ... with these bodies; object 1 is the catalogue. A byte 1 stands for NUL, which bash
# cannot hold. $trailer is put into the trailer.
pdf() {
    local file=$1 number=0 offsets=() table
    shift
    printf '%%PDF-1.7\n' >"$file"
    for body in "$@"; do
        number=$((number + 1))
        offsets+=("$(wc -c <"$file")")
        printf '%d 0 obj\n%s\nendobj\n' "$number" "$body" | LC_ALL=C tr '\001' '\000' >>"$file"
    done
    table=$(wc -c <"$file")
    {
        printf 'xref\n0 %d\n0000000000 65535 f \n' $((number + 1))
        printf '%010d 00000 n \n' "${offsets[@]}"
        printf 'trailer\n<< /Size %d /Root 1 0 R %s >>\nstartxref\n%d\n%%%%EOF\n' $((number + 1)) "${trailer:-}" "$table"
    } >>"$file"
}

catalogue='<< /Type /Catalog /Pages 2 0 R >>'
one_page=("$catalogue" '<< /Type /Pages /Kids [3 0 R] /Count 1 >>'
    '<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] >>')
