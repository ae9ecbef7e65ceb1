#include "QtTrackPlatform.h"

#include <QApplication>
#include <QProgressDialog>

#include <utility>

#include "Shell.h"
#include "Strings.h"
#include "TrackInfoDialog.h"
#include "TrackState.h"

namespace satwalk::track::qt {

namespace {

constexpr int kProgressDelayMs = 500;
constexpr int kProgressSteps = 1000;

}  // namespace

QtTrackPlatform::QtTrackPlatform(QWidget* window, shell::qt::DialogStack* dialogs)
    : window_(window), dialogs_(dialogs) {
    connect(&trackTimer_, &QTimer::timeout, this, [this] {
        if (trackTick_)
            trackTick_();
    });
    followTimer_.setSingleShot(true);
    connect(&followTimer_, &QTimer::timeout, this, [this] {
        if (followExpired_)
            followExpired_();
    });
    progressTimer_.setInterval(100);
    connect(&progressTimer_, &QTimer::timeout, this, [this] {
        if (finished_.load(std::memory_order_acquire))
            Finish(std::exchange(pendingDone_, nullptr));
        else
            ShowProgress();
    });
}

QtTrackPlatform::~QtTrackPlatform() {
    if (worker_.joinable())
        worker_.join();
    if (progress_)
        delete progress_.data();
}

bool QtTrackPlatform::StartTrackTimer(std::uint32_t periodMs, std::function<void()> tick) {
    trackTick_ = std::move(tick);
    trackTimer_.start(static_cast<int>(periodMs));
    return trackTimer_.isActive();
}

bool QtTrackPlatform::StartFollowTimer(std::uint32_t periodMs, std::function<void()> expired) {
    followExpired_ = std::move(expired);
    followTimer_.start(static_cast<int>(periodMs));
    return followTimer_.isActive();
}

void QtTrackPlatform::StopFollowTimer() {
    followTimer_.stop();
}

void QtTrackPlatform::RunReader(std::function<void(const TrackProgress& progress)> work,
                                std::function<void()> done) {
    if (worker_.joinable()) {
        worker_.join();      // a read still running ends first
        if (pendingDone_) {  // and its end, not yet seen, is dropped
            pendingDone_ = nullptr;
            progressTimer_.stop();
            QApplication::restoreOverrideCursor();
        }
    }
    done_ = 0;
    total_ = 0;
    finished_.store(false, std::memory_order_relaxed);
    pendingDone_ = std::move(done);
    QApplication::setOverrideCursor(Qt::BusyCursor);
    ShowProgress();  // made now, shown only once the read lasts
    progressTimer_.start();
    worker_ = std::thread([this, work = std::move(work)] {
        work([this](std::uint64_t d, std::uint64_t t) {
            done_ = d;
            total_ = t;
        });
        finished_.store(true, std::memory_order_release);
    });
}

void QtTrackPlatform::ShowStatistics(const std::string& name, const TrackStatistics& stats,
                                     int units) {
    if (dialogs_ != nullptr)
        dialogs_->Open(new TrackInfoDialog(*dialogs_, name, stats, units));
}

void QtTrackPlatform::ShowProgress() {
    if (!progress_) {
        progress_ = new QProgressDialog(window_);
        progress_->setWindowTitle(window_ != nullptr ? window_->windowTitle() : QString());
        progress_->setLabelText(QString::fromUtf8(common::LoadString(common::kStrReadingTrack)));
        progress_->setCancelButton(nullptr);
        progress_->setWindowModality(Qt::NonModal);
        progress_->setRange(0, kProgressSteps);
        progress_->setMinimumDuration(kProgressDelayMs);
        progress_->setAutoClose(false);
        progress_->setAutoReset(false);
        progress_->setValue(0);
    }
    const std::uint64_t total = total_;
    const std::uint64_t done = done_;
    if (total > 0)
        progress_->setValue(static_cast<int>(done * kProgressSteps / total));
}

void QtTrackPlatform::Finish(std::function<void()> done) {
    if (worker_.joinable())
        worker_.join();
    progressTimer_.stop();
    if (progress_) {
        progress_->close();
        progress_->deleteLater();
    }
    QApplication::restoreOverrideCursor();
    if (done)
        done();
}

std::unique_ptr<TrackFeature> MakeTrackFeature(shell::Shell& shell, browser::FileChooser& chooser,
                                               QWidget* window, map::MapFeature& mapFeature,
                                               map::MapScreen& mapScreen,
                                               shell::qt::DialogStack* dialogs) {
    auto feature = std::make_unique<TrackFeature>(
        shell, chooser, std::make_unique<QtTrackPlatform>(window, dialogs));
    TieTrackToMap(*feature, mapFeature, mapScreen, shell.settings().showTrack);
    return feature;
}

}  // namespace satwalk::track::qt
