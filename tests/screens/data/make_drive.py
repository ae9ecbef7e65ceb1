#!/usr/bin/env python3
"""Writes drive.nmea: a short synthetic drive (one RMC, GGA, GSA and GSV
cycle per second) with valid checksums, for the screen tests and renders."""
import math


def nmea(body):
    cs = 0
    for ch in body:
        cs ^= ord(ch)
    return "$%s*%02X\r\n" % (body, cs)


def dm(value, lat):
    v = abs(value)
    d = int(v)
    m = (v - d) * 60
    return ("%02d%07.4f" if lat else "%03d%07.4f") % (d, m)


sats = [  # prn, elevation, azimuth, base snr (0 = tracked, not heard)
    (2, 72, 40, 46), (5, 35, 95, 38), (9, 12, 160, 22), (12, 55, 210, 41),
    (15, 20, 300, 0), (17, 5, 250, 9), (21, 48, 330, 33), (24, 85, 120, 52),
    (26, 28, 20, 17), (29, 61, 270, 44), (31, 3, 180, 0),
]
out = []
lat, lon = 30.517067, 114.35
course = 30.0
for t in range(120):
    speed_kn = min(60.0, t * 0.9)  # speeds up to 60 knots (111 km/h)
    course = (course + 3.5) % 360
    lat += speed_kn * 0.000004 * math.cos(math.radians(course))
    lon += speed_kn * 0.000004 * math.sin(math.radians(course))
    hh, mm, ss = 8, 15 + (t // 60), t % 60
    utc = "%02d%02d%02d.00" % (hh, mm, ss)
    ns, ew = ("N" if lat >= 0 else "S"), ("E" if lon >= 0 else "W")
    out.append(nmea("GPRMC,%s,A,%s,%s,%s,%s,%.1f,%.1f,211126,,,A" % (
        utc, dm(lat, True), ns, dm(lon, False), ew, speed_kn, course)))
    out.append(nmea("GPGGA,%s,%s,%s,%s,%s,1,08,0.9,%.1f,M,-13.0,M,," % (
        utc, dm(lat, True), ns, dm(lon, False), ew, 23.4 + t * 0.1)))
    used = ",".join("%02d" % s[0] for s in sats[:8]) + ",,,,"
    out.append(nmea("GPGSA,A,3,%s,1.8,0.9,1.6" % used))
    total = (len(sats) + 3) // 4
    for i in range(total):
        chunk = sats[i * 4:(i + 1) * 4]
        fields = []
        for prn, el, az, snr in chunk:
            s = "" if snr == 0 else "%02d" % max(1, snr + int(3 * math.sin(t / 7 + prn)))
            fields.append("%02d,%02d,%03d,%s" % (prn, el, (az + t // 10) % 360, s))
        out.append(nmea("GPGSV,%d,%d,%02d,%s" % (total, i + 1, len(sats), ",".join(fields))))
open("drive.nmea", "w", newline="").write("".join(out))
