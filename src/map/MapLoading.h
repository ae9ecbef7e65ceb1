// Loading a map image, as far as it is arithmetic: the file's names, the fit
// of the image into the map view, the zoom and scroll it starts with, and the
// list of the five most recent maps. Decoding the image is the Qt side's
// (MapImage.h); calibrating and drawing are the caller's. Plain values,
// called on the user-interface thread.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "Canvas.h"
#include "MapGeometry.h"

namespace satwalk::map {

// How loading an image can fail: BMP, JPG, GIF (its first frame) and PNG
// are maps.
enum class ImageLoadError {
    None,
    CannotOpen,  // missing, unreadable, a folder
    NotAnImage,  // empty, or none of the four formats
    TooLarge,    // declared size past the decoding budget (and past a pyramid's)
    Damaged,     // header or data broken, truncated
    // Larger images are drawn from a tile pyramid built in the cache:
    Pending,      // being built; the platform says when it is done
    Cancelled,    // the user stopped the build
    NoDiskSpace,  // the pyramid would not fit on the cache's disk
    NoGdal,       // GDAL, which reads the pyramid's source, cannot be loaded
};

// The loader refused the file (not an image, damaged, too large for memory):
// "导入 %s 失败！没有足够内存空间！" with the file name.
inline constexpr int kStrImportFailed = 40104;
// A pyramid that would not fit on the disk, with the file name:
// kStrNoDiskSpaceForMap.
// The image loaded but its size cannot be told: kStrReadImageFailed.

// The part of a path after its last '/' (the whole path without one).
std::string_view MapFileName(std::string_view path);

// How the whole image fits the map view at the start.
struct MapFit {
    int fitByHeight = 0;  // 1: fitted to the view's height, 0: to its width
    double displayedWidth = 0.0;
    double displayedHeight = 0.0;
    int zoomStepX = 0;  // pixels one zoom step adds to or takes from the size
    int zoomStepY = 0;
};

// Fits `image` into `view` less the frame's bottom bar. An image relatively
// taller than the view (compared in integers, truncated, as the displayed
// sizes then follow from it) fills the available height, any other the
// width; the fitted axis takes `zoomStep` and the other its share, truncated.
// An empty image or a view with no room gives a zero fit.
MapFit FitImageToView(ImageSize image, screens::Rect view, int bottomBarHeight, int zoomStep);

// The loaded map as the map screen pans and zooms it.
struct LoadedMap {
    int mapMode = 0;  // 1 while an image is loaded and shown
    std::string mapFileName;
    std::string mapStem;  // picks the reference file
    ImageSize image;
    PointF imageCentre;
    MapFit fit;
    double currentWidth = 0.0;  // displayed size at the current zoom
    double currentHeight = 0.0;
    PointF scrollCentre;  // image pixel at the view's centre
    int outsideMap = 0;
};

// The map state for an image that has just loaded from `path`: its names
// and size, the fit, the current size equal to the fitted one and the view
// centred on the image. Calibration, extent, reference points and trails are
// the caller's to clear and read anew.
void ApplyLoadedImage(LoadedMap& map, std::string_view path, ImageSize image, screens::Rect view,
                      int bottomBarHeight, int zoomStep);

// ----- the most recent maps -----

inline constexpr int kRecentMapCount = 5;
// Full paths, most recent first; "" while unused.
using RecentMaps = std::array<std::string, kRecentMapCount>;

// A file chosen in the open-file dialog: the index of the entry that opens
// it. A path already in the list (compared byte for byte) keeps its entry;
// any other goes in at the top, the rest move down and the fifth drops out.
// An empty path is no choice: -1, the list unchanged.
int ChooseMapFile(RecentMaps& recent, std::string_view path);

// Entry `index` moves to the top (the ones above it move down a place) and
// its path is returned for loading. The order stays changed whether or not
// the load then succeeds. An unused entry opens nothing: "" and the list as
// it was.
std::string OpenRecentMap(RecentMaps& recent, int index);

// The menu text of entry `index`: the file's name, or "空".
std::string RecentMapMenuText(const RecentMaps& recent, int index);

}  // namespace satwalk::map
