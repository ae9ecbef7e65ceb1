// The receiver settings dialog (dialog 115, "GPS 设置") as a full-screen
// dialog: the mode switch, the device, port and baud lists, "搜索"/"重试"
// and "取消" on the soft keys, OK beside the caption. It shows what the
// feature's ReceiverSettingsDialog says and tells the feature what the user
// (or a script's `set`) changed; the rules are all the feature's.
//
// It lives with the shell's dialogs rather than in link/qt because it is
// one of the full-screen dialogs of shell/qt, which link/qt cannot reach.
#pragma once

#include <functional>
#include <memory>

#include "Dialogs.h"
#include "ReceiverSettingsModel.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace satwalk::shell {
class Shell;
}

namespace satwalk::shell::qt {

class ReceiverSettingsWidget final : public FullScreenDialog {
  public:
    explicit ReceiverSettingsWidget(DialogStack& stack);

    // Brings every control up to `dialog` without telling anyone.
    void Sync(const link::ReceiverSettingsDialog& dialog);

    // What the user did.
    std::function<void()> onToggle;
    std::function<void(int)> onDevice, onPort, onBaud;
    std::function<void()> onSearch;

  private:
    QPushButton* autoSearch_;
    QLabel* deviceLabel_;
    QComboBox* devices_;
    QComboBox* ports_;
    QComboBox* bauds_;
    bool syncing_ = false;
};

// The receiver settings feature with its dialog and the Bluetooth search
// worker (over BlueZ on the system bus).
std::unique_ptr<Feature> MakeReceiverSettingsFeature(Shell& shell, DialogStack& dialogs);

}  // namespace satwalk::shell::qt
