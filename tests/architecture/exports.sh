#!/usr/bin/env bash
# What the shared library lets out, against the kept list exports.txt. A symbol that vanished breaks hosts, a symbol
# that appeared is a promise nobody meant to make.
# After a wanted change: tests/architecture/exports.sh --update [LIBRARY], and review the difference.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
list=$here/exports.txt
update=no
if [[ ${1:-} == --update ]]; then
    update=yes
    shift
fi
library=${1:-${LIBRARY:-$here/../../build/release/src/libvarnpdf.so}}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

nm -DC --defined-only "$library" >"$work/all"
if [[ ! -s $work/all ]]; then
    echo "$library exports nothing" >&2
    exit 1
fi

# Type and name. Weak functions and constants (W, V, u) are inline members: whether a copy is emitted is the optimizer's
# affair. The weak type information of a class is not.
sed -E 's/^[0-9a-f]* *//' "$work/all" | LC_ALL=C sort -u >"$work/symbols"
grep -E '^([^WVu]|. (vtable|typeinfo|typeinfo name) for) ' "$work/symbols" | cut -c3- | LC_ALL=C sort -u >"$work/now" || true

# Names that begin with a foreign namespace, weak ones too; a template's result type may stand in front.
foreign='^. ((vtable|VTT|typeinfo|typeinfo name|guard variable|construction vtable) for )?([^(]* )?(std|__gnu_cxx|log4cxx|varnpdf)::[^(]*'
if grep -E "$foreign" "$work/symbols" >"$work/foreign"; then
    echo "exported, but not ours to export:" >&2
    cat "$work/foreign" >&2
    exit 1
fi

if [[ $update == yes ]]; then
    cp "$work/now" "$list"
    echo "$(wc -l <"$list") symbols written to $list"
    exit 0
fi

if ! diff -u --label "kept list" --label "library" "$list" "$work/now"; then
    echo "the exported symbols changed; if that is wanted: tests/architecture/exports.sh --update" >&2
    exit 1
fi
echo "$(wc -l <"$list") exported symbols as listed"
