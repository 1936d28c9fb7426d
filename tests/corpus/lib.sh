# What the tests over the corpus need: $here, $program, $corpus, and the tools named as arguments. Exit 77 is a skip.
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=${VARNPDF:?names the program to be tested}
corpus=${VARNPDF_CORPUS:-}
if [ ! -f "$corpus/facts.tsv" ]; then
    echo "skipped: VARNPDF_CORPUS names no corpus"
    exit 77
fi
for tool in "$@"; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: no $tool"
        exit 77
    fi
done
