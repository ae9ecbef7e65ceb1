#include "AppLink.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMetaObject>
#include <QThread>

#include "CommandIds.h"
#include "ErrorCodes.h"
#include "MainWindow.h"

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
    // No Bluetooth port can be bound here: the receiver is reached by --port.
    link_.lastErrorCode = common::err::kBluetoothPort;
    return false;
}

void AppLink::SetComPort(std::uint32_t comPort) {
    link_.portName = link::ComName(static_cast<int>(comPort));
    link_.devicePath = link::ResolvePortName(link_.portName, portMap_, overridePath_);
}

bool AppLink::OpenPort() {
    return link::OpenPort(link_);
}

bool AppLink::StartLink() {
    closing_ = false;
    return link::StartLink(link_);
}

int AppLink::StopLink() {
    return static_cast<int>(link::StopLink(link_));
}

bool AppLink::Start() {
    watchdog_.start();
    return watchdog_.isActive();
}

// The hand-over of the fix: what the reader decoded is published before
// the call, the handler runs on the window's thread while the reader waits,
// and what the handler did is seen by the reader after the call. The pair of
// atomics says so to any thread checker, whatever Qt's queue uses inside.
void AppLink::Deliver(const char* slot) {
    handOver_.fetch_add(1, std::memory_order_release);
    QMetaObject::invokeMethod(
        this, slot,
        QThread::currentThread() == thread() ? Qt::DirectConnection : Qt::BlockingQueuedConnection);
    handOver_.load(std::memory_order_acquire);
}

void AppLink::RunGpsData() {
    handOver_.load(std::memory_order_acquire);
    window_->HandleGpsData();
    handOver_.fetch_add(1, std::memory_order_release);
}

void AppLink::RunGpsTime() {
    handOver_.load(std::memory_order_acquire);
    window_->HandleGpsTime();
    handOver_.fetch_add(1, std::memory_order_release);
}

void AppLink::OnGpsData() {
    if (window_ == nullptr || closing_ || link_.stopRequested)
        return;
    Deliver("RunGpsData");
}

void AppLink::OnGpsTime() {
    if (window_ == nullptr || closing_ || link_.stopRequested)
        return;
    Deliver("RunGpsTime");
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
