#include "AppLink.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMetaObject>
#include <QThread>

#include "CommandIds.h"
#include "MainWindow.h"
#include "SatelliteDataDialog.h"

namespace satwalk::app {

AppLink::AppLink() {
    link_.sink = this;
    link_.timer = this;
    watchdog_.setInterval(1000);
    connect(&watchdog_, &QTimer::timeout, this, [this] { link::LinkTimerProc(link_); });
}

AppLink::~AppLink() {
    Shutdown();
}

void AppLink::Shutdown() {
    closing_ = true;
    if (link_.running)
        link::StopLink(link_);
    // A reader caught in a blocking call to this thread is let through.
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < 1200) {
        {
            std::lock_guard<std::mutex> guard(link_.readerMutex);
            if (!link_.readerActive)
                break;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

bool AppLink::RegisterBluetoothPort(std::uint64_t) {
    // Binding a Bluetooth receiver arrives with the Bluetooth search.
    link_.lastErrorCode = "0x08200a10";
    return false;
}

void AppLink::SetComPort(std::uint32_t comPort) {
    link_.portName = link::ComName(static_cast<int>(comPort));
    link_.devicePath = link::ResolvePortName(link_.portName, portMap_, overridePath_);
}

bool AppLink::OpenPort() {
    return link::OpenPort(link_) == 1;
}

bool AppLink::StartLink() {
    closing_ = false;
    return link::StartLink(link_) == 1;
}

int AppLink::StopLink() {
    return static_cast<int>(link::StopLink(link_));
}

bool AppLink::Start() {
    watchdog_.start();
    return watchdog_.isActive();
}

namespace {

// The reader waits until the window (or the dialog) has handled the call.
template <typename Target>
void Deliver(Target* target, void (Target::*handler)()) {
    QMetaObject::invokeMethod(target, handler,
                              QThread::currentThread() == target->thread()
                                  ? Qt::DirectConnection
                                  : Qt::BlockingQueuedConnection);
}

}  // namespace

// The dialog is hidden, never destroyed, while the window lives, so a call
// already on its way to it still arrives.
void AppLink::OnGpsData() {
    if (window_ == nullptr || closing_ || link_.stopRequested)
        return;
    if (SatelliteDataDialog* dialog = dialog_.load())
        Deliver(dialog, &SatelliteDataDialog::HandleGpsData);
    else
        Deliver(window_, &MainWindow::HandleGpsData);
}

void AppLink::OnGpsTime() {
    if (window_ == nullptr || closing_ || link_.stopRequested)
        return;
    if (SatelliteDataDialog* dialog = dialog_.load())
        Deliver(dialog, &SatelliteDataDialog::HandleGpsTime);
    else
        Deliver(window_, &MainWindow::HandleGpsTime);
}

void AppLink::OnStopCommand() {
    // Runs inside the watchdog tick with the link's lock held; the stop
    // command (and its message box) runs right after the tick.
    if (window_ == nullptr)
        return;
    QMetaObject::invokeMethod(
        window_, [w = window_] { w->shell().OnCommand(shell::cmd::kStopGps); },
        Qt::QueuedConnection);
}

// Queued, not blocking: the reader goes on while the message is read.
void AppLink::OnOtherTalkersOnly() {
    if (window_ == nullptr || closing_)
        return;
    QMetaObject::invokeMethod(
        window_, [w = window_] { w->shell().OnOtherTalkersOnly(); }, Qt::QueuedConnection);
}

}  // namespace satwalk::app
