#!/usr/bin/env bash
# Every relative link in the documents leads to a file, and to a heading where it names one.
set -euo pipefail

root=${VARNPDF_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}
errors=0
count=0

# The anchors of a page: headings in lower case, blanks as hyphens, without other punctuation.
anchors() {
    grep -E '^#+ ' "$1" | sed -E 's/^#+ //' | tr '[:upper:]' '[:lower:]' | sed -E 's/[^a-z0-9 _-]//g; s/ /-/g'
}

for page in "$root"/*.md "$root"/docs/*.md; do
    while IFS= read -r link; do
        count=$((count + 1))
        file=${link%%#*}
        target=$page
        if [[ -n $file ]]; then
            target=$(dirname "$page")/$file
        fi
        if [[ ! -e $target ]]; then
            echo "${page#"$root"/}: $link leads nowhere" >&2
            errors=$((errors + 1))
        elif [[ $link == *#* ]] && ! anchors "$target" | grep -qxF -- "${link#*#}"; then
            echo "${page#"$root"/}: $link names no heading" >&2
            errors=$((errors + 1))
        fi
    done < <(sed '/^```/,/^```/d' "$page" | grep -oE '\]\([^) ]+\)' | sed -E 's/^\]\((.*)\)$/\1/' |
        grep -vE '^[a-z]+:' || true)
done

if ((count == 0)); then
    echo "no links found" >&2
    exit 1
fi
echo "$count links, $errors lead nowhere"
((errors == 0))
