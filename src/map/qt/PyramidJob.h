// Opening a map image too large to decode whole: from its tile pyramid in
// the cache when that is sound and of the file as it is now, else by
// building the pyramid on a worker thread behind a progress dialog (in the
// style of the track reader's) whose "取消" stops it. The window's thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <string>
#include <thread>

#include "MapLoading.h"
#include "PyramidBuilder.h"
#include "TiledImage.h"

class QProgressDialog;
class QWidget;

namespace satwalk::map::qt {

using PreparedHandler = std::function<void(const std::string& path, ImageLoadError error)>;

class PyramidJob final : public QObject {
  public:
    explicit PyramidJob(QWidget* window) : window_(window) {}
    // Stops a build under way and waits for it; its end is not reported.
    ~PyramidJob() override;

    // None with `image` opened from the cache; Pending while the pyramid is
    // built, `done` getting the path and how it ended; otherwise why
    // neither could start. A build of another file under way is stopped.
    ImageLoadError Open(const std::string& path, TiledImage& image, PreparedHandler done);
    // Stops a build under way, as when another map has replaced the one
    // waited for; its end is not reported.
    void Stop();

  private:
    void Poll();

    QWidget* window_;
    std::thread worker_;
    PyramidProgress progress_;
    std::atomic<bool> finished_{false};
    PyramidBuild result_ = PyramidBuild::Built;  // the worker's, read once finished_
    std::string building_;                       // the source being built, "" when none
    PreparedHandler done_;
    QTimer poll_;
    QPointer<QProgressDialog> dialog_;
};

// The cache file for the image at `path`: "" when no cache folder is known
// or it cannot be made.
std::string PyramidCacheFile(const std::string& path);

}  // namespace satwalk::map::qt
