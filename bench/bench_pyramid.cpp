// Huge map images through their tile pyramid, one step a process so that
// each is timed and its peak memory read from outside (or from the figures
// it prints itself):
//   bench_pyramid make FILE [SIDE]  writes a SIDE × SIDE scan-like JPEG
//                                   (default 40,000), a row at a time
//   bench_pyramid build FILE DIR    builds FILE's pyramid into DIR
//   bench_pyramid open FILE DIR     opens it as the map does and draws the
//                                   fitted 480 × 640 view once
//   bench_pyramid pan FILE DIR      repaints of the 480 × 640 view while
//                                   panning and zooming: the median, and
//                                   the 90th percentile
// Each prints its wall time and peak resident memory. Keep FILE under
// build/ or /tmp: it is a few hundred megabytes.
#include <sys/resource.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

// After <cstdio>: it uses FILE and size_t without including them.
#include <jpeglib.h>

#include "ImageViewport.h"
#include "MapImage.h"
#include "MapLoading.h"
#include "PyramidBuilder.h"
#include "ResidentMemory.h"
#include "TiledImage.h"

using namespace satwalk;
using namespace satwalk::map;
using Clock = std::chrono::steady_clock;

namespace {

const screens::Rect kView{0, 0, 480, 640};

using bench::PeakResidentMb;

// User and system time of this process so far: on a shared machine the
// figure that does not grow with the others' load.
double CpuSeconds() {
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return static_cast<double>(u.ru_utime.tv_sec + u.ru_stime.tv_sec) +
           static_cast<double>(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

double Seconds(Clock::time_point since) {
    return std::chrono::duration<double>(Clock::now() - since).count();
}

// A topographic sheet, drawn a row at a time: land tinted in patches a few
// thousand pixels across, a kilometre grid every 2,000 pixels with finer
// lines every 250, three winding rivers, straight roads and a little grain,
// so that tiles compress like a scan's and every zoom shows something.
int Make(const char* path, int side) {
    std::FILE* out = std::fopen(path, "wb");
    if (out == nullptr)
        return std::perror(path), 1;
    jpeg_compress_struct c{};
    jpeg_error_mgr err{};
    c.err = jpeg_std_error(&err);
    jpeg_create_compress(&c);
    jpeg_stdio_dest(&c, out);
    c.image_width = static_cast<JDIMENSION>(side);
    c.image_height = static_cast<JDIMENSION>(side);
    c.input_components = 3;
    c.in_color_space = JCS_RGB;
    jpeg_set_defaults(&c);
    jpeg_set_quality(&c, 85, TRUE);
    jpeg_start_compress(&c, TRUE);

    // The rivers' middle row at each column, worked out once.
    constexpr int kRivers = 3;
    std::vector<int> river(static_cast<std::size_t>(side) * kRivers);
    for (int x = 0; x < side; ++x) {
        for (int k = 0; k < kRivers; ++k) {
            const double t = static_cast<double>(x) / side;
            river[static_cast<std::size_t>(x) * kRivers + k] =
                static_cast<int>(side * (0.2 + 0.3 * k + 0.06 * std::sin(t * (9 + 4 * k)) +
                                         0.02 * std::sin(t * (53 + 11 * k))));
        }
    }
    // Patch tints on a coarse lattice, blended across each cell.
    constexpr int kCell = 3000;
    auto tint = [](int i, int j) {
        const std::uint32_t h =
            static_cast<std::uint32_t>(i * 73856093 ^ j * 19349663) * 2654435761u;
        return static_cast<int>(h >> 27);  // 0..31
    };
    std::vector<JSAMPLE> row(static_cast<std::size_t>(side) * 3);
    std::uint32_t grain = 12345;
    for (int y = 0; y < side; ++y) {
        const int j = y / kCell;
        const double fy = static_cast<double>(y % kCell) / kCell;
        for (int x = 0; x < side; ++x) {
            grain = grain * 1664525u + 1013904223u;
            const int g = static_cast<int>(grain >> 29);  // 0..7
            const int i = x / kCell;
            const double fx = static_cast<double>(x % kCell) / kCell;
            const double patch = (tint(i, j) * (1 - fx) + tint(i + 1, j) * fx) * (1 - fy) +
                                 (tint(i, j + 1) * (1 - fx) + tint(i + 1, j + 1) * fx) * fy;
            int r = 236 - static_cast<int>(patch) + g, gr = 232 + g,
                b = 206 - static_cast<int>(patch) + g;
            if (x % 2000 < 10 || y % 2000 < 10 || x % 250 < 2 || y % 250 < 2) {
                r = 120;
                gr = 150;
                b = 200;
            }
            for (int k = 0; k < kRivers; ++k) {
                if (std::abs(y - river[static_cast<std::size_t>(x) * kRivers + k]) < 40 + 15 * k) {
                    r = 90;
                    gr = 150;
                    b = 215;
                }
            }
            if (std::abs((x * 3 + y * 7) % 29989) < 60 ||
                std::abs((x * 5 - y * 2 + 3 * side) % 37003) < 45) {
                r = 200;
                gr = 60;
                b = 40;
            }
            JSAMPLE* p = &row[static_cast<std::size_t>(x) * 3];
            p[0] = static_cast<JSAMPLE>(std::clamp(r, 0, 255));
            p[1] = static_cast<JSAMPLE>(std::clamp(gr, 0, 255));
            p[2] = static_cast<JSAMPLE>(std::clamp(b, 0, 255));
        }
        JSAMPROW rows[1] = {row.data()};
        jpeg_write_scanlines(&c, rows, 1);
    }
    jpeg_finish_compress(&c);
    jpeg_destroy_compress(&c);
    std::fclose(out);
    return 0;
}

std::string CacheFile(const std::string& dir) {
    return dir + "/bench.tiles";
}

int Build(const std::string& source, const std::string& dir) {
    const Clock::time_point start = Clock::now();
    PyramidProgress progress;
    const PyramidBuild result = BuildPyramid(source, CacheFile(dir), progress);
    std::printf("build: %s, %.2f s (%.2f s CPU), %llu tiles, peak %.0f MB\n",
                result == PyramidBuild::Built ? "built" : "FAILED", Seconds(start), CpuSeconds(),
                static_cast<unsigned long long>(progress.done.load()), PeakResidentMb());
    return result == PyramidBuild::Built ? 0 : 1;
}

// Opens the pyramid as loading a map does: the decoder refuses the size
// first, then the cache's index is read and checked.
bool OpenTiled(const std::string& source, const std::string& dir, TiledImage& tiled) {
    MapImage whole;
    if (LoadMapImage(QString::fromStdString(source), whole) != ImageLoadError::TooLarge)
        return false;
    const std::optional<SourceStamp> stamp = StampOf(source);
    return stamp && tiled.Open(CacheFile(dir), *stamp) == PyramidCheck::Valid;
}

void Draw(QImage& target, TiledImage& tiled, double shown, PointF centre) {
    QPainter painter(&target);
    painter.fillRect(0, 0, kView.Width(), kView.Height(), Qt::white);
    DrawTiledImage(painter, tiled, ComputeVisiblePart(tiled.Size(), shown, shown, centre, kView));
}

int Open(const std::string& source, const std::string& dir) {
    const Clock::time_point start = Clock::now();
    TiledImage tiled;
    if (!OpenTiled(source, dir, tiled))
        return std::puts("open: FAILED"), 1;
    QImage target(kView.Width(), kView.Height(), QImage::Format_RGB32);
    const ImageSize size = tiled.Size();
    Draw(target, tiled, kView.Width(), {size.width * 0.5, size.height * 0.5});
    std::printf("open: %.3f s to the first frame (%.3f s CPU), peak %.0f MB\n", Seconds(start),
                CpuSeconds(), PeakResidentMb());
    return 0;
}

int Pan(const std::string& source, const std::string& dir) {
    TiledImage tiled;
    if (!OpenTiled(source, dir, tiled))
        return std::puts("pan: FAILED"), 1;
    const double side = tiled.Size().width;
    QImage target(kView.Width(), kView.Height(), QImage::Format_RGB32);
    std::vector<double> ms;
    auto frame = [&](double zoom, PointF centre) {
        const Clock::time_point start = Clock::now();
        Draw(target, tiled, side * zoom, centre);
        ms.push_back(Seconds(start) * 1000.0);
    };
    // Drags of seven screen pixels a frame at several zooms (fitted, a
    // fifth, 1:1, twice), each followed by zoom steps in and out through
    // the levels as the zoom buttons make them.
    for (const double zoom : {480.0 / side, 0.05, 0.2, 1.0, 2.0}) {
        PointF centre{side * 0.37, side * 0.41};
        for (int i = 0; i < 100; ++i) {
            centre.x += 7.0 / zoom;
            centre.y += 3.5 / zoom;
            frame(zoom, centre);
        }
        for (double z = zoom; z < zoom * 4; z *= 1.1) frame(z, centre);
        for (double z = zoom * 4; z > zoom; z /= 1.1) frame(z, centre);
    }
    std::sort(ms.begin(), ms.end());
    std::printf(
        "pan and zoom: %zu frames, median %.2f ms, 90%% %.2f ms, max %.2f ms, peak %.0f MB\n",
        ms.size(), ms[ms.size() / 2], ms[ms.size() * 9 / 10], ms.back(), PeakResidentMb());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication app(argc, argv);
    const std::string verb = argc > 2 ? argv[1] : "";
    if (verb == "make")
        return Make(argv[2], argc > 3 ? std::atoi(argv[3]) : 40000);
    if (argc > 3 && verb == "build")
        return Build(argv[2], argv[3]);
    if (argc > 3 && verb == "open")
        return Open(argv[2], argv[3]);
    if (argc > 3 && verb == "pan")
        return Pan(argv[2], argv[3]);
    std::fputs("usage: bench_pyramid make FILE [SIDE] | build|open|pan FILE DIR\n", stderr);
    return 2;
}
