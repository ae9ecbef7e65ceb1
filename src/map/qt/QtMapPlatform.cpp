#include "QtMapPlatform.h"

#include <QApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QWidget>

#include "FileBrowser.h"
#include "MapCommands.h"
#include "QtCanvas.h"
#include "ReferenceDialog.h"
#include "Screens.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::map::qt {

void MapImageLayer::Paint(screens::Canvas& canvas, const MapView& view,
                          const screens::ScreenContext&, const gps::GpsState&) {
    const bool tiled = tiled_ != nullptr && !tiled_->IsNull();
    if (view.mapMode == 0 || !view.showMap || (image_.IsNull() && !tiled))
        return;
    const VisiblePart part = ComputeVisiblePart(
        view.imageSize, view.currentWidth, view.currentHeight, view.scrollCentre, view.viewRect);
    if (part.empty)
        return;
    if (auto* qt = dynamic_cast<screens::QtCanvas*>(&canvas)) {
        if (tiled)
            DrawTiledImage(qt->painter(), *tiled_, part);
        else
            DrawMapImage(qt->painter(), image_, part);
    } else {
        // A canvas without Qt records where the picture lies.
        canvas.FillRect(part.destination, screens::Rgb(200, 200, 200));
    }
}

QtMapPlatform::QtMapPlatform(QWidget& window, shell::qt::DialogStack& dialogs, shell::Shell& shell)
    : window_(window), dialogs_(dialogs), shell_(shell), pyramids_(&window) {
    QObject::connect(&repeat_, &QTimer::timeout, &window_, [this] {
        // The callback may restart this timer with a new one: call a copy.
        const std::function<void()> expired = repeatExpired_;
        if (expired)
            expired();
    });
    QObject::connect(&hold_, &QTimer::timeout, &window_, [this] {
        const std::function<void()> expired = holdExpired_;
        if (expired)
            expired();
    });
}

void QtMapPlatform::StartTimer(MapTimer timer, int periodMs, std::function<void()> expired) {
    (timer == MapTimer::Repeat ? repeatExpired_ : holdExpired_) = std::move(expired);
    QTimer& t = TimerOf(timer);
    t.stop();
    t.start(periodMs);
}

void QtMapPlatform::StopTimer(MapTimer timer) {
    TimerOf(timer).stop();
}

ImageLoadError QtMapPlatform::LoadImage(const std::string& path, ImageSize& size) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    MapImage loaded;
    const ImageLoadError error = LoadMapImage(QString::fromStdString(path), loaded);
    QApplication::restoreOverrideCursor();
    if (error == ImageLoadError::TooLarge) {
        TiledImage tiled;
        const ImageLoadError opened = pyramids_.Open(path, tiled, prepared_);
        if (opened == ImageLoadError::None) {
            size = tiled.Size();
            tiled_ = std::move(tiled);
            image_ = MapImage{};
        }
        return opened;
    }
    if (error != ImageLoadError::None)
        return error;
    pyramids_.Stop();  // a huge map still being prepared is no longer wanted
    size = loaded.Size();
    image_ = std::move(loaded);
    tiled_ = TiledImage{};
    return ImageLoadError::None;
}

std::unique_ptr<MapLayer> QtMapPlatform::MakeImageLayer() {
    return std::make_unique<MapImageLayer>(image_, &tiled_);
}

void QtMapPlatform::ChooseFile(int mode, std::function<void(const std::string& path)> done) {
    browser::qt::ChooseFile(dialogs_, mode, common::kStrOpenFile, std::move(done));
}

void QtMapPlatform::EditReferencePoint(
    int slot, const GeoPoint& point,
    std::function<void(bool ok, const ReferenceDialogFields& fields)> done) {
    OpenReferencePointDialog(
        dialogs_, slot, point,
        [this] {
            const screens::DisplayState& d = shell_.display();
            return ReferenceFix{d.linkRunning && d.fixValid, d.latitude, d.longitude};
        },
        [done](const ReferenceDialogFields& fields) { done(true, fields); },
        [done] { done(false, {}); }, residuals_);
}

bool QtMapPlatform::ShowHoldMenu(int x, int y, std::function<void(int command)> chosen,
                                 std::function<void()> closed) {
    if (QGuiApplication::platformName().startsWith(QLatin1String("offscreen")))
        return false;
    auto* menu = new QMenu(&window_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int i = 0; i < kReferenceSlotCount; ++i) {
        QAction* a = menu->addAction(QString::fromUtf8(common::FormatString(
            common::LoadString(common::kStrHoldSetReferencePoint), std::to_string(i + 1))));
        const int id = cmd::kSetReferencePoint1 + i;
        QObject::connect(
            a, &QAction::triggered, &window_, [chosen, id] { chosen(id); }, Qt::QueuedConnection);
    }
    QObject::connect(menu, &QMenu::aboutToHide, &window_, [closed] { closed(); });
    menu->popup(window_.mapToGlobal(QPoint(x, y)));
    return true;
}

std::unique_ptr<MapFeature> MakeMapFeature(shell::Shell& shell, QWidget& window,
                                           screens::ScreenContext& screens, MapScreen& mapScreen,
                                           shell::qt::DialogStack& dialogs) {
    return std::make_unique<MapFeature>(shell, screens, mapScreen,
                                        std::make_unique<QtMapPlatform>(window, dialogs, shell));
}

}  // namespace satwalk::map::qt
