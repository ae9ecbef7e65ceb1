#include "MapLoading.h"

#include <algorithm>
#include <cstdint>

#include "ReferencePoints.h"
#include "Strings.h"

namespace satwalk::map {

std::string_view MapFileName(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

MapFit FitImageToView(ImageSize image, screens::Rect view, int bottomBarHeight, int zoomStep) {
    MapFit fit;
    const std::int64_t viewWidth = view.Width();
    const std::int64_t available = std::int64_t{view.bottom} - bottomBarHeight - view.top;
    if (image.width <= 0 || image.height <= 0 || viewWidth <= 0 || available <= 0)
        return fit;
    const double w = image.width, h = image.height;
    // Integer products: a 60,000-pixel image in a wide view passes 32 bits.
    if (image.width < viewWidth * image.height / available) {
        fit.fitByHeight = 1;
        fit.displayedHeight = static_cast<double>(available);
        fit.displayedWidth = static_cast<double>(available) * w / h;
        fit.zoomStepY = zoomStep;
        fit.zoomStepX = static_cast<int>(std::int64_t{zoomStep} * image.width / image.height);
    } else {
        fit.fitByHeight = 0;
        fit.displayedWidth = static_cast<double>(viewWidth);
        fit.displayedHeight = static_cast<double>(viewWidth) * h / w;
        fit.zoomStepX = zoomStep;
        fit.zoomStepY = static_cast<int>(std::int64_t{zoomStep} * image.height / image.width);
    }
    return fit;
}

void ApplyLoadedImage(LoadedMap& map, std::string_view path, ImageSize image, screens::Rect view,
                      int bottomBarHeight, int zoomStep) {
    map.mapMode = 1;
    map.outsideMap = 0;
    map.mapFileName = std::string(MapFileName(path));
    map.mapStem = std::string(MapStem(path));
    map.image = image;
    map.imageCentre = {image.width * 0.5, image.height * 0.5};
    map.fit = FitImageToView(image, view, bottomBarHeight, zoomStep);
    map.currentWidth = map.fit.displayedWidth;
    map.currentHeight = map.fit.displayedHeight;
    map.scrollCentre = map.imageCentre;
}

int ChooseMapFile(RecentMaps& recent, std::string_view path) {
    if (path.empty())
        return -1;
    for (int i = 0; i < kRecentMapCount; ++i)
        if (recent[i] == path)
            return i;
    std::move_backward(recent.begin(), recent.end() - 1, recent.end());
    recent[0] = std::string(path);
    return 0;
}

std::string OpenRecentMap(RecentMaps& recent, int index) {
    if (index < 0 || index >= kRecentMapCount || recent[index].empty())
        return {};
    std::rotate(recent.begin(), recent.begin() + index, recent.begin() + index + 1);
    return recent[0];
}

std::string RecentMapMenuText(const RecentMaps& recent, int index) {
    if (index < 0 || index >= kRecentMapCount || recent[index].empty())
        return common::LoadString(common::kStrMenuEmpty);
    return std::string(MapFileName(recent[index]));
}

}  // namespace satwalk::map
