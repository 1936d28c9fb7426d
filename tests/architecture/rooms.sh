#!/usr/bin/env bash
# Every room includes only what stands below it: read from the #include lines, so that a shortcut between subsystems
# fails here and not in a review. Usage: rooms.sh [ROOT]
set -euo pipefail

root=${1:-${SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}}

# One floor a line, ground floor first; rooms of one floor do not know each other. support carries syntax and digest.
declare -A floor=(
    [support]=0 [selfcheck]=0
    [syntax]=1 [digest]=1
    [model]=2
    [reader]=3
    [writer]=4
    [inspection]=5 [content]=5
    [signing]=6 [longterm]=6 [forms]=6 [portfolio]=6
    [api]=7
)
errors=0
checked=0

complain() {
    echo "$1" >&2
    errors=$((errors + 1))
}

# Prints "line<TAB>delimiter<TAB>name" of every include in a file.
includes() {
    sed -nE '/^[[:space:]]*#[[:space:]]*include[[:space:]]*["<]/{=; s/^[^"<]*(["<])([^">]*)[">].*/\1\t\2/p}' "$1" |
        paste - -
}

# May a source of room $1 include header $3 of room $2?
allowed() {
    [[ $1 == "$2" ]] && return 0
    if [[ $1 == conversion ]]; then
        [[ $2 == support || $3 == syntax/Encoding.h || $3 == syntax/Dates.h ]]
        return
    fi
    [[ -n ${floor[$2]:-} ]] && ((floor[$2] < floor[$1]))
}

is_room() {
    [[ -n ${floor[$1]:-} || $1 == conversion ]]
}

check_room_file() {
    local file=$1 room=$2 line kind name target
    while IFS=$'\t' read -r line kind name; do
        checked=$((checked + 1))
        target=${name%%/*}
        if [[ $name == *..* ]]; then
            complain "$file:$line: \"$name\" leaves its room by a relative path"
        elif [[ $target == varnpdf && $name == */* ]]; then
            :
        elif [[ $name == */* ]] && is_room "$target"; then
            allowed "$room" "$target" "$name" || complain "$file:$line: $room must not include $name"
        elif [[ $kind == '"' ]]; then
            complain "$file:$line: write \"room/Name.h\" or \"varnpdf/Name.h\" instead of \"$name\""
        fi
    done < <(includes "$file")
}

# The program is a host: our public headers, its own headers, nothing of src/.
check_program_file() {
    local file=$1 line kind name
    while IFS=$'\t' read -r line kind name; do
        checked=$((checked + 1))
        if [[ $name == *..* || $name == src/* ]] || { [[ $name == */* ]] && is_room "${name%%/*}"; }; then
            complain "$file:$line: the program must not include $name"
        elif [[ $kind == '"' && $name != varnpdf/* && ! -e $root/cli/$name ]]; then
            complain "$file:$line: \"$name\" is neither a public header nor one of the program's own"
        fi
    done < <(includes "$file")
}

# A public header asks nothing of a host but the standard library.
check_public_file() {
    local file=$1 line kind name
    while IFS=$'\t' read -r line kind name; do
        checked=$((checked + 1))
        if [[ $kind == '"' && $name =~ ^varnpdf/[A-Za-z0-9_.]+$ && -e $root/include/$name ]]; then
            :
        elif [[ $kind == '<' && ($name =~ ^[a-z_]+$ || $name == sys/timeb.h) ]]; then
            :
        else
            complain "$file:$line: a public header must not include $name"
        fi
    done < <(includes "$file")
}

while IFS= read -r -d '' file; do
    relative=${file#"$root"/src/}
    room=${relative%%/*}
    if [[ $relative != */* ]]; then
        complain "$file: stands in no room"
    elif ! is_room "$room"; then
        complain "$file: unknown room $room"
    else
        check_room_file "$file" "$room"
    fi
done < <(find "$root/src" -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.inc' \) -print0)

while IFS= read -r -d '' file; do
    check_program_file "$file"
done < <(find "$root/cli" -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.inc' \) -print0)

while IFS= read -r -d '' file; do
    check_public_file "$file"
done < <(find "$root/include" -type f -print0)

if ((checked == 0)); then
    echo "no include line found below $root" >&2
    exit 1
fi
if ((errors > 0)); then
    echo "$errors of $checked includes break the order of the rooms" >&2
    exit 1
fi
echo "$checked includes keep the order of the rooms"
