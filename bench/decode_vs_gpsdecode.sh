#!/usr/bin/env bash
# Whole-process decoding speed: `satwalk-tool decode FILE` (JSON out) beside
# the peer decoder `gpsdecode -d -j` (gpsd-clients) on the same 50 MB log,
# run alternately in one go, plus the peak resident memory of satwalk-tool
# on the 50 MB log against a 5 MB one (it streams, so the two must match).
#
#   bench/decode_vs_gpsdecode.sh [REPETITIONS]     (default 3)
#
# The logs are made once by the demo generator into build/bench-data/.
# Budgets: satwalk-tool at least 20 times the MB/s of gpsdecode; its peak
# resident memory on 50 MB within 10 % (or 1 MB) of that on 5 MB.
source "$(dirname "$0")/peer_bench.sh"
peer_bench gpsdecode "$@" <<'EOF'
import os
import statistics
import subprocess
import sys
import time

tool, reps = sys.argv[1], int(sys.argv[2])
GENERATOR = "resources/demo/generate_demo_log.py"
DATA = "build/bench-data"


def make_log(megabytes):
    """A drive of exactly `megabytes` MB (cut at a line end), made once."""
    path = f"{DATA}/drive-{megabytes}MB.nmea"
    size = megabytes * 1_000_000
    if os.path.exists(path) and size - 200 < os.path.getsize(path) <= size:
        return path
    print(f"making {path} ...", flush=True)
    minutes = size / 22_000 + 10  # a little more than needed: about 23 KB a minute
    subprocess.run([sys.executable, GENERATOR, "--minutes", str(minutes), "--out", path],
                   check=True)
    with open(path, "r+b") as f:
        f.seek(size - 200)
        tail = f.read(200)
        f.truncate(size - 200 + tail.rfind(b"\r\n") + 2)
    return path


def peak_resident_kb(pid):
    """VmHWM of the process's own address space, in kB; None once it is gone.
    (The kernel's ru_maxrss would also count the Python parent that forked
    it, so the peak is read from /proc instead.)"""
    try:
        with open(f"/proc/{pid}/status") as f:
            for line in f:
                if line.startswith("VmHWM:"):
                    return int(line.split()[1])
    except (FileNotFoundError, ProcessLookupError):
        pass
    return None


def run(argv, stdin_path=None, watch_memory=False):
    """Wall seconds of one process, output discarded, and (when watched) its
    peak resident kB, sampled every half millisecond until it exits."""
    stdin = open(stdin_path, "rb") if stdin_path else subprocess.DEVNULL
    start = time.perf_counter()
    proc = subprocess.Popen(argv, stdin=stdin, stdout=subprocess.DEVNULL)
    peak = 0
    if watch_memory:
        while proc.poll() is None:
            kb = peak_resident_kb(proc.pid)
            if kb is not None and proc.poll() is None:
                peak = max(peak, kb)
            time.sleep(0.0005)
    proc.wait()
    elapsed = time.perf_counter() - start
    if stdin_path:
        stdin.close()
    if proc.returncode != 0:
        sys.exit(f"{' '.join(argv)} failed with status {proc.returncode}")
    return elapsed, peak


big = make_log(50)
small = make_log(5)
mb = os.path.getsize(big) / 1e6

# Warm the page cache so both read the file from memory.
for path in (big, small):
    with open(path, "rb") as f:
        while f.read(1 << 20):
            pass

# Timed runs without memory sampling, so the sampling costs them nothing.
ours, theirs = [], []
for i in range(reps):
    t, _ = run([tool, "decode", big])
    ours.append(t)
    t, _ = run(["gpsdecode", "-d", "-j"], stdin_path=big)
    theirs.append(t)
    print(f"  run {i + 1}: satwalk-tool {mb / ours[-1]:7.1f} MB/s   "
          f"gpsdecode {mb / theirs[-1]:6.1f} MB/s", flush=True)
rss_big = [run([tool, "decode", big], watch_memory=True)[1] for _ in range(reps)]
rss_small = [run([tool, "decode", small], watch_memory=True)[1] for _ in range(reps)]

ours_rate = mb / statistics.median(ours)
theirs_rate = mb / statistics.median(theirs)
ratio = ours_rate / theirs_rate
peak_big, peak_small = max(rss_big), max(rss_small)
flat = peak_big <= max(peak_small * 1.10, peak_small + 1024)

print(f"\nwhole process on {mb:.1f} MB ({reps} runs each, medians):")
print(f"  satwalk-tool decode FILE > /dev/null   {ours_rate:8.1f} MB/s")
print(f"  gpsdecode -d -j < FILE > /dev/null     {theirs_rate:8.1f} MB/s")
print(f"  ratio                                  {ratio:8.1f} x   "
      f"(budget: at least 20 x) {'met' if ratio >= 20 else 'MISSED'}")
print("peak resident memory of satwalk-tool (VmHWM):")
print(f"  on {os.path.getsize(small) / 1e6:.1f} MB   {peak_small / 1024:8.1f} MB")
print(f"  on {mb:.1f} MB  {peak_big / 1024:8.1f} MB   "
      f"(budget: flat) {'met' if flat else 'MISSED'}")
EOF
