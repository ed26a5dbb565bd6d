#!/usr/bin/env bash
# Simulates a run of 500 events, shows it, and checks that every event reads back as it was written.
# Arguments: folder of the programs, folder for the run.
set -euo pipefail
bin=$1 out=$2
mkdir -p "$out"

step() { printf '\n== %s\n' "$*"; }

step "A run of 500 events"
"$bin/stn-simulate" --force --events 500 --checksums "$out/checksums.json" "$out/run.root"
step "Its run header, one event and its run trailer"
"$bin/stn-show" --header --event 42 --trailer "$out/run.root"
step "The table of the first headers"
"$bin/stn-headers" --count 10 "$out/run.root"
step "Every event read back"
"$bin/stn-verify" "$out/run.root" --checksums "$out/checksums.json"
