#include "FeatureList.h"

#include "MainWindow.h"
#include "MapFeature.h"
#include "OptionsDialog.h"
#include "ReceiverSettingsDialog.h"
#include "SatelliteDataDialog.h"
#include "ScreenAdapter.h"
#include "TestHooks.h"

namespace satwalk::app {

std::vector<std::unique_ptr<shell::Feature>> MakeFeatures(MainWindow& window,
                                                          ScreenAdapter& screens) {
    std::vector<std::unique_ptr<shell::Feature>> features;
    features.push_back(shell::qt::MakeSatelliteDataFeature(window.shell(), window));
    features.push_back(shell::qt::MakeReceiverSettingsFeature(window.shell(), window.dialogs()));
    features.push_back(shell::qt::MakeOptionsFeature(window.shell(), window.dialogs()));
    features.push_back(map::qt::MakeMapFeature(window.shell(), window, screens.context(),
                                               screens.mapScreen(), window.dialogs()));
    if (auto hooks = MakeTestHooks(window))
        features.push_back(std::move(hooks));
    return features;
}

}  // namespace satwalk::app
