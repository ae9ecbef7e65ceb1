// The GdalBackend on GDAL itself: the one place the program calls GDAL, built
// as the module satwalk_gdal.so and opened by GdalLibrary when a map first
// needs it. Only the entry point is exported.
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

#include "GdalBackend.h"

namespace satwalk::map {

namespace {

// GDAL's cache of decoded blocks, shared by the process: a JPEG's block is
// one scan line, so a band of 256 rows passes through it once.
constexpr GIntBig kGdalCacheBytes = GIntBig{64} << 20;

// Set once before GDAL is first used: no side-car files written, no
// directory listings on open, PROJ kept off the network, and only the
// drivers of the formats a map may be registered (BIGGIF is GDAL's GIF
// reader for images too large to hold whole).
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
        GDALRegister_BIGGIF();
        GDALRegister_BMP();
        GDALSetCacheMax64(kGdalCacheBytes);
    });
}

// GDAL's messages go to the caller's error text, not to stderr.
struct QuietErrors {
    QuietErrors() {
        InitGdal();
        CPLPushErrorHandler(CPLQuietErrorHandler);
        CPLErrorReset();
    }
    ~QuietErrors() { CPLPopErrorHandler(); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
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

std::shared_ptr<const MapProjection> MakeProjection(OGRSpatialReference& srs, std::string& error) {
    if (!srs.IsProjected() && !srs.IsGeographic()) {
        error = "the projection is neither projected nor geographic";
        return nullptr;
    }
    OGRSpatialReference wgs84;
    wgs84.SetWellKnownGeogCS("WGS84");
    wgs84.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    srs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (srs.IsGeographic() && srs.IsSame(&wgs84))
        return nullptr;
    std::unique_ptr<OGRCoordinateTransformation> toGeo(
        OGRCreateCoordinateTransformation(&srs, &wgs84));
    std::unique_ptr<OGRCoordinateTransformation> fromGeo(
        OGRCreateCoordinateTransformation(&wgs84, &srs));
    if (!toGeo || !fromGeo) {
        error = "no transformation to WGS 84 is known for the projection";
        return nullptr;
    }
    char* wkt = nullptr;
    srs.exportToWkt(&wkt);
    std::string text = wkt != nullptr ? wkt : "";
    CPLFree(wkt);
    const char* name = srs.GetName();
    return std::make_shared<GdalProjection>(std::move(toGeo), std::move(fromGeo),
                                            name != nullptr ? name : "", std::move(text));
}

std::uint32_t Opaque(int r, int g, int b, int a) {
    // Laid over white, as a transparent map has always been shown.
    auto over = [a](int c) {
        return static_cast<std::uint32_t>((c * a + 255 * (255 - a) + 127) / 255);
    };
    return 0xFF000000u | over(r) << 16 | over(g) << 8 | over(b);
}

struct DatasetCloser {
    void operator()(void* ds) const { GDALClose(static_cast<GDALDatasetH>(ds)); }
};
using Dataset = std::unique_ptr<void, DatasetCloser>;

// Reads rows of the source as opaque RGB32, whatever its bands. GDAL's
// messages stay off the terminal while it reads.
class GdalRows final : public RasterRows {
  public:
    RasterOpen Open(const std::string& path) {
        const QuietErrors quiet;
        static const char* const kDrivers[] = {"JPEG", "PNG", "BMP", "GIF", "BIGGIF", nullptr};
        ds_.reset(GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, kDrivers, nullptr,
                             nullptr));
        if (!ds_) {
            std::FILE* f = std::fopen(path.c_str(), "rb");
            if (f == nullptr)
                return RasterOpen::CannotOpen;
            std::fclose(f);
            return RasterOpen::NotAnImage;
        }
        auto* ds = static_cast<GDALDatasetH>(ds_.get());
        bands_ = GDALGetRasterCount(ds);
        width_ = GDALGetRasterXSize(ds);
        height_ = GDALGetRasterYSize(ds);
        if (bands_ < 1 || width_ <= 0 || height_ <= 0)
            return RasterOpen::Damaged;
        for (int b = 1; b <= bands_; ++b)
            if (GDALGetRasterDataType(GDALGetRasterBand(ds, b)) != GDT_Byte)
                return RasterOpen::NotAnImage;  // 16-bit samples are no map format here
        GDALRasterBandH first = GDALGetRasterBand(ds, 1);
        if (bands_ <= 2) {
            // Grey (and alpha) or a palette: one table from sample to pixel.
            GDALColorTableH table = GDALGetRasterColorTable(first);
            for (int i = 0; i < 256; ++i)
                lut_[i] = 0xFF000000u | 0x010101u * static_cast<std::uint32_t>(i);
            if (table != nullptr && GDALGetRasterColorInterpretation(first) == GCI_PaletteIndex) {
                const int n = std::min(256, GDALGetColorEntryCount(table));
                for (int i = 0; i < n; ++i) {
                    const GDALColorEntry* e = GDALGetColorEntry(table, i);
                    lut_[i] = Opaque(e->c1, e->c2, e->c3, e->c4);
                }
            }
        }
        return RasterOpen::Opened;
    }

    ImageSize Size() const override { return {width_, height_}; }

    bool Read(int y, int rows, std::uint8_t* out, std::ptrdiff_t stride) override {
        const QuietErrors quiet;
        auto* ds = static_cast<GDALDatasetH>(ds_.get());
        if (bands_ >= 3) {
            // Straight into the pixels: B, G, R (and A) are bytes 0 to 3 of
            // each on a little-endian machine.
            int map[4] = {3, 2, 1, 4};
            const int count = bands_ >= 4 ? 4 : 3;
            if (GDALDatasetRasterIOEx(ds, GF_Read, 0, y, width_, rows, out, width_, rows, GDT_Byte,
                                      count, map, 4, stride, 1, nullptr) != CE_None)
                return false;
            if (count == 4) {
                for (int r = 0; r < rows; ++r) {
                    auto* p = reinterpret_cast<std::uint32_t*>(out + r * stride);
                    for (int x = 0; x < width_; ++x) {
                        const std::uint32_t v = p[x];
                        p[x] = Opaque(v >> 16 & 0xFF, v >> 8 & 0xFF, v & 0xFF,
                                      static_cast<int>(v >> 24));
                    }
                }
            }
            return true;
        }
        samples_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(bands_));
        for (int r = 0; r < rows; ++r) {
            for (int b = 0; b < bands_; ++b) {
                if (GDALRasterIO(GDALGetRasterBand(ds, b + 1), GF_Read, 0, y + r, width_, 1,
                                 samples_.data() + std::ptrdiff_t{b} * width_, width_, 1, GDT_Byte,
                                 0, 0) != CE_None)
                    return false;
            }
            auto* p = reinterpret_cast<std::uint32_t*>(out + r * stride);
            const std::uint8_t* s = samples_.data();
            if (bands_ == 2) {
                for (int x = 0; x < width_; ++x) p[x] = Opaque(s[x], s[x], s[x], s[width_ + x]);
            } else {
                for (int x = 0; x < width_; ++x) p[x] = lut_[s[x]];
            }
        }
        return true;
    }

  private:
    Dataset ds_;
    int bands_ = 0, width_ = 0, height_ = 0;
    std::uint32_t lut_[256] = {};
    std::vector<std::uint8_t> samples_;
};

constexpr const char* kTiffOnly[] = {"GTiff", nullptr};
constexpr const char* kImageDrivers[] = {"PNG", "JPEG", "GIF", "BMP", "GTiff", nullptr};
constexpr const char* kNoSiblings[] = {nullptr};
constexpr int kMaxControlPoints = 1000;
constexpr int kMaxZipEntries = 10000;

class Gdal final : public GdalBackend {
  public:
    std::shared_ptr<const MapProjection> Projection(const ProjectionRequest& r,
                                                    std::string& error) const override {
        using Kind = ProjectionRequest::Kind;
        const QuietErrors quiet;
        OGRSpatialReference srs;
        OGRErr e = OGRERR_NONE;
        if (r.kind == Kind::Definition) {
            if (r.text.find_first_not_of(" \t\r\n") == std::string::npos ||
                srs.SetFromUserInput(r.text.c_str(),
                                     OGRSpatialReference::SET_FROM_USER_INPUT_LIMITATIONS) !=
                    OGRERR_NONE) {
                error = "the projection cannot be read";
                return nullptr;
            }
            return MakeProjection(srs, error);
        }
        srs.SetWellKnownGeogCS("WGS84");
        const auto& p = r.p;
        switch (r.kind) {
            case Kind::Utm:
                e = r.zone < 1 || r.zone > 60 ? OGRERR_FAILURE
                                              : srs.SetUTM(r.zone, r.south ? FALSE : TRUE);
                break;
            case Kind::Mercator:
                e = srs.SetMercator(p[0], p[1], p[2], p[3], p[4]);
                break;
            case Kind::TransverseMercator:
                e = srs.SetTM(p[0], p[1], p[2], p[3], p[4]);
                break;
            case Kind::LambertConic:
                e = srs.SetLCC(p[0], p[1], p[2], p[3], p[4], p[5]);
                break;
            case Kind::Epsg:
                e = srs.importFromEPSG(r.zone);
                break;
            case Kind::Definition:
                break;
        }
        if (e == OGRERR_NONE && srs.IsProjected() && !r.name.empty())
            srs.SetProjCS(r.name.c_str());
        if (e != OGRERR_NONE) {
            error = "the projection cannot be set up";
            return nullptr;
        }
        return MakeProjection(srs, error);
    }

    GeoTiffTags ReadGeoTiff(const std::string& path) const override {
        const QuietErrors quiet;
        GeoTiffTags tags;
        GDALDatasetH ds = GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, kTiffOnly,
                                     nullptr, kNoSiblings);
        if (ds == nullptr)
            return tags;
        tags.opened = true;
        tags.width = GDALGetRasterXSize(ds);
        tags.height = GDALGetRasterYSize(ds);
        tags.hasTransform = GDALGetGeoTransform(ds, tags.transform.data()) == CE_None;
        OGRSpatialReferenceH srs =
            tags.hasTransform ? GDALGetSpatialRef(ds) : GDALGetGCPSpatialRef(ds);
        if (srs != nullptr) {
            tags.hasProjection = true;
            OGRSpatialReference copy(*OGRSpatialReference::FromHandle(srs));
            tags.projection = MakeProjection(copy, tags.projectionError);
        }
        if (!tags.hasTransform) {
            const int count = std::min(GDALGetGCPCount(ds), kMaxControlPoints);
            const GDAL_GCP* gcps = GDALGetGCPs(ds);
            for (int i = 0; i < count; ++i) {
                ControlPoint p;
                p.imageX = gcps[i].dfGCPPixel;
                p.imageY = gcps[i].dfGCPLine;
                p.mapX = gcps[i].dfGCPX;
                p.mapY = gcps[i].dfGCPY;
                tags.gcps.push_back(p);
            }
        }
        GDALClose(ds);
        return tags;
    }

    bool ReadImageSize(const std::string& path, ImageSize& size) const override {
        const QuietErrors quiet;
        GDALDatasetH ds = GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, kImageDrivers,
                                     nullptr, kNoSiblings);
        if (ds == nullptr)
            return false;
        size = {GDALGetRasterXSize(ds), GDALGetRasterYSize(ds)};
        GDALClose(ds);
        return size.width > 0 && size.height > 0;
    }

    bool ReadZippedKml(const std::string& path, std::size_t limit,
                       std::string& text) const override {
        const QuietErrors quiet;
        const std::string root = "/vsizip/" + path;
        char** names = VSIReadDirRecursive(root.c_str());
        std::string chosen;
        for (int i = 0; names != nullptr && names[i] != nullptr && i < kMaxZipEntries; ++i) {
            const std::string name = names[i];
            if (AsciiLower(name).ends_with(".kml") &&
                (chosen.empty() || AsciiLower(name) == "doc.kml"))
                chosen = name;
        }
        CSLDestroy(names);
        if (chosen.empty())
            return false;
        const std::string inner = root + "/" + chosen;
        VSIStatBufL st;
        if (VSIStatL(inner.c_str(), &st) != 0 || st.st_size < 0 ||
            static_cast<std::uint64_t>(st.st_size) > limit)
            return false;
        VSILFILE* f = VSIFOpenL(inner.c_str(), "rb");
        if (f == nullptr)
            return false;
        text.resize(static_cast<std::size_t>(st.st_size));
        text.resize(VSIFReadL(text.data(), 1, text.size(), f));
        VSIFCloseL(f);
        return true;
    }

    std::unique_ptr<RasterRows> OpenRaster(const std::string& path,
                                           RasterOpen& result) const override {
        auto rows = std::make_unique<GdalRows>();
        result = rows->Open(path);
        if (result != RasterOpen::Opened)
            return nullptr;
        return rows;
    }
};

}  // namespace

}  // namespace satwalk::map

extern "C" __attribute__((visibility("default"))) const satwalk::map::GdalBackend*
satwalk_gdal_backend(int version) {
    static const satwalk::map::Gdal gdal;
    return version == satwalk::map::kGdalBackendVersion ? &gdal : nullptr;
}
