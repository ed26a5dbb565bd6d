#!/usr/bin/env bash
# Builds and runs everything from a bare Debian 12: see usage below.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"
# shellcheck source=dependencies.env
source dependencies.env

usage() {
  cat <<'EOF'
Usage: ./bootstrap.sh COMMAND
  demo    build the libraries and tools, simulate a run, show it and check that it reads back as it was written
  test    build everything and run all tests
  bench   measure speed and size beside ROOT's own formats, about 10 minutes, and renew the tables of docs/performance.md;
          bench --quick: in about a minute, tables in build/performance.md; files go to $TMPDIR or /tmp
  mutate  put small faults into the libraries' sources, one at a time, and tell which of them no test notices, in a few
          hours; what follows are sources or options: mutate --help
  damage  damage files in every way there is, fail every write and cut the power at every moment; about half an hour
  load    8 processes that write and 8 that read for ten minutes, then memory over thousands of files and events
  crash   [N] kill an event builder N times (300) at random moments and as often in a write, cut a file as often, and compare
          what stn-recover brings back with what was on disk; figures in build/crash, about half an hour
  check   what CI runs beyond the tests: warnings as errors, layout, clang-tidy, mypy, sanitizers, line coverage
  package make a Debian package in build/package that brings the ROOT libraries it needs along, and look into it
  compilers
          build everything with clang, and with g++ as C++20, warnings as errors, and run all tests of both
  valgrind [REGEX]
          run the test suite, or the tests whose names match, under valgrind's memcheck; many hours, logs in build/valgrind
  docs    build the handbook and the C++ reference in build/site, to be opened at build/site/index.html
  fuzz SECONDS
          try damaged input on every reader, each of the fuzz targets for so many seconds
Each installs what it needs (Debian packages as root, ROOT into .venv unless ROOT_DIR or thisroot.sh names one)
and uses again what is there already.
EOF
}

say() { printf '\n== %s\n' "$*"; }
die() {
  printf 'bootstrap.sh: %s\n' "$*" >&2
  exit 1
}

# The packages named by the arguments, if any is missing: installed as root, else named in one line.
need_packages() {
  command -v dpkg-query > /dev/null || return 0 # not Debian: CMake says what it misses
  local missing=() package
  for package in "$@"; do
    # A Python of the user's own that can make virtual environments is as good as Debian's.
    if [[ $package == python3* ]] && python3 -c 'import venv, ensurepip' 2> /dev/null; then continue; fi
    # So is a Node.js; and where it is not Debian's, Debian's npm can't be installed beside it.
    if [[ $package == nodejs || $package == npm ]] && command -v node > /dev/null && command -v npm > /dev/null; then continue; fi
    dpkg-query -W -f '${Status}' "$package" 2> /dev/null | grep -q '^install ok installed' || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  ((EUID == 0)) || die "Debian packages are missing; install them with: sudo apt-get install -y ${missing[*]}"
  say "Installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q > build/apt.log 2>&1 || die "apt-get update failed: see build/apt.log; is the network there?"
  apt-get install -y -q --no-install-recommends "${missing[@]}" >> build/apt.log 2>&1 ||
    die "apt-get install ${missing[*]} failed: see build/apt.log"
}

# Python packages into .venv, once for each list of pins.
need_python() {
  local stamp
  stamp=".venv/installed-$(printf '%s ' "$@" | cksum | cut -d' ' -f1)"
  if [[ -e $stamp ]]; then return 0; fi
  say "Installing $* into .venv"
  [[ -x .venv/bin/pip ]] || python3 -m venv .venv || die "python3 -m venv failed: install python3-venv, or remove .venv"
  .venv/bin/pip install -q --disable-pip-version-check "$@" > build/pip.log 2>&1 ||
    die "pip install $* failed: see build/pip.log; is the network there, and is python3 3.9 or later?"
  touch "$stamp"
}

# The packages that js/package-lock.json pins, into js/node_modules. JSROOT reads files without what their scripts would build.
need_javascript() {
  local stamp=js/node_modules/.installed
  if [[ $stamp -nt js/package-lock.json ]]; then return 0; fi
  say "Installing JSROOT into js/node_modules"
  npm ci --ignore-scripts --no-audit --no-fund --prefix js > build/npm.log 2>&1 ||
    die "npm ci failed: see build/npm.log; is the network there, and is node 18 or later?"
  touch "$stamp"
}

at_least() { [[ "$(printf '%s\n%s\n' "$1" "$2" | sort -V | head -n 1)" == "$1" ]]; }

# Sets ROOT_DIR, the folder of ROOTConfig.cmake: the user's own ROOT, or the one in .venv.
find_root() {
  if [[ -z ${ROOT_DIR:-} ]] && command -v root-config > /dev/null; then
    local version
    version=$(root-config --version | tr / .)
    at_least "$ROOT_MINIMUM" "$version" ||
      die "the ROOT in PATH is $version; $ROOT_MINIMUM or later is needed: source another thisroot.sh, or take it out of PATH"
    ROOT_DIR=$(root-config --prefix)/cmake
  fi
  if [[ -n ${ROOT_DIR:-} ]]; then
    [[ -e $ROOT_DIR/ROOTConfig.cmake ]] ||
      die "ROOT_DIR=$ROOT_DIR has no ROOTConfig.cmake: name the 'cmake' folder of your ROOT, or unset ROOT_DIR"
    export ROOT_DIR
    return
  fi
  # shellcheck disable=SC2086 # a list of pins
  need_python $ROOT_PYTHON
  local lib
  lib=$(echo "$PWD"/.venv/lib/python3*)
  # The package's CMake files name a folder that does not exist (root-project/root issue 22654).
  [[ -e $lib/mock_site_packages ]] || ln -s site-packages "$lib/mock_site_packages"
  export ROOT_DIR=$lib/site-packages/ROOT/cmake
}

# configure PRESET [CMake options...]: in build/PRESET.
configure() {
  local preset=$1
  shift
  # shellcheck disable=SC2086 # STN_CMAKE_OPTIONS is a list: what a user or CI adds to every configuration
  cmake --preset "$preset" -DROOT_DIR="$ROOT_DIR" ${STN_CMAKE_OPTIONS:-} "$@" > "build/configure-$preset.log" 2>&1 ||
    {
      tail -n 20 "build/configure-$preset.log" >&2
      die "CMake could not configure: see build/configure-$preset.log"
    }
}

# build PRESET [CMake options...]: configures and builds.
build() {
  local preset=$1
  say "Building build/$preset"
  configure "$@"
  cmake --build "build/$preset" > "build/build-$preset.log" 2>&1 ||
    {
      grep -m 20 -E 'error|Error|FAILED' "build/build-$preset.log" >&2 || true
      die "the build failed: see build/build-$preset.log"
    }
  grep -E 'warning:' "build/build-$preset.log" || true
}

run_tests() { # PRESET
  say "Testing build/$1"
  ctest --test-dir "build/$1" --output-on-failure --no-tests=error -j "$(nproc)" || die "tests failed"
}

mutate() {
  local tool=test/mutation/mutate.py
  [[ " $* " != *" --"@(help|list|summary)" "* ]] || exec python3 "$tool" "$@"
  run_test_command
  say "Mutants: results in build/mutants.jsonl"
  nice python3 "$tool" "$@"
}

demo() {
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES
  find_root
  build release -DBUILD_TESTING=OFF
  cmake/demo.sh build/release/bin build/demo
}

run_test_command() {
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES $TEST_PACKAGES $BENCH_PACKAGES
  find_root
  # shellcheck disable=SC2086
  need_python $TEST_PYTHON
  need_javascript
  build release -DBUILD_TESTING=ON -DSTN_BUILD_BENCH=ON
  run_tests release
}

bench() { # [--quick]
  local page=docs/performance.md
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES $BENCH_PACKAGES
  find_root
  build release -DBUILD_TESTING=OFF -DSTN_BUILD_BENCH=ON
  say "Measuring; how far it is: tail -f build/bench.log"
  build/release/bin/stn_bench "$@" --benchmark_out=build/bench.json --benchmark_out_format=json > build/bench.log 2>&1 ||
    die "the benchmarks failed: see build/bench.log"
  if [[ ${1:-} == --quick ]]; then
    cp "$page" build/performance.md
    page=build/performance.md
  fi
  python3 bench/report.py build/bench.json "$page" || die "there are no tables: see build/bench.json"
  say "Results are in build/bench.json, tables in $page"
}

build_for_trials() {
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES $TEST_PACKAGES $BENCH_PACKAGES
  find_root
  build release -DBUILD_TESTING=ON -DSTN_BUILD_BENCH=ON
}

damage() {
  local bin=$PWD/build/release/bin shim=$PWD/build/release/lib/libIoShim.so
  export PYTHONDONTWRITEBYTECODE=1 STN_BIN=$bin STN_SHIM=$shim STN_LONG=1
  build_for_trials
  say "Damaged files, by compression"
  python3 test/damage/survey.py "$bin" || die "the survey failed"
  say "Refused writes and syncs"
  (cd build/release/test/faults/WriteFaultsTest.dir && "$bin/WriteFaultsTest" --gtest_brief=1) || die "a fault was not noticed"
  python3 test/faults/ToolFaultsTest.py || die "a program did not notice a fault"
  say "Power loss"
  python3 test/faults/power_loss.py "$bin" "$shim" || die "events were lost or invented"
}

load() {
  build_for_trials
  say "Load, ten minutes"
  PYTHONDONTWRITEBYTECODE=1 python3 test/faults/load.py build/release/bin 600 || die "something went wrong under load"
  say "Memory"
  (cd build/release/test/faults/MemoryTest.dir && STN_LONG=1 "$OLDPWD/build/release/bin/MemoryTest") || die "memory grew"
}

crash() { # [N]
  build_for_trials
  say "Killing and recovering"
  mkdir -p build/crash
  STN_BIN=$PWD/build/release/bin PYTHONPATH=$PWD/tools/test PYTHONDONTWRITEBYTECODE=1 STN_CRASH_RUNS=${1:-300} \
    STN_CRASH_FIGURES=$PWD/build/crash python3 test/crash/CrashTest.py || die "events were lost or invented"
  grep . build/crash/*
}

check() {
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES $TEST_PACKAGES $BENCH_PACKAGES $CHECK_PACKAGES
  find_root
  # shellcheck disable=SC2086
  need_python $TEST_PYTHON
  # shellcheck disable=SC2086
  need_python $CHECK_PYTHON

  say "Layout (clang-format)"
  git ls-files '*.h' '*.cc' | xargs clang-format --dry-run -Werror || die "run clang-format -i on the files above"

  say "Warnings as errors"
  build release -DBUILD_TESTING=ON -DSTN_BUILD_BENCH=ON -DSTN_WARNINGS_AS_ERRORS=ON

  say "clang-tidy"
  git ls-files '*/src/*.cc' 'VdUtil/root/*.cc' 'python/lib/*.cc' | xargs -P "$(nproc)" -n 1 clang-tidy -p build/release --quiet \
    2> >(grep -v 'warnings generated' >&2) || die "clang-tidy has findings"

  say "Types of the Python package (mypy)"
  .venv/bin/mypy --config-file python/pyproject.toml python/src/stnevent || die "mypy has findings"

  # One instrumented build serves sanitizers and coverage. The compiler warns of what is not so in instrumented code.
  build sanitize -DBUILD_TESTING=ON -DSTN_WARNINGS_AS_ERRORS=OFF
  # shellcheck source=cmake/sanitizers.sh
  (source cmake/sanitizers.sh && run_tests sanitize)

  say "Line coverage"
  # Of processes that die in tests gcov may print counts that gcovr can't read: such lines are reported and left out.
  gcovr --gcov-ignore-parse-errors --root . --object-directory build/sanitize --filter 'StnEvent/src/' --filter 'VdUtil/' --filter 'MrEvent/src/' \
    --exclude '.*/test/.*' --exclude-throw-branches --fail-under-line 95 build/sanitize || die "less than 95 % of the lines are covered"
}

package() {
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES
  find_root
  build release -DBUILD_TESTING=OFF -DSTN_BUILD_BENCH=OFF
  say "Packing"
  rm -f build/package/stnevent_*.deb
  (cd build/release && cpack > ../cpack.log 2>&1) || die "cpack failed: see build/cpack.log"
  rm -rf build/package/_CPack_Packages
  test/package_test.sh build/package/stnevent_*.deb || die "the package lacks something"
  say "The package is $(ls build/package/stnevent_*.deb); try it on a bare machine: test/package_test.sh --bare build/package/*.deb"
}

compilers() {
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES $TEST_PACKAGES $FUZZ_PACKAGES
  find_root
  # shellcheck disable=SC2086
  need_python $TEST_PYTHON
  local preset
  # The preset of C++20 lets two warnings through: ROOT's #warning of a standard that it was not built with (cpp), and a false
  # one of g++ 12 about sums of texts (restrict, GCC bug 105329).
  for preset in clang cxx20; do
    build "$preset" -DBUILD_TESTING=ON -DSTN_WARNINGS_AS_ERRORS=ON
    run_tests "$preset"
  done
}

valgrind() { # [REGEX]
  # shellcheck disable=SC2086
  need_packages $VALGRIND_PACKAGES
  run_test_command
  say "valgrind"
  rm -rf build/valgrind
  python3 test/valgrind.py build/release "$ROOT_DIR/.." build/valgrind "${1:-}" || die "valgrind has findings, or tests failed: see build/valgrind"
}

# The handbook and the C++ reference; whatever is missing or wrong in them is an error.
docs() {
  # shellcheck disable=SC2086
  need_packages python3 python3-venv $DOCS_PACKAGES
  # shellcheck disable=SC2086
  need_python $DOCS_PYTHON
  say "Handbook"
  NO_MKDOCS_2_WARNING=1 .venv/bin/mkdocs build --quiet --clean || die "the handbook has faults"
  say "C++ reference"
  STN_VERSION=$(sed -n 's/^project(StnEvent VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  export STN_VERSION
  doxygen docs/Doxyfile || die "the C++ reference has faults: see the operations named above"
  python3 test/docs/check_site.py build/site || die "the handbook has links that lead nowhere"
  say "Results are in build/site/index.html"
}

# Random input for every reader: from the inputs in test/fuzz/corpus, each target for so many seconds, two at a time.
fuzz() {
  [[ ${1:-} =~ ^[0-9]+$ ]] || die "fuzz needs a number of seconds"
  # shellcheck disable=SC2086
  need_packages $BUILD_PACKAGES $FUZZ_PACKAGES
  find_root
  build fuzz
  say "Fuzzing, $1 s each target"
  test/fuzz/run.sh build/fuzz/fuzz test/fuzz/corpus build/fuzz/found "$1" || die "fuzzing found something: see above"
}

mkdir -p build
case "${1:-}" in
  demo) demo ;;
  test) run_test_command ;;
  bench) bench "${@:2}" ;;
  mutate) mutate "${@:2}" ;;
  damage) damage ;;
  load) load ;;
  crash) crash "${@:2}" ;;
  check) check ;;
  package) package ;;
  compilers) compilers ;;
  valgrind) valgrind "${@:2}" ;;
  docs) docs ;;
  fuzz) fuzz "${2:-}" ;;
  -h | --help | help) usage ;;
  *)
    usage >&2
    exit 2
    ;;
esac
