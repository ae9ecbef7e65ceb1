#include "Georeference.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <mutex>

#include "GdalBackend.h"
#include "GeoFiles.h"
#include "ReferencePoints.h"

namespace satwalk::map {

namespace {

// The backend, or null with `error` saying that GDAL cannot be loaded.
const GdalBackend* Gdal(std::string& error) {
    std::string reason;
    const GdalBackend* gdal = GdalLibrary(&reason);
    if (gdal == nullptr)
        error = GdalUnavailableMessage(reason);
    return gdal;
}

bool IsRegularFile(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

// Up to `limit` bytes of a regular file; false when it cannot be read.
bool ReadSmall(const std::string& path, std::size_t limit, std::string& out) {
    if (!IsRegularFile(path))
        return false;
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr)
        return false;
    out.resize(limit);
    const std::size_t n = std::fread(out.data(), 1, limit, f);
    const bool failed = std::ferror(f) != 0;
    std::fclose(f);
    out.resize(n);
    return !failed;
}

std::string_view FileName(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string Refused(const std::string& file, std::string_view reason) {
    return std::string(FileName(file)) + ": " + std::string(reason);
}

std::string Upper(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return out;
}

// How far the fitted transform puts each point from its stated place.
void Residuals(Georeference& g) {
    const auto t = GeoTransform::Make(g.affine, g.projection);
    g.residualsMetres.clear();
    for (const ControlPoint& p : g.points) {
        double x = p.imageX, y = p.imageY;
        if (t)
            t->ImageToLonLat(&x, &y, 1);
        g.residualsMetres.push_back(t ? GroundDistanceMetres(p.latitude, p.longitude, y, x)
                                      : std::nan(""));
    }
}

constexpr int kMaxRasterSide = 1000000;

}  // namespace

std::string_view GeoSourceName(GeoSource source) {
    switch (source) {
        case GeoSource::ReferenceFile:
            return "rpt";
        case GeoSource::WorldFile:
            return "worldfile";
        case GeoSource::GeoTiff:
            return "geotiff";
        case GeoSource::Ozi:
            return "ozi";
        case GeoSource::Kml:
            return "kml";
        case GeoSource::None:
            break;
    }
    return "";
}

MapCalibration Georeference::Bind(ImageSize image) const {
    if (!Georeferenced())
        return {};
    Affine a = affine;
    if (unitImage) {
        if (image.width <= 0 || image.height <= 0)
            return {};
        a[1] /= image.width;
        a[2] /= image.height;
        a[4] /= image.width;
        a[5] /= image.height;
    }
    if (hasInverse && !unitImage)
        return GeoreferencedCalibration(GeoTransform::Make(a, inverse, projection));
    return GeoreferencedCalibration(GeoTransform::Make(a, projection));
}

bool ProjectionFromDefinition(std::string_view definition,
                              std::shared_ptr<const MapProjection>& out, std::string& error) {
    const GdalBackend* gdal = Gdal(error);
    if (gdal == nullptr)
        return false;
    ProjectionRequest request;
    request.text = std::string(definition.substr(0, kProjectionLimit));
    std::string reason;
    out = gdal->Projection(request, reason);
    if (!reason.empty())
        error = reason;
    return reason.empty();
}

std::shared_ptr<const MapProjection> UtmProjection(int zone, bool south) {
    std::string error;
    const GdalBackend* gdal = Gdal(error);
    if (gdal == nullptr || zone < 1 || zone > 60)
        return nullptr;
    ProjectionRequest request;
    request.kind = ProjectionRequest::Kind::Utm;
    request.zone = zone;
    request.south = south;
    return gdal->Projection(request, error);
}

Georeference ReadWorldFile(const std::string& worldFile, const std::string& prjFile) {
    Georeference g;
    g.source = GeoSource::WorldFile;
    g.file = worldFile;
    std::string text;
    if (!ReadSmall(worldFile, kWorldFileLimit, text)) {
        g.error = Refused(worldFile, "cannot be read");
        return g;
    }
    std::string reason;
    if (!ParseWorldFile(text, g.affine, reason)) {
        g.error = Refused(worldFile, reason);
        return g;
    }
    std::string prj;
    if (IsRegularFile(prjFile)) {
        if (!ReadSmall(prjFile, kProjectionLimit, prj) ||
            !ProjectionFromDefinition(prj, g.projection, reason))
            g.error = Refused(prjFile, reason.empty() ? "cannot be read" : reason);
        return g;
    }
    if (!LooksLikeDegrees(g.affine))
        g.error = Refused(worldFile, "has no .prj beside it and its numbers are not degrees");
    return g;
}

Georeference ReadGeoTiff(const std::string& path) {
    Georeference g;
    std::string unavailable;
    const GdalBackend* gdal = Gdal(unavailable);
    if (gdal == nullptr) {
        // Whether it holds a georeference cannot be told: not loaded.
        g.source = GeoSource::GeoTiff;
        g.file = path;
        g.error = Refused(path, unavailable);
        return g;
    }
    GeoTiffTags tags = gdal->ReadGeoTiff(path);
    if (!tags.opened || (!tags.hasTransform && tags.gcps.empty()))
        return g;  // not a TIFF GDAL can read (the image loader says so), or a plain one
    g.source = GeoSource::GeoTiff;
    g.file = path;
    const auto& gt = tags.transform;
    if (tags.width <= 0 || tags.height <= 0 || tags.width > kMaxRasterSide ||
        tags.height > kMaxRasterSide) {
        g.error = Refused(path, "the GeoTIFF declares an impossible size");
        return g;
    }
    if (tags.hasProjection) {
        if (!tags.projectionError.empty()) {
            g.error = Refused(path, tags.projectionError);
            return g;
        }
        g.projection = std::move(tags.projection);
    } else if (tags.hasTransform && !LooksLikeDegrees({gt[0], gt[1], gt[2], gt[3], gt[4], gt[5]})) {
        g.error = Refused(path, "the GeoTIFF has no projection and is not in degrees");
        return g;
    }
    if (tags.hasTransform) {
        g.affine = {gt[0], gt[1], gt[2], gt[3], gt[4], gt[5]};
        Affine inverse;
        if (!InvertAffine(g.affine, inverse))
            g.error = Refused(path, "the GeoTIFF's scale is zero");
        return g;
    }
    for (ControlPoint p : tags.gcps) {
        p.longitude = p.mapX;
        p.latitude = p.mapY;
        if (g.projection)
            g.projection->ToLonLat(&p.longitude, &p.latitude, 1);
        g.points.push_back(p);
    }
    if (!FitAffine(g.points, g.affine) || !FitInverseAffine(g.points, g.inverse)) {
        g.error = Refused(path, "the GeoTIFF's control points do not span an area");
    } else {
        g.hasInverse = true;
        Residuals(g);
    }
    return g;
}

bool ReadImageSize(const std::string& path, ImageSize& size) {
    std::string error;
    const GdalBackend* gdal = Gdal(error);
    return gdal != nullptr && gdal->ReadImageSize(path, size);
}

namespace {

bool OziProjection(const OziMap& map, Georeference& g, std::string& reason) {
    const std::string datum = AsciiLower(map.datum);
    if (datum != "wgs 84" && datum != "wgs84" && datum != "wgs 1984") {
        reason = "datum \"" + map.datum + "\" is not supported (only WGS 84)";
        return false;
    }
    const std::string name = AsciiLower(map.projection);
    const auto& s = map.setup;
    if (name == "latitude/longitude") {
        g.projection = nullptr;
        return true;
    }
    if (name.find("universal transverse mercator") != std::string::npos) {
        int zone = 0;
        bool south = false;
        for (const OziPoint& p : map.points) {
            if (p.hasGrid && p.zone > 0) {
                zone = p.zone;
                south = p.south;
                break;
            }
            if (p.hasDegrees) {
                const double lon = std::remainder(p.longitude, 360.0);
                zone = std::clamp(static_cast<int>(std::floor((lon + 180.0) / 6.0)) + 1, 1, 60);
                south = p.latitude < 0.0;
                break;
            }
        }
        g.projection = UtmProjection(zone, south);
        if (!g.projection && Gdal(reason) != nullptr)
            reason = "the UTM zone cannot be told from its points";
        return g.projection != nullptr;
    }
    using Kind = ProjectionRequest::Kind;
    ProjectionRequest request;
    const double scale = s[2] != 0.0 ? s[2] : 1.0;
    if (name == "mercator") {
        request.kind = Kind::Mercator;
        request.p = {s[0], s[1], scale, s[3], s[4], 0.0};
    } else if (name == "transverse mercator") {
        request.kind = Kind::TransverseMercator;
        request.p = {s[0], s[1], scale, s[3], s[4], 0.0};
    } else if (name == "lambert conformal conic") {
        request.kind = Kind::LambertConic;
        request.p = {s[5], s[6], s[0], s[1], s[3], s[4]};
    } else if (name.find("british national grid") != std::string::npos) {
        request.kind = Kind::Epsg;
        request.zone = 27700;
    } else {
        reason = "projection \"" + map.projection + "\" is not supported";
        return false;
    }
    if (name.find("national grid") == std::string::npos)
        request.name = "WGS 84 / " + map.projection;
    const GdalBackend* gdal = Gdal(reason);
    if (gdal == nullptr)
        return false;
    g.projection = gdal->Projection(request, reason);
    return reason.empty();
}

}  // namespace

Georeference ReadOziMapFile(const std::string& path, std::string_view imageFileName) {
    Georeference g;
    std::string text, reason;
    OziMap map;
    if (!ReadSmall(path, kOziMapLimit, text) || !ParseOziMap(text, map, reason))
        return g;  // not a .map of ours
    if (!imageFileName.empty() && !NamesImage(map.imagePath, imageFileName))
        return g;
    g.source = GeoSource::Ozi;
    g.file = path;
    if (!OziProjection(map, g, reason)) {
        g.error = Refused(path, reason.empty() ? "the projection cannot be set up" : reason);
        return g;
    }
    for (const OziPoint& op : map.points) {
        ControlPoint p;
        p.imageX = op.imageX;
        p.imageY = op.imageY;
        if (op.hasDegrees) {
            p.latitude = p.mapY = op.latitude;
            p.longitude = p.mapX = op.longitude;
            if (g.projection)
                g.projection->FromLonLat(&p.mapX, &p.mapY, 1);
        } else if (g.projection) {
            p.longitude = p.mapX = op.easting;
            p.latitude = p.mapY = op.northing;
            g.projection->ToLonLat(&p.longitude, &p.latitude, 1);
        } else {
            continue;  // a grid position on a map in degrees means nothing
        }
        if (std::isfinite(p.mapX) && std::isfinite(p.mapY) && std::isfinite(p.latitude))
            g.points.push_back(p);
    }
    if (g.points.size() < 3) {
        g.error = Refused(path, "has " + std::to_string(g.points.size()) +
                                    " usable calibration points; it needs at least three");
    } else if (!FitAffine(g.points, g.affine) || !FitInverseAffine(g.points, g.inverse)) {
        g.error = Refused(path, "its calibration points lie on one line");
    } else {
        g.hasInverse = true;
        Residuals(g);
    }
    return g;
}

namespace {

// False when the KMZ holds no KML, or GDAL cannot be loaded (`error`).
bool ReadKmz(const std::string& path, std::string& text, std::string& error) {
    const GdalBackend* gdal = Gdal(error);
    return gdal != nullptr && gdal->ReadZippedKml(path, kKmlLimit, text);
}

}  // namespace

Georeference ReadKmlFile(const std::string& path, std::string_view imageFileName) {
    Georeference g;
    std::string text, reason;
    const bool kmz = AsciiLower(path).ends_with(".kmz");
    if (!(kmz ? ReadKmz(path, text, reason) : ReadSmall(path, kKmlLimit, text))) {
        if (!reason.empty() && IsRegularFile(path) && MapStem(path) == MapStem(imageFileName)) {
            // Likely to name the image: say why it cannot be looked into.
            g.source = GeoSource::Kml;
            g.file = path;
            g.error = Refused(path, reason);
        }
        return g;
    }
    std::vector<KmlOverlay> overlays;
    ParseKml(text, overlays, reason);  // a broken tail still leaves the overlays before it
    for (const KmlOverlay& o : overlays) {
        if (!NamesImage(o.href, imageFileName))
            continue;
        g.source = GeoSource::Kml;
        g.file = path;
        g.unitImage = true;
        if (!OverlayToUnitAffine(o, g.affine, g.points, reason))
            g.error = Refused(path, reason);
        else if (o.hasQuad)
            Residuals(g);
        else
            g.points.clear();
        return g;
    }
    return g;
}

Georeference LocateCalibration(const std::string& imagePath,
                               const std::string& storageReferenceFile) {
    ReferencePoints slots;
    int active = 0;
    const ReferenceRead read = ReadReferenceFile(storageReferenceFile, slots, active);
    Georeference own;
    own.source = GeoSource::ReferenceFile;
    own.file = storageReferenceFile;
    if (read == ReferenceRead::Unreadable ||
        (read != ReferenceRead::NotOpened && ComputeCalibration(slots).IsValid()))
        return own;
    Georeference g = FindGeoreference(imagePath);
    // The user's own points, even too few to calibrate, over a copy beside
    // the image; a georeference still calibrates until they do.
    if ((g.source == GeoSource::ReferenceFile || g.source == GeoSource::None) &&
        read != ReferenceRead::NotOpened)
        return own;
    return g;
}

Georeference FindGeoreference(const std::string& imagePath) {
    const std::size_t slash = imagePath.rfind('/');
    const std::string dir = slash == std::string::npos ? "." : imagePath.substr(0, slash);
    const std::string fileName(FileName(imagePath));
    const std::size_t dot = fileName.rfind('.');
    const std::string ext = dot == std::string::npos ? "" : AsciiLower(fileName.substr(dot + 1));
    const std::string base =
        imagePath.substr(0, imagePath.size() - (dot == std::string::npos ? 0 : ext.size() + 1));

    Georeference g;
    const std::string rpt = dir + "/Ref Pt_" + std::string(MapStem(imagePath)) + ".rpt";
    if (IsRegularFile(rpt)) {
        g.source = GeoSource::ReferenceFile;
        g.file = rpt;
        return g;
    }

    static constexpr std::pair<const char*, const char*> kWorldExt[] = {
        {"jpg", "jgw"}, {"jpeg", "jgw"}, {"png", "pgw"},  {"gif", "gfw"},
        {"bmp", "bpw"}, {"tif", "tfw"},  {"tiff", "tfw"},
    };
    std::vector<std::string> worlds;
    for (const auto& [image, world] : kWorldExt)
        if (ext == image) {
            worlds.push_back(base + "." + world);
            worlds.push_back(base + "." + Upper(world));
        }
    worlds.push_back(base + ".wld");
    worlds.push_back(base + ".WLD");
    for (const std::string& w : worlds) {
        if (IsRegularFile(w))
            return ReadWorldFile(w, IsRegularFile(base + ".PRJ") && !IsRegularFile(base + ".prj")
                                        ? base + ".PRJ"
                                        : base + ".prj");
    }

    if (ext == "tif" || ext == "tiff") {
        g = ReadGeoTiff(imagePath);
        if (g.source != GeoSource::None)
            return g;
    }

    // The .map and KML of the same name first, then any other in the folder
    // that names the image; a folder of thousands is looked at only so far.
    std::vector<std::string> maps{base + ".map"}, kmls{base + ".kml", base + ".kmz"};
    if (DIR* d = ::opendir(dir.c_str())) {
        int seen = 0;
        while (const dirent* e = ::readdir(d)) {
            if (++seen > 4096)
                break;
            const std::string name = e->d_name;
            const std::string lower = AsciiLower(name);
            const std::string full = dir + "/" + name;
            if (lower.ends_with(".map") && full != maps[0] && maps.size() < 64)
                maps.push_back(full);
            else if ((lower.ends_with(".kml") || lower.ends_with(".kmz")) && full != kmls[0] &&
                     full != kmls[1] && kmls.size() < 64)
                kmls.push_back(full);
        }
        ::closedir(d);
    }
    for (const std::string& m : maps) {
        g = ReadOziMapFile(m, fileName);
        if (g.source != GeoSource::None)
            return g;
    }
    for (const std::string& k : kmls) {
        g = ReadKmlFile(k, fileName);
        if (g.source != GeoSource::None)
            return g;
    }
    return {};
}

}  // namespace satwalk::map
