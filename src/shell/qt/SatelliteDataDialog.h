// The satellite data dialog (dialog 110): the twelve-row satellite table in
// the place of the screen, above the soft-key bar. While it is open the
// receiver's messages come to it and it hands them, like its keys, to the
// main window's handlers.
#pragma once

#include <QStringList>
#include <QWidget>

#include "GpsState.h"

namespace satwalk::screens {
class SatelliteDataTable;
}

namespace satwalk::app {

class MainWindow;

class SatelliteDataDialog : public QWidget {
    Q_OBJECT
  public:
    SatelliteDataDialog(MainWindow& main, int baseTextHeight);

    void Fill(const gps::GpsState& gps);
    // The four texts of a row as shown.
    QStringList RowTexts(int row) const;

  public slots:
    void HandleGpsData();  // WM_GPS_DATA, for the main window
    void HandleGpsTime();  // WM_GPS_TIME, for the main window

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    MainWindow& main_;
    screens::SatelliteDataTable* table_;
    int baseTextHeight_ = 30;
};

}  // namespace satwalk::app
