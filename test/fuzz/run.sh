#!/usr/bin/env bash
# run.sh PROGRAMS CORPUS FOUND SECONDS: runs each fuzz target for so many seconds, two at a time, and fails if one found
# something in our code. FOUND keeps new inputs for the next run, logs, and the inputs that ended a process.
set -euo pipefail
programs=$(readlink -f "$1") corpus=$(readlink -f "$2") seconds=$4
mkdir -p "$3"
found=$(readlink -f "$3")
files="$corpus/../../old/golden $corpus/../../golden"
export programs corpus found seconds files

# ROOT loses objects when a read fails, deletes objects by a size of its own choice, and may ask for too much memory.
export ASAN_OPTIONS=detect_leaks=0:new_delete_type_mismatch=0:allocator_may_return_null=1:quarantine_size_mb=32:handle_abort=1
export UBSAN_OPTIONS=print_stacktrace=1
export options="-rss_limit_mb=3000 -timeout=60"

# Whole files run in processes that may end: ROOT does not survive all that it is given.
fuzz() { # TARGET
  local first=$corpus/$1 more=""
  if [[ $1 == file ]]; then first=$files more="-fork=1 -ignore_crashes=1 -ignore_ooms=1 -ignore_timeouts=1"; fi
  mkdir -p "$found/$1"
  cd "$found/$1"
  # shellcheck disable=SC2086 # lists
  "$programs/$1" $options $more -max_total_time="$seconds" -artifact_prefix="$found/$1-" . $first > "$found/$1.log" 2>&1 || true
}

# The first function in the stack that belongs neither to the sanitizers nor to the C library, with its file.
culprit() { # LOG
  grep -aE '^ +#[0-9]+ 0x' "$1" | grep -avE 'fuzzer::|__interceptor|__asan|__ubsan|__sanitizer|/libc\.so|/libstdc\+\+' | head -n 1
}

# The readers of records must survive everything. Of whole files ROOT reads much by itself.
judge() { # ARTIFACT
  local name=${1##*/} log=$1.log place
  local target=${name%%-*}
  # shellcheck disable=SC2086
  if "$programs/$target" $options "$1" > "$log" 2>&1; then
    echo "  $name: gone when run alone"
    return 0
  fi
  place=$(culprit "$log")
  if [[ $target == file && $place == *"/ROOT/lib/"* ]]; then
    echo "  $name: in ROOT:${place#*in}"
  else
    echo "  $name: ${place#*in}"
    return 1
  fi
}

export -f fuzz
rm -f "$found"/*-crash-* "$found"/*-oom-* "$found"/*-timeout-*
# shellcheck disable=SC2012
ls "$programs" | xargs -P 2 -I{} bash -c 'fuzz {}'

bad=0
for log in "$found"/*.log; do
  target=$(basename "$log" .log)
  echo "$target: $(grep -aoE '^#[0-9]+' "$log" | tail -n 1 | tr -d '#') inputs"
  for artifact in "$found/$target"-{crash,oom,timeout}-*; do
    if [[ -e $artifact && $artifact != *.log ]]; then judge "$artifact" || bad=1; fi
  done
done
exit $bad
