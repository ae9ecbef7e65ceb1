// The file chooser until the program's own file browser is in: a plain Qt
// file dialog, and in script mode the step "choose PATH" (or "choose
// cancel") that answers the request the last command made. It also opens
// the map's files (no reference-point dialog: that one is cancelled).
#pragma once

#include <QWidget>

#include "Features.h"
#include "FileChooser.h"
#include "MapFeature.h"

namespace satwalk::app {

class MainWindow;

class FileChooserStandIn final : public shell::Feature,
                                 public browser::FileChooser,
                                 public map::qt::MapDialogs {
  public:
    explicit FileChooserStandIn(MainWindow& window) : window_(window) {}

    void Register(shell::FeatureRegistry& registry) override;
    void ChooseFile(int mode, const std::string& title, browser::FileChosen chosen) override;
    void ChooseFile(int mode, const std::string& title,
                    std::function<void(const std::string& path)> done) override;
    void EditReferencePoint(
        int, const map::ReferenceDialogFields& fields,
        std::function<void(bool ok, const map::ReferenceDialogFields&)> done) override {
        done(false, fields);
    }

  private:
    // Asks for a file; `answer` gets its path, or "" on a cancel.
    void Ask(int mode, const std::string& title, std::function<void(const std::string&)> answer);

    MainWindow& window_;
    std::function<void(const std::string& path)> pending_;
};

}  // namespace satwalk::app
