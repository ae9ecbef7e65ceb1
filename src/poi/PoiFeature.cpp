#include "PoiFeature.h"

#include "CommandIds.h"
#include "FileListing.h"
#include "Shell.h"
#include "Strings.h"
#include "TrailLayer.h"

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
            if (!ImportPoiFile(store_, file.path).read) {
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
    PoiProjection project;
    if (view.imageSize.width > 0 && view.imageSize.height > 0) {
        if (!mapProject)
            return;  // a map without calibration shows no POI
        project = [this, &view](double lat, double lon, double& x, double& y) {
            return mapProject(view, lat, lon, x, y);
        };
    } else {
        if (view.worldSize.width <= 0 || view.worldSize.height <= 0)
            return;
        const track::TrailTransform t = track::WorldTrailTransform(view);
        project = [t](double lat, double lon, double& x, double& y) {
            const track::MapXY w = track::WorldTrailPoint(lat, lon);
            x = w.x * t.scaleX + t.offsetX;
            y = w.y * t.scaleY + t.offsetY;
            return true;
        };
    }
    PoiDrawStyle style;
    style.textSize = ctx.baseTextHeight;
    // The frame is painted over the map afterwards: what lies beyond the
    // view is covered there.
    DrawPois(canvas, feature_.store(), project, feature_.icons(), style);
}

}  // namespace satwalk::poi
