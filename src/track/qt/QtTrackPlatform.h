// The track feature's platform on Qt: timer 1027 (the track's samples) and
// timer 1026 (the follow pause, single-shot) as QTimers, and the log reader on a thread of its own,
// with a progress dialog that appears once a read has taken half a second.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

#include "Dialogs.h"
#include "TrackFeature.h"

class QProgressDialog;
class QWidget;

namespace satwalk::track::qt {

class QtTrackPlatform final : public QObject, public TrackPlatform {
  public:
    QtTrackPlatform(QWidget* window, shell::qt::DialogStack* dialogs);
    // Waits for a read under way; its result is dropped.
    ~QtTrackPlatform() override;

    bool StartTrackTimer(std::uint32_t periodMs, std::function<void()> tick) override;
    void StopTrackTimer() override { trackTimer_.stop(); }
    bool TrackTimerRunning() const override { return trackTimer_.isActive(); }
    bool StartFollowTimer(std::uint32_t periodMs, std::function<void()> expired) override;
    void StopFollowTimer() override;
    void RunReader(std::function<void(const TrackProgress& progress)> work,
                   std::function<void()> done) override;
    void ShowStatistics(const std::string& name, const TrackStatistics& stats, int units) override;

  private:
    void ShowProgress();
    void Finish(std::function<void()> done);

    QWidget* window_;
    QTimer trackTimer_;
    std::function<void()> trackTick_;
    shell::qt::DialogStack* dialogs_;
    QTimer followTimer_;
    std::function<void()> followExpired_;
    std::thread worker_;
    std::atomic<std::uint64_t> done_{0};
    std::atomic<std::uint64_t> total_{0};
    // Set by the reader thread when its work is done; the progress timer on
    // the window's thread sees it and finishes. No Qt call crosses threads.
    std::atomic<bool> finished_{false};
    std::function<void()> pendingDone_;  // the window's thread only
    QTimer progressTimer_;
    QPointer<QProgressDialog> progress_;
};

// The track feature on `window`, its statistics dialog opened on
// `dialogs`, tied to the map feature (TieTrackToMap).
std::unique_ptr<TrackFeature> MakeTrackFeature(shell::Shell& shell, browser::FileChooser& chooser,
                                               QWidget* window, map::MapFeature& mapFeature,
                                               map::MapScreen& mapScreen,
                                               shell::qt::DialogStack* dialogs = nullptr);

}  // namespace satwalk::track::qt
