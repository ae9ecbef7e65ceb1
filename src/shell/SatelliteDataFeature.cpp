#include "SatelliteDataFeature.h"

#include "CommandIds.h"
#include "Shell.h"

namespace satwalk::shell {

void SatelliteDataFeature::Register(FeatureRegistry& registry) {
    registry.AddCommand(cmd::kSatelliteData, Command{[this](int) { Open(); }, {}});
    registry.AddStateSection([this](common::JsonMembers& members) {
        members.Bool("satelliteDialogOpen", open_);
        std::string& out = members.Name("satelliteDialogRows");
        out += '[';
        if (open_) {
            bool firstRow = true;
            for (const auto& row : view_.Rows()) {
                out += firstRow ? "[" : ",[";
                firstRow = false;
                for (std::size_t c = 0; c < row.size(); ++c) {
                    if (c > 0)
                        out += ',';
                    common::AppendJsonString(out, row[c]);
                }
                out += ']';
            }
        }
        out += ']';
    });
}

void SatelliteDataFeature::Open() {
    if (open_)
        return;
    screenBefore_ = shell_.currentScreen;
    shell_.currentScreen = kScreenSatelliteData;
    open_ = true;
    view_.Show(true);
    view_.Fill(shell_.fix());
    shell_.Repaint();
}

void SatelliteDataFeature::Close() {
    if (!open_)
        return;
    open_ = false;
    view_.Show(false);
}

void SatelliteDataFeature::OnClosedByUser() {
    if (!open_)
        return;
    Close();
    shell_.currentScreen = screenBefore_;
    shell_.Repaint();
}

void SatelliteDataFeature::OnGpsData() {
    if (open_)
        view_.Fill(shell_.fix());
}

}  // namespace satwalk::shell
