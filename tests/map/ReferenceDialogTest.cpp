// The reference-point dialog offscreen, driven through the script's own steps (`set`, the soft
// keys, `answer`): what it shows as it opens on a slot, and the slot that OK's fields make.
#include <gtest/gtest.h>

#include <QApplication>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "ReferenceDialog.h"

namespace satwalk::map::qt {
namespace {

using shell::qt::DialogResult;

class ReferenceDialogTest : public ::testing::Test {
  protected:
    void SetUp() override {
        window_.resize(480, 692);
        window_.show();
        stack_.SetArea(QRect(0, 0, 480, 640));
        registry_.Add(stack_);
    }
    void TearDown() override {
        while (!stack_.empty()) stack_.top()->Reject();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    ReferenceDialog* Open(int slot, const GeoPoint& point, ReferenceFix fix = {}) {
        confirmed_.reset();
        cancelled_ = false;
        return OpenReferencePointDialog(
            stack_, slot, point, [fix] { return fix; },
            [this](const ReferenceDialogFields& f) { confirmed_ = f; },
            [this] { cancelled_ = true; });
    }

    // `set ID VALUE` as a script gives it; false with the step's error.
    bool Set(int id, const std::string& value, std::string* error = nullptr) {
        std::string e;
        const bool ok = (*registry_.FindScriptStep("set"))({std::to_string(id), value}, e);
        if (error != nullptr)
            *error = e;
        return ok;
    }

    // What the dialog shows: the check box, the two lists, the six edits.
    static std::vector<std::string> Shown(const ReferenceDialog& d) {
        const shell::DialogState s = d.State();
        std::vector<std::string> out;
        for (int id : {1013, 1010, 1003, 1004, 1005, 1011, 1007, 1008, 1009}) {
            const shell::DialogControl* c = shell::FindControl(s, id);
            out.push_back(c->text + (c->kind == shell::ControlKind::CheckBox
                                         ? (c->checked ? " on" : " off")
                                         : (c->enabled ? "" : " grey")));
        }
        return out;
    }

    QWidget window_;
    shell::qt::DialogStack stack_{window_, 30};
    shell::FeatureRegistry registry_;
    std::optional<ReferenceDialogFields> confirmed_;
    bool cancelled_ = false;
};

TEST_F(ReferenceDialogTest, OpensOnTheSlot) {
    const std::tuple<int, GeoPoint, std::vector<std::string>> cases[] = {
        // A southern, western point opens under 北纬 and 东经, as its absolute value.
        {0,
         {1, -33.5, -151.25, 0, 0, 10, 20},
         {"激活参照点 1 on", "北纬", "33.000000", "30.000000", "0.000000", "东经", "151.000000",
          "15.000000", "0.000000"}},
        {4,
         {0, 30.5125, 120.0, 0, 0, 0, 0},
         {"激活参照点 5 off", "北纬 grey", "30.000000 grey", "30.000000 grey", "45.000000 grey",
          "东经 grey", "120.000000 grey", "0.000000 grey", "0.000000 grey"}}};
    for (const auto& [slot, point, shown] : cases) {
        SCOPED_TRACE(slot);
        ReferenceDialog* d = Open(slot, point);
        EXPECT_EQ(Shown(*d), shown);
        d->Reject();
        EXPECT_TRUE(cancelled_ && !confirmed_.has_value());
    }
}

// Steps after opening on slot 1 holding -33.5, 151.25, then OK: the slot the confirmed fields make.
TEST_F(ReferenceDialogTest, SetAndConfirm) {
    constexpr double kSecond = 1.0 / 3600;
    using Sets = std::vector<std::pair<int, std::string>>;
    const std::tuple<const char*, Sets, int, double, double> cases[] = {
        {"south and west", {{1010, "1"}, {1011, "1"}}, 1, -33.5, -151.25},
        {"longitude seconds cut", {{1009, "59.9999999999"}}, 1, 33.5, 151.25 + 59.999999 * kSecond},
        {"lat seconds whole", {{1005, "59.9999999999"}}, 1, 33.5 + 59.9999999999 * kSecond, 151.25},
        // Minutes past 60 carry; text after the number is ignored.
        {"past 60", {{1003, "10"}, {1004, "90"}, {1007, "  5.5x"}, {1008, "abc"}}, 1, 11.5, 5.5},
        {"unticked", {{1013, "0"}}, 0, 33.5, 151.25}};
    for (const auto& [what, sets, valid, latitude, longitude] : cases) {
        SCOPED_TRACE(what);
        Open(0, {1, -33.5, 151.25, 0, 0, 0, 0});
        for (const auto& [id, value] : sets) ASSERT_TRUE(Set(id, value));
        ASSERT_TRUE(stack_.Answer(DialogResult::Ok));
        ASSERT_TRUE(confirmed_.has_value());
        GeoPoint slot;
        FieldsToSlot(*confirmed_, slot);
        EXPECT_EQ(slot.valid, valid);
        EXPECT_DOUBLE_EQ(slot.latitude, latitude);
        EXPECT_DOUBLE_EQ(slot.longitude, longitude);
        EXPECT_TRUE(stack_.empty());
    }
}

// "插入当前GPS座标" on an inactive slot whose fields were edited: the box is
// ticked, and the fix (hemispheres by its signs) or zeros fill the fields.
TEST_F(ReferenceDialogTest, InsertCurrentCoordinate) {
    const std::pair<ReferenceFix, std::vector<std::string>> cases[] = {
        {{true, -22.5, -43.25},
         {"激活参照点 2 on", "南纬", "22.000000", "30.000000", "0.000000", "西经", "43.000000",
          "15.000000", "0.000000"}},
        {{false, -22.5, -43.25},
         {"激活参照点 2 on", "北纬", "0.000000", "0.000000", "0.000000", "东经", "0.000000",
          "0.000000", "0.000000"}}};
    for (const auto& [fix, expected] : cases) {
        ReferenceDialog* d = Open(1, {0, 1.0, 2.0, 0, 0, 0, 0}, fix);
        ASSERT_TRUE(Set(1013, "1") && Set(1011, "1") && Set(1013, "0"));
        stack_.PressSoftKey(0);
        const std::vector<std::string> shown = Shown(*d);
        for (std::size_t i = 0; i < shown.size(); ++i) {
            // The seconds are what the arithmetic leaves: compare their value.
            if (i == 4 || i == 8)
                EXPECT_NEAR(std::stod(shown[i]), std::stod(expected[i]), 1e-6) << i;
            else
                EXPECT_EQ(shown[i], expected[i]) << i;
        }
        d->Reject();
    }
}

}  // namespace
}  // namespace satwalk::map::qt
