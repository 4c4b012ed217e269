#!/bin/sh
# usage: catalogue.sh GENCAT ZGTEKSTEN NAME OUTPUT [TRANSLATION]
# The message catalogue NAME out of the program's texts, or of a translation. gencat only warns of a message that it
# leaves out.
set -eu
mkdir -p "$(dirname "$4")"
rm -f "$4"
"$2" "$3" ${5:+"$5"} >"$4.msg"
said=$(LC_ALL=C "$1" "$4" "$4.msg" 2>&1) || :
[ -z "$said" ] || { printf '%s\n' "$said" >&2; exit 1; }
test -s "$4"
