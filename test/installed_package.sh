#!/usr/bin/env bash
# Installs the build given, then uses the installed copy as a user would: by CMake package, by pkg-config, and from
# the interpreter, where class and dictionary must be found with no more than the library path.
# Arguments: build folder, scratch folder, CMake command, folder of ROOTConfig.cmake, source folder of the consumer.
set -euo pipefail
build=$1 scratch=$2 cmake=$3 root_dir=$4 source=$5
want="station 2, event 77, mirror bits 4, GPS second 1000000000, last pixel 2880"

rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch"
"$cmake" --install "$build" --prefix "$scratch/prefix" > install.log
lib=$(dirname "$(find "$scratch/prefix" -name libStnEvent.so)")

check() { # NAME COMMAND...
  local got
  got=$("${@:2}" | tail -n 1)
  [[ $got == "$want" ]] || { echo "$1: expected '$want', found '$got'" >&2; exit 1; }
  echo "$1: $got"
}

"$cmake" -S "$source" -B by-cmake -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" -DROOT_DIR="$root_dir" \
  -DCMAKE_CXX_FLAGS="${CXXFLAGS:-}" > cmake.log
"$cmake" --build by-cmake >> cmake.log || { cat cmake.log; exit 1; }
check "CMake package" by-cmake/consumer

export PKG_CONFIG_PATH=$lib/pkgconfig
# shellcheck disable=SC2046 # flags are words
${CXX:-c++} ${CXXFLAGS:-} "$source/consumer.cc" -o by-pkg-config $(pkg-config --cflags --libs StnEvent) \
  -Wl,-rpath,"$lib:$(dirname "$root_dir")/lib"
check "pkg-config" ./by-pkg-config

for name in VdUtil MrEvent StnEvent; do
  for file in "lib$name.so" "lib${name}_rdict.pcm" "lib$name.rootmap"; do
    [[ -e $lib/$file ]] || { echo "$file is not installed in $lib" >&2; exit 1; }
  done
done
[[ $(readlink "$lib/libStnEvent.so") == libStnEvent.so.2 ]]
[[ $(readlink "$lib/libMrEvent.so") == libMrEvent.so.4 ]]
[[ $(readlink "$lib/libVdUtil.so") == libVdUtil.so.1 ]]
