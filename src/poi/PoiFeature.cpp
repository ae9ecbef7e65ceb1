#include "PoiFeature.h"

#include "CommandIds.h"
#include "FileListing.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::poi {

namespace cmd = shell::cmd;

void PoiFeature::Register(shell::FeatureRegistry& registry) {
    registry.AddCommand(cmd::kImportPoi, shell::Command{[this](int) { Import(); }, {}});
    registry.AddCommand(cmd::kDeleteAllPoi, shell::Command{[this](int) {
                                                               DeleteAllPois(store_);
                                                               shell_.Repaint();
                                                           },
                                                           {}});
    registry.AddStateSection([this](common::JsonMembers& members) { WriteState(members); });
}

void PoiFeature::Import() {
    if (!iconsLoaded_) {
        iconsLoaded_ = platform_->LoadIcons(icons_);
        if (!iconsLoaded_) {
            shell_.ui().ShowMessage(kLoadPoiIconsFailed, shell::MessageIcon::Error,
                                    shell::MessageButtons::Ok);
        }
    }
    chooser_.ChooseFile(
        browser::kBrowsePoi, common::LoadString(common::kStrOpenFile),
        [this](const browser::ChosenFile& file) {
            const PoiImport imported = ImportPoiFile(store_, file.path);
            if (!imported.read) {
                shell_.ui().ShowMessage(kOpenPoiFileFailed, shell::MessageIcon::Error,
                                        shell::MessageButtons::Ok);
            }
            // Even a file that could not be read shows the points there are.
            shell_.settings().showPoi = 1;
            if (shell_.currentScreen != shell::kScreenMap) {
                shell_.OnCommand(calibratedMapShown && calibratedMapShown() ? cmd::kLoadedMap
                                                                            : cmd::kWorldMap);
            }
            shell_.Repaint();
            if (imported.truncated) {
                shell_.ui().ShowMessage(
                    common::FormatStrings(common::LoadString(common::kStrPoiFileTooLarge),
                                          {file.name, std::to_string(imported.points)}),
                    shell::MessageIcon::Information, shell::MessageButtons::Ok);
            }
        });
}

void PoiFeature::WriteState(common::JsonMembers& members) const {
    std::string& out = members.Name("poi");
    out += "{\"groups\":[";
    for (std::uint32_t i = 0; i < store_.Count(); ++i) {
        const PoiGroup& g = store_.At(i);
        out += i == 0 ? "{" : ",{";
        common::JsonMembers m(out);
        m.Int("category", g.category);
        m.Text("name", g.name);
        m.Int("points", g.points.Count());
        out += '}';
    }
    out += "]}";
}

void PoiLayer::Paint(screens::Canvas& canvas, const map::MapView& view,
                     const screens::ScreenContext& ctx, const gps::GpsState&) {
    if (showPoi_ == 0 || feature_.store().Empty())
        return;
    if (!view.Calibrated())
        return;  // a map without calibration shows no POI
    const map::ScreenProjector projector(view);
    const PoiProjection project = [&projector](double lat, double lon, double& x, double& y) {
        map::PointF p;
        if (!projector.Project(lat, lon, p))
            return false;
        x = p.x;
        y = p.y;
        return true;
    };
    PoiDrawStyle style;
    style.textSize = ctx.baseTextHeight;
    // The frame is painted over the map afterwards: what lies beyond the
    // view is covered there.
    DrawPois(canvas, feature_.store(), project, feature_.icons(), style);
}

}  // namespace satwalk::poi
