#!/usr/bin/env python3
"""Generates the bundled demo drive: a 1 Hz NMEA 0183 recording of a car
driving the roads around West Lake in Hangzhou.

Usage:
    python3 resources/demo/generate_demo_log.py
        writes resources/demo/demo-drive.nmea (13 minutes, about 400 KB)
    python3 resources/demo/generate_demo_log.py --minutes 2000 --out big.nmea
        a longer drive (laps of the lake) for benchmarks; about 27 KB a minute

Every epoch carries $GPRMC, $GPGGA, $GPGSA and a full $GPGSV cycle, now and
then a $GPVTG or $GPGLL, with CR LF line ends and uppercase checksums. The
first ten seconds have no fix while the receiver acquires its satellites.
The satellites come from a simple circular-orbit constellation, so their
elevation and azimuth drift during the drive and some rise or set; signal
strength follows elevation with noise, and low satellites drop out now and
then (trees and buildings). Dilution of precision is computed from the
geometry of the satellites used.

The output depends only on the options: the same options give the same
bytes. Standard library only.
"""
import argparse
import datetime
import math
import os
import random
import sys

SEED = 20260516
START_UTC = datetime.datetime(2026, 5, 16, 1, 58, 40, tzinfo=datetime.timezone.utc)
ACQUISITION_S = 10
PARK_BEFORE_S = 6   # standing with a fix before pulling away
PARK_AFTER_S = 12   # standing at the destination at the end

EARTH_RADIUS = 6_371_000.0
ORBIT_RADIUS = 26_560_000.0
ORBIT_PERIOD = 43_082.0          # half a sidereal day, seconds
EARTH_RATE = 7.2921151467e-5     # rad/s
INCLINATION = math.radians(55.0)
ELEVATION_MASK = 5.0             # degrees; lower satellites are not listed
MAX_LISTED = 12                  # GSV lists at most 12 (three messages)
GEOID_SEPARATION = "7.9"
# Where the constellation stands at the start, seconds into its own clock;
# chosen so that 9 to 12 satellites are in view and a few rise or set.
ORBIT_CLOCK_START = 12240.0

# A loop around the lake, counter-clockwise from the east shore: Hubin Road
# north, a block of the city grid east of the lake (Jiefang Road, Yan'an
# Road), back to the shore and west along Beishan Street, the Yanggong
# causeway south and Nanshan Road east along the south shore.
# (lat, lon, cruise km/h of the leg that starts here, traffic light here)
WAYPOINTS = [
    (30.24600, 120.16300, 50, False),
    (30.24900, 120.16380, 50, False),
    (30.25200, 120.16350, 40, True),
    (30.25210, 120.16700, 40, False),
    (30.25220, 120.16950, 45, True),
    (30.25600, 120.16960, 45, False),
    (30.25950, 120.16970, 40, True),
    (30.25960, 120.16500, 40, False),
    (30.25960, 120.16200, 40, True),
    (30.25990, 120.15850, 35, False),
    (30.25960, 120.15600, 35, False),
    (30.25920, 120.15400, 35, True),
    (30.25880, 120.15200, 35, False),
    (30.25835, 120.14950, 40, False),
    (30.25790, 120.14760, 40, False),
    (30.25700, 120.14500, 40, False),
    (30.25640, 120.14300, 40, False),
    (30.25540, 120.14080, 40, True),
    (30.25470, 120.13900, 45, False),
    (30.25330, 120.13760, 65, False),
    (30.25100, 120.13690, 70, False),
    (30.24800, 120.13650, 70, False),
    (30.24500, 120.13630, 70, False),
    (30.24150, 120.13660, 70, False),
    (30.23800, 120.13720, 50, True),
    (30.23500, 120.13790, 45, False),
    (30.23330, 120.13900, 45, False),
    (30.23260, 120.14150, 50, False),
    (30.23240, 120.14450, 50, False),
    (30.23330, 120.14850, 50, True),
    (30.23550, 120.15150, 55, False),
    (30.23800, 120.15450, 55, False),
    (30.24100, 120.15750, 55, False),
    (30.24350, 120.16000, 50, True),
]

M_PER_DEG_LAT = 111_195.0


def checksum(body: str) -> str:
    value = 0
    for ch in body:
        value ^= ord(ch)
    return f"{value:02X}"


def sentence(body: str) -> str:
    return f"${body}*{checksum(body)}\r\n"


# ---------------------------------------------------------------- the road

def local_xy(lat, lon):
    """Metres east and north of the first waypoint (flat earth is plenty)."""
    lat0, lon0 = WAYPOINTS[0][0], WAYPOINTS[0][1]
    return ((lon - lon0) * M_PER_DEG_LAT * math.cos(math.radians(lat0)),
            (lat - lat0) * M_PER_DEG_LAT)


def xy_to_latlon(x, y):
    lat0, lon0 = WAYPOINTS[0][0], WAYPOINTS[0][1]
    return (lat0 + y / M_PER_DEG_LAT,
            lon0 + x / (M_PER_DEG_LAT * math.cos(math.radians(lat0))))


def build_road():
    """The loop smoothed into road-like curves and sampled every metre:
    (x, y, cruise m/s, curve speed limit m/s, light here) per metre."""
    pts = [(*local_xy(lat, lon), kmh, light) for lat, lon, kmh, light in WAYPOINTS]
    # Round every corner into an arc a few tens of metres long, as a
    # junction or a bend of the shore road is driven.
    for cut_m in (18.0, 8.0, 3.0):
        rounded = []
        for i, (x1, y1, kmh, light) in enumerate(pts):
            x0, y0, kmh0, _ = pts[i - 1]
            x2, y2, _, _ = pts[(i + 1) % len(pts)]
            len_in = math.hypot(x1 - x0, y1 - y0)
            len_out = math.hypot(x2 - x1, y2 - y1)
            a = min(cut_m, 0.45 * len_in) / len_in
            b = min(cut_m, 0.45 * len_out) / len_out
            rounded.append((x1 - (x1 - x0) * a, y1 - (y1 - y0) * a, kmh0, light))
            rounded.append((x1 + (x2 - x1) * b, y1 + (y2 - y1) * b, kmh, False))
        pts = rounded
    road = []
    for i, (x0, y0, kmh, light) in enumerate(pts):
        x1, y1, _, _ = pts[(i + 1) % len(pts)]
        length = math.hypot(x1 - x0, y1 - y0)
        steps = max(1, int(length))
        for k in range(steps):
            t = k / steps
            road.append([x0 + (x1 - x0) * t, y0 + (y1 - y0) * t, kmh / 3.6, 99.0,
                         light and k == 0])
    n = len(road)
    # Curve speed: lateral acceleration of at most 2 m/s^2 over a 12 m chord.
    for i in range(n):
        ax, ay = road[(i - 6) % n][:2]
        bx, by = road[i][:2]
        cx, cy = road[(i + 6) % n][:2]
        h1 = math.atan2(by - ay, bx - ax)
        h2 = math.atan2(cy - by, cx - bx)
        turn = abs((h2 - h1 + math.pi) % (2 * math.pi) - math.pi)
        if turn > 1e-4:
            radius = 12.0 / turn
            road[i][3] = math.sqrt(2.0 * radius)
    return road


class Car:
    """Drives along the road: accelerates to the cruise speed of the leg,
    brakes for bends and for red lights, waits, and pulls away again."""

    BRAKE = 1.8  # m/s^2, comfortable braking

    def __init__(self, road, rng):
        self.road = road
        self.rng = rng
        self.s = 0.0            # metres travelled since the start
        self.v = 0.0            # m/s
        self.wait = 0.0         # seconds left standing at a red light
        self.red_at = None      # distance s of the stop line we will stop at
        self.decided = set()    # lights already decided on this lap
        self.traffic = 1.0      # factor on the cruise speed (slow traffic)
        self.traffic_goal = 1.0
        self.wander = 0.0       # the driver's own speed wobble, m/s
        self.heading = 0.0
        n = len(road)
        self.lights = [i for i in range(n) if road[i][4]]
        # Highest speed at each metre from which the bends ahead can still be
        # taken (a backward pass, twice round the loop).
        env = [p[3] for p in road]
        for _ in range(2):
            for i in range(n - 1, -1, -1):
                nxt = env[(i + 1) % n]
                env[i] = min(env[i], math.sqrt(nxt * nxt + 2 * self.BRAKE))
        self.envelope = env

    def index(self, s):
        return int(s) % len(self.road)

    def next_light(self):
        """Distance s of the next stop line ahead."""
        n = len(self.road)
        lap, here = divmod(int(self.s) + 1, n)
        for i in self.lights:
            if i >= here:
                return lap * n + i
        return (lap + 1) * n + self.lights[0]

    def step(self, seconds, parked, pulling_over=False):
        dt = 0.2
        for _ in range(int(round(seconds / dt))):
            if pulling_over:
                self.v = max(0.0, self.v - 2.0 * dt)
                self.s += self.v * dt
                continue
            if parked or self.wait > 0:
                self.wait = max(0.0, self.wait - dt)
                self.v = 0.0
                continue
            # Traffic ahead speeds up and slows down every half minute or so.
            if self.rng.random() < 0.008:
                self.traffic_goal = self.rng.uniform(0.6, 1.0)
            step = 0.04 * dt
            self.traffic += max(-step, min(step, self.traffic_goal - self.traffic))
            self.wander = 0.98 * self.wander + self.rng.gauss(0, 0.08)
            here = self.index(self.s)
            cruise = self.road[here][2] * self.traffic + self.wander
            limit = min(cruise, self.envelope[here], 71.0 / 3.6)
            light = self.next_light()
            if light - self.s < 150 and light not in self.decided:
                self.decided.add(light)
                if self.rng.random() < 0.55:
                    self.red_at = light
                    self.red_length = self.rng.uniform(12, 45)
            if self.red_at is not None:
                gap = self.red_at - 3.0 - self.s
                limit = min(limit, math.sqrt(2 * self.BRAKE * max(0.0, gap)))
                if gap < 1.0 and self.v < 1.0:
                    self.v = 0.0
                    self.wait = self.red_length
                    self.red_at = None
                    continue
            if self.v < limit:
                self.v = min(limit, self.v + self.rng.uniform(1.0, 1.8) * dt)
            else:
                self.v = max(limit, self.v - 3.0 * dt)
            self.s += self.v * dt
            j = self.index(self.s)
            k = self.index(self.s + 4)
            if self.v > 0.3:
                self.heading = math.atan2(self.road[k][0] - self.road[j][0],
                                          self.road[k][1] - self.road[j][1])

    def position(self):
        i = self.index(self.s)
        t = self.s - int(self.s)
        a, b = self.road[i], self.road[(i + 1) % len(self.road)]
        return a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t


def altitude_at(lat, lon):
    """Lake shore about 14 m, rising toward the hills west of the lake."""
    d2 = ((lat - 30.2470) / 0.007) ** 2 + ((lon - 120.1330) / 0.006) ** 2
    return 14.0 + 22.0 * math.exp(-d2)


# --------------------------------------------------------- the satellites

class Constellation:
    """31 satellites in six circular orbital planes, 55 degrees inclined."""

    def __init__(self, rng):
        prns = list(range(1, 33))
        rng.shuffle(prns)
        self.sats = []
        slots = [5, 5, 6, 5, 5, 5]
        for plane, count in enumerate(slots):
            raan = math.radians(plane * 60.0 + rng.uniform(-3, 3))
            for k in range(count):
                phase = math.radians(k * 360.0 / count + plane * 20.0 + rng.uniform(-12, 12))
                self.sats.append((prns.pop(), raan, phase))
        self.sats.sort()

    def sky(self, t, lat, lon):
        """(prn, elevation, azimuth) in degrees of every satellite above the
        mask, seen from lat, lon at t seconds."""
        phi, lam = math.radians(lat), math.radians(lon)
        rx = EARTH_RADIUS * math.cos(phi) * math.cos(lam)
        ry = EARTH_RADIUS * math.cos(phi) * math.sin(lam)
        rz = EARTH_RADIUS * math.sin(phi)
        sin_phi, cos_phi = math.sin(phi), math.cos(phi)
        sin_lam, cos_lam = math.sin(lam), math.cos(lam)
        theta = EARTH_RATE * t
        mean_motion = 2 * math.pi / ORBIT_PERIOD
        ci, si = math.cos(INCLINATION), math.sin(INCLINATION)
        out = []
        for prn, raan, phase in self.sats:
            u = phase + mean_motion * t
            node = raan - theta
            cu, su = math.cos(u), math.sin(u)
            cn, sn = math.cos(node), math.sin(node)
            sx = ORBIT_RADIUS * (cu * cn - su * ci * sn) - rx
            sy = ORBIT_RADIUS * (cu * sn + su * ci * cn) - ry
            sz = ORBIT_RADIUS * (su * si) - rz
            east = -sin_lam * sx + cos_lam * sy
            north = -sin_phi * cos_lam * sx - sin_phi * sin_lam * sy + cos_phi * sz
            up = cos_phi * cos_lam * sx + cos_phi * sin_lam * sy + sin_phi * sz
            el = math.degrees(math.atan2(up, math.hypot(east, north)))
            if el >= ELEVATION_MASK:
                az = math.degrees(math.atan2(east, north)) % 360.0
                out.append((prn, el, az))
        return out


def dops(used):
    """PDOP, HDOP, VDOP of the satellites used, from their geometry."""
    rows = []
    for _, el, az in used:
        e, a = math.radians(el), math.radians(az)
        rows.append((-math.cos(e) * math.sin(a), -math.cos(e) * math.cos(a),
                     -math.sin(e), 1.0))
    m = [[sum(r[i] * r[j] for r in rows) for j in range(4)] for i in range(4)]
    inv = [[1.0 if i == j else 0.0 for j in range(4)] for i in range(4)]
    for c in range(4):
        pivot = max(range(c, 4), key=lambda r: abs(m[r][c]))
        if abs(m[pivot][c]) < 1e-12:
            return None
        m[c], m[pivot] = m[pivot], m[c]
        inv[c], inv[pivot] = inv[pivot], inv[c]
        f = m[c][c]
        m[c] = [x / f for x in m[c]]
        inv[c] = [x / f for x in inv[c]]
        for r in range(4):
            if r != c and m[r][c] != 0.0:
                g = m[r][c]
                m[r] = [x - g * y for x, y in zip(m[r], m[c])]
                inv[r] = [x - g * y for x, y in zip(inv[r], inv[c])]
    hdop = math.sqrt(inv[0][0] + inv[1][1])
    vdop = math.sqrt(inv[2][2])
    return math.hypot(hdop, vdop), hdop, vdop


class Receiver:
    """Tracking state per satellite: acquisition, signal strength, drop-outs."""

    def __init__(self, rng):
        self.rng = rng
        self.channels = []      # PRNs in channel order (the GSV order)
        self.acquired_at = {}   # PRN -> epoch its signal is locked
        self.fade = {}          # PRN -> slowly varying SNR offset, dB
        self.blocked = {}       # PRN -> seconds left behind an obstacle

    def update(self, epoch, sky):
        listed = sorted(sky, key=lambda s: -s[1])[:MAX_LISTED]
        visible = {prn for prn, _, _ in listed}
        self.channels = [p for p in self.channels if p in visible]
        for prn, el, _ in listed:
            if prn not in self.channels:
                self.channels.append(prn)
                # High satellites lock first; a rising one needs a few seconds.
                delay = 2 + (60 - min(el, 60)) / 12 + self.rng.uniform(0, 3)
                self.acquired_at[prn] = epoch + (delay if epoch > 0 else delay * 1.4)
                self.fade[prn] = self.rng.gauss(0, 1.5)
                self.blocked[prn] = 0
        info = {prn: (el, az) for prn, el, az in listed}
        rows = []
        for prn in self.channels:
            el, az = info[prn]
            self.fade[prn] = 0.95 * self.fade[prn] + self.rng.gauss(0, 0.45)
            if self.blocked[prn] > 0:
                self.blocked[prn] -= 1
            elif self.rng.random() < 0.012 * max(0.0, 1.0 - el / 35.0):
                self.blocked[prn] = self.rng.randint(3, 25)
            snr = None
            if epoch >= self.acquired_at[prn] and self.blocked[prn] == 0:
                value = 30.0 + 17.0 * math.sin(math.radians(el)) ** 0.6 + self.fade[prn]
                value += self.rng.gauss(0, 0.8)
                snr = max(16, min(50, int(round(value))))
            rows.append((prn, el, az, snr))
        return rows


# ------------------------------------------------------------- the output

def nmea_lat(lat):
    hemi = "N" if lat >= 0 else "S"
    lat = abs(lat)
    deg = int(lat)
    return f"{deg:02d}{(lat - deg) * 60:07.4f}", hemi


def nmea_lon(lon):
    hemi = "E" if lon >= 0 else "W"
    lon = abs(lon)
    deg = int(lon)
    return f"{deg:03d}{(lon - deg) * 60:07.4f}", hemi


def generate(minutes, out):
    rng = random.Random(SEED)
    road = build_road()
    car = Car(road, rng)
    constellation = Constellation(rng)
    receiver = Receiver(rng)
    epochs = max(ACQUISITION_S + 1, int(round(minutes * 60)))
    park_from = epochs - PARK_AFTER_S
    pull_over_from = park_from - 12    # time to brake gently from 70 km/h
    err_x = err_y = err_z = 0.0      # slowly wandering position error, metres
    last_course = 0.0
    t0 = ORBIT_CLOCK_START
    chunk = []
    for epoch in range(epochs):
        now = START_UTC + datetime.timedelta(seconds=epoch)
        hhmmss = now.strftime("%H%M%S") + ".000"
        ddmmyy = now.strftime("%d%m%y")
        parked = epoch < ACQUISITION_S + PARK_BEFORE_S or epoch >= park_from
        if epoch > 0:
            car.step(1.0, parked, pulling_over=pull_over_from <= epoch < park_from)
        x, y = car.position()
        err_x = 0.97 * err_x + rng.gauss(0, 0.35)
        err_y = 0.97 * err_y + rng.gauss(0, 0.35)
        err_z = 0.98 * err_z + rng.gauss(0, 0.3)
        lat, lon = xy_to_latlon(x + err_x, y + err_y)
        sky = constellation.sky(t0 + epoch, lat, lon)
        rows = receiver.update(epoch, sky)
        used = [(p, e, a) for p, e, a, snr in rows if snr is not None and snr >= 26 and e >= 8]
        geometry = dops(used) if len(used) >= 4 else None
        fix = epoch >= ACQUISITION_S and geometry is not None

        lat_text, ns = nmea_lat(lat)
        lon_text, ew = nmea_lon(lon)
        if fix:
            knots = car.v / 0.514444 + abs(rng.gauss(0, 0.03))
            if car.v > 0.3:
                last_course = (math.degrees(car.heading) + rng.gauss(0, 0.8)) % 360.0
            speed = f"{knots:.2f}"
            course = f"{last_course:.2f}"
            alt = f"{altitude_at(lat, lon) + err_z:.1f}"
            pdop, hdop, vdop = geometry
            chunk.append(sentence(f"GPRMC,{hhmmss},A,{lat_text},{ns},{lon_text},{ew},"
                                  f"{speed},{course},{ddmmyy},,,A"))
            chunk.append(sentence(f"GPGGA,{hhmmss},{lat_text},{ns},{lon_text},{ew},1,"
                                  f"{len(used[:12]):02d},{hdop:.2f},{alt},M,"
                                  f"{GEOID_SEPARATION},M,,"))
            prns = [f"{p:02d}" for p, _, _ in used[:12]] + [""] * (12 - len(used[:12]))
            mode = "3" if len(used) >= 4 else "2"
            chunk.append(sentence(f"GPGSA,A,{mode},{','.join(prns)},"
                                  f"{pdop:.2f},{hdop:.2f},{vdop:.2f}"))
        else:
            # Acquiring: the time comes from the receiver's own clock.
            chunk.append(sentence(f"GPRMC,{hhmmss},V,,,,,,,{ddmmyy},,,N"))
            chunk.append(sentence(f"GPGGA,{hhmmss},,,,,0,00,,,M,,M,,"))
            chunk.append(sentence("GPGSA,A,1,,,,,,,,,,,,,,,"))
        total = (len(rows) + 3) // 4
        for m in range(total):
            groups = []
            for prn, el, az, snr in rows[m * 4:(m + 1) * 4]:
                groups.append(f"{prn:02d},{int(round(el)):02d},{int(round(az)) % 360:03d},"
                              f"{'' if snr is None else f'{snr:02d}'}")
            chunk.append(sentence(f"GPGSV,{total},{m + 1},{len(rows):02d},{','.join(groups)}"))
        if fix and epoch % 5 == 2:
            kmh = float(speed) * 1.852
            chunk.append(sentence(f"GPVTG,{course},T,,M,{speed},N,{kmh:.2f},K,A"))
        if fix and epoch % 30 == 17:
            chunk.append(sentence(f"GPGLL,{lat_text},{ns},{lon_text},{ew},{hhmmss},A,A"))
        if len(chunk) > 4096:
            out.write("".join(chunk).encode("ascii"))
            chunk.clear()
    out.write("".join(chunk).encode("ascii"))


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--minutes", type=float, default=13.0,
                        help="length of the recording in minutes (default 13)")
    parser.add_argument("--out", default=os.path.join(here, "demo-drive.nmea"),
                        help="output file, '-' for standard output")
    args = parser.parse_args()
    if args.minutes <= 0:
        parser.error("--minutes must be positive")
    if args.out == "-":
        generate(args.minutes, sys.stdout.buffer)
    else:
        with open(args.out, "wb") as out:
            generate(args.minutes, out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
