#!/usr/bin/env bash
# Each installed program has a man page and a completion that name all options of its --help.
# Argument: prefix of the installation.
set -euo pipefail
prefix=$1
failures=0
fail() {
  echo "$*" >&2
  failures=1
}

complete_words() { # PROGRAM WORDS...: what is offered for the last word
  (
    # shellcheck disable=SC1090
    source "$prefix/share/bash-completion/completions/${1##*/}"
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    _stn_program "$1"
    printf '%s\n' "${COMPREPLY[@]}"
  )
}

for program in "$prefix"/bin/stn-*; do
  name=${program##*/}
  page=$prefix/share/man/man1/$name.1
  [[ -e $page ]] || { fail "$name has no man page"; continue; }
  # The page as one line of plain text.
  text=$(sed -e 's/\\f[BIR]//g' -e 's/\\-/-/g' "$page" | tr '\n' ' ')
  [[ $text == *".SH NAME $name \\- "?*.SH* || $text == *".SH NAME $name - "?*.SH* ]] || fail "the man page of $name has no summary"
  offered=$(complete_words "$program" -)
  options=$("$program" --help | grep -oE -- '(^| |,)--?[a-zA-Z][a-z0-9-]*' | grep -oE -- '--?[a-zA-Z].*' | sort -u)
  for option in $(grep -xE -- '-[a-zA-Z]|--.*' <<< "$options"); do
    [[ $text == *"$option"* ]] || fail "the man page of $name lacks $option"
    grep -qxF -- "$option" <(tr ' ' '\n' <<< "$offered") || fail "the completion of $name lacks $option"
  done
done

found=$(complete_words "$prefix/bin/stn-headers" --format "" | xargs)
[[ $found == "table csv jsonl" ]] || fail "values of --format: $found"
found=$(complete_words "$prefix/bin/stn-headers" --form | xargs)
[[ $found == "--format" ]] || fail "completion of --form: $found"
found=$(complete_words "$prefix/bin/stn-headers" run | xargs)
[[ -z $found ]] || fail "instead of file names: $found"
exit $failures
