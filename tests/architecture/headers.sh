#!/usr/bin/env bash
# Every public header compiles alone and survives being included twice, with the warnings of a strict host.
set -euo pipefail

root=${SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
cxx=${CXX:-c++}
errors=0
count=0

for header in "$root"/include/varnpdf/*.h; do
    name=varnpdf/$(basename "$header")
    count=$((count + 1))
    if ! printf '#include "%s"\n#include "%s"\n' "$name" "$name" |
        "$cxx" -std=c++20 -fsyntax-only -pedantic -Wall -Wextra -Wshadow -Wconversion -Werror \
            -I "$root/include" -x c++ -; then
        echo "$name does not compile alone" >&2
        errors=$((errors + 1))
    fi
done

if ((errors > 0)); then
    echo "$errors of $count public headers do not compile alone" >&2
    exit 1
fi
echo "$count public headers compile alone"
