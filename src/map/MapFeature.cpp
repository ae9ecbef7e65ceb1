#include "MapFeature.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "CommandIds.h"
#include "FileListing.h"
#include "GdalBackend.h"
#include "Georeference.h"
#include "MapCommands.h"
#include "MapScreenLayers.h"
#include "Screens.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::map {

namespace {

constexpr int kHoldMs = 600;         // press-and-hold without moving
constexpr int kRepeatDelayMs = 100;  // then the auto-repeat's period
constexpr int kRepeatMs = 200;

shell::Key KeyOf(Arrow arrow) {
    switch (arrow) {
        case Arrow::Up:
            return shell::Key::Up;
        case Arrow::Down:
            return shell::Key::Down;
        case Arrow::Left:
            return shell::Key::Left;
        case Arrow::Right:
            break;
    }
    return shell::Key::Right;
}

void Number(common::JsonMembers& m, std::string_view name, double value) {
    common::AppendJsonNumber(m.Name(name), value);
}

void WritePoint(std::string& out, const GeoPoint& p) {
    out += '{';
    common::JsonMembers m(out);
    m.Bool("valid", p.valid == 1);
    Number(m, "latitude", p.latitude);
    Number(m, "longitude", p.longitude);
    Number(m, "imageX", p.imageX);
    Number(m, "imageY", p.imageY);
    out += '}';
}

}  // namespace

// What the stylus asks of the window.
class MapFeature::Sink final : public InteractionSink {
  public:
    explicit Sink(MapFeature& f) : f_(f) {}
    void SendArrow(Arrow arrow) override { f_.shell_.OnKeyDown(KeyOf(arrow)); }
    void StartRepeat() override { f_.StartRepeat(); }
    void StopRepeat() override { f_.platform_->StopTimer(MapTimer::Repeat); }
    void Pan(int direction, int step) override { f_.model_.Pan(direction, step); }
    void PlacementTap(int x, int y) override { f_.model_.PlacementTap(x, y); }
    void ManualMove() override {
        if (f_.onManualMove)
            f_.onManualMove();
    }
    void Redraw() override { f_.shell_.Repaint(); }

  private:
    MapFeature& f_;
};

MapFeature::MapFeature(shell::Shell& shell, screens::ScreenContext& screens, MapScreen& mapScreen,
                       std::unique_ptr<MapPlatform> platform)
    : shell_(shell),
      screens_(screens),
      mapScreen_(mapScreen),
      platform_(std::move(platform)),
      sink_(std::make_unique<Sink>(*this)) {
    platform_->SetImagePrepared([this](const std::string& path, ImageLoadError error) {
        if (error == ImageLoadError::None && LoadMap(path)) {
            shell_.ChooseScreen(shell::kScreenMap);
        } else {
            ShowLoadFailure(path, error);
        }
        shell_.Repaint();
    });
}

MapFeature::~MapFeature() = default;

void MapFeature::StartRepeat() {
    // 100 ms after the press the 200 ms period starts: the first tick comes
    // 300 ms after the press.
    platform_->StartTimer(MapTimer::Repeat, kRepeatDelayMs, [this] {
        platform_->StartTimer(MapTimer::Repeat, kRepeatMs, [this] {
            map::OnRepeatTick(model_.stylus, Scene(0, 0), *sink_);
            shell_.Repaint();
        });
    });
}

void MapFeature::ToggleSetting(std::uint32_t& flag) {
    flag ^= 1u;
    shell_.Repaint();
}

void MapFeature::Register(shell::FeatureRegistry& registry) {
    auto& layers = mapScreen_.layers();
    layers.Add(LayerOrder::BaseMap, platform_->MakeImageLayer());
    layers.Add(LayerOrder::BaseMap, std::make_unique<ScaleBarLayer>());
    layers.Add(LayerOrder::ReferenceMarkers, std::make_unique<ReferenceMarkerLayer>(model_));
    layers.Add(LayerOrder::Overlay, std::make_unique<MapOverlayLayer>(model_));
    mapScreen_.viewSource = [this](const screens::ScreenContext& ctx) {
        const int b = ctx.baseTextHeight;
        model_.Layout(ctx.screen, b, ScaleBarPixels(b), 0);
        if (!ctx.display.linkRunning || !ctx.display.fixValid)
            model_.UpdatePosition(ctx.display.linkRunning, ctx.display.fixValid, 0, 0);
        MapView v = model_.View();
        const shell::ProgramSettings& s = shell_.settings();
        v.showMap = s.showMap != 0;
        v.showReferencePoints = s.showReferencePoints != 0;
        v.showTrack = s.showTrack != 0;
        v.showPoi = s.showPoi != 0;
        return v;
    };
    screens_.drawMapOverlay = [this](screens::Canvas& canvas, screens::ScreenContext& ctx) {
        DrawMapOverlayOnInstrument(canvas, ctx, model_);
    };

    using shell::Command;
    using shell::EntryState;
    registry.AddCommand(cmd::kWorldMap,
                        Command{[this](int) { shell_.ChooseScreen(shell::kScreenMap); }, {}});
    registry.AddCommand(cmd::kLoadedMap, Command{[this](int) {
                                                     if (mapLoaded_)
                                                         shell_.ChooseScreen(shell::kScreenMap);
                                                 },
                                                 {}});
    registry.AddCommand(cmd::kCloseMap, Command{[this](int) { CloseMap(); },
                                                [this](int) {
                                                    EntryState e;
                                                    e.enabled = mapLoaded_;
                                                    return e;
                                                }});
    registry.AddCommand(cmd::kShowMap,
                        Command{[this](int) { ToggleSetting(shell_.settings().showMap); }, {}});
    registry.AddCommand(
        cmd::kShowReferencePoints,
        Command{[this](int) { ToggleSetting(shell_.settings().showReferencePoints); }, {}});
    registry.AddCommand(
        cmd::kLoadMap,
        Command{[this](int) {
                    platform_->ChooseFile(browser::kBrowseMaps, [this](const std::string& path) {
                        const int i = ChooseMapFile(shell_.settings().recentMaps, path);
                        if (i >= 0)
                            OpenRecent(i);
                    });
                },
                {}});
    for (int i = 0; i < kRecentMapCount; ++i) {
        registry.AddCommand(
            cmd::kRecentMap1 + i,
            Command{[this, i](int) { OpenRecent(i); },
                    [this, i](int) {
                        EntryState e;
                        e.text = RecentMapMenuText(shell_.settings().recentMaps, i);
                        e.enabled =
                            !shell_.settings().recentMaps[static_cast<std::size_t>(i)].empty();
                        return e;
                    }});
    }
    for (int i = 0; i < kReferenceSlotCount; ++i) {
        registry.AddCommand(cmd::kSetReferencePoint1 + i,
                            Command{[this, i](int) { StartPlacement(i); },
                                    [this](int) {
                                        EntryState e;
                                        e.enabled = model_.map.mapMode != 0;
                                        return e;
                                    }});
    }
    registry.AddCommand(shell::cmd::kLeftSoftKey,
                        Command{[this](int) {
                                    if (model_.refs.placingReferencePoint != 0)
                                        OpenReferenceDialog();
                                },
                                {}});
    registry.AddCommand(cmd::kCancelPlacement,
                        Command{[this](int) {
                                    if (model_.refs.placingReferencePoint != 0)
                                        EndPlacement(true);
                                },
                                {}});
    registry.AddKey(shell::Key::Digit4, cmd::kWorldMap);
    registry.AddKey(shell::Key::Digit5, cmd::kLoadedMap, [this] { return mapLoaded_; });
    registry.SetTabCommand(1, cmd::kWorldMap);
    registry.SetTabCommand(2, cmd::kLoadedMap);
    registry.AddDisplayContribution(
        [this](screens::DisplayState& display) { display.mapLoaded = mapLoaded_; });
    RegisterMenus(registry);
    registry.AddStateSection([this](common::JsonMembers& members) { WriteState(members); });
}

void MapFeature::RegisterMenus(shell::FeatureRegistry& registry) {
    using common::LoadString;
    using shell::MenuPlace;
    registry.AddMenuEntries(MenuPlace::ViewMap, 0, [this] {
        const bool onMap = shell_.currentScreen == shell::kScreenMap;
        const shell::ProgramSettings& s = shell_.settings();
        std::vector<shell::MenuEntry> entries;
        if (mapLoaded_) {
            entries.push_back(
                shell::MenuRadio(cmd::kLoadedMap,
                                 common::FormatString(LoadString(common::kStrMenuLoadedMapKey),
                                                      model_.map.mapFileName),
                                 onMap));
        }
        entries.push_back(shell::MenuRadio(cmd::kWorldMap, LoadString(common::kStrMenuWorldMap),
                                           onMap && !mapLoaded_));
        entries.push_back(
            shell::MenuCheck(cmd::kShowMap, LoadString(common::kStrMenuShowMap), s.showMap != 0));
        entries.push_back(shell::MenuCheck(cmd::kShowReferencePoints,
                                           LoadString(common::kStrMenuShowReferencePoints),
                                           s.showReferencePoints != 0));
        return entries;
    });
    registry.AddMenuEntries(MenuPlace::MainMap, 0, [this] {
        std::vector<shell::MenuEntry> recent;
        for (int i = 0; i < kRecentMapCount; ++i)
            recent.push_back(shell::MenuItem(cmd::kRecentMap1 + i, {}));
        std::vector<shell::MenuEntry> entries{
            shell::MenuItem(cmd::kLoadMap, LoadString(common::kStrMenuLoadMap)),
            shell::MenuSub(LoadString(common::kStrMenuRecentMaps), std::move(recent)),
            shell::MenuItem(cmd::kCloseMap, LoadString(common::kStrMenuCloseMap), mapLoaded_)};
        for (int i = 0; i < kReferenceSlotCount; ++i) {
            entries.push_back(
                shell::MenuItem(cmd::kSetReferencePoint1 + i,
                                common::FormatString(LoadString(common::kStrMenuSetReferencePoint),
                                                     std::to_string(i + 1)),
                                mapLoaded_));
        }
        return entries;
    });
}

// ----- loading -----

bool MapFeature::LoadMap(const std::string& path) {
    // The calibration is found before the image replaces the one shown, so
    // that a broken georeference keeps the previous map.
    const std::string storageFile = MakeReferenceFileName(shell_.settings().storageRoot, path);
    const Georeference geo = LocateCalibration(path, storageFile);
    if (!geo.error.empty()) {
        shell_.ui().ShowMessage(
            common::FormatString(common::LoadString(common::kStrGeoreferenceRefused), geo.error),
            shell::MessageIcon::Error, shell::MessageButtons::Ok);
        return false;
    }
    ImageSize size;
    const ImageLoadError error = platform_->LoadImage(path, size);
    if (error != ImageLoadError::None) {
        ShowLoadFailure(path, error);  // the map shown before stays
        return false;
    }
    if (size.width <= 0 || size.height <= 0) {
        shell_.ui().ShowMessage(common::LoadString(common::kStrReadImageFailed),
                                shell::MessageIcon::Error, shell::MessageButtons::Ok);
        platform_->DropImage();
        model_.map = LoadedMap{};
        mapLoaded_ = false;
        return false;
    }
    model_.ApplyLoadedMap(path, size,
                          geo.source == GeoSource::ReferenceFile ? geo.file : storageFile,
                          geo.Bind(size));
    if (model_.calibration.Georeferenced())
        model_.calibrationSource = std::string(GeoSourceName(geo.source));
    if (model_.referencesRead)
        shell_.settings().showReferencePoints = 1;
    if (model_.referencesUnreadable) {
        shell_.ui().ShowMessage(
            common::FormatString(common::LoadString(common::kStrReferenceFileUnreadable),
                                 MakeReferenceFileName(shell_.settings().storageRoot, path)),
            shell::MessageIcon::Information, shell::MessageButtons::Ok);
    }
    mapLoaded_ = true;
    if (onCalibrationChanged)
        onCalibrationChanged();
    return true;
}

void MapFeature::CloseMap() {
    if (!mapLoaded_)
        return;
    if (model_.refs.placingReferencePoint != 0)
        EndPlacement(true);
    platform_->DropImage();
    model_.CloseMap();
    mapLoaded_ = false;
    if (onCalibrationChanged)
        onCalibrationChanged();
    shell_.ChooseScreen(shell::kScreenMap);
    shell_.Repaint();
}

void MapFeature::ShowLoadFailure(const std::string& path, ImageLoadError error) {
    if (error == ImageLoadError::None || error == ImageLoadError::Pending ||
        error == ImageLoadError::Cancelled)
        return;
    if (error == ImageLoadError::NoGdal) {
        std::string reason;
        GdalLibrary(&reason);
        shell_.ui().ShowMessage(GdalUnavailableMessage(reason), shell::MessageIcon::Error,
                                shell::MessageButtons::Ok);
        return;
    }
    const char* format = error == ImageLoadError::NoDiskSpace
                             ? common::LoadString(common::kStrNoDiskSpaceForMap)
                             : common::LoadString(kStrImportFailed);
    shell_.ui().ShowMessage(common::FormatString(format, std::string(MapFileName(path))),
                            shell::MessageIcon::Error, shell::MessageButtons::Ok);
}

void MapFeature::OpenRecent(int index) {
    const std::string path = OpenRecentMap(shell_.settings().recentMaps, index);
    if (path.empty())
        return;
    if (!LoadMap(path)) {
        shell_.Repaint();
        return;
    }
    shell_.ChooseScreen(shell::kScreenMap);
    shell_.Repaint();
}

// ----- reference points -----

void MapFeature::StartPlacement(int slot) {
    if (model_.map.mapMode == 0)
        return;
    model_.StartPlacement(slot);
    shell_.settings().showReferencePoints = 1;
    shell_.SetSoftKeys({common::LoadString(common::kStrPlacementOk), shell::cmd::kLeftSoftKey,
                        common::LoadString(common::kStrPlacementCancel), cmd::kCancelPlacement});
    if (shell_.currentScreen != shell::kScreenMap)
        shell_.ChooseScreen(shell::kScreenMap);
    shell_.Repaint();
}

void MapFeature::EndPlacement(bool restoreCursor) {
    if (restoreCursor)
        model_.CancelPlacement();
    shell_.SetSoftKeys({});
    shell_.Repaint();
}

void MapFeature::OpenReferenceDialog() {
    if (dialogOpen_)
        return;
    dialogOpen_ = true;
    const int slot = model_.refs.editedSlot;
    platform_->SetReferenceResiduals(
        ResidualsText(ReferenceResiduals(model_.calibration, model_.refs.referencePoints)));
    platform_->EditReferencePoint(
        slot, model_.refs.referencePoints[static_cast<std::size_t>(slot)],
        [this](bool ok, const ReferenceDialogFields& f) {
            dialogOpen_ = false;
            if (!ok || model_.map.mapMode == 0) {
                // Placement goes on: the user may tap again and retry.
                shell_.Repaint();
                return;
            }
            // A georeferenced map stays so until the user's points calibrate.
            const MapCalibration before = model_.calibration;
            const ReferenceConfirmation c = ConfirmReferencePoint(
                model_.refs, f,
                MakeReferenceFileName(shell_.settings().storageRoot, model_.mapPath),
                platform_->HasImage(), model_.map.image, model_.map.fit.displayedWidth,
                model_.scaleBarPixels(), model_.calibration, model_.extent);
            if (!c.saved) {
                shell_.ui().ShowMessage(common::LoadString(common::kStrSaveReferenceFailed),
                                        shell::MessageIcon::Error, shell::MessageButtons::Ok);
            }
            if (!c.keptAs.empty()) {
                shell_.ui().ShowMessage(
                    common::FormatString(common::LoadString(common::kStrReferenceFileKept),
                                         c.keptAs),
                    shell::MessageIcon::Information, shell::MessageButtons::Ok);
            }
            if (!c.calibrated && before.Georeferenced())
                model_.calibration = before;
            else if (c.calibrated)
                model_.calibrationSource = "rpt";
            model_.ApplyConfirmation(c);
            if (onCalibrationChanged)
                onCalibrationChanged();
            EndPlacement(false);
        });
}

void MapFeature::ShowHoldMenu(int x, int y) {
    // The stylus-up of the hold is not the map's.
    map::OnStylusUp(model_.stylus, *sink_);
    swallowUp_ = true;
    model_.holdMenuOpen = true;
    const bool shown = platform_->ShowHoldMenu(
        x, y, [this](int command) { shell_.OnCommand(command); },
        [this] { model_.holdMenuOpen = false; });
    if (!shown)
        shell_.Repaint();  // scripts pick the entry with its command
}

// ----- keys and stylus -----

bool MapFeature::OnKeyDown(shell::Key key) {
    if (shell_.currentScreen != shell::kScreenMap)
        return false;
    switch (key) {
        case shell::Key::Up:
            model_.ArrowKey(Arrow::Up);
            break;
        case shell::Key::Down:
            model_.ArrowKey(Arrow::Down);
            break;
        case shell::Key::Left:
            model_.ArrowKey(Arrow::Left);
            break;
        case shell::Key::Right:
            model_.ArrowKey(Arrow::Right);
            break;
        case shell::Key::Return:
            if (model_.refs.placingReferencePoint != 0) {
                OpenReferenceDialog();
                return true;
            }
            model_.TogglePanMode();
            break;
        default:
            return false;
    }
    shell_.Repaint();
    return true;
}

StylusScene MapFeature::Scene(int x, int y) const {
    StylusScene s;
    const screens::Rect& v = screens_.screen;
    s.onMapScreen = shell_.currentScreen == shell::kScreenMap;
    s.insideMap = x >= v.left && x < v.right && y >= v.top && y < v.bottom;
    s.mapMode = model_.map.mapMode != 0;
    s.placing = model_.refs.placingReferencePoint != 0;
    s.linkRunning = shell_.link().Running();
    s.unit = screens_.baseTextHeight;
    s.scaleBarPixels = model_.scaleBarPixels();
    return s;
}

bool MapFeature::OnStylusDown(int x, int y) {
    model_.holdMenuOpen = false;
    swallowUp_ = false;
    const StylusDownResult r = map::OnStylusDown(model_.stylus, LayoutNavigationButtons(screens_),
                                                 Scene(x, y), x, y, *sink_);
    if (r == StylusDownResult::Ignored)
        return false;
    if (r == StylusDownResult::MayHold) {
        holdPending_ = true;
        holdAt_ = {x, y};
        platform_->StartTimer(MapTimer::Hold, kHoldMs, [this] {
            platform_->StopTimer(MapTimer::Hold);
            if (holdPending_) {
                holdPending_ = false;
                ShowHoldMenu(holdAt_.x, holdAt_.y);
            }
        });
    }
    return true;
}

void MapFeature::OnStylusMove(int x, int y) {
    // A hold is a press that stays put: more than a little way and it is a drag.
    const int slack = std::max(3, screens_.baseTextHeight / 5);
    if (holdPending_ && (std::abs(x - holdAt_.x) > slack || std::abs(y - holdAt_.y) > slack)) {
        holdPending_ = false;
        platform_->StopTimer(MapTimer::Hold);
    }
    if (holdPending_)
        return;
    map::OnStylusMove(model_.stylus, Scene(x, y), x, y, *sink_);
}

void MapFeature::OnStylusUp(int, int) {
    holdPending_ = false;
    platform_->StopTimer(MapTimer::Hold);
    if (swallowUp_) {
        swallowUp_ = false;
        return;
    }
    map::OnStylusUp(model_.stylus, *sink_);
}

void MapFeature::OnGpsData() {
    // The shell paints once after every feature has heard of the batch, so
    // a view that follows the position is shown with it.
    const screens::DisplayState& d = shell_.display();
    model_.UpdatePosition(d.linkRunning, d.fixValid, d.latitude, d.longitude);
}

// ----- state -----

void MapFeature::WriteState(common::JsonMembers& members) const {
    std::string& out = members.Name("map");
    out += '{';
    common::JsonMembers m(out);
    const MapView v = model_.View();
    const LoadedMap& map = model_.map;
    m.Text("mode", map.mapMode != 0 ? "map" : "world");
    m.Text("fileName", map.mapFileName);
    m.Text("path", model_.mapPath);
    m.Int("imageWidth", map.image.width);
    m.Int("imageHeight", map.image.height);
    m.Bool("calibrated", model_.calibration.IsValid());
    m.Int("activeReferenceCount", model_.refs.activeReferenceCount);
    {
        std::string& list = m.Name("slots");
        list += '[';
        for (int i = 0; i < kReferenceSlotCount; ++i) {
            if (i > 0)
                list += ',';
            WritePoint(list, model_.refs.referencePoints[static_cast<std::size_t>(i)]);
        }
        list += ']';
    }
    {
        std::string& e = m.Name("extent");
        e += '{';
        common::JsonMembers em(e);
        WritePoint(em.Name("topLeft"), model_.extent.topLeft);
        WritePoint(em.Name("bottomRight"), model_.extent.bottomRight);
        WritePoint(em.Name("centre"), model_.extent.centre);
        e += '}';
    }
    Number(m, "viewScale", v.viewScale);
    Number(m, "scaleBarDistance", v.scaleBarDistance);
    m.Int("scaleBarPixels", v.scaleBarPixels);
    m.Int("zoom", map.mapMode != 0 ? model_.zoom : model_.worldScaleIndex);
    Number(m, "displayedWidth", v.displayedWidth);
    Number(m, "displayedHeight", v.displayedHeight);
    Number(m, "currentWidth", v.currentWidth);
    Number(m, "currentHeight", v.currentHeight);
    Number(m, "scrollX", v.scrollCentre.x);
    Number(m, "scrollY", v.scrollCentre.y);
    Number(m, "worldOriginLongitude", v.worldOrigin.longitude);
    Number(m, "worldOriginX", v.worldOrigin.screenX);
    Number(m, "worldOriginY", v.worldOrigin.screenY);
    {
        std::string& p = m.Name("position");
        PointF at;
        const bool placed = model_.linkRunning && model_.fixValid &&
                            ProjectToScreen(v, model_.latitude, model_.longitude, at);
        if (!placed) {
            p += "null";
        } else {
            p += '{';
            common::JsonMembers pm(p);
            Number(pm, "x", at.x);
            Number(pm, "y", at.y);
            p += '}';
        }
    }
    m.Bool("outsideMap", map.outsideMap != 0);
    {
        std::string& r = m.Name("recentMaps");
        r += '[';
        const auto& recent = shell_.settings().recentMaps;
        for (std::size_t i = 0; i < recent.size(); ++i) {
            if (i > 0)
                r += ',';
            common::AppendJsonString(r, recent[i]);
        }
        r += ']';
    }
    const shell::ProgramSettings& s = shell_.settings();
    m.Bool("showMap", s.showMap != 0);
    m.Bool("showReferencePoints", s.showReferencePoints != 0);
    m.Bool("showTrack", s.showTrack != 0);
    m.Bool("showPoi", s.showPoi != 0);
    m.Bool("placing", model_.refs.placingReferencePoint != 0);
    m.Int("editedSlot", model_.refs.editedSlot);
    Number(m, "placementX", model_.refs.placementCursor.imageX);
    Number(m, "placementY", model_.refs.placementCursor.imageY);
    m.Bool("holdMenuOpen", model_.holdMenuOpen);
    m.Bool("following", model_.Following());
    m.Int("panMode", model_.stylus.panMode);
    m.Int("panStep", model_.stylus.panStep);
    m.Text("calibrationSource", model_.calibrationSource);
    {
        std::string& r = m.Name("residualsMetres");
        r += '[';
        const auto residuals = ReferenceResiduals(model_.calibration, model_.refs.referencePoints);
        for (std::size_t i = 0; i < residuals.size(); ++i) {
            if (i > 0)
                r += ',';
            if (std::isfinite(residuals[i])) {
                char metres[32];
                std::snprintf(metres, sizeof metres, "%.3f", residuals[i]);
                r += metres;
            } else {
                r += "null";
            }
        }
        r += ']';
    }
    out += '}';
}

}  // namespace satwalk::map
