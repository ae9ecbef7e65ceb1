#!/usr/bin/env bash
# Whole-process cost of following a 1 Hz receiver: `satwalk-tool log` reads a
# `satwalk-tool replay` pseudo-terminal at 9600 baud for SECONDS (default 60)
# and this prints its CPU time as a share of one core, its peak resident
# memory, and the delay from each epoch's write to its decoded JSON line.
# Budgets: CPU <= 1 %, RSS < 10 MB, latency <= 1.1 s.
# In gpsd mode a gpsd of its own (on a free loopback port) holds the
# pseudo-terminal and `satwalk-tool log` follows it at gpsd://127.0.0.1:PORT;
# the delay is then from the epoch's write into gpsd to its decoded line.
#   bench/link_cpu.sh [BUILD_DIR] [SECONDS] [tty|gpsd]
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build/default}
SECONDS_TO_RUN=${2:-60}
MODE=${3:-tty}
TOOL="$BUILD/tools/satwalk-tool"
[ -x "$TOOL" ] || { echo "build satwalk-tool first ($TOOL)" >&2; exit 2; }
LOG=resources/demo/demo-drive.nmea
exec python3 - "$TOOL" "$LOG" "$SECONDS_TO_RUN" "$MODE" <<'PY'
import json, os, socket, subprocess, sys, tempfile, time

tool, log, seconds, mode = sys.argv[1], sys.argv[2], int(sys.argv[3]), sys.argv[4]

def sentence(body):
    s = 0
    for c in body.encode():
        s ^= c
    return "$%s*%02X\r\n" % (body, s)

if not os.path.exists(log):
    # A synthetic drive: one RMC, GGA, GSA and three GSV per second.
    text = []
    for k in range(seconds + 30):
        t = "%02d%02d%02d.00" % (12, (k // 60) % 60, k % 60)
        lat = "3112.%04d" % (k % 10000)
        text.append(sentence("GPRMC,%s,A,%s,N,12128.0000,E,10.5,90.0,150307,,,A" % (t, lat)))
        text.append(sentence("GPGGA,%s,%s,N,12128.0000,E,1,08,1.0,12.0,M,8.0,M,," % (t, lat)))
        text.append(sentence("GPGSA,A,3,01,02,03,04,05,06,07,08,,,,,2.0,1.0,1.7"))
        for m in range(3):
            sats = ",".join("%02d,%d,%d,%d" % (m * 4 + i + 1, 10 + i * 10, 40 * i, 30 + i)
                            for i in range(4))
            text.append(sentence("GPGSV,3,%d,12,%s" % (m + 1, sats)))
    fd, log = tempfile.mkstemp(suffix=".nmea")
    os.write(fd, "".join(text).encode())
    os.close(fd)

# The epoch number of each RMC time in the log, to date the decoded batches.
epoch_of = {}
with open(log, "rb") as f:
    for line in f:
        if line[3:6] == b"RMC":
            t = line.split(b",")[1].decode(errors="replace")
            epoch_of.setdefault(t, len(epoch_of))

replay = subprocess.Popen([tool, "replay", log, "--rate", "1"], stdout=subprocess.PIPE)
start = time.monotonic()  # epoch 0 is written when the path is printed
pty = replay.stdout.readline().decode().strip()
gpsd = None
port = pty
if mode == "gpsd":
    s = socket.socket()
    s.bind(("127.0.0.1", 0))
    free = s.getsockname()[1]
    s.close()
    gpsd = subprocess.Popen(["gpsd", "-N", "-n", "-b", "-S", str(free), pty],
                            stderr=subprocess.DEVNULL)
    for _ in range(200):  # up to 10 s for it to listen
        try:
            socket.create_connection(("127.0.0.1", free), 0.2).close()
            break
        except OSError:
            time.sleep(0.05)
    port = "gpsd://127.0.0.1:%d" % free
logger = subprocess.Popen([tool, "log", "--port", port, "--baud", "9600",
                           "--seconds", str(seconds)], stdout=subprocess.PIPE)
def peak_rss_kb(pid):
    # VmHWM of the running program itself (the rusage of a child also counts
    # the forking interpreter before exec).
    try:
        with open("/proc/%d/status" % pid) as f:
            for row in f:
                if row.startswith("VmHWM:"):
                    return int(row.split()[1])
    except OSError:
        pass
    return 0

latencies, batches, last, hwm = [], 0, None, 0
for line in logger.stdout:
    now = time.monotonic()
    hwm = max(hwm, peak_rss_kb(logger.pid))
    obj = json.loads(line)
    last = obj
    if "batch" in obj:
        batches += 1
        k = epoch_of.get(obj["utcTime"])
        if k is not None:
            latencies.append(now - (start + k))
_, status, usage = os.wait4(logger.pid, 0)
replay.terminate()
replay.wait()
if gpsd:
    gpsd.terminate()
    gpsd.wait()

cpu = usage.ru_utime + usage.ru_stime
print("satwalk-tool log, %d s at 1 Hz, %s: %d batches"
      % (seconds, "through gpsd" if gpsd else "9600 baud", batches))
print("  CPU  %.3f s = %.3f %% of one core (budget 1 %%)" % (cpu, 100.0 * cpu / seconds))
print("  RSS  %.1f MB peak (budget 10 MB)" % (hwm / 1024.0))
if latencies:
    # The first batches may carry epochs written before the port was opened.
    steady = latencies[2:] or latencies
    print("  latency  max %.3f s, mean %.3f s (budget 1.1 s)"
          % (max(steady), sum(steady) / len(steady)))
print("  end: %s" % json.dumps(last, ensure_ascii=False) if last and "linkLossReason" in last else "")
PY
