// The map feature's platform faked: timers that fire when the test says,
// images that are only sizes, dialogs that answer as the test sets.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "MapFeature.h"

namespace satwalk::map::test {

class FakeMapPlatform final : public MapPlatform {
  public:
    void StartTimer(MapTimer timer, int periodMs, std::function<void()> expired) override {
        timers[timer] = {periodMs, std::move(expired)};
    }
    void StopTimer(MapTimer timer) override { timers.erase(timer); }
    // Runs the timer's callback once, as its period ending would.
    bool Fire(MapTimer timer) {
        const std::function<void()> expired = timers.count(timer) ? timers[timer].expired : nullptr;
        if (expired)
            expired();
        return static_cast<bool>(expired);
    }
    int Period(MapTimer timer) const { return timers.count(timer) ? timers.at(timer).periodMs : 0; }

    ImageLoadError LoadImage(const std::string& path, ImageSize& size) override {
        if (errors.count(path))
            return errors[path];
        if (!images.count(path))
            return ImageLoadError::CannotOpen;
        size = images[path];
        loaded = path;
        return ImageLoadError::None;
    }
    void SetImagePrepared(
        std::function<void(const std::string&, ImageLoadError)> handler) override {
        prepared = std::move(handler);
    }
    void DropImage() override { loaded.clear(); }
    bool HasImage() const override { return !loaded.empty(); }
    std::unique_ptr<MapLayer> MakeImageLayer() override { return std::make_unique<NoLayer>(); }

    void ChooseFile(int, std::function<void(const std::string&)> done) override {
        done(chosenFile);
    }
    void EditReferencePoint(int slot, const GeoPoint& point,
                            std::function<void(bool, const ReferenceDialogFields&)> done) override {
        editedSlot = slot;
        ReferenceDialogFields fields = OpenReferenceDialog(point);
        answerFields(fields);
        done(true, fields);
    }
    bool ShowHoldMenu(int, int, std::function<void(int)> chosen, std::function<void()>) override {
        holdMenu = std::move(chosen);
        return true;
    }

    struct Timer {
        int periodMs = 0;
        std::function<void()> expired;
    };
    std::map<MapTimer, Timer> timers;
    std::map<std::string, ImageSize> images;       // the files that load, by path
    std::map<std::string, ImageLoadError> errors;  // the files that answer otherwise
    std::function<void(const std::string&, ImageLoadError)> prepared;
    std::string loaded, chosenFile;
    int editedSlot = -1;
    std::function<void(ReferenceDialogFields&)> answerFields = [](ReferenceDialogFields&) {};
    std::function<void(int)> holdMenu;

  private:
    struct NoLayer final : MapLayer {
        void Paint(screens::Canvas&, const MapView&, const screens::ScreenContext&,
                   const gps::GpsState&) override {}
    };
};

}  // namespace satwalk::map::test
