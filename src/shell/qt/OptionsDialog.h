// The options dialog (dialog 182, "选项") as a full-screen dialog: its
// heading, check boxes, storage list and labels placed by the options
// layout (OptionsDialogModel.h) at every size, "确定" and "取消" on the
// soft keys. It shows what the feature's OptionsDialog says and tells the
// feature what the user (or a script's `set`) changed.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Dialogs.h"
#include "OptionsDialogModel.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QScrollArea;

namespace satwalk::shell {
class Shell;
}

namespace satwalk::shell::qt {

class OptionsWidget final : public FullScreenDialog {
  public:
    explicit OptionsWidget(DialogStack& stack);

    // Brings every control up to `dialog` without telling anyone.
    void Sync(const OptionsDialog& dialog);

    // "同时保存 GPX 轨迹": not in the options model; the feature reads it at OK.
    QCheckBox* saveGpxTrack() const { return saveGpxTrack_; }
    // "界面缩放" (kUiScaleChoices in its order): not in the model either.
    QComboBox* uiScale() const { return uiScale_; }
    // "语言": not in the options model either; the languages in the order of
    // kLanguages, then "自动".
    QComboBox* language() const { return language_; }

    std::function<void(int id, bool checked)> onCheck;
    std::function<void(int index)> onStorage;
    std::function<void(const std::string& address)> onRelayAddress;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void LayOut();
    void LayOutRows(int width);

    QLabel* heading_;
    QCheckBox* autoBluetooth_;
    QCheckBox* keepAwake_;
    QCheckBox* recordNmea_;
    QLabel* storageLabel_;
    QComboBox* storage_;
    QCheckBox* allTalkers_;
    QCheckBox* saveGpxTrack_;
    QLabel* uiScaleLabel_;
    QComboBox* uiScale_;
    QScrollArea* scroll_;
    QWidget* content_;
    QCheckBox* relay_;
    QLineEdit* relayAddress_;
    QLabel* languageLabel_;
    QComboBox* language_;
    bool syncing_ = false;
};

// The mount points of the mounted, writable volumes that look removable
// (under /media, /run/media or /mnt).
std::vector<std::string> RemovableVolumes();

// The options feature with its dialog.
std::unique_ptr<Feature> MakeOptionsFeature(Shell& shell, DialogStack& dialogs);

}  // namespace satwalk::shell::qt
