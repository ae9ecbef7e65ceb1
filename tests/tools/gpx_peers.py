#!/usr/bin/env python3
"""GPX files in the shapes other programs write (a handheld's log with its
extensions, a logger's GPX 1.0 with CRLF and a byte-order mark, a geocache
listing, a route planner's file with time zones) read by `satwalk-tool
track` and `satwalk-tool poi` as gpsbabel reads them: the same points with
the same positions, elevations and times (to the second, in UTC), and the
same waypoints with the same names.

    gpx_peers.py SATWALK_TOOL GPX_FOLDER
Exit 77 (skipped) when gpsbabel is missing."""
import csv
import io
import json
import os
import shutil
import subprocess
import sys

tool, folder = sys.argv[1], sys.argv[2]
if shutil.which("gpsbabel") is None:
    print("gpsbabel missing: skipped")
    sys.exit(77)
env = dict(os.environ, TZ="UTC")


def babel(kind, path):
    out = subprocess.run(["gpsbabel", kind, "-i", "gpx", "-f", path, "-o", "unicsv,utc=0", "-F", "-"],
                         capture_output=True, text=True, check=True, env=env).stdout
    return list(csv.DictReader(io.StringIO(out)))


def position(lat, lon):
    return (round(float(lat), 6), round(float(lon), 6))


def babel_point(row):
    ele = row.get("Altitude") or None
    when = None
    if row.get("Date"):
        when = row["Date"].replace("/", "-") + " " + row["Time"].split(".")[0]
    return position(row["Latitude"], row["Longitude"]) + (
        None if ele is None else round(float(ele), 2), when)


def ours(command, path):
    run = subprocess.run([tool, command, path], capture_output=True, text=True, env=env)
    if run.returncode == 1 and "no POI" in run.stderr:
        return []  # said, with status 1, of a file without waypoints
    run.check_returncode()
    return json.loads(run.stdout)["points"]


failures = 0
for name in sorted(os.listdir(folder)):
    if not name.endswith(".gpx"):
        continue
    path = os.path.join(folder, name)
    want = sorted(map(babel_point, babel("-t", path) + babel("-r", path)),
                  key=repr)
    got = sorted((position(p["latitude"], p["longitude"]) +
                  (None if p["elevation"] is None else round(p["elevation"], 2), p["time"])
                  for p in ours("track", path)), key=repr)
    want_wpt = sorted((position(r["Latitude"], r["Longitude"]) + (r["Name"],)
                       for r in babel("-w", path)), key=repr)
    got_wpt = sorted((position(p["latitude"], p["longitude"]) + (p["name"],)
                      for p in ours("poi", path)), key=repr)
    for what, a, b in (("track points", want, got), ("waypoints", want_wpt, got_wpt)):
        if a != b:
            failures += 1
            print(f"{name}: {what} differ\n  gpsbabel: {a}\n  satwalk:  {b}")
        else:
            print(f"{name}: {len(a)} {what} as gpsbabel reads them")
sys.exit(1 if failures else 0)
