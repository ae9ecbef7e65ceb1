#!/usr/bin/env bash
# Whole-process GPX reading: `satwalk-tool track FILE --stats` (every point
# read, projected nowhere, into the statistics) beside
# `gpsbabel -i gpx -f FILE -o unicsv -F /dev/null` on the same GPX of
# 1,000,000 track points (about 100 MB), run alternately in one go, with the
# peak resident memory of each.
#
#   bench/gpx_vs_gpsbabel.sh [REPETITIONS]     (default 3)
#
# The GPX is made once into build/bench-data/. Budgets: satwalk-tool at
# least 5 times as fast as gpsbabel; its peak memory under 16 MB (it streams).
# The in-process figures (both trails, statistics) are bench_track_files'.
source "$(dirname "$0")/peer_bench.sh"
peer_bench gpsbabel "$@" <<'PY'
import os
import random
import statistics
import subprocess
import sys
import time

tool, reps = sys.argv[1], int(sys.argv[2])
path = "build/bench-data/walk-1M.gpx"
if not os.path.exists(path):
    print(f"making {path} ...", flush=True)
    random.seed(7)
    lat, lon = 30.25, 120.15
    with open(path + ".part", "w") as f:
        f.write('<?xml version="1.0" encoding="UTF-8"?>\n<gpx version="1.1" creator="bench" '
                'xmlns="http://www.topografix.com/GPX/1/1">\n<trk><trkseg>\n')
        for i in range(1_000_000):
            lat += random.uniform(-5e-5, 5e-5)
            lon += random.uniform(-5e-5, 5e-5)
            f.write('<trkpt lat="%.7f" lon="%.7f"><ele>%.1f</ele>'
                    '<time>2024-05-%02dT%02d:%02d:%02dZ</time></trkpt>\n'
                    % (lat, lon, 20 + i % 50, 1 + i // 86400, i // 3600 % 24, i // 60 % 60, i % 60))
        f.write("</trkseg></trk></gpx>\n")
    os.rename(path + ".part", path)


def run(command):
    """Wall seconds and peak resident MB of one run (GNU time's own count)."""
    start = time.perf_counter()
    result = subprocess.run(["/usr/bin/time", "-f", "%M"] + command, stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, text=True, check=True)
    seconds = time.perf_counter() - start
    return seconds, int(result.stderr.strip().splitlines()[-1]) / 1024


ours, theirs = [], []
for _ in range(reps):
    ours.append(run([tool, "track", path, "--stats"]))
    theirs.append(run(["gpsbabel", "-i", "gpx", "-f", path, "-o", "unicsv", "-F", "/dev/null"]))
o = statistics.median(s for s, _ in ours)
t = statistics.median(s for s, _ in theirs)
mb = os.path.getsize(path) / 1e6
print(f"GPX {mb:.0f} MB, 1,000,000 points, median of {reps}")
print(f"  satwalk-tool track --stats  {o:6.2f} s  peak {max(m for _, m in ours):6.1f} MB")
print(f"  gpsbabel -> unicsv          {t:6.2f} s  peak {max(m for _, m in theirs):6.1f} MB")
print(f"  satwalk-tool is {t / o:.1f} times as fast (budget: at least 5)")
PY
