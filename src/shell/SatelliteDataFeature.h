// The satellite data dialog's rules: command 40014 (and key 3) shows the
// twelve-row table in the screen's place (current screen -1), it is filled
// from the fix as it opens and on every batch, a chosen screen replaces it,
// and closing it brings back the screen it stood in for. The dialog itself
// is the platform's (shell/qt); it is reached through SatelliteDataView.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "Features.h"
#include "GpsState.h"

namespace satwalk::shell {

class Shell;

class SatelliteDataView {
  public:
    // Shown over the screen area, or taken away.
    virtual void Show(bool show) = 0;
    virtual void Fill(const gps::GpsState& fix) = 0;
    // The rows as shown (PRN, elevation, azimuth, SNR).
    virtual std::vector<std::array<std::string, 4>> Rows() const = 0;

  protected:
    ~SatelliteDataView() = default;
};

class SatelliteDataFeature final : public Feature {
  public:
    SatelliteDataFeature(Shell& shell, SatelliteDataView& view) : shell_(shell), view_(view) {}

    void Register(FeatureRegistry& registry) override;
    void OnGpsData() override;
    void OnScreenChosen() override { Close(); }
    void OnExit() override { Close(); }

    // The user closed the dialog (its own button or key).
    void OnClosedByUser();
    bool open() const { return open_; }

  private:
    void Open();
    void Close();

    Shell& shell_;
    SatelliteDataView& view_;
    bool open_ = false;
    int screenBefore_ = 0;
};

}  // namespace satwalk::shell
