// How a feature plugs into the program. At start-up the composition root
// hands each feature to the shell's FeatureRegistry; the feature registers
// its commands (with the state of their menu entries), its menu entries at
// named places of the menu tree, its keys and tool-strip tabs, what it adds
// to the display state, its members of the state dump and its script
// steps, and is told of the shell's events. A feature keeps its own timers
// and reads its slice of the settings; it hears when the options change
// them. A new feature is files in its own folder and one line in src/app.
//
// Everything here runs on the user-interface thread.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "DisplayState.h"
#include "Json.h"
#include "MenuModel.h"

namespace satwalk::shell {

// How a command's menu entry looks at this moment.
struct EntryState {
    bool enabled = true;
    bool checked = false;
    std::string text;     // empty: the menu's own text
    bool present = true;  // false: the entry is left out of the menu
};

struct Command {
    std::function<void(int id)> run;
    // Empty: enabled, unchecked, with the menu's own text.
    std::function<EntryState(int id)> state;
};

// Adds a feature's members to the state dump (an object begun elsewhere).
using StateSection = std::function<void(common::JsonMembers& members)>;

// One verb of script mode, given the words after it. False, with `error`
// set, when they are not what it takes.
using ScriptStep = std::function<bool(const std::vector<std::string>& words, std::string& error)>;

// The places of the menu tree where features add entries: the sub-menus
// the shell keeps for them. A sub-menu no feature fills is left out.
enum class MenuPlace {
    ViewMap,    // 视图 › 地图
    MainMap,    // 菜单 › 地图
    MainPoi,    // 菜单 › POI
    MainTrack,  // 菜单 › 轨迹
};

// A feature's entries at a place, built each time the menu is: texts,
// marks and greying as they are at that moment.
using MenuEntries = std::function<std::vector<MenuEntry>()>;

// Adds what a feature shows to the display state, after the shell's own.
using DisplayContribution = std::function<void(screens::DisplayState& display)>;

class FeatureRegistry;
enum class Key;

class Feature {
  public:
    virtual ~Feature() = default;

    // Once, at start-up.
    virtual void Register(FeatureRegistry& registry) = 0;

    // After each batch of receiver data, once the shell has taken its copy
    // of the fix and checked the alarm.
    virtual void OnGpsData() {}
    // A screen was chosen (menu, key, tab), before it is shown.
    virtual void OnScreenChosen() {}
    // A confirmed exit, after the link has stopped and before the window
    // closes.
    virtual void OnExit() {}
    // The receiver link has started, or has been stopped.
    virtual void OnLinkStarted() {}
    virtual void OnLinkStopped() {}
    // The options dialog has changed the settings (any of them): a feature
    // compares its slice with what it last saw.
    virtual void OnSettingsChanged() {}
    // A hardware key, before the shell's own keys; true when taken.
    virtual bool OnKeyDown(Key key) {
        (void)key;
        return false;
    }
    // The stylus on the screen area (screen-area pixels) where no tab or
    // alarm cell took it. A feature that takes the down (true) sees the
    // moves and the up that follow.
    virtual bool OnStylusDown(int x, int y) {
        (void)x;
        (void)y;
        return false;
    }
    virtual void OnStylusMove(int x, int y) {
        (void)x;
        (void)y;
    }
    virtual void OnStylusUp(int x, int y) {
        (void)x;
        (void)y;
    }
};

class FeatureRegistry {
  public:
    // Registers `feature` (which outlives the registry) and lets it register
    // its parts.
    void Add(Feature& feature);

    // A later command with the same id replaces the earlier one.
    void AddCommand(int id, Command command);
    void AddStateSection(StateSection section);
    void AddScriptStep(std::string verb, ScriptStep step);
    // Entries at `place`, ordered by `rank` (then by registration).
    void AddMenuEntries(MenuPlace place, int rank, MenuEntries entries);
    // Key `key` sends command `id` while `when` says so (always when empty).
    // A feature's keys come after the shell's own table.
    void AddKey(Key key, int id, std::function<bool()> when = {});
    // Tool-strip tab `tab` (0..5, strip order) sends command `id`.
    void SetTabCommand(int tab, int id);
    void AddDisplayContribution(DisplayContribution contribution);

    // Null when no one handles `id` (or `verb`).
    const Command* FindCommand(int id) const;
    const ScriptStep* FindScriptStep(std::string_view verb) const;

    void WriteStateSections(common::JsonMembers& members) const;
    std::vector<MenuEntry> MenuEntriesAt(MenuPlace place) const;
    // The command key `key` sends now, or 0.
    int KeyCommand(Key key) const;
    int TabCommand(int tab) const;
    void ContributeDisplay(screens::DisplayState& display) const;

    // Every command id with a handler, and every registered script verb, in
    // ascending order.
    std::vector<int> CommandIds() const;
    std::vector<std::string> ScriptVerbs() const;

    // Each registered feature in turn.
    void NotifyGpsData() const;
    void NotifyScreenChosen() const;
    void NotifyExit() const;
    void NotifyLinkStarted() const;
    void NotifyLinkStopped() const;
    void NotifySettingsChanged() const;
    bool NotifyKeyDown(Key key) const;
    // The first feature that takes the down gets the moves and the up.
    bool NotifyStylusDown(int x, int y);
    void NotifyStylusMove(int x, int y) const;
    void NotifyStylusUp(int x, int y);

  private:
    std::vector<Feature*> features_;
    Feature* stylusOwner_ = nullptr;
    std::map<int, Command> commands_;
    std::vector<StateSection> sections_;
    std::map<std::string, ScriptStep, std::less<>> scriptSteps_;
    struct PlacedEntries {
        MenuPlace place;
        int rank;
        MenuEntries entries;
    };
    std::vector<PlacedEntries> menuEntries_;
    struct KeyBinding {
        Key key;
        int id;
        std::function<bool()> when;
    };
    std::vector<KeyBinding> keys_;
    std::map<int, int> tabs_;
    std::vector<DisplayContribution> displayContributions_;
};

}  // namespace satwalk::shell
