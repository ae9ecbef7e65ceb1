// The receiver link as the window drives it: the shell's LinkControl over
// the link's ReceiverLink, its watchdog on a QTimer, and its data and time
// notifications turned into blocking calls on the window's thread: the
// reader waits while the shell copies the fix, so the user-interface thread
// never reads the link's fix while it is being decoded.
#pragma once

#include <QObject>
#include <QTimer>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "NmeaRelay.h"
#include "PortNames.h"
#include "ReceiverLink.h"
#include "ReceiverSettingsModel.h"
#include "RfcommPort.h"
#include "Shell.h"

namespace satwalk::app {

class MainWindow;

class AppLink : public QObject,
                public shell::LinkControl,
                public link::LinkSink,
                public link::LinkTimer {
    Q_OBJECT
  public:
    AppLink();
    ~AppLink() override;

    void AttachWindow(MainWindow* window) { window_ = window; }
    // A device that stands for the configured port for this run (--port,
    // --replay).
    void SetOverridePath(std::string path) { overridePath_ = std::move(path); }
    bool HasOverride() const { return !overridePath_.empty(); }
    void SetNmeaFolder(const std::string& folder) override;
    void SetRecordNmea(bool on) override;
    void StartNewNmeaLog() override;
    void SetAllTalkers(bool on) override { link_.allTalkers = on; }
    // The port map file (lines "COM3=/dev/ttyS0"); a missing file is no map.
    void LoadPortMap(const std::string& path) {
        portsFile_ = path;
        link::LoadPortMap(path, portMap_);
    }
    // The relay setting's file (read now, written by SetRelay), and a relay
    // for this run only (--relay), which the file does not learn of.
    void LoadRelaySetting(const std::string& path);
    void OverrideRelay(const std::string& address);

    // The ten COM indexes as the receiver settings show them: free for a
    // Bluetooth port or not, and the device behind each.

    // Stops a running link without messages, letting a reader that waits for
    // the window finish first. For the end of the program.
    void Shutdown();

    // shell::LinkControl
    bool RegisterBluetoothPort(std::uint64_t address) override;
    void SetComPort(std::uint32_t comPort) override;
    void SetBaudRate(std::uint32_t baudRate) override { link_.baudRate = baudRate; }
    bool OpenPort() override;
    bool StartLink() override;
    int StopLink() override;
    bool Running() const override { return link_.running; }
    bool FixValid() const override { return link_.fixValid; }
    std::string LastErrorCode() const override { return link_.lastErrorCode; }
    const gps::GpsState& Gps() const override { return link_.gps; }
    void ClearFixBlocks() override { link::ClearFixBlocks(link_); }
    bool SwitchRadioOn() override;
    void SwitchRadioBackOff() override;
    void NoteRadioSwitchedOn() override { radioSwitchedOn_ = true; }
    std::vector<link::PortSlot> PortSlots() override;
    void PortChosen(std::uint32_t comPort) override;
    link::RelaySetting Relay() const override { return relaySetting_; }
    void SetRelay(const link::RelaySetting& setting) override;

    // link::LinkSink (reader thread, except OnStopCommand)
    void OnGpsData() override;
    void OnGpsTime() override;
    void OnStopCommand() override;
    void OnOtherTalkersOnly() override;
    void OnRecordFailed(int error) override;
    void OnRecordResumed() override;

    // link::LinkTimer
    bool Start() override;
    void Stop() override { watchdog_.stop(); }

  private slots:
    // The window's handlers, on its thread, while the reader waits.
    void RunGpsData();
    void RunGpsTime();

  private:
    // Calls `slot` (one of the above) on the window's thread and waits.
    void Deliver(const char* slot);
    void ReportRecording(int error);  // reader thread
    void ClearRecordingFault();       // window's thread
    // Starts or stops the relay to match its setting and the link; a relay
    // that cannot listen is said once a run.
    void UpdateRelay();

    link::PortMap portMap_;
    std::string portsFile_;
    link::PortMap foundGpsd_;  // a gpsd the settings found, until chosen
    // Bluetooth receivers' ports; declared before the link, which gives its
    // port back to the driver as it goes.
    link::RfcommPortDriver rfcomm_;
    // Declared before the link, so it goes after it: the link's reader may
    // be handing it a read until the link is gone.
    link::NmeaRelay relay_;
    link::ReceiverLink link_;
    link::RelaySetting relaySetting_;
    std::string relayFile_;
    bool relayOverridden_ = false;
    bool relayFailureTold_ = false;
    bool radioSwitchedOn_ = false;  // the program switched the radio on
    std::string overridePath_;
    MainWindow* window_ = nullptr;
    QTimer watchdog_;  // id 1
    std::atomic<bool> closing_{false};
    std::atomic<unsigned> handOver_{0};  // orders the reader's and the handler's work
    // With SATWALK_HANDOVER_STATS set: how long the reader waited for each
    // batch's handler, in microseconds (the reader's thread only), printed
    // at the end for the benchmark.
    bool handOverStats_ = false;
    std::vector<double> handOverWaits_;
};

}  // namespace satwalk::app
