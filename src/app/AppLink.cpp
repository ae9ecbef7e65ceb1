#include "AppLink.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QMetaObject>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "BluezSearch.h"
#include "CommandIds.h"
#include "MainWindow.h"
#include "NetSource.h"
#include "SourceAddress.h"
#include "Strings.h"

namespace satwalk::app {

AppLink::AppLink() {
    handOverStats_ = std::getenv("SATWALK_HANDOVER_STATS") != nullptr;
    rfcomm_.portMap = portMap_;
    // The connection is begun, not waited for: the window goes on at once,
    // the receiver's first bytes arrive when it has answered, and a receiver
    // that does not answer is reported by the link's next tick.
    rfcomm_.connect = [](std::uint64_t address, int channel) {
        return link::BeginRfcommConnect(address, channel);
    };
    link_.portDriver = &rfcomm_;
    link_.sink = this;
    link_.timer = this;
    watchdog_.setInterval(1000);
    connect(&watchdog_, &QTimer::timeout, this, [this] { link::LinkTimerProc(link_); });
}

AppLink::~AppLink() {
    Shutdown();
    if (handOverStats_ && !handOverWaits_.empty()) {
        std::vector<double>& w = handOverWaits_;
        std::sort(w.begin(), w.end());
        std::fprintf(stderr, "satwalk: hand-over wait: batches %zu median %.0f us p90 %.0f us\n",
                     w.size(), w[w.size() / 2], w[w.size() * 9 / 10]);
    }
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

bool AppLink::RegisterBluetoothPort(std::uint64_t address) {
    return link::RegisterBluetoothPort(link_, address);
}

std::vector<link::PortSlot> AppLink::PortSlots() {
    std::vector<link::PortSlot> ports =
        link::ProbePortSlots(&rfcomm_, portMap_, link::kGpsdDefaultPort);
    foundGpsd_.clear();
    for (const link::PortSlot& port : ports) {
        if (!port.source.empty())
            foundGpsd_[port.number] = port.source;
    }
    return ports;
}

bool AppLink::SwitchRadioOn() {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    link::BluezRadio radio(QDBusConnection::systemBus());
    const bool ok = link::SwitchRadioOnIfOff(radio, radioSwitchedOn_);
    QGuiApplication::restoreOverrideCursor();
    return ok;
}

void AppLink::SwitchRadioBackOff() {
    if (!radioSwitchedOn_)
        return;
    link::BluezRadio radio(QDBusConnection::systemBus());
    link::SwitchRadioBackOff(radio, radioSwitchedOn_);
}

void AppLink::SetNmeaFolder(const std::string& folder) {
    link_.nmeaFolder = folder;
}

void AppLink::SetRecordNmea(bool on) {
    // Named before the reader sees the flag, so that no batch goes to the
    // file of an earlier run.
    if (on && link_.running)
        link::MakeNmeaLogPath(link_);
    link_.recordNmea = on;
    if (!on)
        ClearRecordingFault();
}

void AppLink::StartNewNmeaLog() {
    link::MakeNmeaLogPath(link_);
}

void AppLink::PortChosen(std::uint32_t comPort) {
    // A gpsd found by the settings becomes a line of the ports file once it
    // is chosen, so that its COM number means it in the next run too.
    if (const auto it = foundGpsd_.find(static_cast<int>(comPort)); it != foundGpsd_.end()) {
        portMap_[it->first] = it->second;
        if (!portsFile_.empty()) {
            std::ofstream out(portsFile_, std::ios::app);
            out << "\nCOM" << it->first << '=' << it->second
                << '\n';  // after a last line without one
        }
    }
    foundGpsd_.clear();
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
    const bool started = link::StartLink(link_);
    UpdateRelay();
    return started;
}

int AppLink::StopLink() {
    const int reason = static_cast<int>(link::StopLink(link_));
    ClearRecordingFault();  // nothing is recorded any more, so nothing fails
    UpdateRelay();
    return reason;
}

void AppLink::ClearRecordingFault() {
    if (window_ != nullptr)
        window_->shell().ReportRecordingWrite(shell::Recording::Nmea, 0);
}

void AppLink::LoadRelaySetting(const std::string& path) {
    relayFile_ = path;
    relaySetting_ = link::LoadRelaySetting(path);
}

void AppLink::OverrideRelay(const std::string& address) {
    relaySetting_ = {true, address};
    relayOverridden_ = true;
}

void AppLink::SetRelay(const link::RelaySetting& setting) {
    if (setting == relaySetting_)
        return;
    relaySetting_ = setting;
    if (!relayOverridden_ && !relayFile_.empty())
        link::SaveRelaySetting(relayFile_, setting);
    relay_.Stop();  // a new address listens anew
    relayFailureTold_ = false;
    UpdateRelay();
}

void AppLink::UpdateRelay() {
    const bool wanted = relaySetting_.on && link_.running;
    if (!wanted) {
        link_.tap = nullptr;
        relay_.Stop();
        return;
    }
    if (relay_.Listening())
        return;
    std::string host;
    std::uint16_t port = 0;
    std::string error = "[HOST:]PORT?";
    if (link::ParseHostPort(relaySetting_.address, link::kRelayDefaultHost, host, port) &&
        relay_.Start(host, port, error)) {
        link_.tap = &relay_;
        return;
    }
    if (relayFailureTold_ || window_ == nullptr)
        return;
    relayFailureTold_ = true;
    const std::string text = common::FormatString(common::LoadString(common::kStrRelayCannotListen),
                                                  relaySetting_.address + " (" + error + ")");
    QMetaObject::invokeMethod(
        window_,
        [w = window_, text] {
            w->shell().ui().ShowMessage(text, shell::MessageIcon::Exclamation,
                                        shell::MessageButtons::Ok);
        },
        Qt::QueuedConnection);
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
    const auto start = std::chrono::steady_clock::now();
    handOver_.fetch_add(1, std::memory_order_release);
    QMetaObject::invokeMethod(
        this, slot,
        QThread::currentThread() == thread() ? Qt::DirectConnection : Qt::BlockingQueuedConnection);
    handOver_.load(std::memory_order_acquire);
    if (handOverStats_ && std::strcmp(slot, "RunGpsData") == 0 && handOverWaits_.size() < 1000000) {
        handOverWaits_.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
                .count());
    }
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

// The recorder's faults go to the status line, queued like the hint: the
// reader never waits for the window to show them.
void AppLink::OnRecordFailed(int error) {
    ReportRecording(error);
}

void AppLink::OnRecordResumed() {
    ReportRecording(0);
}

void AppLink::ReportRecording(int error) {
    if (window_ == nullptr || closing_)
        return;
    QMetaObject::invokeMethod(
        window_,
        [this, w = window_, error] {
            // A failure that arrives after the stop is no standing fault.
            if (error == 0 || link_.running)
                w->shell().ReportRecordingWrite(shell::Recording::Nmea, error);
        },
        Qt::QueuedConnection);
}

}  // namespace satwalk::app
