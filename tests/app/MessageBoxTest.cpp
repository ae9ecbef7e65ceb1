// Message boxes in the interface's language, at the screen's scale.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>

#include <algorithm>

#include "Language.h"
#include "MessageBoxes.h"

namespace satwalk::app {
namespace {

using shell::MessageButtons;
using shell::MessageIcon;

TEST(MessageBoxTest, StandardButtonsInChineseAtEachDensity) {
    const std::tuple<int, MessageButtons, QStringList> cases[] = {
        {15, MessageButtons::Ok, {"确定"}}, {30, MessageButtons::YesNo, {"否", "是"}}};
    for (const auto& [baseTextHeight, buttons, expectedTexts] : cases) {
        SCOPED_TRACE(baseTextHeight);
        const auto box = MakeMessageBox(nullptr, "您确定要退出程序？", MessageIcon::Question,
                                        buttons, baseTextHeight);
        QStringList texts;
        for (QAbstractButton* b : box->buttons()) texts << b->text();
        texts.sort();
        EXPECT_EQ(texts, expectedTexts);
        // The text and the buttons share the size of the menus' text.
        const auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->font().pixelSize(), (2 * baseTextHeight) / 3);
        EXPECT_EQ(box->buttons().front()->font().pixelSize(), (2 * baseTextHeight) / 3);
        // The icon grows with the text beside it.
        EXPECT_GE(box->iconPixmap().width(), 2 * label->font().pixelSize());
    }
}

TEST(MessageBoxTest, MnemonicsLeaveTheButtonText) {
    const std::pair<const char*, const char*> cases[] = {
        {"是(&Y)", "是"}, {"否 (&N)", "否"}, {"&OK", "OK"}, {"A && B", "A & B"}, {"取消", "取消"}};
    for (const auto& [in, out] : cases)
        EXPECT_EQ(WithoutMnemonic(QString::fromUtf8(in)), QString::fromUtf8(out)) << in;
}

}  // namespace
}  // namespace satwalk::app

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    satwalk::app::InstallQtTranslation(app);  // the button texts show whether it loaded
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
