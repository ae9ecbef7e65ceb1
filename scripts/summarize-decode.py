#!/usr/bin/env python3
"""Summarises the JSON lines of `satwalk-tool decode` read from standard input."""
import json
import math
import sys


def main() -> int:
    batches = valid = syncs = 0
    first = last = None
    prns = set()
    distance_m = 0.0
    prev = None
    max_knots = 0.0
    for line in sys.stdin:
        fix = json.loads(line)
        batches += 1
        syncs += fix["timeSync"]
        for sat in fix["satellites"]:
            if sat["prn"]:
                prns.add(sat["prn"])
        if not fix["fixValid"]:
            continue
        valid += 1
        pos = (fix["latitudeDegrees"], fix["longitudeDegrees"])
        if first is None:
            first = fix
        last = fix
        try:
            max_knots = max(max_knots, float(fix["speedKnots"] or 0))
        except ValueError:
            pass
        if prev is not None:
            lat = math.radians((pos[0] + prev[0]) / 2)
            dy = (pos[0] - prev[0]) * 111_195.0
            dx = (pos[1] - prev[1]) * 111_195.0 * math.cos(lat)
            distance_m += math.hypot(dx, dy)
        prev = pos
    print(f"batches decoded:      {batches}")
    print(f"batches with a fix:   {valid}")
    print(f"time synchronisations:{syncs:>5}")
    print(f"satellites seen:      {len(prns)} ({', '.join(sorted(prns, key=int))})" if prns
          else "satellites seen:      0")
    if first is not None:
        print(f"first fix:            {first['fixTimeLocal']}  "
              f"{first['latitudeDegrees']:.6f}, {first['longitudeDegrees']:.6f}")
        print(f"last fix:             {last['fixTimeLocal']}  "
              f"{last['latitudeDegrees']:.6f}, {last['longitudeDegrees']:.6f}")
        print(f"distance driven:      {distance_m / 1000:.2f} km")
        print(f"top speed:            {max_knots * 1.85:.1f} km/h")
    return 0


if __name__ == "__main__":
    sys.exit(main())
