// "用户手册": the manual as a full-screen dialog (dialog 2010). The Markdown
// is shown in a text browser with a table of contents after its title whose
// links jump to the chapters; the arrow keys scroll (up and down by lines,
// left and right by pages), "目录" goes back to the contents and "关闭",
// Escape or `answer ok|cancel` close it. The state's `dialog` adds the
// manual's file and where it is scrolled to.
#pragma once

#include <QString>
#include <QTextBrowser>

#include <functional>
#include <memory>
#include <string>

#include "Dialogs.h"

namespace satwalk::shell {
class Shell;
}

namespace satwalk::help::qt {

inline constexpr int kManualDialogId = 2010;
inline constexpr int kManualTextId = 2011;

// The text of the manual, scrolled by the handheld's keys.
class ManualView final : public QTextBrowser {
  public:
    explicit ManualView(QWidget* parent);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

class ManualDialog final : public shell::qt::FullScreenDialog {
  public:
    // `markdown` is the manual's text, `folder` where its images are.
    ManualDialog(shell::qt::DialogStack& stack, const QString& markdown, const QString& folder,
                 std::string file);

    ManualView* view() const { return view_; }
    // Scrolls to the chapter with `anchor`; false when there is none.
    bool JumpTo(const QString& anchor);

    void WriteExtraState(common::JsonMembers& members) const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void NameHeadings(const std::string& markdown);
    void FitImages();

    ManualView* view_;
    std::string file_;
    int contentsEntries_ = 0;
};

// Where the bundled data lives: SATWALK_DATA_DIR, else beside an installed
// program, else the source tree the program was built from.
std::string DataDirectory();

// The feature behind "用户手册" (40201). `language` gives the language code
// of the manual to show ("zh_CN" when empty or not given).
std::unique_ptr<shell::Feature> MakeHelpFeature(shell::Shell& shell,
                                                shell::qt::DialogStack& dialogs,
                                                std::string dataDir,
                                                std::function<std::string()> language = {});

}  // namespace satwalk::help::qt
