#include "QtPoiIcons.h"

#include <QImage>

#include "Shell.h"

namespace satwalk::poi::qt {

bool QtPoiIcons::LoadIcons(screens::Bitmap& icons) {
    const QString name = QStringLiteral("poi-icons.png");
    QImage strip(QStringLiteral(":/satwalk/bitmaps/") + name);
    if (strip.isNull() && !folder_.isEmpty())
        strip = QImage(folder_ + QLatin1Char('/') + name);
    if (strip.width() != kPoiIconCells * kPoiIconSize || strip.height() != kPoiIconSize)
        return false;
    icons.id = bitmaps_.Add(std::move(strip));
    icons.width = kPoiIconCells * kPoiIconSize;
    icons.height = kPoiIconSize;
    return true;
}

std::unique_ptr<PoiFeature> MakePoiFeature(shell::Shell& shell, browser::FileChooser& chooser,
                                           const map::MapFeature& mapFeature,
                                           screens::ScreenBitmaps& bitmaps,
                                           map::MapScreen& mapScreen) {
    auto feature = std::make_unique<PoiFeature>(
        shell, chooser, std::make_unique<QtPoiIcons>(bitmaps, QStringLiteral(SATWALK_BITMAP_DIR)));
    TiePoiToMap(*feature, mapFeature, mapScreen, shell.settings().showPoi);
    return feature;
}

}  // namespace satwalk::poi::qt
