// Test doubles for the window side, the link and the sound.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "ErrorCodes.h"
#include "SatelliteDataFeature.h"
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
    bool StartClockTimer() override { return clockStarts++, true; }
    void SetBacklightHold(bool hold) override { backlight = hold; }
    void CloseWindow() override { closed = true; }
    void ShowStatus(const std::string& status) override { statuses.push_back(status); }

    std::vector<std::pair<std::string, MessageIcon>> messages;
    bool answerYes = true;
    bool blinkRunning = false;
    int clockStarts = 0;
    bool backlight = true;
    bool closed = false;
    std::vector<std::string> statuses;
};

class FakeSatelliteView : public SatelliteDataView {
  public:
    void Show(bool show) override { shown = show; }
    void Fill(const gps::GpsState&) override { ++fills; }
    std::vector<std::array<std::string, 4>> Rows() const override {
        return {{"01", "2", "3", "4"}};
    }
    bool shown = false;
    int fills = 0;
};

class FakeLink : public LinkControl {
  public:
    bool RegisterBluetoothPort(std::uint64_t) override {
        error = common::err::kBluetoothPort;
        return registerOk;
    }
    void SetComPort(std::uint32_t p) override { comPort = p; }
    void SetBaudRate(std::uint32_t b) override { baud = b; }
    bool OpenPort() override {
        ++opens;
        if (!openOk)
            error = common::err::kPortOpen;
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
    const gps::GpsState& Gps() const override { return gps; }
    void ClearFixBlocks() override { gps.ClearAllBlocks(); }
    bool SwitchRadioOn() override {
        radioSwitchedOn = radioOk;
        return radioOk;
    }
    void SwitchRadioBackOff() override { radioSwitchedOn = false; }

    bool registerOk = false;
    bool radioOk = true;
    bool radioSwitchedOn = false;
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
