// The features of the program, in the order they are registered. A new
// feature is one line in FeatureList.cpp.
#pragma once

#include <memory>
#include <vector>

#include "Features.h"

namespace satwalk::app {

class MainWindow;
class ScreenAdapter;

std::vector<std::unique_ptr<shell::Feature>> MakeFeatures(MainWindow& window,
                                                          ScreenAdapter& screens);

}  // namespace satwalk::app
