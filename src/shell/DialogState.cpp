#include "DialogState.h"

#include <charconv>

namespace satwalk::shell {

std::string_view ControlKindName(ControlKind kind) {
    switch (kind) {
        case ControlKind::Label:
            return "label";
        case ControlKind::Group:
            return "group";
        case ControlKind::Edit:
            return "edit";
        case ControlKind::CheckBox:
            return "checkBox";
        case ControlKind::List:
            return "list";
        case ControlKind::Button:
            return "button";
    }
    return "label";
}

const DialogControl* FindControl(const DialogState& state, int id) {
    for (const DialogControl& c : state.controls) {
        if (c.id == id)
            return &c;
    }
    return nullptr;
}

void AppendDialogJson(std::string& out, const DialogState& state, const StateSection& extra) {
    out += '{';
    common::JsonMembers m(out);
    m.Int("resourceId", state.resourceId);
    m.Text("caption", state.caption);
    std::string& keys = m.Name("softKeys");
    keys += '[';
    common::AppendJsonString(keys, state.leftSoftKey);
    keys += ',';
    common::AppendJsonString(keys, state.rightSoftKey);
    keys += ']';
    m.Name("controls") += '[';
    for (std::size_t i = 0; i < state.controls.size(); ++i) {
        const DialogControl& c = state.controls[i];
        out += i > 0 ? ",{" : "{";
        common::JsonMembers cm(out);
        cm.Int("id", c.id);
        cm.Text("kind", ControlKindName(c.kind));
        cm.Text("text", c.text);
        switch (c.kind) {
            case ControlKind::Edit:
                cm.Text("value", c.text);
                break;
            case ControlKind::CheckBox:
                cm.Int("value", c.checked ? 1 : 0);
                break;
            case ControlKind::List:
                cm.Int("value", c.selected);
                break;
            default:
                cm.Name("value") += "null";
                break;
        }
        cm.Bool("enabled", c.enabled);
        if (c.kind == ControlKind::List) {
            std::string& items = cm.Name("items");
            items += '[';
            for (std::size_t k = 0; k < c.items.size(); ++k) {
                if (k > 0)
                    items += ',';
                common::AppendJsonString(items, c.items[k]);
            }
            items += ']';
        }
        out += '}';
    }
    out += ']';
    if (!state.clipped.empty()) {
        std::string& ids = m.Name("clipped");
        ids += '[';
        for (std::size_t i = 0; i < state.clipped.size(); ++i)
            ids += (i > 0 ? "," : "") + std::to_string(state.clipped[i]);
        ids += ']';
    }
    if (extra)
        extra(m);
    out += '}';
}

namespace {

bool ParseIndex(std::string_view text, int& out) {
    const char* end = text.data() + text.size();
    const auto r = std::from_chars(text.data(), end, out);
    return !text.empty() && r.ec == std::errc() && r.ptr == end;
}

}  // namespace

bool ParseControlValue(const DialogControl& control, std::string_view value, ControlValue& out,
                       std::string& error) {
    const std::string name = std::to_string(control.id);
    if (!control.enabled) {
        error = "control " + name + " is greyed";
        return false;
    }
    switch (control.kind) {
        case ControlKind::Edit:
            out.text = std::string(value);
            return true;
        case ControlKind::CheckBox:
            if (value != "0" && value != "1") {
                error = "check box " + name + " takes 0 or 1";
                return false;
            }
            out.checked = value == "1";
            return true;
        case ControlKind::List: {
            int index = -1;
            if (!ParseIndex(value, index) || index < 0 ||
                static_cast<std::size_t>(index) >= control.items.size()) {
                error = "list " + name + " has no entry " + std::string(value);
                return false;
            }
            out.selected = index;
            return true;
        }
        default:
            error = "control " + name + " takes no value";
            return false;
    }
}

}  // namespace satwalk::shell
