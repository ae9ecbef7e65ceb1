#include "PyramidJob.h"

#include "Strings.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QProgressDialog>
#include <QPushButton>
#include <cstdlib>
#include <utility>

namespace satwalk::map::qt {

namespace {

constexpr int kProgressSteps = 1000;
constexpr int kPollMs = 100;

// Escape asks to stop, as "取消" does; the dialog stays until the worker has.
class BuildDialog final : public QProgressDialog {
  public:
    using QProgressDialog::QProgressDialog;
    void reject() override { emit canceled(); }
};

ImageLoadError ToLoadError(PyramidBuild result) {
    switch (result) {
        case PyramidBuild::Built:
            return ImageLoadError::None;
        case PyramidBuild::Cancelled:
            return ImageLoadError::Cancelled;
        case PyramidBuild::NotAnImage:
            return ImageLoadError::NotAnImage;
        case PyramidBuild::Damaged:
            return ImageLoadError::Damaged;
        case PyramidBuild::TooLarge:
            return ImageLoadError::TooLarge;
        case PyramidBuild::NoDiskSpace:
            return ImageLoadError::NoDiskSpace;
        case PyramidBuild::NoGdal:
            return ImageLoadError::NoGdal;
        case PyramidBuild::CannotOpen:
        case PyramidBuild::CannotWrite:
            break;
    }
    return ImageLoadError::CannotOpen;
}

}  // namespace

std::string PyramidCacheFile(const std::string& path) {
    const std::string folder =
        PyramidCacheFolder(std::getenv("XDG_CACHE_HOME"), std::getenv("HOME"));
    if (folder.empty() || !QDir().mkpath(QString::fromStdString(folder)))
        return {};
    const QString absolute = QFileInfo(QString::fromStdString(path)).absoluteFilePath();
    return folder + "/" + PyramidCacheName(absolute.toStdString());
}

PyramidJob::~PyramidJob() {
    Stop();
}

void PyramidJob::Stop() {
    progress_.cancel = true;
    if (worker_.joinable())
        worker_.join();
    poll_.stop();
    if (dialog_) {
        dialog_->close();
        dialog_->deleteLater();
    }
    building_.clear();
    done_ = nullptr;
}

ImageLoadError PyramidJob::Open(const std::string& path, TiledImage& image, PreparedHandler done) {
    if (!building_.empty() && building_ == path)
        return ImageLoadError::Pending;
    Stop();
    const std::optional<SourceStamp> stamp = StampOf(path);
    if (!stamp)
        return ImageLoadError::CannotOpen;
    const std::string cacheFile = PyramidCacheFile(path);
    if (cacheFile.empty())
        return ImageLoadError::CannotOpen;
    if (image.Open(cacheFile, *stamp) == PyramidCheck::Valid) {
        TouchPyramid(cacheFile);
        return ImageLoadError::None;
    }

    building_ = path;
    done_ = std::move(done);
    progress_.cancel = false;
    progress_.done = 0;
    progress_.total = 0;
    finished_ = false;
    worker_ = std::thread([this, path, cacheFile] {
        result_ = BuildPyramid(path, cacheFile, progress_);
        finished_.store(true, std::memory_order_release);
    });

    auto* dialog = new BuildDialog(window_);
    dialog_ = dialog;
    dialog->setWindowTitle(window_ != nullptr ? window_->windowTitle() : QString());
    dialog->setLabelText(QString::fromStdString(common::FormatString(
        common::LoadString(common::kStrBuildingMapCache), std::string(MapFileName(path)))));
    dialog->setCancelButtonText(QString::fromUtf8(common::LoadString(common::kStrBuildCancel)));
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setRange(0, kProgressSteps);
    dialog->setAutoClose(false);
    dialog->setAutoReset(false);
    dialog->setMinimumDuration(0);
    dialog->setValue(0);
    // The button asks the worker to stop; the dialog closes once it has.
    // (The dialog ties the two by their names.)
    disconnect(dialog, SIGNAL(canceled()), dialog, SLOT(cancel()));
    connect(dialog, &QProgressDialog::canceled, this, [this, dialog] {
        progress_.cancel = true;
        dialog->setLabelText(QString::fromUtf8(common::LoadString(common::kStrBuildCancelling)));
        if (auto* button = dialog->findChild<QPushButton*>())
            button->setEnabled(false);
    });
    dialog->show();
    poll_.setInterval(kPollMs);
    connect(&poll_, &QTimer::timeout, this, &PyramidJob::Poll, Qt::UniqueConnection);
    poll_.start();
    return ImageLoadError::Pending;
}

void PyramidJob::Poll() {
    if (!finished_.load(std::memory_order_acquire)) {
        const std::uint64_t total = progress_.total, done = progress_.done;
        if (dialog_ && total > 0)
            dialog_->setValue(static_cast<int>(done * kProgressSteps / total));
        return;
    }
    const std::string path = std::exchange(building_, {});
    PreparedHandler done = std::exchange(done_, nullptr);
    const ImageLoadError error = ToLoadError(result_);
    Stop();
    if (done)
        done(path, error);
}

}  // namespace satwalk::map::qt
