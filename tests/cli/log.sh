#!/bin/bash
# "--log": silent unless asked, UTF-8 whatever the locale, one line per message, no foreign configuration.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/lib.sh"
signed=$examples/signed.pdf

for place in "--log debug info $signed" "info $signed --log debug" "info --log=debug $signed"; do
    # shellcheck disable=SC2086
    LC_ALL=C run 0 '^DEBUG VarnPDF.CPdf: Länge des Contents: ' $place
done
same 'umlauts are UTF-8' 0 "$(iconv -f UTF-8 -t UTF-8 err >/dev/null 2>&1; echo $?)"
same 'every line is a message' '' "$(grep -Ev '^(DEBUG|INFO|WARN|ERROR) VarnPDF\.' err)"
same 'the log stays off standard output' 0 "$(grep -c VarnPDF out)"

printf 'no PDF at all\n' >text.pdf
run 4 '^ERROR VarnPDF.CPdf: ERROR_NO_PDF_FILE' --log error info text.pdf
same 'nothing below the level' 0 "$(grep -c '^DEBUG' err)"

# A configuration in the working directory may be anybody's.
cat >log4cxx.properties <<EOT
log4j.rootLogger=DEBUG, F
log4j.appender.F=org.apache.log4j.FileAppender
log4j.appender.F.File=$work/planted.log
log4j.appender.F.layout=org.apache.log4j.SimpleLayout
EOT
run 0 '' info "$signed"
run 4 '^varnpdf: text.pdf: ' info text.pdf
same 'no second line' 1 "$(wc -l <err)"
same 'planted configuration' 'not read' "$([ -e planted.log ] && echo read || echo 'not read')"
finish
