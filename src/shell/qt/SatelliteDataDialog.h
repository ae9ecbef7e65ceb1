// The satellite data dialog (dialog 110): the twelve-row satellite table in
// the place of the screen, above the soft-key bar, and the feature that
// plugs it into the program.
#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>

#include "GpsState.h"
#include "SatelliteDataFeature.h"
#include "ScreenAreaHost.h"

namespace satwalk::screens {
class SatelliteDataTable;
}

namespace satwalk::shell::qt {

class SatelliteDataDialog : public QWidget {
  public:
    SatelliteDataDialog(QWidget* parent, int baseTextHeight);

    void Fill(const gps::GpsState& gps);
    // The four texts of a row as shown.
    QStringList RowTexts(int row) const;

    // Its OK button, Escape or Back.
    std::function<void()> onClose;
    // Every other key, for the main window.
    std::function<bool(QKeyEvent*)> onKey;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    screens::SatelliteDataTable* table_;
    int baseTextHeight_ = 30;
};

// The satellite data feature with its dialog, made on first opening.
std::unique_ptr<Feature> MakeSatelliteDataFeature(Shell& shell, ScreenAreaHost& host);

}  // namespace satwalk::shell::qt
