// The receiver settings ("GPS 设置", command 40043 and the star key while
// the link is stopped) as a feature: it keeps the device table between
// openings, runs the dialog's rules (link/ReceiverSettingsModel.h) on what
// the user does, starts and abandons the Bluetooth search, and gives the
// choices to the program's settings on OK. The dialog itself and the search
// worker are the platform's, reached through the two interfaces below.
//
// Everything here runs on the user-interface thread; the search's outcome
// arrives there too (OnSearchFinished).
#pragma once

#include <functional>
#include <string>

#include "Features.h"
#include "ReceiverSettingsModel.h"
#include "Settings.h"

namespace satwalk::shell {

class Shell;

class ReceiverSettingsView {
  public:
    // Shows the dialog, or brings its controls up to `dialog`.
    virtual void Show(const link::ReceiverSettingsDialog& dialog) = 0;
    virtual void Close() = 0;

  protected:
    ~ReceiverSettingsView() = default;
};

class ReceiverSearcher {
  public:
    // Starts a search on the worker; its outcome comes to OnSearchFinished.
    // False when the worker cannot start.
    virtual bool StartSearch(bool autoBluetooth) = 0;
    // Abandons a running search: no outcome comes for it.
    virtual void CancelSearch() = 0;

  protected:
    ~ReceiverSearcher() = default;
};

// The receiver's settings as the dialog's rules see them, and back. The
// device table is the feature's own and is left as it is.
void ReceiverFromSettings(const ProgramSettings& settings, link::ReceiverSettings& receiver);
void SettingsFromReceiver(const link::ReceiverSettings& receiver, ProgramSettings& settings);

class ReceiverSettingsFeature final : public Feature {
  public:
    ReceiverSettingsFeature(Shell& shell, ReceiverSettingsView& view, ReceiverSearcher& searcher);

    void Register(FeatureRegistry& registry) override;
    void OnExit() override;

    // What the user does in the dialog.
    void ToggleAutoSearch();
    void SelectDevice(int row);
    void SelectPort(int index);
    void SelectBaud(int index);
    void Search();  // 40060, or 40062 once a search has run
    void Ok();
    void Cancel();

    void OnSearchFinished(const link::SearchOutcome& outcome);

    bool open() const { return open_; }
    const link::ReceiverSettingsDialog& dialog() const { return dialog_; }
    const link::ReceiverSettings& receiver() const { return receiver_; }

  private:
    void Open();
    void End();
    void Say(const std::vector<link::DialogMessage>& messages);

    Shell& shell_;
    ReceiverSettingsView& view_;
    ReceiverSearcher& searcher_;
    link::ReceiverSettings receiver_;
    link::ReceiverSettingsDialog dialog_;
    bool open_ = false;
    bool tableMade_ = false;
};

}  // namespace satwalk::shell
