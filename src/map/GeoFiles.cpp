#include "GeoFiles.h"

#include <expat.h>

#include <charconv>
#include <cmath>

namespace satwalk::map {

namespace {

constexpr double kPi = 3.141592653589793;

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

std::string_view Trim(std::string_view s) {
    while (!s.empty() && IsSpace(s.front())) s.remove_prefix(1);
    while (!s.empty() && IsSpace(s.back())) s.remove_suffix(1);
    return s;
}

// A whole field as a finite number ('.' decimal point, an optional '+').
bool Number(std::string_view s, double& out) {
    s = Trim(s);
    if (!s.empty() && s.front() == '+')
        s.remove_prefix(1);
    if (s.empty())
        return false;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), out);
    return r.ec == std::errc() && r.ptr == s.data() + s.size() && std::isfinite(out);
}

std::vector<std::string_view> Split(std::string_view s, char separator, std::size_t limit) {
    std::vector<std::string_view> parts;
    while (parts.size() < limit) {
        const std::size_t at = s.find(separator);
        parts.push_back(s.substr(0, at));
        if (at == std::string_view::npos)
            break;
        s.remove_prefix(at + 1);
    }
    return parts;
}

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (LowerAscii(a[i]) != LowerAscii(b[i]))
            return false;
    return true;
}

bool StartsWith(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

}  // namespace

// ----- world file -----

bool ParseWorldFile(std::string_view text, Affine& out, std::string& error) {
    text = text.substr(0, kWorldFileLimit);
    double v[6];
    int n = 0;
    while (n < 6) {
        while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
        if (text.empty())
            break;
        std::size_t end = 0;
        while (end < text.size() && !IsSpace(text[end])) ++end;
        if (!Number(text.substr(0, end), v[n])) {
            error = "the world file holds something other than six numbers";
            return false;
        }
        ++n;
        text.remove_prefix(end);
    }
    if (n < 6) {
        error = "the world file holds fewer than six numbers";
        return false;
    }
    // The file names the centre of the first pixel; the transform starts at
    // its corner.
    out = {v[4] - 0.5 * v[0] - 0.5 * v[2], v[0], v[2], v[5] - 0.5 * v[1] - 0.5 * v[3], v[1], v[3]};
    Affine inverse;
    if (!InvertAffine(out, inverse)) {
        error = "the world file's scale is zero";
        return false;
    }
    return true;
}

bool LooksLikeDegrees(const Affine& a) {
    return std::fabs(a[0]) <= 360.0 && std::fabs(a[3]) <= 90.0 && std::fabs(a[1]) < 1.0 &&
           std::fabs(a[2]) < 1.0 && std::fabs(a[4]) < 1.0 && std::fabs(a[5]) < 1.0;
}

// ----- OziExplorer .map -----

namespace {

// "Point01,xy, 123, 456,in, deg, 30, 15.5,N, 120, 9.25,E, grid, 51, 500000, 3300000,N"
bool ParseOziPoint(std::string_view line, OziPoint& p) {
    const auto f = Split(line, ',', 18);
    if (f.size() < 12 || !Number(f[2], p.imageX) || !Number(f[3], p.imageY))
        return false;
    double latDeg, latMin, lonDeg, lonMin;
    if (Number(f[6], latDeg) && Number(f[7], latMin) && Number(f[9], lonDeg) &&
        Number(f[10], lonMin)) {
        p.latitude = std::fabs(latDeg) + latMin / 60.0;
        p.longitude = std::fabs(lonDeg) + lonMin / 60.0;
        if (Trim(f[8]) == "S" || latDeg < 0)
            p.latitude = -p.latitude;
        if (Trim(f[11]) == "W" || lonDeg < 0)
            p.longitude = -p.longitude;
        p.hasDegrees = std::fabs(p.latitude) <= 90.0 && std::fabs(p.longitude) <= 360.0;
    }
    if (f.size() >= 16 && Number(f[14], p.easting) && Number(f[15], p.northing)) {
        double zone = 0;
        if (Number(f[13], zone) && zone >= 1 && zone <= 60)
            p.zone = static_cast<int>(zone);
        p.south = f.size() >= 17 && Trim(f[16]) == "S";
        p.hasGrid = true;
    }
    return p.hasDegrees || p.hasGrid;
}

}  // namespace

bool ParseOziMap(std::string_view text, OziMap& out, std::string& error) {
    text = text.substr(0, kOziMapLimit);
    out = OziMap{};
    int lineNo = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        ++lineNo;
        if (lineNo == 1) {
            if (!StartsWith(line, "OziExplorer Map Data File")) {
                error = "not an OziExplorer map file";
                return false;
            }
        } else if (lineNo == 3) {
            out.imagePath = std::string(Trim(line));
        } else if (lineNo == 5) {
            out.datum = std::string(Trim(Split(line, ',', 1)[0]));
        } else if (StartsWith(line, "Map Projection,")) {
            const auto f = Split(line, ',', 3);
            if (f.size() > 1)
                out.projection = std::string(Trim(f[1]));
        } else if (StartsWith(line, "Projection Setup,")) {
            const auto f = Split(line, ',', 9);
            for (std::size_t i = 1; i < f.size() && i <= out.setup.size(); ++i) {
                double v;
                if (Number(f[i], v))
                    out.setup[i - 1] = v;
            }
        } else if (StartsWith(line, "Point") && out.points.size() < kOziMaxPoints) {
            OziPoint p;
            if (ParseOziPoint(line, p))
                out.points.push_back(p);
        }
    }
    if (lineNo < 5) {
        error = "the map file ends before its datum";
        return false;
    }
    return true;
}

// ----- KML -----

namespace {

std::string_view LocalName(const XML_Char* name) {
    std::string_view n(name);
    const std::size_t colon = n.rfind(':');
    return colon == std::string_view::npos ? n : n.substr(colon + 1);
}

struct KmlReader {
    std::vector<KmlOverlay>* out = nullptr;
    int overlayDepth = 0;  // > 0 inside a GroundOverlay
    int depth = 0;
    bool inIcon = false;
    bool inBox = false;
    bool inQuad = false;
    std::string text;
    bool collecting = false;
    KmlOverlay current;
};

void QuadCoordinates(std::string_view s, KmlOverlay& o) {
    int n = 0;
    while (n < 5) {
        while (!s.empty() && IsSpace(s.front())) s.remove_prefix(1);
        if (s.empty())
            break;
        std::size_t end = 0;
        while (end < s.size() && !IsSpace(s[end])) ++end;
        const auto f = Split(s.substr(0, end), ',', 3);
        s.remove_prefix(end);
        double lon, lat;
        if (f.size() < 2 || !Number(f[0], lon) || !Number(f[1], lat))
            return;
        if (n < 4)
            o.quad[static_cast<std::size_t>(n)] = {lon, lat};
        ++n;
    }
    o.hasQuad = n == 4;
}

void XMLCALL Start(void* data, const XML_Char* name, const XML_Char**) {
    auto& r = *static_cast<KmlReader*>(data);
    ++r.depth;
    const std::string_view n = LocalName(name);
    if (n == "GroundOverlay" && r.overlayDepth == 0) {
        r.overlayDepth = r.depth;
        r.current = KmlOverlay{};
        return;
    }
    if (r.overlayDepth == 0)
        return;
    if (n == "Icon")
        r.inIcon = true;
    else if (n == "LatLonBox")
        r.inBox = true;
    else if (n == "LatLonQuad")
        r.inQuad = true;
    r.text.clear();
    r.collecting = (r.inIcon && n == "href") ||
                   (r.inBox && (n == "north" || n == "south" || n == "east" || n == "west" ||
                                n == "rotation")) ||
                   (r.inQuad && n == "coordinates");
}

void XMLCALL End(void* data, const XML_Char* name) {
    auto& r = *static_cast<KmlReader*>(data);
    const std::string_view n = LocalName(name);
    if (r.overlayDepth != 0 && r.depth == r.overlayDepth) {
        if (r.out->size() < kKmlMaxOverlays)
            r.out->push_back(r.current);
        r.overlayDepth = 0;
        r.inIcon = r.inBox = r.inQuad = false;
    } else if (r.overlayDepth != 0) {
        if (r.collecting) {
            KmlOverlay& o = r.current;
            double v = 0.0;
            const bool number = Number(r.text, v);
            if (n == "href") {
                o.href = std::string(Trim(r.text));
            } else if (n == "coordinates") {
                QuadCoordinates(r.text, o);
            } else if (number) {
                (n == "north"   ? o.north
                 : n == "south" ? o.south
                 : n == "east"  ? o.east
                 : n == "west"  ? o.west
                                : o.rotation) = v;
                if (n != "rotation")
                    o.hasBox = true;
            }
            r.collecting = false;
        }
        if (n == "Icon")
            r.inIcon = false;
        else if (n == "LatLonBox")
            r.inBox = false;
        else if (n == "LatLonQuad")
            r.inQuad = false;
    }
    --r.depth;
}

void XMLCALL Text(void* data, const XML_Char* s, int len) {
    auto& r = *static_cast<KmlReader*>(data);
    // An element's text is short; a huge one is not a coordinate.
    if (r.collecting && r.text.size() + static_cast<std::size_t>(len) <= 64 * 1024)
        r.text.append(s, static_cast<std::size_t>(len));
}

}  // namespace

bool ParseKml(std::string_view text, std::vector<KmlOverlay>& out, std::string& error) {
    text = text.substr(0, kKmlLimit);
    XML_Parser parser = XML_ParserCreate(nullptr);
    if (parser == nullptr) {
        error = "out of memory";
        return false;
    }
    KmlReader reader;
    reader.out = &out;
    XML_SetUserData(parser, &reader);
    XML_SetElementHandler(parser, Start, End);
    XML_SetCharacterDataHandler(parser, Text);
    const bool ok =
        XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) == XML_STATUS_OK;
    if (!ok)
        error =
            std::string("the KML is not well-formed: ") + XML_ErrorString(XML_GetErrorCode(parser));
    XML_ParserFree(parser);
    return ok;
}

bool NamesImage(std::string_view href, std::string_view fileName) {
    href = Trim(href);
    if (href.find("://") != std::string_view::npos || fileName.empty())
        return false;
    const std::size_t slash = href.find_last_of("/\\");
    if (slash != std::string_view::npos)
        href.remove_prefix(slash + 1);
    return EqualNoCase(href, fileName);
}

bool OverlayToUnitAffine(const KmlOverlay& o, Affine& out, std::vector<ControlPoint>& corners,
                         std::string& error) {
    corners.clear();
    if (o.hasQuad) {
        static constexpr double kUnit[4][2] = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
        for (int i = 0; i < 4; ++i) {
            ControlPoint c;
            c.imageX = kUnit[i][0];
            c.imageY = kUnit[i][1];
            c.longitude = c.mapX = o.quad[static_cast<std::size_t>(i)][0];
            c.latitude = c.mapY = o.quad[static_cast<std::size_t>(i)][1];
            if (std::fabs(c.latitude) > 90.0 || std::fabs(c.longitude) > 360.0) {
                error = "a corner of the LatLonQuad lies off the earth";
                return false;
            }
            corners.push_back(c);
        }
        if (!FitAffine(corners, out)) {
            error = "the LatLonQuad encloses no area";
            return false;
        }
        return true;
    }
    if (!o.hasBox) {
        error = "the GroundOverlay has neither a LatLonBox nor a LatLonQuad";
        return false;
    }
    double east = o.east;
    if (east < o.west)
        east += 360.0;  // across the 180° meridian
    const double dx = east - o.west, dy = o.north - o.south;
    if (!(o.north <= 90.0 && o.south >= -90.0 && dy > 0.0 && dx > 0.0 && dx <= 360.0 &&
          std::fabs(o.rotation) <= 360.0)) {
        error = "the LatLonBox encloses no area on the earth";
        return false;
    }
    const double r = o.rotation * kPi / 180.0;
    const double c = std::cos(r), s = std::sin(r);
    const double cLon = o.west + 0.5 * dx, cLat = o.south + 0.5 * dy;
    out = {cLon - 0.5 * c * dx - 0.5 * s * dy, c * dx, s * dy,
           cLat - 0.5 * s * dx + 0.5 * c * dy, s * dx, -c * dy};
    return true;
}

}  // namespace satwalk::map
