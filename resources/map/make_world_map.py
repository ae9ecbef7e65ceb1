#!/usr/bin/env python3
"""Converts the public-domain Natural Earth land outlines at 1:50m (TopoJSON
as packaged by world-atlas, file land-50m.json) into world-land-50m.txt, the
world map the map screen draws at every zoom.

Format, one ring per line after the comment lines starting with '#':
"x,y dx,dy dx,dy ..." in hundredths of a degree (x longitude, y latitude):
the first point absolute, every further one relative to the one before.
Points that fall on the same hundredth as the previous one are dropped.

Run once: make_world_map.py land-50m.json world-land-50m.txt"""
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
            pts.append((round((x * sx + tx) * 100), round((y * sy + ty) * 100)))
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
        f.write("# Natural Earth 1:50m land (public domain), via world-atlas 2.0.2\n")
        f.write("# one ring per line: x,y then dx,dy in 1/100 degree\n")
        for r in rings:
            pts = []
            for p in r:
                if not pts or p != pts[-1]:
                    pts.append(p)
            if len(pts) < 4:
                continue
            cells = ["%d,%d" % pts[0]]
            for (ax, ay), (bx, by) in zip(pts, pts[1:]):
                cells.append("%d,%d" % (bx - ax, by - ay))
            f.write(" ".join(cells) + "\n")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
