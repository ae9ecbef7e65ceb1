// Features ask for files through browser::FileChooser; the program answers
// with its own full-screen file browser on the window's dialog stack, so a
// script drives it with `choose PATH` like any other dialog. It is kept with
// the features, which it outlives no less than they outlive each other.
#pragma once

#include "Dialogs.h"
#include "Features.h"
#include "FileChooser.h"

namespace satwalk::app {

class BrowserChooser final : public shell::Feature, public browser::FileChooser {
  public:
    explicit BrowserChooser(shell::qt::DialogStack& stack) : stack_(stack) {}
    void Register(shell::FeatureRegistry&) override {}
    void ChooseFile(int mode, const std::string& title, browser::FileChosen chosen) override;

  private:
    shell::qt::DialogStack& stack_;
};

}  // namespace satwalk::app
