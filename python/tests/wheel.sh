#!/usr/bin/env bash
# Builds the wheel, installs it in an environment of its own, and uses it as an analyst would: with the README's Python
# example, outside the source tree, and without environment variables.
# Arguments: Python with the packages that the wheel needs, source folder of the project, scratch folder.
set -euo pipefail
python=$1 source=$2 scratch=$3

die() {
  echo "$*" >&2
  exit 1
}

rm -rf "$scratch"
mkdir -p "$scratch/build/demo"
cd "$scratch"
# Without isolation ROOT is not installed once more for the build.
"$python" -m pip wheel -q --disable-pip-version-check --no-deps --no-build-isolation -w . "$source/python" > wheel.log 2>&1 ||
  die "the wheel can't be built: $(tail -n 30 wheel.log)"

"$python" -m venv --without-pip env
site=$(echo "$scratch"/env/lib/python3*/site-packages)
"$python" -m pip install -q --disable-pip-version-check --no-deps --target "$site" stnevent-*.whl
# What the wheel needs stands beside it, ROOT in the place where an installation puts it.
ln -s "$("$python" -W ignore -c "import ROOT; print(ROOT.__path__[0])")" "$site/ROOT"
"$python" -c "import sys; print(*(path for path in sys.path if path.endswith('-packages')), sep='\n')" > "$site/packages.pth"

cp "$source/test/golden/run.root" build/demo/run.root
awk '/^```python/ { inside = 1; next } /^```/ { inside = 0 } inside' "$source/README.md" > readme.py
env -i PATH=/usr/bin:/bin MPLBACKEND=Agg env/bin/python readme.py
[[ -s run.png ]] || die "the README's example made no picture"

env -i PATH=/usr/bin:/bin env/bin/python -W ignore - "$site" << 'EOF'
import sys

import stnevent

assert stnevent.__file__.startswith(sys.argv[1]), stnevent.__file__
with stnevent.open("build/demo/run.root") as run:
    assert run.by_number(4).traces().pixel.tolist() == run.by_number(4).pixels().tolist()
# The interpreter of ROOT finds the headers in the wheel, also after the library was used.
assert stnevent.root().TStnEventHeader.kTicksPerSecond == 80000000
# So does that of the data frames.
import stnevent.rdf

frame = stnevent.rdf.header_columns(stnevent.root().RDataFrame("StnEventTree", "build/demo/run.root"))
assert frame.Sum["UInt_t"]("fEventNumber").GetValue() == 15
EOF
echo "the wheel works"
