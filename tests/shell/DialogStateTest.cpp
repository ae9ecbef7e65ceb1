// The values the script's `set` gives each kind of control.
#include <gtest/gtest.h>

#include "DialogState.h"

namespace satwalk::shell {
namespace {

DialogControl Control(ControlKind kind, bool enabled = true) {
    DialogControl c;
    c.id = 7;
    c.kind = kind;
    c.enabled = enabled;
    c.items = {"北纬", "南纬"};
    return c;
}

TEST(DialogStateTest, ValuesThatSetTakes) {
    const struct {
        ControlKind kind;
        bool enabled;
        const char* value;
        bool ok;
        const char* error;
    } cases[] = {{ControlKind::Edit, true, "12.5 x", true, ""},
                 {ControlKind::Edit, false, "1", false, "greyed"},
                 {ControlKind::CheckBox, true, "1", true, ""},
                 {ControlKind::CheckBox, true, "2", false, "0 or 1"},
                 {ControlKind::CheckBox, true, "01", false, "0 or 1"},
                 {ControlKind::List, true, "1", true, ""},
                 {ControlKind::List, true, "2", false, "no entry 2"},
                 {ControlKind::List, true, "1x", false, "no entry"},
                 {ControlKind::List, true, "", false, "no entry"},
                 {ControlKind::Label, true, "x", false, "takes no value"},
                 {ControlKind::Group, true, "x", false, "takes no value"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(ControlKindName(c.kind)) + " " + c.value);
        ControlValue v;
        std::string error;
        EXPECT_EQ(ParseControlValue(Control(c.kind, c.enabled), c.value, v, error), c.ok);
        EXPECT_NE(error.find(c.error), std::string::npos) << error;
        EXPECT_TRUE(!c.ok || c.kind != ControlKind::Edit || v.text == c.value) << v.text;
    }
    ControlValue v;
    std::string error;
    ASSERT_TRUE(ParseControlValue(Control(ControlKind::List), "1", v, error));
    EXPECT_EQ(v.selected, 1);
    ASSERT_TRUE(ParseControlValue(Control(ControlKind::CheckBox), "1", v, error));
    EXPECT_TRUE(v.checked);
}

}  // namespace
}  // namespace satwalk::shell
