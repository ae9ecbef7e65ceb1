# Sourced by the whole-process comparisons with a peer program: stops at the
# first failing command and works from the repository's root, then
#
#   peer_bench PROGRAM [REPETITIONS] <<'PY' ... PY
#
# stops (status 2) when the peer is not installed, builds satwalk-tool when
# it is not there yet, makes build/bench-data/ and runs the Python script on
# its standard input with satwalk-tool's path and the repetitions (default 3)
# as its arguments.
peer_bench() {
  command -v "$1" >/dev/null || { echo "$1 missing: run scripts/setup" >&2; exit 2; }
  local tool=build/default/tools/satwalk-tool
  if [ ! -x "$tool" ]; then
    cmake --preset default >/dev/null
    cmake --build --preset default -j2 --target satwalk-tool
  fi
  mkdir -p build/bench-data
  exec python3 - "$tool" "${2:-3}"
}

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
