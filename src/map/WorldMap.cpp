#include "WorldMap.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>

namespace satwalk::map {

namespace {

constexpr std::int32_t kMaxLon = 18000;
constexpr std::int32_t kMaxLat = 9000;

bool ReadInt(std::string_view& text, std::int32_t& out) {
    const auto r = std::from_chars(text.data(), text.data() + text.size(), out);
    if (r.ec != std::errc())
        return false;
    text.remove_prefix(static_cast<std::size_t>(r.ptr - text.data()));
    return true;
}

// One "a,b" cell at the front of `line`, then the blanks after it.
bool ReadCell(std::string_view& line, std::int32_t& a, std::int32_t& b) {
    if (!ReadInt(line, a) || line.empty() || line.front() != ',')
        return false;
    line.remove_prefix(1);
    if (!ReadInt(line, b))
        return false;
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t' || line.front() == '\r'))
        line.remove_prefix(1);
    return true;
}

// A few outlines cut at the 180° meridian step across to the other side and
// back (a coast along the meridian). Drawn as they stand, those steps would
// be edges around the whole world; taken the short way round they run along
// the meridian. A ring that crosses only once (the one around the south
// pole) closes along its bottom edge and stays as it is.
void UnwrapAntimeridian(std::vector<std::int32_t>& lon) {
    int jumps = 0;
    for (std::size_t i = 1; i < lon.size(); ++i)
        if (std::abs(lon[i] - lon[i - 1]) > kMaxLon)
            ++jumps;
    if (jumps == 0 || jumps % 2 != 0)
        return;
    std::int32_t shift = 0;
    std::int32_t previous = lon[0];
    for (std::size_t i = 1; i < lon.size(); ++i) {
        const std::int32_t raw = lon[i];
        const std::int32_t step = raw - previous;
        if (step > kMaxLon)
            shift -= 2 * kMaxLon;
        else if (step < -kMaxLon)
            shift += 2 * kMaxLon;
        previous = raw;
        lon[i] = raw + shift;
    }
    // The ring back round as a whole when most of it went out: the step
    // taken first may have been the one out.
    std::int64_t sum = 0;
    for (const std::int32_t x : lon) sum += x;
    const std::int64_t mean = sum / static_cast<std::int64_t>(lon.size());
    const std::int32_t whole = mean < -kMaxLon ? 2 * kMaxLon : (mean > kMaxLon ? -2 * kMaxLon : 0);
    for (std::int32_t& x : lon) x += whole;
}

void ParseRing(std::string_view line, WorldLand& land) {
    LandRing ring;
    std::int32_t x = 0, y = 0;
    if (!ReadCell(line, x, y))
        return;
    for (;;) {
        if (x < -kMaxLon || x > kMaxLon || y < -kMaxLat || y > kMaxLat)
            break;
        ring.lon.push_back(x);
        ring.lat.push_back(y);
        std::int32_t dx = 0, dy = 0;
        if (line.empty() || !ReadCell(line, dx, dy))
            break;
        // Steps are small; one that would overflow is as bad as one off the globe.
        if (std::abs(dx) > 2 * kMaxLon || std::abs(dy) > 2 * kMaxLat)
            break;
        x += dx;
        y += dy;
    }
    if (ring.lon.size() < 3)
        return;
    UnwrapAntimeridian(ring.lon);
    const auto [minLon, maxLon] = std::minmax_element(ring.lon.begin(), ring.lon.end());
    const auto [minLat, maxLat] = std::minmax_element(ring.lat.begin(), ring.lat.end());
    ring.minLon = *minLon;
    ring.maxLon = *maxLon;
    ring.minLat = *minLat;
    ring.maxLat = *maxLat;
    land.rings.push_back(std::move(ring));
}

struct Vec {
    double x, y;
};

// One edge of the clip rectangle: which side of it is inside, and where a
// segment crosses it.
template <typename Inside, typename Cross>
void ClipEdge(const std::vector<Vec>& in, std::vector<Vec>& out, Inside inside, Cross cross) {
    out.clear();
    if (in.empty())
        return;
    Vec prev = in.back();
    bool prevIn = inside(prev);
    for (const Vec& cur : in) {
        const bool curIn = inside(cur);
        if (curIn != prevIn)
            out.push_back(cross(prev, cur));
        if (curIn)
            out.push_back(cur);
        prev = cur;
        prevIn = curIn;
    }
}

// Sutherland-Hodgman against an axis-aligned rectangle: the polygon's part
// inside it, still one polygon (edges along the rectangle where it was cut).
void ClipToRect(std::vector<Vec>& poly, std::vector<Vec>& scratch, double l, double t, double r,
                double b) {
    auto atX = [](Vec p, Vec q, double x) {
        return Vec{x, p.y + (q.y - p.y) * (x - p.x) / (q.x - p.x)};
    };
    auto atY = [](Vec p, Vec q, double y) {
        return Vec{p.x + (q.x - p.x) * (y - p.y) / (q.y - p.y), y};
    };
    ClipEdge(
        poly, scratch, [l](Vec p) { return p.x >= l; }, [&](Vec p, Vec q) { return atX(p, q, l); });
    ClipEdge(
        scratch, poly, [r](Vec p) { return p.x <= r; }, [&](Vec p, Vec q) { return atX(p, q, r); });
    ClipEdge(
        poly, scratch, [t](Vec p) { return p.y >= t; }, [&](Vec p, Vec q) { return atY(p, q, t); });
    ClipEdge(
        scratch, poly, [b](Vec p) { return p.y <= b; }, [&](Vec p, Vec q) { return atY(p, q, b); });
}

}  // namespace

std::size_t WorldLand::PointCount() const {
    std::size_t n = 0;
    for (const LandRing& r : rings) n += r.lon.size();
    return n;
}

WorldLand ParseWorldLand(std::string_view text) {
    WorldLand land;
    while (!text.empty()) {
        const std::size_t nl = text.find('\n');
        const std::string_view line = text.substr(0, nl);
        text.remove_prefix(nl == std::string_view::npos ? text.size() : nl + 1);
        if (!line.empty() && line.front() != '#')
            ParseRing(line, land);
    }
    return land;
}

bool LoadWorldLand(const std::string& path, WorldLand& land) {
    land = WorldLand{};
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    std::string text;
    char buf[65536];
    bool ok = true;
    // The committed file is a few hundred kilobytes; anything far larger is
    // not it.
    constexpr std::size_t kLimit = 64u << 20;
    for (;;) {
        const ssize_t n = ::read(fd, buf, sizeof buf);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 || text.size() > kLimit)
            ok = false;
        if (n <= 0 || !ok)
            break;
        text.append(buf, static_cast<std::size_t>(n));
    }
    ::close(fd);
    if (!ok)
        return false;
    land = ParseWorldLand(text);
    return true;
}

double WorldPixelsPerDegree(const WorldView& view) {
    return view.scaleBarPixels * 114.319 / view.scale;  // the x factor of ProjectToView
}

void DrawWorldMap(screens::Canvas& canvas, const WorldLand& land, const WorldView& view,
                  const WorldMapStyle& style) {
    const screens::Rect rect = view.rect;
    canvas.FillRect(rect, style.sea);
    if (rect.Width() <= 0 || rect.Height() <= 0)
        return;
    // Clip a little outside the view so that cut edges never show.
    const double l = rect.left - 2.0, t = rect.top - 2.0;
    const double r = rect.right + 2.0, b = rect.bottom + 2.0;
    const double pxPerDegree = WorldPixelsPerDegree(view);
    if (!std::isfinite(pxPerDegree) || pxPerDegree <= 0.0)
        return;
    const double lonAt = view.origin.longitude;
    auto xOf = [&](double lon) { return (lon - lonAt) * pxPerDegree + view.origin.screenX; };
    auto yOf = [&](double lat) {
        return view.origin.screenY - MercatorNorthing(lat, view.scale, view.scaleBarPixels);
    };
    // The rings' latitudes are whole hundredths of a degree: their northings
    // come from a table made once, scaled for the view.
    static const std::vector<double> northing = [] {
        std::vector<double> n(kMaxLat + 1);
        for (std::int32_t u = 0; u <= kMaxLat; ++u) n[u] = MercatorNorthing(u * 0.01, 1.0, 1);
        return n;
    }();
    const double northingScale = view.scaleBarPixels / view.scale;
    auto yOfUnits = [&](std::int32_t lat) {
        const double n = northing[static_cast<std::size_t>(lat < 0 ? -lat : lat)] * northingScale;
        return view.origin.screenY - (lat < 0 ? -n : n);
    };

    std::vector<Vec> poly, scratch;
    std::vector<screens::PointF> points;
    const screens::Pen coast{style.coast, 1, false};
    const screens::Brush fill{style.land, false};
    // The copies of the world left and right of the view's own.
    const double viewWest = lonAt + (l - view.origin.screenX) / pxPerDegree;
    const double viewEast = lonAt + (r - view.origin.screenX) / pxPerDegree;
    const double firstTurn = std::floor((viewWest + 180.0) / 360.0);
    const double lastTurn = std::floor((viewEast + 180.0) / 360.0);
    // Zoomed out past sense (a band of worlds) or panned absurdly far: sea.
    if (!(lastTurn - firstTurn <= 64.0) || !(std::fabs(firstTurn) < 1e6))
        return;
    for (double turn = firstTurn; turn <= lastTurn; ++turn) {
        const double shift = turn * 360.0;
        for (const LandRing& ring : land.rings) {
            // Latitude runs upward and the northing with it, so the ring's
            // bounds give its screen box directly.
            const double west = xOf(ring.minLon * 0.01 + shift);
            const double east = xOf(ring.maxLon * 0.01 + shift);
            const double north = yOf(ring.maxLat * 0.01);
            const double south = yOf(ring.minLat * 0.01);
            if (east < l || west > r || south < t || north > b)
                continue;
            poly.clear();
            // Zoomed out, many points of a coast fall on one pixel: only the
            // first of each run goes on to the clip.
            double lastX = NAN, lastY = NAN;
            for (std::size_t i = 0; i < ring.lon.size(); ++i) {
                const double x = xOf(ring.lon[i] * 0.01 + shift), y = yOfUnits(ring.lat[i]);
                if (std::fabs(x - lastX) < 0.5 && std::fabs(y - lastY) < 0.5)
                    continue;
                poly.push_back({x, y});
                lastX = x;
                lastY = y;
            }
            ClipToRect(poly, scratch, l, t, r, b);
            points.clear();
            for (const Vec& v : poly) points.push_back({v.x, v.y});
            canvas.PolygonF(points, coast, fill);
        }
    }
}

}  // namespace satwalk::map
