#include "SatelliteTable.h"

#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <cstring>
#include "Strings.h"

namespace satwalk::screens {

namespace {

// At most ten characters of a field, as 8-bit text; "-" when empty.
QString FieldText(const char* field, std::size_t width) {
    const std::size_t n = std::min(strnlen(field, width), std::size_t{10});
    if (n == 0)
        return QStringLiteral("-");
    return QString::fromLocal8Bit(field, static_cast<qsizetype>(n));
}

}  // namespace

QStringList SatelliteRowTexts(const gps::GpsState& gps, int row) {
    const auto& s = gps.satellites[row];
    return {FieldText(s.prn, sizeof s.prn), FieldText(s.elevation, sizeof s.elevation),
            FieldText(s.azimuth, sizeof s.azimuth), FieldText(s.snr, sizeof s.snr)};
}

SatelliteDataTable::SatelliteDataTable(QWidget* parent)
    : QWidget(parent), table_(new QTableWidget(gps::kSatelliteRows, 4, this)) {
    table_->setHorizontalHeaderLabels(
        {QStringLiteral("PRN"), QString::fromUtf8(common::LoadString(common::kStrElevationHeader)),
         QString::fromUtf8(common::LoadString(common::kStrAzimuthHeader)), QStringLiteral("SNR")});
    table_->verticalHeader()->setVisible(false);
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionMode(QAbstractItemView::NoSelection);
    table_->setFocusPolicy(Qt::NoFocus);
    for (int r = 0; r < gps::kSatelliteRows; ++r) {
        for (int c = 0; c < 4; ++c) {
            auto* item = new QTableWidgetItem(QStringLiteral("-"));
            item->setTextAlignment(Qt::AlignCenter);
            table_->setItem(r, c, item);
        }
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(table_);
}

void SatelliteDataTable::Fill(const gps::GpsState& gps) {
    for (int r = 0; r < gps::kSatelliteRows; ++r) {
        const QStringList texts = SatelliteRowTexts(gps, r);
        for (int c = 0; c < 4; ++c) table_->item(r, c)->setText(texts[c]);
    }
}

}  // namespace satwalk::screens
