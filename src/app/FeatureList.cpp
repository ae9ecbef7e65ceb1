#include "FeatureList.h"

#include "BrowserChooser.h"
#include "Language.h"
#include "MainWindow.h"
#include "ManualDialog.h"
#include "MessageBoxes.h"
#include "OptionsDialog.h"
#include "QtMapPlatform.h"
#include "QtPoiIcons.h"
#include "QtTrackPlatform.h"
#include "ReceiverSettingsDialog.h"
#include "SatelliteDataDialog.h"
#include "ScreenAdapter.h"
#include "TestHooks.h"

namespace satwalk::app {

namespace {

// Adds `feature` and returns it, for features that others are tied to.
template <typename F>
F& Keep(std::vector<std::unique_ptr<shell::Feature>>& features, std::unique_ptr<F> feature) {
    F& kept = *feature;
    features.push_back(std::move(feature));
    return kept;
}

}  // namespace

std::vector<std::unique_ptr<shell::Feature>> MakeFeatures(MainWindow& window,
                                                          ScreenAdapter& screens) {
    std::vector<std::unique_ptr<shell::Feature>> features;
    features.push_back(shell::qt::MakeSatelliteDataFeature(window.shell(), window));
    features.push_back(shell::qt::MakeReceiverSettingsFeature(window.shell(), window.dialogs()));
    features.push_back(shell::qt::MakeOptionsFeature(window.shell(), window.dialogs()));
    BrowserChooser& chooser = Keep(features, std::make_unique<BrowserChooser>(window.dialogs()));
    map::MapFeature& map =
        Keep(features, map::qt::MakeMapFeature(window.shell(), window, screens.context(),
                                               screens.mapScreen(), window.dialogs()));
    features.push_back(track::qt::MakeTrackFeature(window.shell(), chooser, &window, map,
                                                   screens.mapScreen(), &window.dialogs()));
    features.push_back(poi::qt::MakePoiFeature(window.shell(), chooser, map, screens.bitmaps(),
                                               screens.mapScreen()));
    features.push_back(help::qt::MakeHelpFeature(window.shell(), window.dialogs(),
                                                 help::qt::DataDirectory(),
                                                 [] { return CurrentLanguage(); }));
    if (auto hooks = MakeTestHooks(window))
        features.push_back(std::move(hooks));
    features.push_back(MakeMessageSnapshotFeature(window));
    return features;
}

}  // namespace satwalk::app
