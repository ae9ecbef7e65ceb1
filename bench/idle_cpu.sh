#!/usr/bin/env bash
# CPU use of the whole program with a 1 Hz receiver: the replay receiver
# plays a log at one epoch a second for SECONDS (default 30), offscreen, and
# the process's user + system time is set against the wall time. Budget:
# under 2% of one core. The first seconds (start-up) are included.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-30}"
log="${2:-resources/demo/demo-drive.nmea}"
app=build/default/satwalk
[ -x "$app" ] || { echo "build first: cmake --build --preset default --target satwalk"; exit 2; }
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
printf 'wait %d\nquit\n' "$((seconds * 1000))" >"$work/idle.script"
HOME="$work" QT_QPA_PLATFORM=offscreen /usr/bin/time -f '%U %S %e %M' -o "$work/time" \
  "$app" --options "$work/options" --replay "$log" --replay-rate 1 --script "$work/idle.script" \
  2>/dev/null
read -r user sys wall rss <"$work/time"
python3 - "$user" "$sys" "$wall" "$rss" <<'PY'
import sys
user, sys_, wall, rss = map(float, sys.argv[1:])
share = 100.0 * (user + sys_) / wall
print(f"CPU {user + sys_:.2f} s over {wall:.1f} s wall: {share:.2f}% of one core "
      f"(budget 2%); peak RSS {rss / 1024:.1f} MiB")
sys.exit(0 if share < 2.0 else 1)
PY
