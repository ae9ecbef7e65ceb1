// What the program tells about an open dialog: its resource id, caption,
// soft keys and each control with its value, as the state dump of script
// mode writes it, and the rules by which the script's `set` step gives a
// control a new value. Plain values; the dialogs themselves are Qt widgets
// (shell/qt/Dialogs.h) that describe themselves with these.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Features.h"

namespace satwalk::shell {

enum class ControlKind { Label, Group, Edit, CheckBox, List, Button };

// "label", "group", "edit", "checkBox", "list", "button".
std::string_view ControlKindName(ControlKind kind);

struct DialogControl {
    int id = 0;
    ControlKind kind = ControlKind::Label;
    // The caption of a label, group, check box or button; an edit's
    // contents; a list's selected entry (empty when none).
    std::string text;
    bool checked = false;            // check boxes
    int selected = -1;               // lists: the selected entry, -1 when none
    std::vector<std::string> items;  // lists: their entries
    bool enabled = true;
};

struct DialogState {
    int resourceId = 0;
    std::string caption;
    std::vector<DialogControl> controls;  // in the order the dialog declares them
    std::string leftSoftKey;
    std::string rightSoftKey;
    // The controls whose text does not fit their box, or whose box reaches
    // past the dialog (0 for the caption): a layout that fails a language.
    std::vector<int> clipped;
};

const DialogControl* FindControl(const DialogState& state, int id);

// The dialog as one JSON object: resourceId, caption, softKeys and
// controls, each control with id, kind, text, value (an edit's text, a
// check box's 0 or 1, a list's selected index; null for the others),
// enabled, and a list's items; `clipped` only when some text does not fit.
// `extra` adds the dialog's own members.
void AppendDialogJson(std::string& out, const DialogState& state, const StateSection& extra = {});

// A value the script's `set` gives a control, checked against its kind.
struct ControlValue {
    std::string text;      // edits
    bool checked = false;  // check boxes
    int selected = -1;     // lists
};

// Reads `value` for `control`: any text for an edit, 0 or 1 for a check
// box, an entry's index for a list. False, with `error` set, when the value
// does not fit, the control is greyed or takes no value.
bool ParseControlValue(const DialogControl& control, std::string_view value, ControlValue& out,
                       std::string& error);

}  // namespace satwalk::shell
