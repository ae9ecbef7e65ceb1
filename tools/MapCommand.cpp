// satwalk-tool map: a reference-point file, or a map image with whatever
// calibrates it, through the calibration, with conversions on request and
// how far each reference or control point lands from where it was stated,
// as one JSON object.
#include <unistd.h>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "GdalBackend.h"
#include "Georeference.h"
#include "Json.h"
#include "MapGeometry.h"
#include "ReferencePoints.h"
#include "ToolCommands.h"

namespace satwalk::tools {

namespace {

using map::GeoPoint;

constexpr const char* kMapUsage =
    "usage: satwalk-tool map --rpt FILE --size WxH [--to-geo X,Y]... [--to-image LAT,LON]...\n"
    "                        [--northing LAT]... [--view-scale KM] [--scale-bar PX]\n"
    "       satwalk-tool map --image FILE [--storage DIR] [--to-geo X,Y]... [--to-image "
    "LAT,LON]...\n"
    "  Reads a reference-point file, calibrates an image of the given size and prints\n"
    "  the calibration, the map's extent, the requested conversions and each active\n"
    "  point's residual in metres as one JSON object. With --image, calibrates the\n"
    "  image as the program does: its reference file under DIR/My GPS/Reference\n"
    "  Points first, then a reference file, world file, GeoTIFF tags, OziExplorer\n"
    "  .map or KML/KMZ beside it; `source` says which.\n"
    "  --to-geo X,Y        image pixel to latitude and longitude (repeatable)\n"
    "  --to-image LAT,LON  latitude and longitude to image pixel (repeatable)\n"
    "  --northing LAT      world-view northing of a latitude (repeatable)\n"
    "  --view-scale KM     kilometres the scale bar stands for (default 1)\n"
    "  --scale-bar PX      length of the scale bar in pixels (default 100)\n";

bool ParseDouble(std::string_view text, double& out) {
    const auto r = std::from_chars(text.data(), text.data() + text.size(), out);
    return r.ec == std::errc() && r.ptr == text.data() + text.size() && std::isfinite(out);
}

bool ParseInt(std::string_view text, int& out) {
    const auto r = std::from_chars(text.data(), text.data() + text.size(), out);
    return r.ec == std::errc() && r.ptr == text.data() + text.size();
}

bool ParsePair(std::string_view text, char separator, double& a, double& b) {
    const std::size_t at = text.find(separator);
    return at != std::string_view::npos && ParseDouble(text.substr(0, at), a) &&
           ParseDouble(text.substr(at + 1), b);
}

bool ParseSize(std::string_view text, map::ImageSize& size) {
    const std::size_t at = text.find_first_of("xX");
    return at != std::string_view::npos && ParseInt(text.substr(0, at), size.width) &&
           ParseInt(text.substr(at + 1), size.height) && size.width >= 0 && size.height >= 0;
}

// Doubles with 17 significant digits, so that they read back to the same
// value; anything non-finite is null.
void Number(std::string& out, double v) {
    if (!std::isfinite(v)) {
        out += "null";
        return;
    }
    char buf[40];
    const auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, 17);
    out.append(buf, r.ptr);
}

void Member(std::string& out, const char* name) {
    if (out.back() != '{' && out.back() != '[')
        out += ',';
    out += '"';
    out += name;
    out += "\":";
}

void NumberMember(std::string& out, const char* name, double v) {
    Member(out, name);
    Number(out, v);
}

// Appends one object of numbers to the array being written.
void NumberObject(std::string& out, std::initializer_list<std::pair<const char*, double>> members) {
    out += out.back() == '[' ? "{" : ",{";
    for (const auto& [name, value] : members) NumberMember(out, name, value);
    out += '}';
}

void Table(std::string& out, const char* name, const std::array<double, map::kPairCount + 1>& t) {
    Member(out, name);
    out += '[';
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (i)
            out += ',';
        Number(out, t[i]);
    }
    out += ']';
}

void Position(std::string& out, const char* name, const GeoPoint& p, bool present) {
    Member(out, name);
    if (!present) {
        out += "null";
        return;
    }
    out += '{';
    NumberMember(out, "latitude", p.latitude);
    NumberMember(out, "longitude", p.longitude);
    out += '}';
}

void AppendString(std::string& out, const std::string& s) {
    common::AppendJsonString(out, s);
}

struct Request {
    double a = 0.0;
    double b = 0.0;
};

}  // namespace

const char* MapUsage() {
    return kMapUsage;
}

int RunMap(int argc, char** argv) {
    const char* rpt = nullptr;
    const char* image = nullptr;
    const char* storage = nullptr;
    map::ImageSize size{-1, -1};
    std::vector<Request> toGeo, toImage;
    std::vector<double> northing;
    double viewScale = 1.0;
    int scaleBar = 100;
    for (int i = 0; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            std::fputs(kMapUsage, stdout);
            return 0;
        }
        const bool takesValue = arg == "--rpt" || arg == "--image" || arg == "--storage" ||
                                arg == "--size" || arg == "--to-geo" || arg == "--to-image" ||
                                arg == "--northing" || arg == "--view-scale" ||
                                arg == "--scale-bar";
        if (!takesValue) {
            std::fprintf(stderr, "satwalk-tool map: unknown argument %s\n%s", argv[i], kMapUsage);
            return 2;
        }
        if (i + 1 >= argc) {
            std::fprintf(stderr, "satwalk-tool map: %s needs a value\n%s", argv[i], kMapUsage);
            return 2;
        }
        const std::string_view value = argv[++i];
        Request r;
        double d = 0.0;
        bool ok = true;
        if (arg == "--rpt") {
            rpt = argv[i];
        } else if (arg == "--image") {
            image = argv[i];
        } else if (arg == "--storage") {
            storage = argv[i];
        } else if (arg == "--size") {
            ok = ParseSize(value, size);
        } else if (arg == "--to-geo") {
            ok = ParsePair(value, ',', r.a, r.b);
            toGeo.push_back(r);
        } else if (arg == "--to-image") {
            ok = ParsePair(value, ',', r.a, r.b);
            toImage.push_back(r);
        } else if (arg == "--northing") {
            ok = ParseDouble(value, d);
            northing.push_back(d);
        } else if (arg == "--view-scale") {
            ok = ParseDouble(value, viewScale) && viewScale > 0.0;
        } else {
            ok = ParseInt(value, scaleBar) && scaleBar > 0;
        }
        if (!ok) {
            std::fprintf(stderr, "satwalk-tool map: bad value for %s: %s\n%s", argv[i - 1], argv[i],
                         kMapUsage);
            return 2;
        }
    }
    if (image == nullptr && (rpt == nullptr || size.width < 0)) {
        std::fprintf(stderr, "satwalk-tool map: --rpt and --size, or --image, are required\n%s",
                     kMapUsage);
        return 2;
    }

    // --image: what calibrates the image, as the program finds it.
    map::Georeference geo;
    std::string rptFile = rpt != nullptr ? rpt : "";
    if (image != nullptr) {
        std::string reason;
        if (map::GdalLibrary(&reason) == nullptr) {
            std::fprintf(stderr, "satwalk-tool map: %s\n",
                         map::GdalUnavailableMessage(reason).c_str());
            return 1;
        }
        if (!map::ReadImageSize(image, size)) {
            std::fprintf(stderr, "satwalk-tool map: cannot read the size of the image %s\n", image);
            return 2;
        }
        const std::string storageFile =
            storage != nullptr ? map::MakeReferenceFileName(storage, image) : std::string();
        geo = map::LocateCalibration(image, storageFile);
        if (!geo.error.empty()) {
            std::fprintf(stderr, "satwalk-tool map: %s\n", geo.error.c_str());
            return 1;
        }
        rptFile = geo.source == map::GeoSource::ReferenceFile ? geo.file : storageFile;
    }

    map::ReferencePoints slots;
    int active = 0;
    map::ReferenceRead read = map::ReferenceRead::NotOpened;
    if (!rptFile.empty())
        read = map::ReadReferenceFile(rptFile, slots, active);
    if (image != nullptr && geo.source != map::GeoSource::ReferenceFile)
        read = map::ReferenceRead::Read;  // the storage file is optional there
    if (read != map::ReferenceRead::Read) {
        const int err = errno;
        std::fprintf(stderr, "satwalk-tool map: cannot %s %s: %s\n",
                     read == map::ReferenceRead::ReadFailed ? "read" : "open", rptFile.c_str(),
                     read == map::ReferenceRead::ReadFailed ? "not a readable regular file"
                                                            : std::strerror(err));
        return 2;
    }

    map::MapCalibration calibration = map::ComputeCalibration(slots);
    if (!calibration.IsValid() && geo.Georeferenced())
        calibration = geo.Bind(size);
    const bool calibrated = calibration.IsValid();
    map::MapExtent extent;
    if (calibrated)
        map::ComputeMapExtent(calibration, size, extent);

    std::string out = "{";
    if (image != nullptr) {
        Member(out, "source");
        if (!calibrated) {
            out += "null";
        } else {
            out += '"';
            out += calibration.Georeferenced() ? map::GeoSourceName(geo.source) : "rpt";
            out += '"';
        }
        Member(out, "file");
        AppendString(out, calibration.Georeferenced() ? geo.file : rptFile);
        Member(out, "projection");
        AppendString(out, calibration.Georeferenced() ? calibration.geo->ProjectionName()
                                                      : std::string("WGS 84"));
        Member(out, "projectionDefinition");
        AppendString(out, calibration.Georeferenced() && calibration.geo->Projection()
                              ? calibration.geo->Projection()->Definition()
                              : std::string());
        Member(out, "imageWidth");
        out += std::to_string(size.width);
        Member(out, "imageHeight");
        out += std::to_string(size.height);
    }
    Member(out, "slots");
    out += '[';
    for (const GeoPoint& s : slots) {
        if (out.back() != '[')
            out += ',';
        out += "{\"valid\":";
        out += std::to_string(s.valid);
        NumberMember(out, "latitude", s.latitude);
        NumberMember(out, "longitude", s.longitude);
        NumberMember(out, "imageX", s.imageX);
        NumberMember(out, "imageY", s.imageY);
        out += '}';
    }
    out += ']';
    Member(out, "activeReferenceCount");
    out += std::to_string(active);
    Member(out, "calibrated");
    out += calibrated ? "true" : "false";
    Table(out, "latPerPixel", calibration.latPerPixel);
    Table(out, "lonPerPixel", calibration.lonPerPixel);
    Position(out, "mapTopLeft", extent.topLeft, calibrated);
    Position(out, "mapBottomRight", extent.bottomRight, calibrated);
    Position(out, "mapCentre", extent.centre, calibrated);

    Member(out, "toGeo");
    out += '[';
    for (const Request& r : toGeo) {
        GeoPoint p;
        p.imageX = r.a;
        p.imageY = r.b;
        map::ImageToGeo(calibration, p);
        NumberObject(out, {{"imageX", r.a},
                           {"imageY", r.b},
                           {"latitude", p.latitude},
                           {"longitude", p.longitude}});
    }
    out += ']';

    Member(out, "toImage");
    out += '[';
    for (const Request& r : toImage) {
        GeoPoint p;
        const map::PointF px = map::GeoToImage(calibration, p, r.a, r.b);
        NumberObject(out,
                     {{"latitude", r.a}, {"longitude", r.b}, {"imageX", px.x}, {"imageY", px.y}});
    }
    out += ']';

    Member(out, "northing");
    out += '[';
    for (double lat : northing) {
        NumberObject(
            out, {{"latitude", lat}, {"value", map::MercatorNorthing(lat, viewScale, scaleBar)}});
    }
    out += ']';

    // How far the calibration puts each active point's pixel from the
    // position stated for it.
    Member(out, "residualsMetres");
    if (calibration.Georeferenced()) {
        // A .map's (or a quad's, or a GeoTIFF's) control points.
        out += '[';
        for (double r : geo.residualsMetres) {
            if (out.back() != '[')
                out += ',';
            Number(out, r);
        }
        out += ']';
        Member(out, "points");
        out += '[';
        const double sx = geo.unitImage ? size.width : 1.0;
        const double sy = geo.unitImage ? size.height : 1.0;
        for (std::size_t i = 0; i < geo.points.size(); ++i) {
            const map::ControlPoint& c = geo.points[i];
            NumberObject(
                out, {{"imageX", c.imageX * sx},
                      {"imageY", c.imageY * sy},
                      {"latitude", c.latitude},
                      {"longitude", c.longitude},
                      {"residualMetres",
                       i < geo.residualsMetres.size() ? geo.residualsMetres[i] : std::nan("")}});
        }
        out += ']';
    } else if (calibrated) {
        out += '[';
        for (const GeoPoint& s : slots) {
            if (s.valid != 1)
                continue;
            GeoPoint p = s;
            map::ImageToGeo(calibration, p);
            if (out.back() != '[')
                out += ',';
            Number(out,
                   map::GroundDistanceMetres(s.latitude, s.longitude, p.latitude, p.longitude));
        }
        out += ']';
    } else {
        out += "null";
    }
    out += "}\n";
    return WriteAll(STDOUT_FILENO, out) ? 0 : 1;
}

}  // namespace satwalk::tools
