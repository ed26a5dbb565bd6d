#!/usr/bin/env bash
# run.sh PROGRAMS CORPUS FOUND SECONDS: runs each fuzz target for so many seconds, two at a time, and fails if one found
# something in our code. FOUND keeps new inputs for the next run, logs, and the inputs that ended a process. STN_FUZZ_SEED
# decides what is left to chance; without it each run is another one.
set -euo pipefail
programs=$(readlink -f "$1") corpus=$(readlink -f "$2") seconds=$4
mkdir -p "$3"
found=$(readlink -f "$3")
export programs corpus found seconds

# ROOT loses objects when a read fails, deletes objects by a size of its own choice, and may ask for too much memory.
export ASAN_OPTIONS=detect_leaks=0:new_delete_type_mismatch=0:allocator_may_return_null=1:quarantine_size_mb=32:handle_abort=1
export UBSAN_OPTIONS=print_stacktrace=1
export options="-rss_limit_mb=3000 -timeout=60 -print_final_stats=1"

# One target, each process with a log of its own. ROOT does not survive all whole files that it is given: that target then
# begins again with what is left of its time.
fuzz() { # TARGET
  local end=$((SECONDS + seconds)) n=0 more="" seed=0
  if [[ $1 == file ]]; then more="-max_len=24000"; fi
  mkdir -p "$found/$1"
  cd "$found/$1"
  while ((SECONDS < end)); do
    n=$((n + 1))
    if [[ -n ${STN_FUZZ_SEED:-} ]]; then seed=$((STN_FUZZ_SEED + n)); fi
    # shellcheck disable=SC2086 # lists
    "$programs/$1" $options $more -seed=$seed -max_total_time=$((end - SECONDS)) -artifact_prefix="$found/$1-" . "$corpus/$1" \
      > "$found/$1.$n.log" 2>&1 && break
    [[ $1 == file ]] || break
  done
}

# The first function in the stack that is ROOT's or ours, with its library or source. What lies above is the sanitizers' or the C
# library's.
culprit() { # LOG
  grep -aE '^ +#[0-9]+ 0x' "$1" | grep -m 1 -E '/ROOT/lib/|/(StnEvent|MrEvent|VdUtil)/(src|root)/|/test/fuzz/' | sed 's/.* in //' || true
}

is_ours() { [[ $1 == *.cc:* || $1 == *.h:* ]]; }

# The readers of records must survive everything. Of whole files ROOT reads much by itself and ends the process at some: these
# only count where our own code is at work, and again when the input is tried alone, as what ROOT leaves behind can do harm later.
judge() { # TARGET LOG
  local artifact place
  artifact=$(sed -n 's/.*Test unit written to //p' "$2")
  if [[ -z $artifact ]]; then
    echo "  $2: ended without an input: $(grep -am 1 '^Fatal in' "$2")"
    [[ $1 == file ]] && grep -aq '^Fatal in' "$2"
    return
  fi
  place=$(culprit "$2")
  if [[ $1 == file ]] && ! is_ours "$place"; then
    echo "  ${artifact##*/}: in ROOT: $place"
    return
  fi
  # shellcheck disable=SC2086 # a list
  if "$programs/$1" $options "$artifact" > "$artifact.log" 2>&1; then
    echo "  ${artifact##*/}: gone when run alone: $place"
    return
  fi
  place=$(culprit "$artifact.log")
  echo "  ${artifact##*/}: when run alone: $place"
  [[ $1 == file ]] && ! is_ours "$place"
}

export -f fuzz
rm -f "$found"/*-crash-* "$found"/*-oom-* "$found"/*-timeout-* "$found"/*.log
# shellcheck disable=SC2012
ls "$programs" | xargs -P 2 -I{} bash -c 'fuzz {}'

bad=0
for program in "$programs"/*; do
  target=${program##*/}
  echo "$target: $(cat "$found/$target".*.log | awk '/^stat::number_of_executed_units/ { n += $2 } END { print n + 0 }') inputs"
  for log in "$found/$target".*.log; do
    if ! grep -aq '^Done [0-9]* runs' "$log"; then judge "$target" "$log" || bad=1; fi
  done
done
exit $bad
