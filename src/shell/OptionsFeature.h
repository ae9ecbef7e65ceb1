// The options dialog ("选项", command 40197) as a feature: one copy at a
// time, the dialog's rules (OptionsDialogModel.h) on what the user does, and
// OK's effects on the running program through the link and the window. The
// dialog itself is the platform's, reached through OptionsView.
//
// Everything here runs on the user-interface thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Features.h"
#include "OptionsDialogModel.h"

namespace satwalk::shell {

class Shell;

class OptionsView {
  public:
    // Shows the dialog, or brings its controls up to `dialog`.
    virtual void Show(const OptionsDialog& dialog) = 0;
    virtual void Close() = 0;

  protected:
    ~OptionsView() = default;
};

class OptionsFeature final : public Feature, private OptionsEffects {
  public:
    // `defaultRoot`: the documents folder; `mountPoints`: the mounted
    // removable volumes at this moment.
    OptionsFeature(Shell& shell, OptionsView& view, std::string defaultRoot,
                   std::function<std::vector<std::string>()> mountPoints);

    void Register(FeatureRegistry& registry) override;
    void OnExit() override { Cancel(); }

    // What the user does in the dialog: a check box (by its id), the
    // storage list, OK and Cancel.
    void SetCheck(int id, bool checked);
    void SelectStorage(int index);
    void SetRelayAddress(const std::string& address);
    void Ok();
    void Cancel();

    bool open() const { return guard_.IsOpen(); }
    const OptionsDialog& dialog() const { return dialog_; }
    const OptionsApplied& lastApplied() const { return applied_; }

  private:
    void Open();

    // OptionsEffects
    bool LinkRunning() const override;
    void SetRecordNmea(bool on) override;
    void StartNewNmeaLog(const std::string& nmeaFolder) override;
    void SetScreenAwake(bool hold) override;
    void SetAllTalkers(bool on) override;

    Shell& shell_;
    OptionsView& view_;
    std::string defaultRoot_;
    std::function<std::vector<std::string>()> mountPoints_;
    DialogGuard guard_;
    OptionsDialog dialog_;
    OptionsApplied applied_;
};

}  // namespace satwalk::shell
