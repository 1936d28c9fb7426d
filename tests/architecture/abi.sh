#!/usr/bin/env bash
# What is compiled into hosts - sizes, members, enumerators, virtual functions of the exported classes - against the
# kept description packaging/libvarnpdf.abi and the kept sizes. A host that was built with other ones breaks silently.
# No private member may be exported, or a host could call it. Names of functions are exports.sh's matter.
# After a wanted change: ./run abi, and review the difference.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
cxx=${CXX:-c++}
description=$root/packaging/libvarnpdf.abi
sizes=$here/sizes.txt
library=${LIBRARY:-$root/build/release/src/libvarnpdf.so}
most_private=20  # to go down to 0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

grep -ohE '(class|struct) VARNPDF_EXPORT [A-Za-z_]+' "$root"/include/varnpdf/*.h | sed 's/.* //' | sort -u >"$work/classes"
[[ -s $work/classes ]] || { echo "no exported class found in include/varnpdf" >&2; exit 1; }
while read -r name; do
    grep -qE "ROW\($name\)" "$here/Interface.cpp" || { echo "tests/architecture/Interface.cpp misses $name" >&2; exit 1; }
done <"$work/classes"

# By default a class is described only where its virtual functions are, and without unused members. Relative names keep the directory's out.
cd "$root"
debug=(-O0 -g)
if "$cxx" --version | grep -q clang; then
    debug+=(-fstandalone-debug)
else
    debug+=(-femit-class-debug-always -fno-eliminate-unused-debug-symbols)
fi
"$cxx" -std=c++20 "${debug[@]}" -rdynamic -I include tests/architecture/Interface.cpp -o "$work/interface"
"$work/interface" | LC_ALL=C sort >"$work/sizes"
abidw --suppr "$here/abi.suppressions" --headers-dir include/varnpdf --drop-private-types --no-corpus-path \
    --no-comp-dir-path --no-show-locs --no-elf-needed --no-architecture --no-parameter-names --no-write-default-sizes \
    --out-file "$work/now.abi" "$work/interface"
grep -q "name='CPdf' size-in-bits" "$work/now.abi" || { echo "abidw describes no CPdf" >&2; exit 1; }

if [[ ${1:-} == --update ]]; then
    cp "$work/sizes" "$sizes"
    cp "$work/now.abi" "$description"
    echo "$(wc -l <"$sizes") sizes and $(wc -l <"$description") lines of description written"
    exit 0
fi

failed=0
diff -u --label "kept sizes" --label now "$sizes" "$work/sizes" || failed=1
abidiff "$description" "$work/now.abi" || failed=1
if ((failed)); then
    echo "what is compiled into hosts changed; if that is wanted: ./run abi" >&2
fi
"$here/private.py" "$work/interface" "$library" >"$work/private"
private=$(wc -l <"$work/private")
if ((private > most_private)); then
    cat "$work/private" >&2
    echo "$private private members are exported, more than $most_private" >&2
    failed=1
fi
((failed == 0))
echo "$(wc -l <"$sizes") exported classes and records as described, $private private members exported"
