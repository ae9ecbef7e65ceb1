#include "Features.h"

#include <algorithm>
#include <iterator>

namespace satwalk::shell {

void FeatureRegistry::Add(Feature& feature) {
    features_.push_back(&feature);
    feature.Register(*this);
}

void FeatureRegistry::AddCommand(int id, Command command) {
    commands_[id] = std::move(command);
}

void FeatureRegistry::AddStateSection(StateSection section) {
    sections_.push_back(std::move(section));
}

void FeatureRegistry::AddScriptStep(std::string verb, ScriptStep step) {
    scriptSteps_[std::move(verb)] = std::move(step);
}

void FeatureRegistry::AddMenuEntries(MenuPlace place, int rank, MenuEntries entries) {
    PlacedEntries placed{place, rank, std::move(entries)};
    const auto at = std::upper_bound(
        menuEntries_.begin(), menuEntries_.end(), placed,
        [](const PlacedEntries& a, const PlacedEntries& b) { return a.rank < b.rank; });
    menuEntries_.insert(at, std::move(placed));
}

void FeatureRegistry::AddKey(Key key, int id, std::function<bool()> when) {
    keys_.push_back({key, id, std::move(when)});
}

void FeatureRegistry::SetTabCommand(int tab, int id) {
    tabs_[tab] = id;
}

void FeatureRegistry::AddDisplayContribution(DisplayContribution contribution) {
    displayContributions_.push_back(std::move(contribution));
}

std::vector<MenuEntry> FeatureRegistry::MenuEntriesAt(MenuPlace place) const {
    std::vector<MenuEntry> out;
    for (const PlacedEntries& p : menuEntries_) {
        if (p.place != place)
            continue;
        std::vector<MenuEntry> entries = p.entries();
        std::move(entries.begin(), entries.end(), std::back_inserter(out));
    }
    return out;
}

int FeatureRegistry::KeyCommand(Key key) const {
    for (const KeyBinding& k : keys_) {
        if (k.key == key && (!k.when || k.when()))
            return k.id;
    }
    return 0;
}

int FeatureRegistry::TabCommand(int tab) const {
    const auto it = tabs_.find(tab);
    return it == tabs_.end() ? 0 : it->second;
}

void FeatureRegistry::ContributeDisplay(screens::DisplayState& display) const {
    for (const DisplayContribution& c : displayContributions_) c(display);
}

const Command* FeatureRegistry::FindCommand(int id) const {
    const auto it = commands_.find(id);
    return it == commands_.end() ? nullptr : &it->second;
}

const ScriptStep* FeatureRegistry::FindScriptStep(std::string_view verb) const {
    const auto it = scriptSteps_.find(verb);
    return it == scriptSteps_.end() ? nullptr : &it->second;
}

std::vector<int> FeatureRegistry::CommandIds() const {
    std::vector<int> ids;
    for (const auto& [id, command] : commands_) ids.push_back(id);
    return ids;
}

std::vector<std::string> FeatureRegistry::ScriptVerbs() const {
    std::vector<std::string> verbs;
    for (const auto& [verb, step] : scriptSteps_) verbs.push_back(verb);
    return verbs;
}

void FeatureRegistry::WriteStateSections(common::JsonMembers& members) const {
    for (const StateSection& section : sections_) section(members);
}

void FeatureRegistry::NotifyGpsData() const {
    for (Feature* f : features_) f->OnGpsData();
}

void FeatureRegistry::NotifyScreenChosen() const {
    for (Feature* f : features_) f->OnScreenChosen();
}

void FeatureRegistry::NotifyExit() const {
    for (Feature* f : features_) f->OnExit();
}

void FeatureRegistry::NotifyLinkStarted() const {
    for (Feature* f : features_) f->OnLinkStarted();
}

void FeatureRegistry::NotifySettingsChanged() const {
    for (Feature* f : features_) f->OnSettingsChanged();
}

void FeatureRegistry::NotifyLinkStopped() const {
    for (Feature* f : features_) f->OnLinkStopped();
}

bool FeatureRegistry::NotifyKeyDown(Key key) const {
    for (Feature* f : features_)
        if (f->OnKeyDown(key))
            return true;
    return false;
}

bool FeatureRegistry::NotifyStylusDown(int x, int y) {
    stylusOwner_ = nullptr;
    for (Feature* f : features_) {
        if (f->OnStylusDown(x, y)) {
            stylusOwner_ = f;
            return true;
        }
    }
    return false;
}

void FeatureRegistry::NotifyStylusMove(int x, int y) const {
    if (stylusOwner_ != nullptr)
        stylusOwner_->OnStylusMove(x, y);
}

void FeatureRegistry::NotifyStylusUp(int x, int y) {
    Feature* owner = stylusOwner_;
    stylusOwner_ = nullptr;
    if (owner != nullptr)
        owner->OnStylusUp(x, y);
}

}  // namespace satwalk::shell
