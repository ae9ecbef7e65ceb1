// The POI icon strip from the program's bitmaps (or the source tree's
// bitmaps folder), added to the screens' open bitmaps.
#pragma once

#include <QString>

#include <memory>

#include "PoiFeature.h"
#include "QtCanvas.h"

namespace satwalk::poi::qt {

class QtPoiIcons final : public PoiPlatform {
  public:
    // `folder` is tried when the built-in strip is missing.
    QtPoiIcons(screens::ScreenBitmaps& bitmaps, QString folder)
        : bitmaps_(bitmaps), folder_(std::move(folder)) {}

    bool LoadIcons(screens::Bitmap& icons) override;

  private:
    screens::ScreenBitmaps& bitmaps_;
    QString folder_;
};

// The POI feature with its icons from `bitmaps`, its layer added to
// `mapScreen`; an import goes to the map the map feature shows.
std::unique_ptr<PoiFeature> MakePoiFeature(shell::Shell& shell, browser::FileChooser& chooser,
                                           const map::MapFeature& mapFeature,
                                           screens::ScreenBitmaps& bitmaps,
                                           map::MapScreen& mapScreen);

}  // namespace satwalk::poi::qt
