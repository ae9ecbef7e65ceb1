#include "FeatureList.h"

#include "FileChooserStandIn.h"
#include "MainWindow.h"
#include "QtPoiIcons.h"
#include "QtTrackPlatform.h"
#include "SatelliteDataDialog.h"
#include "ScreenAdapter.h"

namespace satwalk::app {

std::vector<std::unique_ptr<shell::Feature>> MakeFeatures(MainWindow& window,
                                                          ScreenAdapter& screens) {
    std::vector<std::unique_ptr<shell::Feature>> features;
    features.push_back(shell::qt::MakeSatelliteDataFeature(window.shell(), window));
    auto& chooser = *static_cast<FileChooserStandIn*>(
        features.emplace_back(std::make_unique<FileChooserStandIn>(window)).get());
    features.push_back(track::qt::MakeTrackFeature(window.shell(), chooser, &window,
                                                   screens.mapScreen(), window.onTrackTick));
    features.push_back(
        poi::qt::MakePoiFeature(window.shell(), chooser, screens.bitmaps(), screens.mapScreen()));
    return features;
}

}  // namespace satwalk::app
