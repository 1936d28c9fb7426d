#!/usr/bin/env bash
# The documents tell the truth: README's C++ blocks are the examples' sources, and every command of the console blocks
# prints what stands behind it. A line "..." there stands for any lines.
set -euo pipefail

root=${VARNPDF_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
readme=$root/README.md
pages=("$readme" "$root/docs/architecture.md" "$root/docs/update.md")
VARNPDF=${VARNPDF:-$root/build/release/cli/varnpdf}
export VARNPDF
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# --- the C++ blocks: each is one of the examples, told by its first line ---------------------------------------------
awk -v out="$work/block" '/^```cpp$/ { inside = ++count; next } /^```/ { inside = 0 } inside { print > (out inside ".cpp") }' \
    "$readme"
blocks=("$work"/block*.cpp)
examples=("$root"/examples/*.cpp)
[[ -e ${blocks[0]} ]] || {
    echo "README.md has no C++ block" >&2
    exit 1
}
for block in "${blocks[@]}"; do
    example=$(grep -lxF -- "$(head -n 1 "$block")" "${examples[@]}") || {
        echo "no example begins with: $(head -n 1 "$block")" >&2
        exit 1
    }
    diff -u --label "$example" --label README.md "$example" "$block"
done

# --- the console blocks: one file for each command, one for what it shall print ---------------------------------------
mkdir "$work/cases"
awk -v cases="$work/cases" '
    FNR == 1 { inside = 0 }
    /^```console$/ { inside = 1; expected = ""; next }
    /^```/ { inside = 0; next }
    !inside { next }
    /^\$ / {
        name = sprintf("%s/%03d", cases, ++count)
        print substr($0, 3) > (name ".command")
        expected = name ".expected"
        printf "" > expected
        next
    }
    expected == "" { print FILENAME ":" FNR ": output without a command" > "/dev/stderr"; exit 1 }
    { print > expected }
' "${pages[@]}"

# Matches the lines of a file against expected ones with "..." for any lines; says nothing and fails on a difference.
matches() {
    awk -v expectations="$1" '
        BEGIN { while ((getline line <expectations) > 0) expected[++wanted] = line }
        { found[++lines] = $0 }
        END {
            # After i expected lines, reach[j] says whether the first j found lines can be used up by them.
            reach[0] = 1
            for (i = 1; i <= wanted; ++i) {
                if (expected[i] == "...") {
                    for (j = 1; j <= lines; ++j) if (reach[j - 1]) reach[j] = 1
                } else {
                    for (j = lines; j >= 1; --j) reach[j] = reach[j - 1] && found[j] == expected[i]
                    reach[0] = 0
                }
            }
            exit !reach[lines + 0]
        }
    ' "$2"
}

# The commands run in a directory of their own, with the parts of the source tree that they name.
mkdir "$work/tree" "$work/bin"
for part in examples include src run; do
    ln -s "$root/$part" "$work/tree/$part"
done
ln -s "$(realpath "$VARNPDF")" "$work/bin/varnpdf"
cd "$work/tree"
PATH=$work/bin:$PATH

failures=0
count=0
for case in "$work"/cases/*.command; do
    count=$((count + 1))
    command=$(<"$case")
    expected=${case%.command}.expected
    # The tests run inside a build; the demo must not build once more.
    status=0
    bash -o pipefail -c "${command/#.\/run demo/examples/demo.sh}" >"$work/out" 2>&1 </dev/null || status=$?
    if ((status != 0)) || ! matches "$expected" "$work/out"; then
        echo "FAILED: $command (exit code $status)"
        diff -u --label "the document" --label now "$expected" "$work/out" || true
        failures=$((failures + 1))
    fi
done

# A command outside of a console block would run unchecked by anybody.
lines=$(cat "${pages[@]}" | grep -c '^\$ ' || true)
if ((count != lines || count < 10)); then
    echo "$lines lines look like commands, $count were run" >&2
    exit 1
fi
echo "$count commands of ${#pages[@]} documents, $failures failed"
((failures == 0))
