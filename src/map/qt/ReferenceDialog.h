// The reference-point dialog (113, "激活参照点"): the latitude and longitude
// of one reference slot in degrees, minutes and seconds with their
// hemispheres, and the check box that makes the slot active and enables the
// rest. OK sits beside the caption; the soft keys are "插入当前GPS座标"
// (40199: the receiver's position, or zeros without a fix) and "取消".
//
// It edits the fields only: OK hands them to the caller, which stores them
// with the tapped pixel through ConfirmReferencePoint and redraws; cancel
// leaves everything as it was (placement stays on). For example, from the
// placement's OK:
//
//   map::qt::OpenReferencePointDialog(
//       window.dialogs(), editing.editedSlot,
//       editing.referencePoints[editing.editedSlot], [this] { return CurrentFix(); },
//       [this](const map::ReferenceDialogFields& fields) { Confirm(fields); },
//       [this] { RetryPlacement(); });
//
// Controls for `set`: 1013 the check box, 1010 and 1011 the hemisphere lists
// (0 north/east, 1 south/west), 1003-1005 the latitude's degrees, minutes and
// seconds, 1007-1009 the longitude's; 1121 the status line, which shows each
// active point's residual in metres when the map is calibrated.
#pragma once

#include <functional>

#include "Dialogs.h"
#include "ReferencePoints.h"

class QBoxLayout;
class QLabel;

namespace satwalk::map::qt {

inline constexpr int kReferenceDialog = 113;

// The receiver's position for "insert current GPS coordinate": haveFix
// when the link runs and the fix is valid.
struct ReferenceFix {
    bool haveFix = false;
    double latitude = 0.0;
    double longitude = 0.0;
};

class ReferenceDialog final : public shell::qt::FullScreenDialog {
  public:
    // Opens on slot `slot` (0..4) holding `point`. `currentFix` is asked when
    // the user inserts the current coordinate, so it sees the latest fix.
    ReferenceDialog(shell::qt::DialogStack& stack, int slot, const GeoPoint& point,
                    std::function<ReferenceFix()> currentFix);

    // The controls as fields, and back.
    ReferenceDialogFields Fields() const;
    void SetFields(const ReferenceDialogFields& fields);
    // "插入当前GPS座标".
    void InsertCurrentCoordinate();
    // The status line under the fields: every point's residual in metres.
    void SetResiduals(const std::string& text);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void EnableFields(bool enabled);

    std::function<ReferenceFix()> currentFix_;
    QCheckBox* active_;
    QComboBox* hemisphere_[2];  // latitude, longitude
    QLineEdit* edits_[2][3];    // latitude, longitude x degrees, minutes, seconds
    QBoxLayout* groups_;
    QLabel* status_;
};

// Opens the dialog over the window. `confirmed` gets the fields on OK,
// `cancelled` (may be empty) runs on cancel; either after the dialog has
// gone. The dialog belongs to the stack.
ReferenceDialog* OpenReferencePointDialog(
    shell::qt::DialogStack& stack, int slot, const GeoPoint& point,
    std::function<ReferenceFix()> currentFix,
    std::function<void(const ReferenceDialogFields& fields)> confirmed,
    std::function<void()> cancelled = {}, const std::string& residuals = {});

}  // namespace satwalk::map::qt
