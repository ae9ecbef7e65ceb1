#include "PoiFeature.h"

#include <algorithm>

#include "FileListing.h"
#include "MapCommands.h"
#include "MapFeature.h"
#include "PoiCommands.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::poi {

void PoiFeature::Register(shell::FeatureRegistry& registry) {
    using common::LoadString;
    registry.AddCommand(cmd::kShowPoi, shell::Command{[this](int) {
                                                          shell_.settings().showPoi ^= 1u;
                                                          shell_.Repaint();
                                                      },
                                                      {}});
    registry.AddMenuEntries(shell::MenuPlace::ViewMap, 20, [this] {
        return std::vector<shell::MenuEntry>{shell::MenuCheck(
            cmd::kShowPoi, LoadString(common::kStrMenuShowPoi), shell_.settings().showPoi != 0)};
    });
    registry.AddMenuEntries(shell::MenuPlace::MainPoi, 0, [] {
        return std::vector<shell::MenuEntry>{
            shell::MenuItem(cmd::kImportPoi, LoadString(common::kStrMenuImportPoi)),
            shell::MenuItem(cmd::kDeleteAllPoi, LoadString(common::kStrMenuDeleteAllPoi))};
    });
    registry.AddCommand(cmd::kImportPoi, shell::Command{[this](int) { Import(); }, {}});
    registry.AddCommand(cmd::kDeleteAllPoi, shell::Command{[this](int) {
                                                               DeleteAllPois(store_);
                                                               index_.Clear();
                                                               shell_.Repaint();
                                                           },
                                                           {}});
    registry.AddStateSection([this](common::JsonMembers& members) { WriteState(members); });
}

void PoiFeature::Import() {
    if (!iconsLoaded_) {
        iconsLoaded_ = platform_->LoadIcons(icons_);
        if (!iconsLoaded_) {
            shell_.ui().ShowMessage(common::LoadString(common::kStrLoadPoiIconsFailed),
                                    shell::MessageIcon::Error, shell::MessageButtons::Ok);
        }
    }
    chooser_.ChooseFile(
        browser::kBrowsePoi, common::LoadString(common::kStrOpenFile),
        [this](const browser::ChosenFile& file) {
            const PoiImport imported = ImportPoiFile(store_, file.path);
            index_.Build(store_);
            if (!imported.read) {
                shell_.ui().ShowMessage(common::LoadString(common::kStrOpenPoiFileFailed),
                                        shell::MessageIcon::Error, shell::MessageButtons::Ok);
            }
            // Even a file that could not be read shows the points there are.
            shell_.settings().showPoi = 1;
            if (shell_.currentScreen != shell::kScreenMap) {
                shell_.OnCommand(calibratedMapShown && calibratedMapShown() ? map::cmd::kLoadedMap
                                                                            : map::cmd::kWorldMap);
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

PoiProjection ProjectionOf(const map::ScreenProjector& projector) {
    return [&projector](double lat, double lon, double& x, double& y) {
        map::PointF p;
        if (!projector.Project(lat, lon, p))
            return false;
        x = p.x;
        y = p.y;
        return true;
    };
}

PoiBoxProjection BoxProjectionOf(const map::MapView& view, const map::ScreenProjector& projector) {
    if (view.mapMode != 0)
        return {};
    return [&projector](const PoiBox& box, ScreenBox& out) {
        if (!(box.maxLongitude - box.minLongitude < 180.0))
            return false;
        map::PointF northWest, southEast;
        if (!projector.Project(box.maxLatitude, box.minLongitude, northWest) ||
            !projector.Project(box.minLatitude, box.maxLongitude, southEast) ||
            northWest.x > southEast.x)
            return false;
        out = {northWest.x, std::min(northWest.y, southEast.y), southEast.x,
               std::max(northWest.y, southEast.y)};
        return true;
    };
}

void PoiLayer::Paint(screens::Canvas& canvas, const map::MapView& view,
                     const screens::ScreenContext& ctx, const gps::GpsState&) {
    if (showPoi_ == 0 || feature_.store().Empty())
        return;
    if (!view.Calibrated())
        return;  // a map without calibration shows no POI
    const map::ScreenProjector projector(view);
    const PoiProjection project = ProjectionOf(projector);
    PoiDrawStyle style;
    style.textSize = ctx.baseTextHeight;
    // The frame is painted over the map afterwards: what lies beyond the
    // view is covered there.
    DrawPois(canvas, feature_.store(), project, feature_.icons(), style, &feature_.index(),
             BoxProjectionOf(view, projector));
}

void TiePoiToMap(PoiFeature& poi, const map::MapFeature& map, map::MapScreen& mapScreen,
                 const std::uint32_t& showPoi) {
    poi.calibratedMapShown = [m = &map] {
        const map::MapView view = m->model().View();
        return view.mapMode != 0 && view.Calibrated();
    };
    mapScreen.layers().Add(map::LayerOrder::PointsOfInterest,
                           std::make_unique<PoiLayer>(poi, showPoi));
}

}  // namespace satwalk::poi
