// "轨迹信息": the statistics of the viewed track or of the live recording as
// a full-screen dialog. The numbers are labels (ids 3011.. for the names,
// 3031.. for the values, so `state` shows them); below them the elevation
// and speed profiles are drawn by the core's profile painter through the
// Qt canvas. Beside the numbers in landscape, below them in portrait.
#pragma once

#include <QWidget>

#include <vector>

#include "Dialogs.h"
#include "TrackStatistics.h"

class QBoxLayout;

namespace satwalk::track::qt {

inline constexpr int kTrackInfoDialogId = 301;
inline constexpr int kTrackInfoNameId = 3010;   // the track's name
inline constexpr int kTrackInfoLabelId = 3011;  // to 3020
inline constexpr int kTrackInfoValueId = 3031;  // to 3040

class ProfileView final : public QWidget {
  public:
    ProfileView(std::vector<ProfileSample> samples, int units, int textHeight, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    std::vector<ProfileSample> samples_;
    int units_;
    int textHeight_;
};

class TrackInfoDialog final : public shell::qt::FullScreenDialog {
  public:
    TrackInfoDialog(shell::qt::DialogStack& stack, const std::string& name,
                    const TrackStatistics& stats, int units);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QBoxLayout* layout_;
};

}  // namespace satwalk::track::qt
