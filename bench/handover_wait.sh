#!/usr/bin/env bash
# How long the receiver's reader waits for the window per batch while the
# map screen follows the position: the whole program runs offscreen on the
# demo drive (replayed RATE times as fast, default 4) for SECONDS (default
# 30), and prints the median and 90th percentile of the time from handing a
# batch to the window until the reader goes on.
#   bench/handover_wait.sh [BUILD_DIR] [SECONDS] [RATE]
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build/default}
SECONDS_TO_RUN=${2:-30}
RATE=${3:-4}
APP="$BUILD/satwalk"
[ -x "$APP" ] || { echo "build satwalk first ($APP)" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/home"
printf 'command 40029\nwait %d\nquit\n' "$((SECONDS_TO_RUN * 1000))" >"$work/script.txt"
HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_RUNTIME_DIR="$work/home" \
  QT_QPA_PLATFORM=offscreen SATWALK_HANDOVER_STATS=1 \
  "$APP" --options "$work/home/options.dat" --replay --replay-rate "$RATE" \
  --script "$work/script.txt" 2>&1 >/dev/null | grep 'hand-over wait' || {
  echo "no hand-over figures (did the program start?)" >&2
  exit 1
}
