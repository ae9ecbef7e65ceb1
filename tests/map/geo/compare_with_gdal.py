#!/usr/bin/env python3
"""Georeferenced maps against GDAL's own transforms.

Writes small maps of each kind into a temporary folder (a PNG with a world
file and .prj, a GeoTIFF, an OziExplorer .map, KMLs with a rotated
LatLonBox and a LatLonQuad, and hostile variants), runs
`satwalk-tool map --image` on each and compares its conversions with what
GDAL (python3-gdal) computes from the same files: within 1e-7 degrees and
0.01 pixel. Hostile files must be refused with a message, never a crash.

usage: compare_with_gdal.py SATWALK_TOOL
"""
import json
import math
import os
import subprocess
import sys
import tempfile
import zipfile

from osgeo import gdal, osr

gdal.UseExceptions()
os.environ["GDAL_PAM_ENABLED"] = "NO"
gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")

W, H = 64, 48
PIXELS = [(0, 0), (W, H), (W / 2, H / 2), (10.25, 37.5), (63, 1)]
DEG_TOL, PX_TOL = 1e-7, 0.01
failures = []


def check(cond, what):
    if not cond:
        failures.append(what)
        print("FAIL:", what)


def lonlat_srs():
    s = osr.SpatialReference()
    s.SetWellKnownGeogCS("WGS84")
    s.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return s


def write_image(path, fmt):
    mem = gdal.GetDriverByName("MEM").Create("", W, H, 1, gdal.GDT_Byte)
    mem.GetRasterBand(1).Fill(128)
    gdal.GetDriverByName(fmt).CreateCopy(path, mem)


def write_text(path, text):
    with open(path, "w") as fh:
        fh.write(text)


def run_tool(tool, image, to_geo, to_image):
    args = [tool, "map", "--image", image]
    for x, y in to_geo:
        args += ["--to-geo", f"{x!r},{y!r}"]
    for lat, lon in to_image:
        args += ["--to-image", f"{lat!r},{lon!r}"]
    r = subprocess.run(args, capture_output=True, text=True, timeout=60)
    return r.returncode, r.stdout, r.stderr


def compare(tool, name, image, source, to_lonlat, from_lonlat):
    """to_lonlat(x, y) -> (lon, lat) and from_lonlat(lon, lat) -> (x, y) by GDAL."""
    expected = [to_lonlat(x, y) for x, y in PIXELS]
    code, out, err = run_tool(tool, image, PIXELS, [(lat, lon) for lon, lat in expected])
    check(code == 0, f"{name}: exit {code}: {err}")
    if code != 0:
        return
    j = json.loads(out)
    check(j["source"] == source, f"{name}: source {j['source']} != {source}")
    worst_deg = worst_px = 0.0
    for got, (lon, lat) in zip(j["toGeo"], expected):
        worst_deg = max(worst_deg, abs(got["latitude"] - lat), abs(got["longitude"] - lon))
    for got in j["toImage"]:
        gx, gy = from_lonlat(got["longitude"], got["latitude"])
        worst_px = max(worst_px, abs(got["imageX"] - gx), abs(got["imageY"] - gy))
    print(f"{name:12s} {source:9s} {j['projection'][:34]:34s} "
          f"max |d deg| {worst_deg:.2e}  max |d px| {worst_px:.2e}")
    check(worst_deg <= DEG_TOL, f"{name}: {worst_deg} degrees off")
    check(worst_px <= PX_TOL, f"{name}: {worst_px} pixels off")


def geotransform_case(gt, srs):
    to_ll = osr.CoordinateTransformation(srs, lonlat_srs())
    from_ll = osr.CoordinateTransformation(lonlat_srs(), srs)
    inv = gdal.InvGeoTransform(gt)

    def to_lonlat(x, y):
        mx, my = gdal.ApplyGeoTransform(gt, x, y)
        lon, lat, _ = to_ll.TransformPoint(mx, my)
        return lon, lat

    def from_lonlat(lon, lat):
        mx, my, _ = from_ll.TransformPoint(lon, lat)
        return gdal.ApplyGeoTransform(inv, mx, my)

    return to_lonlat, from_lonlat


def srs_of(code):
    s = osr.SpatialReference()
    s.ImportFromEPSG(code)
    s.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return s


def world_file_case(tool, d):
    # UTM zone 51N around Hangzhou, 25 m pixels, slightly rotated.
    image = os.path.join(d, "utm.png")
    write_image(image, "PNG")
    a, dd, b, e, c, f = 25.0, 0.5, -0.4, -25.0, 210012.5, 3352987.5
    write_text(os.path.join(d, "utm.pgw"), f"{a}\n{dd}\n{b}\n{e}\n{c}\n{f}\n")
    srs = srs_of(32651)
    write_text(os.path.join(d, "utm.prj"), srs.ExportToWkt())
    ds = gdal.Open(image)  # GDAL reads the world file itself
    gt = ds.GetGeoTransform()
    compare(tool, "world file", image, "worldfile", *geotransform_case(gt, srs))


def geotiff_case(tool, d):
    # Lambert-93 (France), 100 m pixels.
    path = os.path.join(d, "lambert.tif")
    ds = gdal.GetDriverByName("GTiff").Create(path, W, H, 1, gdal.GDT_Byte)
    gt = (652000.0, 100.0, 0.0, 6863000.0, 0.0, -100.0)
    ds.SetGeoTransform(gt)
    srs = srs_of(2154)
    ds.SetProjection(srs.ExportToWkt())
    ds = None
    ds = gdal.Open(path)
    compare(tool, "GeoTIFF", path, "geotiff", *geotransform_case(ds.GetGeoTransform(), srs))


def dm(value, pos, neg):
    a = abs(value)
    deg = int(a)
    return f"{deg:4d},{(a - deg) * 60:12.7f},{pos if value >= 0 else neg}"


OZI_POINTS = [(2, 3, 30.2801, 120.0502), (61, 4, 30.2803, 120.0903),
              (60, 45, 30.2502, 120.0899), (3, 44, 30.2499, 120.0498)]


def write_ozi(path, image_name, points, projection="Transverse Mercator", datum="WGS 84"):
    lines = ["OziExplorer Map Data File Version 2.2", "test", image_name,
             "1 ,Map Code,", f"{datum},WGS 84,   0.0000,   0.0000,WGS 84",
             "Reserved 1", "Reserved 2", "Magnetic Variation,,,E",
             f"Map Projection,{projection},PolyCal,No,AutoCalOnly,No,BSBUseWPX,No"]
    for i in range(30):
        if i < len(points):
            x, y, lat, lon = points[i]
            lines.append(f"Point{i + 1:02d},xy,{x:5d},{y:5d},in, deg,{dm(lat, 'N', 'S')},"
                         f"{dm(lon, 'E', 'W')}, grid,   ,           ,           ,N")
        else:
            lines.append(f"Point{i + 1:02d},xy,     ,     ,in, deg,    ,        ,N,    ,"
                         "        ,E, grid,   ,           ,           ,N")
    lines.append("Projection Setup,     0.000000000,   120.000000000,     0.999600000,"
                 "       500000.00,            0.00,,,,,")
    lines.append(f"IWH,Map Image Width/Height,{W},{H}")
    with open(path, "w", newline="\r\n") as fh:
        fh.write("\n".join(lines) + "\n")


def ozi_case(tool, d):
    image = os.path.join(d, "ozi.png")
    write_image(image, "PNG")
    path = os.path.join(d, "ozi.map")
    write_ozi(path, "C:\\maps\\ozi.png", OZI_POINTS)
    ds = gdal.OpenEx(path, allowed_drivers=["MAP"])
    tr = gdal.Transformer(ds, None, ["METHOD=GCP_POLYNOMIAL", "MAX_GCP_ORDER=1",
                                     "DST_SRS=+proj=longlat +datum=WGS84 +no_defs"])

    def to_lonlat(x, y):
        ok, (lon, lat, _) = tr.TransformPoint(0, x, y)
        return lon, lat

    def from_lonlat(lon, lat):
        ok, (x, y, _) = tr.TransformPoint(1, lon, lat)
        return x, y

    compare(tool, "Ozi .map", image, "ozi", to_lonlat, from_lonlat)


def kml_case(tool, d):
    # A rotated LatLonBox: the corners rotated about the centre in degrees,
    # which is what the overlay means; checked against GDAL's own affine
    # transform through those three corners.
    image = os.path.join(d, "overlay.png")
    write_image(image, "PNG")
    n, s, e, w, rot = 30.30, 30.20, 120.20, 120.05, 12.5
    write_text(os.path.join(d, "overlay.kml"), f"""<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://www.opengis.net/kml/2.2"><Folder><GroundOverlay><name>x</name>
<Icon><href>files/overlay.png</href></Icon><LatLonBox><north>{n}</north><south>{s}</south>
<east>{e}</east><west>{w}</west><rotation>{rot}</rotation></LatLonBox></GroundOverlay></Folder></kml>
""")
    cx, cy, r = (e + w) / 2, (n + s) / 2, math.radians(rot)

    def corner(lon, lat):
        dx, dy = lon - cx, lat - cy
        return (cx + dx * math.cos(r) - dy * math.sin(r), cy + dx * math.sin(r) + dy * math.cos(r))

    gcps = [gdal.GCP(*corner(w, n), 0, 0, 0), gdal.GCP(*corner(e, n), 0, W, 0),
            gdal.GCP(*corner(w, s), 0, 0, H)]
    gt = gdal.GCPsToGeoTransform(gcps)
    compare(tool, "KML box", image, "kml", *geotransform_case(gt, lonlat_srs()))


def kmz_quad_case(tool, d):
    # A LatLonQuad inside a KMZ: not quite a parallelogram, so a least-squares
    # affine fit of its four corners, as GDAL's own fit of the same corners.
    image = os.path.join(d, "quad.png")
    write_image(image, "PNG")
    ll, lr, ur, ul = (120.05, 30.20), (120.21, 30.21), (120.20, 30.31), (120.06, 30.30005)
    coords = " ".join(f"{lon},{lat},0" for lon, lat in (ll, lr, ur, ul))
    with zipfile.ZipFile(os.path.join(d, "quad.kmz"), "w") as z:
        z.writestr("doc.kml", f"""<kml xmlns="http://www.opengis.net/kml/2.2"
 xmlns:gx="http://www.google.com/kml/ext/2.2"><GroundOverlay><Icon><href>quad.png</href></Icon>
<gx:LatLonQuad><coordinates>{coords}</coordinates></gx:LatLonQuad></GroundOverlay></kml>""")
    gcps = [gdal.GCP(ll[0], ll[1], 0, 0, H), gdal.GCP(lr[0], lr[1], 0, W, H),
            gdal.GCP(ur[0], ur[1], 0, W, 0), gdal.GCP(ul[0], ul[1], 0, 0, 0)]
    gt = gdal.GCPsToGeoTransform(gcps)
    compare(tool, "KMZ quad", image, "kml", *geotransform_case(gt, lonlat_srs()))


def hostile_cases(tool, d):
    cases = {
        "nan.png": ("nan.pgw", "nan\n0\n0\n-1\n120\n30\n"),
        "zero.png": ("zero.pgw", "0\n0\n0\n0\n120\n30\n"),
        "metres.png": ("metres.pgw", "25\n0\n0\n-25\n500000\n3300000\n"),
        "badprj.png": ("badprj.pgw", "25\n0\n0\n-25\n500000\n3300000\n"),
    }
    for image, (wf, text) in cases.items():
        write_image(os.path.join(d, image), "PNG")
        write_text(os.path.join(d, wf), text)
    write_text(os.path.join(d, "badprj.prj"), "PROJCS[nonsense")
    # Too few points, points on one line, a datum other than WGS 84.
    ozi = {f"ozi{count}": (OZI_POINTS[:count], {}) for count in (0, 1, 2)}
    ozi["line"] = ([(i, i, 30 + i * 0.001, 120 + i * 0.001) for i in range(5)], {})
    ozi["datum"] = (OZI_POINTS, {"datum": "Pulkovo 1942"})
    for name, (points, options) in ozi.items():
        write_image(os.path.join(d, name + ".png"), "PNG")
        write_ozi(os.path.join(d, name + ".map"), name + ".png", points, **options)
    for image in list(cases) + [name + ".png" for name in ozi]:
        code, out, err = run_tool(tool, os.path.join(d, image), [], [])
        check(code == 1 and err.strip() != "", f"{image}: refused with a message ({code}, {err})")
        print(f"{image:12s} refused: {err.strip()}")
    # Thirty points: a least-squares fit, not a refusal.
    pts = [(2 + (7 * i) % 60, 1 + (11 * i) % 46, 0, 0) for i in range(30)]
    pts = [(x, y, 30.28 - y * 0.0006 + (i % 3) * 1e-5, 120.05 + x * 0.0007)
           for i, (x, y, _, _) in enumerate(pts)]
    write_image(os.path.join(d, "thirty.png"), "PNG")
    write_ozi(os.path.join(d, "thirty.map"), "thirty.png", pts)
    code, out, err = run_tool(tool, os.path.join(d, "thirty.png"), [], [])
    check(code == 0 and len(json.loads(out)["points"]) == 30, f"thirty points: {code} {err}")
    # A KML naming a URL is never fetched and calibrates nothing.
    write_image(os.path.join(d, "remote.png"), "PNG")
    write_text(os.path.join(d, "remote.kml"),
               "<kml><GroundOverlay><Icon><href>http://127.0.0.1:9/remote.png</href></Icon>"
               "<LatLonBox><north>1</north><south>0</south><east>1</east><west>0</west>"
               "</LatLonBox></GroundOverlay></kml>")
    code, out, err = run_tool(tool, os.path.join(d, "remote.png"), [], [])
    check(code == 0 and json.loads(out)["source"] is None, f"URL overlay: {code} {out} {err}")


def main():
    tool = sys.argv[1]
    with tempfile.TemporaryDirectory(prefix="satwalk-geo-") as d:
        world_file_case(tool, d)
        geotiff_case(tool, d)
        ozi_case(tool, d)
        kml_case(tool, d)
        kmz_quad_case(tool, d)
        hostile_cases(tool, d)
    if failures:
        print(f"{len(failures)} failure(s)")
        return 1
    print("all within 1e-7 degrees and 0.01 pixel")
    return 0


if __name__ == "__main__":
    sys.exit(main())
