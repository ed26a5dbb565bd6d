#!/usr/bin/env bash
# Installs the build given, then uses the installed copy as a user would: by CMake package, by pkg-config, through
# ROOT's autoloading, and with the examples of the README.
# Arguments: build folder, scratch folder, CMake command, folder of ROOTConfig.cmake, source folder of the project.
set -euo pipefail
build=$1 scratch=$2 cmake=$3 root_dir=$4 source=$5
consumer=$source/test/consumer

rm -rf "$scratch"
mkdir -p "$scratch/by-cmake"
cd "$scratch"
"$cmake" --install "$build" --prefix "$scratch/prefix" > install.log
lib=$(dirname "$(find "$scratch/prefix" -name libStnEvent.so)")

die() {
  echo "$*" >&2
  exit 1
}

check() { # NAME EXPECTED COMMAND...: the last line that a command prints
  local found
  found=$("${@:3}" | tail -n 1)
  [[ $found == "$2" ]] || die "$1: expected '$2', found '$found'"
  echo "$1: $found"
}

# The C++ examples of the README, in their order.
awk -v names="builder analyst" 'BEGIN { split(names, name) }
  /^```cpp/ { file = name[++n] ".cc"; next } /^```/ { file = "" } file { print > ("by-cmake/" file) }' "$source/README.md"
"$cmake" -S "$consumer" -B by-cmake -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" -DROOT_DIR="$root_dir" \
  -DCMAKE_CXX_FLAGS="${CXXFLAGS:-}" > cmake.log
"$cmake" --build by-cmake >> cmake.log || die "the consumer does not build: $(tail -n 30 cmake.log)"

event="station 2, event 77, mirror bits 4, GPS second 1000000000, last pixel 2880"
check "CMake package" "$event" by-cmake/consumer
if [[ -e $lib/libStnFrame.so ]]; then
  check "data frames" "1 entries, mean event number 77" by-cmake/frame
fi
check "autoloading" "TStnEvent 5; TFADCData 2; VdRoot::TTimeStamp 1; " \
  env LD_LIBRARY_PATH="$lib" LD_PRELOAD="${PRELOAD:-}" by-cmake/autoload
by-cmake/builder
check "README examples" "10: 0 pixels" by-cmake/analyst

export PKG_CONFIG_PATH=$lib/pkgconfig
# shellcheck disable=SC2046,SC2086 # flags are words
${CXX:-c++} ${CXXFLAGS:-} "$consumer/consumer.cc" -o by-pkg-config $(pkg-config --cflags --libs StnEvent)
check "pkg-config" "$event" ./by-pkg-config

for name in StnEvent=2 MrEvent=4 VdUtil=1; do
  library=lib${name%=*}
  for file in "$library.so" "${library}_rdict.pcm" "$library.rootmap"; do
    [[ -e $lib/$file ]] || die "$file is not installed in $lib"
  done
  [[ $(readlink "$lib/$library.so") == "$library.so.${name#*=}" ]] || die "$library has the wrong soname"
done
[[ $("$scratch/prefix/bin/stn-show" --version) == "stn-show (StnEvent "* ]] || die "stn-show is not installed"
if [[ -d $scratch/prefix/share/man/man1 ]]; then
  "$source/test/manual_test.sh" "$scratch/prefix" || die "man pages or completions lack something"
  echo "man pages and completions: complete"
fi
