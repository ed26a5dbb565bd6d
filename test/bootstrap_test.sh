#!/usr/bin/env bash
# What bootstrap.sh says and does when something is missing, seen with stand-ins for the system's package tools.
# Argument: source folder.
set -euo pipefail
source=$1
# Where another user can reach it: the build may lie in a folder that only root can enter.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/bin" "$scratch/project"
chmod -R a+rwX "$scratch"
cp "$source/bootstrap.sh" "$source/dependencies.env" "$scratch/project"
cd "$scratch/project"

stand_in() { # NAME BODY
  printf '#!/bin/bash\n%s\n' "$2" > "$scratch/bin/$1"
  chmod a+rx "$scratch/bin/$1"
}
failures=0
expect() { # NAME EXIT-CODE PATTERN; the output to test is in $output, its code in $code
  if [[ $code == "$2" && $output == *"$3"* ]]; then return; fi
  printf '%s: expected code %s and "%s", found code %s and:\n%s\n' "$1" "$2" "$3" "$code" "$output" >&2
  failures=1
}
run() { # COMMAND...
  code=0
  output=$(env -u ROOT_DIR PATH="$scratch/bin:/usr/bin:/bin" "$@" 2>&1) || code=$?
}
as_user=()
((EUID != 0)) || as_user=(setpriv --reuid 65534 --regid 65534 --clear-groups)

run ./bootstrap.sh
expect "no command" 2 "Usage: ./bootstrap.sh COMMAND"
run ./bootstrap.sh --help
expect "help" 0 "Usage: ./bootstrap.sh COMMAND"

stand_in dpkg-query '[[ $4 == cmake || $4 == ninja-build ]] || echo "install ok installed"'
run "${as_user[@]}" ./bootstrap.sh demo
expect "packages missing, not root" 1 \
  "bootstrap.sh: Debian packages are missing; install them with: sudo apt-get install -y cmake ninja-build"
[[ $(wc -l <<< "$output") == 1 ]] || { echo "more than one line: $output" >&2; failures=1; }

stand_in dpkg-query 'echo "install ok installed"'
stand_in root-config '[[ $1 == --version ]] && echo 6.28/04'
run ./bootstrap.sh demo
expect "old ROOT" 1 "bootstrap.sh: the ROOT in PATH is 6.28.04; 6.30 or later is needed"

stand_in root-config "[[ \$1 == --version ]] && echo 6.40.00 || echo $scratch/nowhere"
run ./bootstrap.sh demo
expect "ROOT without CMake files" 1 "bootstrap.sh: ROOT_DIR=$scratch/nowhere/cmake has no ROOTConfig.cmake"

mkdir -p "$scratch/nowhere/cmake"
touch "$scratch/nowhere/cmake/ROOTConfig.cmake"
stand_in cmake 'echo "cmake was given: $*"; exit 1'
run ./bootstrap.sh demo
expect "a ROOT of the user's own is used" 1 "-DROOT_DIR=$scratch/nowhere/cmake"
expect "configure fails" 1 "bootstrap.sh: CMake could not configure: see build/configure-release.log"

if ((EUID == 0)); then
  stand_in dpkg-query '[[ $4 == cmake ]] || echo "install ok installed"'
  stand_in apt-get 'echo "apt-get $*"; [[ $1 == update ]]'
  run ./bootstrap.sh demo
  expect "apt-get fails" 1 "bootstrap.sh: apt-get install cmake failed: see build/apt.log"
  grep -q 'apt-get install -y -q --no-install-recommends cmake' build/apt.log || { cat build/apt.log; failures=1; }
fi
exit $failures
