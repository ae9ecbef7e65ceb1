#!/usr/bin/env python3
"""Writes speed-run.nmea: 80 one-second epochs of a receiver that gets a fix
at once, speeds up from 0 to 45 knots heading east and holds that speed (RMC, GGA, GSA, GSV
with checksums). Used by the end-to-end script tests."""
import os


def sentence(body):
    cs = 0
    for ch in body.encode():
        cs ^= ch
    return "$%s*%02X\r\n" % (body, cs)


def main():
    out = []
    lon = 11400.0000
    for i in range(80):
        t = "08%02d%02d.00" % (i // 60, i % 60)
        knots = float(min(i, 45))
        lon += knots * 1.852 / 3600.0 / 102.8 * 60.0  # minutes of longitude at 22.5 N
        out.append(sentence("GPRMC,%s,A,2232.1000,N,%09.4f,E,%05.1f,090.0,211126,,,A" % (t, lon, knots)))
        out.append(sentence("GPGGA,%s,2232.1000,N,%09.4f,E,1,08,0.9,45.0,M,-3.0,M,," % (t, lon)))
        out.append(sentence("GPGSA,A,3,03,06,09,12,17,19,22,25,,,,,1.6,0.9,1.3"))
        out.append(sentence("GPGSV,2,1,08,03,45,120,42,06,30,200,38,09,60,310,45,12,15,045,30"))
        out.append(sentence("GPGSV,2,2,08,17,70,090,47,19,25,260,33,22,10,330,22,25,50,015,40"))
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "speed-run.nmea")
    with open(path, "w", newline="") as f:
        f.write("".join(out))
    print(path)


if __name__ == "__main__":
    main()
