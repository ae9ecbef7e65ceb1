#!/usr/bin/env python3
"""Converts the public-domain Natural Earth land outlines (1:110m, TopoJSON as
packaged by world-atlas, file land-110m.json) into world-land.txt: one ring
per line, "lon,lat lon,lat ..." in degrees with one decimal. Run once; the
result is committed and read by make_bitmaps."""
import json
import sys


def main(src, dst):
    topo = json.load(open(src))
    sx, sy = topo["transform"]["scale"]
    tx, ty = topo["transform"]["translate"]
    arcs = []
    for arc in topo["arcs"]:
        x = y = 0
        pts = []
        for dx, dy in arc:
            x += dx
            y += dy
            pts.append((x * sx + tx, y * sy + ty))
        arcs.append(pts)

    def ring(indices):
        out = []
        for i in indices:
            pts = arcs[i] if i >= 0 else list(reversed(arcs[~i]))
            out.extend(pts if not out else pts[1:])
        return out

    rings = []
    for geom in topo["objects"]["land"]["geometries"]:
        polys = geom["arcs"] if geom["type"] == "MultiPolygon" else [geom["arcs"]]
        for poly in polys:
            for r in poly:
                rings.append(ring(r))
    with open(dst, "w") as f:
        f.write("# Natural Earth 1:110m land (public domain), lon,lat per point, one ring per line\n")
        for r in rings:
            last = None
            cells = []
            for lon, lat in r:
                p = "%.1f,%.1f" % (lon, lat)
                if p != last:
                    cells.append(p)
                last = p
            if len(cells) >= 3:
                f.write(" ".join(cells) + "\n")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
