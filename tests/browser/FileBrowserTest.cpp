// The file browser dialog offscreen, over a folder tree made for the purpose: what it shows in each
// mode, walking up and down by every way there is, choosing a file, and the root.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <QTreeWidget>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "FileBrowser.h"

namespace satwalk::browser::qt {
namespace {

namespace fs = std::filesystem;
using shell::qt::DialogStack;

class FileBrowserTest : public ::testing::Test {
  protected:
    void SetUp() override {
        root_ = fs::temp_directory_path() / ("satwalk-browser-" + std::to_string(::getpid()));
        fs::remove_all(root_);
        fs::create_directories(root_ / "maps" / "sub");
        fs::create_directories(root_ / "maps" / "Alpha");
        const std::pair<const char*, std::uintmax_t> files[] = {
            {"MAP.Bmp", 10},     {"photo.jpeg", 5},       {"b.png", 1536},       {"c.GIF", 0},
            {"track.log", 2000}, {"poi.csv", 150 * 1024}, {"big.jpg", 15u << 20}};
        for (const auto& [name, size] : files) {
            std::ofstream(root_ / "maps" / name).put('x');
            fs::resize_file(root_ / "maps" / name, size);
        }
        window_.resize(480, 692);
        window_.show();
        stack_.SetArea(QRect(0, 0, 480, 640));
    }
    void TearDown() override {
        while (!stack_.empty()) stack_.top()->Reject();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        fs::remove_all(root_);
    }

    std::string Maps() const { return (root_ / "maps").string(); }

    FileBrowser* Open(int mode, const std::string& folder) {
        chosen_.reset();
        FileBrowser* b = ChooseFile(
            stack_, mode, 40118, [this](const std::string& path) { chosen_ = path; }, folder);
        b->ListFolder(folder);  // the folder of the last use does not count here
        return b;
    }

    static std::string Current(const FileBrowser& b) {
        return b.list()->currentItem()->text(0).toStdString();
    }

    static void Key(QWidget* target, int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(target, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(target, &up);
    }

    static void Tap(FileBrowser& b, int row) {
        QTreeWidget* list = b.list();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->topLevelItem(row)).center());
    }

    fs::path root_;
    QWidget window_;
    DialogStack stack_{window_, 30};
    std::optional<std::string> chosen_;
};

// Each step from the folder before it: where the browser is then, which row is selected (the folder
// just left, coming up), and whether "向上" may be used.
TEST_F(FileBrowserTest, WalkingTheTree) {
    FileBrowser* b = Open(kBrowseMaps, Maps());
    const std::string top = root_.string(), maps = Maps(), sub = maps + "/sub";
    // A step is a key, or one of these.
    constexpr int kOpenSub = -1, kUpKey = -2, kTapDotDot = -3;
    const std::tuple<int, std::string, const char*> steps[] = {
        {kOpenSub, sub, ".."},    {Qt::Key_Backspace, maps, "sub"},
        {kUpKey, top, "maps"},    {Qt::Key_Return, maps, ".."},
        {kOpenSub, sub, ".."},    {Qt::Key_Escape, maps, "sub"},
        {kTapDotDot, top, "maps"}};
    for (const auto& [step, folder, selected] : steps) {
        if (step == kOpenSub)
            b->Activate(6);  // sub, the last row
        else if (step == kUpKey)
            stack_.PressSoftKey(0);
        else if (step == kTapDotDot)
            Tap(*b, 0);
        else
            Key(stack_.KeyTarget(), step);
        SCOPED_TRACE(folder);
        EXPECT_EQ(std::tuple(b->folder(), Current(*b), b->softKey(0).enabled, stack_.top()),
                  std::tuple(folder, selected, true, b));
    }
}

// The dialog hands presses, double clicks and typing to the navigator: a
// double click on "sub" enters it and stays there; typing selects.
TEST_F(FileBrowserTest, DoubleClickAndTyping) {
    FileBrowser* b = Open(kBrowseMaps, Maps());
    QTreeWidget* list = b->list();
    const QPoint sub = list->visualItemRect(list->topLevelItem(6)).center();
    // As a window system delivers it: a click, then the second press as a
    // double click, and its release.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, sub);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, sub);
    QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, sub);
    EXPECT_EQ(b->folder(), Maps() + "/sub");
    EXPECT_EQ(Current(*b), "..");
    b->GoUp();
    QTest::keyClicks(list, "ma");
    EXPECT_EQ(Current(*b), "MAP.Bmp");
    EXPECT_FALSE(chosen_.has_value());
}

TEST_F(FileBrowserTest, AtTheRootNoWayUp) {
    FileBrowser* b = Open(kBrowseMaps, "/");
    EXPECT_NE(Current(*b), "..");
    EXPECT_FALSE(b->softKey(0).enabled);
    Key(stack_.KeyTarget(), Qt::Key_Escape);
    stack_.PressSoftKey(0);
    EXPECT_EQ(b->folder(), "/");
    EXPECT_EQ(stack_.top(), b);
}

TEST_F(FileBrowserTest, ChoosingAFile) {
    const std::tuple<std::string, std::string, bool> cases[] = {
        {"choose", Maps() + "/MAP.Bmp", true},     {"choose", Maps() + "/../maps/./b.png", true},
        {"choose", Maps() + "/photo.jpeg", false},  // not a map: not listed
        {"choose", Maps() + "/gone.png", false},   {"enter", Maps() + "/c.GIF", true},
        {"tap", Maps() + "/big.jpg", true},        {"cancel", "", false}};
    for (const auto& [how, path, chosen] : cases) {
        SCOPED_TRACE(how + " " + path);
        FileBrowser* b = Open(kBrowseMaps, Maps());
        std::string error;
        if (how == "choose") {
            EXPECT_EQ(b->Choose(path, error), chosen) << error;
        } else if (how == "enter") {
            b->list()->setCurrentItem(b->list()->topLevelItem(4));
            Key(stack_.KeyTarget(), Qt::Key_Return);
        } else if (how == "tap") {
            Tap(*b, 3);
        } else {
            stack_.PressSoftKey(1);
        }
        EXPECT_EQ(stack_.empty(), chosen || how == "cancel");
        if (chosen) {
            ASSERT_TRUE(chosen_.has_value());
            EXPECT_EQ(fs::path(*chosen_), fs::weakly_canonical(path));
        } else {
            EXPECT_FALSE(chosen_.has_value());
        }
        while (!stack_.empty()) stack_.top()->Reject();
    }
}

}  // namespace
}  // namespace satwalk::browser::qt
