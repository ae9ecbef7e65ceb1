// The file chooser until the program's own file browser is in: a plain Qt
// file dialog, and in script mode the step "choose PATH" (or "choose
// cancel") that answers the request the last command made.
#pragma once

#include <QWidget>

#include "Features.h"
#include "FileChooser.h"

namespace satwalk::app {

class MainWindow;

class FileChooserStandIn final : public shell::Feature, public browser::FileChooser {
  public:
    explicit FileChooserStandIn(MainWindow& window) : window_(window) {}

    void Register(shell::FeatureRegistry& registry) override;
    void ChooseFile(int mode, const std::string& title, browser::FileChosen chosen) override;

  private:
    MainWindow& window_;
    browser::FileChosen pending_;
};

}  // namespace satwalk::app
