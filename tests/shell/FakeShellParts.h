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
    bool PlayLoop() override { return Call(playCalls, true); }
    bool Stop() override { return Call(stopCalls, false); }
    bool Call(int& calls, bool loop) {
        ++calls;
        if (!failing)
            looping = loop;
        return !failing;
    }
    bool failing = false, looping = false;
    int playCalls = 0, stopCalls = 0;
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
    bool answerYes = true, blinkRunning = false, backlight = true, closed = false;
    int clockStarts = 0;
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
    bool StartLink() override { return running = true; }
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
    bool SwitchRadioOn() override { return radioSwitchedOn = radioOk; }
    void SwitchRadioBackOff() override { radioSwitchedOn = false; }

    bool registerOk = false, radioOk = true, radioSwitchedOn = false, openOk = true;
    bool running = false, fixValid = false;
    int lossReason = 0, opens = 0;
    std::uint32_t comPort = 99, baud = 0;
    std::string error;
    gps::GpsState gps;
};

// A shell over the fakes above, with no options file: what the features'
// test fixtures build on.
struct FakeShell {
    ProgramSettings settings;
    FakeLink link;
    FakeUi ui;
    FakeSound sound;
    Shell shell{settings, link, ui, sound, nullptr};
};

}  // namespace satwalk::shell::testing
