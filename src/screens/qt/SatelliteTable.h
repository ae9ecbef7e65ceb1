// The satellite data table (dialog 110): twelve rows of satellite number,
// elevation, azimuth and signal-to-noise ratio. The shell owns the dialog
// around it, forwards its commands and keys, and fills it on every new batch.
#pragma once

#include <QStringList>
#include <QWidget>

#include "GpsState.h"

class QTableWidget;

namespace satwalk::screens {

// The four texts of each of the twelve rows; "-" for an empty text.
QStringList SatelliteRowTexts(const gps::GpsState& gps, int row);

class SatelliteDataTable : public QWidget {
  public:
    explicit SatelliteDataTable(QWidget* parent = nullptr);
    void Fill(const gps::GpsState& gps);
    QTableWidget* Table() const { return table_; }

  private:
    QTableWidget* table_;
};

}  // namespace satwalk::screens
