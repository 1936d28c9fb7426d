#!/usr/bin/env bash
# The table of rooms in docs/architecture.md: the floors that tests/architecture/rooms.sh enforces, and "exists" for the
# rooms that are there. The picture names every room too.
set -euo pipefail

root=${VARNPDF_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
page=$root/docs/architecture.md
picture=$root/docs/architecture.svg
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# "floor room state" of every row.
sed -nE 's/^\| ([0-9]|-) \| ([a-z]+) \| (exists|to come) \|.*/\1 \2 \3/p' "$page" | sort >"$work/told"
{
    sed -n '/^declare -A floor=(/,/^)/p' "$root/tests/architecture/rooms.sh" | grep -oE '\[[a-z]+\]=[0-9]' |
        sed -E 's/\[([a-z]+)\]=([0-9])/\2 \1/'
    echo "- conversion"
} | while read -r floor room; do
    state="to come"
    if [[ -d $root/src/$room ]]; then
        state=exists
    fi
    echo "$floor $room $state"
done | sort >"$work/true"

if (($(wc -l <"$work/true") < 5)); then
    echo "no floors found in tests/architecture/rooms.sh" >&2
    exit 1
fi
diff -u --label docs/architecture.md --label "the tree" "$work/told" "$work/true"

errors=0
while read -r _ room state; do
    class=name
    if [[ $state != exists ]]; then
        class=gone
    fi
    if ! grep -qE "class=\"$class( mid)?\"[^>]*>$room<" "$picture"; then
        echo "architecture.svg does not show $room as a room that is \"$state\"" >&2
        errors=$((errors + 1))
    fi
done <"$work/true"
((errors == 0))
echo "$(wc -l <"$work/true") rooms as told"
