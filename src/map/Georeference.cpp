#include "Georeference.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <mutex>

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>
#include <gdal.h>
#include <gdal_frmts.h>
#include <ogr_spatialref.h>

#include "GeoFiles.h"
#include "ReferencePoints.h"

namespace satwalk::map {

namespace {

// Set once before GDAL is first used: no side-car files written, no
// directory listings on open, PROJ kept off the network, and only the
// drivers of the formats a map may be registered (GeoTIFF for its tags, the
// four image formats for an image's size).
void InitGdal() {
    static std::once_flag once;
    std::call_once(once, [] {
        CPLSetConfigOption("GDAL_PAM_ENABLED", "NO");
        CPLSetConfigOption("GDAL_DISABLE_READDIR_ON_OPEN", "EMPTY_DIR");
        CPLSetConfigOption("PROJ_NETWORK", "OFF");
        GDALRegister_GTiff();
        GDALRegister_PNG();
        GDALRegister_JPEG();
        GDALRegister_GIF();
        GDALRegister_BMP();
    });
}

// GDAL's messages go to the caller's error text, not to stderr.
struct QuietErrors {
    QuietErrors() {
        CPLPushErrorHandler(CPLQuietErrorHandler);
        CPLErrorReset();
    }
    ~QuietErrors() { CPLPopErrorHandler(); }
};

class GdalProjection final : public MapProjection {
  public:
    GdalProjection(std::unique_ptr<OGRCoordinateTransformation> toGeo,
                   std::unique_ptr<OGRCoordinateTransformation> fromGeo, std::string name,
                   std::string wkt)
        : toGeo_(std::move(toGeo)),
          fromGeo_(std::move(fromGeo)),
          name_(std::move(name)),
          wkt_(std::move(wkt)) {}

    void ToLonLat(double* x, double* y, std::size_t n) const override { Run(*toGeo_, x, y, n); }
    void FromLonLat(double* x, double* y, std::size_t n) const override { Run(*fromGeo_, x, y, n); }
    std::string Name() const override { return name_; }
    std::string Definition() const override { return wkt_; }

  private:
    // A transformation object is not safe to share between threads: one
    // batch at a time.
    void Run(OGRCoordinateTransformation& t, double* x, double* y, std::size_t n) const {
        const std::lock_guard lock(mutex_);
        constexpr std::size_t kChunk = std::size_t{1} << 20;
        for (std::size_t at = 0; at < n; at += kChunk) {
            const std::size_t m = std::min(kChunk, n - at);
            ok_.resize(m);
            if (t.Transform(static_cast<int>(m), x + at, y + at, nullptr, nullptr, ok_.data()))
                continue;
            for (std::size_t i = 0; i < m; ++i) {
                if (!ok_[i] || !std::isfinite(x[at + i]) || !std::isfinite(y[at + i]))
                    x[at + i] = y[at + i] = std::nan("");
            }
        }
    }

    std::unique_ptr<OGRCoordinateTransformation> toGeo_;
    std::unique_ptr<OGRCoordinateTransformation> fromGeo_;
    std::string name_;
    std::string wkt_;
    mutable std::mutex mutex_;
    mutable std::vector<int> ok_;
};

bool MakeProjection(OGRSpatialReference& srs, std::shared_ptr<const MapProjection>& out,
                    std::string& error) {
    if (!srs.IsProjected() && !srs.IsGeographic()) {
        error = "the projection is neither projected nor geographic";
        return false;
    }
    OGRSpatialReference wgs84;
    wgs84.SetWellKnownGeogCS("WGS84");
    wgs84.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    srs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (srs.IsGeographic() && srs.IsSame(&wgs84)) {
        out = nullptr;
        return true;
    }
    std::unique_ptr<OGRCoordinateTransformation> toGeo(
        OGRCreateCoordinateTransformation(&srs, &wgs84));
    std::unique_ptr<OGRCoordinateTransformation> fromGeo(
        OGRCreateCoordinateTransformation(&wgs84, &srs));
    if (!toGeo || !fromGeo) {
        error = "no transformation to WGS 84 is known for the projection";
        return false;
    }
    char* wkt = nullptr;
    srs.exportToWkt(&wkt);
    std::string text = wkt != nullptr ? wkt : "";
    CPLFree(wkt);
    const char* name = srs.GetName();
    out = std::make_shared<GdalProjection>(std::move(toGeo), std::move(fromGeo),
                                           name != nullptr ? name : "", std::move(text));
    return true;
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

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return out;
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

constexpr const char* kTiffOnly[] = {"GTiff", nullptr};
constexpr const char* kImageDrivers[] = {"PNG", "JPEG", "GIF", "BMP", "GTiff", nullptr};
constexpr const char* kNoSiblings[] = {nullptr};
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
    InitGdal();
    const QuietErrors quiet;
    const std::string text(definition.substr(0, kProjectionLimit));
    OGRSpatialReference srs;
    if (text.find_first_not_of(" \t\r\n") == std::string::npos ||
        srs.SetFromUserInput(text.c_str(), OGRSpatialReference::SET_FROM_USER_INPUT_LIMITATIONS) !=
            OGRERR_NONE) {
        error = "the projection cannot be read";
        return false;
    }
    return MakeProjection(srs, out, error);
}

std::shared_ptr<const MapProjection> UtmProjection(int zone, bool south) {
    InitGdal();
    const QuietErrors quiet;
    OGRSpatialReference srs;
    srs.SetWellKnownGeogCS("WGS84");
    std::shared_ptr<const MapProjection> out;
    std::string error;
    if (zone < 1 || zone > 60 || srs.SetUTM(zone, south ? FALSE : TRUE) != OGRERR_NONE ||
        !MakeProjection(srs, out, error))
        return nullptr;
    return out;
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
    InitGdal();
    const QuietErrors quiet;
    Georeference g;
    GDALDatasetH ds = GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, kTiffOnly,
                                 nullptr, kNoSiblings);
    if (ds == nullptr)
        return g;  // not a TIFF GDAL can read: the image loader says so
    const int w = GDALGetRasterXSize(ds), h = GDALGetRasterYSize(ds);
    double gt[6];
    const bool hasTransform = GDALGetGeoTransform(ds, gt) == CE_None;
    OGRSpatialReferenceH srs = hasTransform ? GDALGetSpatialRef(ds) : GDALGetGCPSpatialRef(ds);
    const int gcpCount = GDALGetGCPCount(ds);
    if (hasTransform || gcpCount > 0) {
        g.source = GeoSource::GeoTiff;
        g.file = path;
    }
    std::string reason;
    if (g.source == GeoSource::None) {
        // a plain TIFF
    } else if (w <= 0 || h <= 0 || w > kMaxRasterSide || h > kMaxRasterSide) {
        g.error = Refused(path, "the GeoTIFF declares an impossible size");
    } else {
        if (srs != nullptr) {
            OGRSpatialReference copy(*OGRSpatialReference::FromHandle(srs));
            if (!MakeProjection(copy, g.projection, reason))
                g.error = Refused(path, reason);
        } else if (hasTransform && !LooksLikeDegrees({gt[0], gt[1], gt[2], gt[3], gt[4], gt[5]})) {
            g.error = Refused(path, "the GeoTIFF has no projection and is not in degrees");
        }
        if (g.error.empty() && hasTransform) {
            g.affine = {gt[0], gt[1], gt[2], gt[3], gt[4], gt[5]};
            Affine inverse;
            if (!InvertAffine(g.affine, inverse))
                g.error = Refused(path, "the GeoTIFF's scale is zero");
        } else if (g.error.empty()) {
            const GDAL_GCP* gcps = GDALGetGCPs(ds);
            for (int i = 0; i < gcpCount && i < 1000; ++i) {
                ControlPoint p;
                p.imageX = gcps[i].dfGCPPixel;
                p.imageY = gcps[i].dfGCPLine;
                p.mapX = p.longitude = gcps[i].dfGCPX;
                p.mapY = p.latitude = gcps[i].dfGCPY;
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
        }
    }
    GDALClose(ds);
    return g;
}

bool ReadImageSize(const std::string& path, ImageSize& size) {
    InitGdal();
    const QuietErrors quiet;
    GDALDatasetH ds = GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, kImageDrivers,
                                 nullptr, kNoSiblings);
    if (ds == nullptr)
        return false;
    size = {GDALGetRasterXSize(ds), GDALGetRasterYSize(ds)};
    GDALClose(ds);
    return size.width > 0 && size.height > 0;
}

namespace {

bool OziProjection(const OziMap& map, Georeference& g, std::string& reason) {
    const std::string datum = Lower(map.datum);
    if (datum != "wgs 84" && datum != "wgs84" && datum != "wgs 1984") {
        reason = "datum \"" + map.datum + "\" is not supported (only WGS 84)";
        return false;
    }
    const std::string name = Lower(map.projection);
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
        if (!g.projection)
            reason = "the UTM zone cannot be told from its points";
        return g.projection != nullptr;
    }
    InitGdal();
    const QuietErrors quiet;
    OGRSpatialReference srs;
    srs.SetWellKnownGeogCS("WGS84");
    OGRErr e = OGRERR_NONE;
    if (name == "mercator")
        e = srs.SetMercator(s[0], s[1], s[2] != 0.0 ? s[2] : 1.0, s[3], s[4]);
    else if (name == "transverse mercator")
        e = srs.SetTM(s[0], s[1], s[2] != 0.0 ? s[2] : 1.0, s[3], s[4]);
    else if (name == "lambert conformal conic")
        e = srs.SetLCC(s[5], s[6], s[0], s[1], s[3], s[4]);
    else if (name.find("british national grid") != std::string::npos)
        e = srs.importFromEPSG(27700);
    else {
        reason = "projection \"" + map.projection + "\" is not supported";
        return false;
    }
    if (e == OGRERR_NONE && srs.IsProjected() && name.find("national grid") == std::string::npos)
        srs.SetProjCS(("WGS 84 / " + map.projection).c_str());
    return e == OGRERR_NONE && MakeProjection(srs, g.projection, reason);
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

bool ReadKmz(const std::string& path, std::string& text) {
    InitGdal();
    const QuietErrors quiet;
    const std::string root = "/vsizip/" + path;
    char** names = VSIReadDirRecursive(root.c_str());
    std::string chosen;
    for (int i = 0; names != nullptr && names[i] != nullptr && i < 10000; ++i) {
        const std::string name = names[i];
        if (Lower(name).ends_with(".kml") && (chosen.empty() || Lower(name) == "doc.kml"))
            chosen = name;
    }
    CSLDestroy(names);
    if (chosen.empty())
        return false;
    const std::string inner = root + "/" + chosen;
    VSIStatBufL st;
    if (VSIStatL(inner.c_str(), &st) != 0 || st.st_size < 0 ||
        static_cast<std::uint64_t>(st.st_size) > kKmlLimit)
        return false;
    VSILFILE* f = VSIFOpenL(inner.c_str(), "rb");
    if (f == nullptr)
        return false;
    text.resize(static_cast<std::size_t>(st.st_size));
    text.resize(VSIFReadL(text.data(), 1, text.size(), f));
    VSIFCloseL(f);
    return true;
}

}  // namespace

Georeference ReadKmlFile(const std::string& path, std::string_view imageFileName) {
    Georeference g;
    std::string text, reason;
    const bool kmz = Lower(path).ends_with(".kmz");
    if (!(kmz ? ReadKmz(path, text) : ReadSmall(path, kKmlLimit, text)))
        return g;
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
    const std::string ext = dot == std::string::npos ? "" : Lower(fileName.substr(dot + 1));
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
            const std::string lower = Lower(name);
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
