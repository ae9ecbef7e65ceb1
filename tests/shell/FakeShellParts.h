// Test doubles for the window side, the link and the sound.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Shell.h"

namespace satwalk::shell::testing {

class FakeSound : public AlarmSound {
  public:
    bool PlayLoop() override {
        ++playCalls;
        if (failing)
            return false;
        looping = true;
        return true;
    }
    bool Stop() override {
        ++stopCalls;
        if (failing)
            return false;
        looping = false;
        return true;
    }
    bool failing = false;
    bool looping = false;
    int playCalls = 0;
    int stopCalls = 0;
};

class FakeUi : public ShellUi {
  public:
    MessageAnswer ShowMessage(const std::string& text, MessageIcon icon,
                              MessageButtons buttons) override {
        messages.emplace_back(text, icon);
        if (buttons == MessageButtons::YesNo)
            return answerYes ? MessageAnswer::Yes : MessageAnswer::No;
        return MessageAnswer::Ok;
    }
    void Repaint() override {}
    void StartBlinkTimer() override { blinkRunning = true; }
    void StopBlinkTimer() override { blinkRunning = false; }
    bool StartTrackTimer(std::uint32_t periodMs) override {
        trackPeriod = periodMs;
        trackRunning = true;
        return true;
    }
    void StopTrackTimer() override { trackRunning = false; }
    bool TrackTimerRunning() const override { return trackRunning; }
    bool StartClockTimer() override { return clockStarts++, true; }
    void SetBacklightHold(bool hold) override { backlight = hold; }
    void CloseWindow() override { closed = true; }
    void ShowSatelliteDialog(bool show) override { satelliteDialogShown = show; }
    void FillSatelliteDialog() override { ++satelliteFills; }
    void ShowStatus(const std::string& status) override { statuses.push_back(status); }

    std::vector<std::pair<std::string, MessageIcon>> messages;
    bool answerYes = true;
    bool blinkRunning = false;
    bool trackRunning = false;
    std::uint32_t trackPeriod = 0;
    int clockStarts = 0;
    bool backlight = true;
    bool closed = false;
    bool satelliteDialogShown = false;
    int satelliteFills = 0;
    std::vector<std::string> statuses;
};

class FakeLink : public LinkControl {
  public:
    bool RegisterBluetoothPort(std::uint64_t) override {
        error = "0x08200a10";
        return registerOk;
    }
    void SetComPort(std::uint32_t p) override { comPort = p; }
    void SetBaudRate(std::uint32_t b) override { baud = b; }
    bool OpenPort() override {
        ++opens;
        if (!openOk)
            error = "0x08200a06";
        return openOk;
    }
    bool StartLink() override {
        running = true;
        return true;
    }
    int StopLink() override {
        running = false;
        fixValid = false;
        return std::exchange(lossReason, 0);
    }
    bool Running() const override { return running; }
    bool FixValid() const override { return fixValid; }
    std::string LastErrorCode() const override { return error; }
    gps::GpsState& Gps() override { return gps; }

    bool registerOk = false;
    bool openOk = true;
    bool running = false;
    bool fixValid = false;
    int lossReason = 0;
    int opens = 0;
    std::uint32_t comPort = 99;
    std::uint32_t baud = 0;
    std::string error;
    gps::GpsState gps;
};

}  // namespace satwalk::shell::testing
