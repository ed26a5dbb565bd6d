#!/usr/bin/env bash
# The man page of a program from its own --help. Arguments: program, file to write.
set -euo pipefail
program=$1 page=$2
# "Lists the headers. ..." is "lists the headers" in a list of man pages.
summary=$("$program" --help | sed -n '1s/[.:].*//p')
help2man --no-info --name="${summary,}" --include="$(dirname "$0")/see_also.h2m" --output="$page" "$program"
