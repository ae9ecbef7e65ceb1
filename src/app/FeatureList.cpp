#include "FeatureList.h"

#include "MainWindow.h"
#include "MessageBoxes.h"
#include "SatelliteDataDialog.h"
#include "ScreenAdapter.h"

namespace satwalk::app {

std::vector<std::unique_ptr<shell::Feature>> MakeFeatures(MainWindow& window, ScreenAdapter&) {
    std::vector<std::unique_ptr<shell::Feature>> features;
    features.push_back(shell::qt::MakeSatelliteDataFeature(window.shell(), window));
    features.push_back(MakeMessageSnapshotFeature(window));
    return features;
}

}  // namespace satwalk::app
