// Message boxes in the program's one language and at the screen's scale:
// Qt's own Simplified Chinese translation names the standard buttons, and
// the text follows the base text height as the rest of the window does.
#pragma once

#include <QString>

#include <memory>
#include <string>

#include "Features.h"
#include "Shell.h"

class QMessageBox;
class QWidget;

namespace satwalk::app {

class MainWindow;

// The pixel size of a message box's text: the menus' size, two thirds of
// the base text height.
int MessageFontPixels(int baseTextHeight);

// A standard button's text without its keyboard mnemonic: "是(&Y)" → "是".
QString WithoutMnemonic(QString text);

// The box the window shows for a message, not yet shown.
std::unique_ptr<QMessageBox> MakeMessageBox(QWidget* parent, const std::string& text,
                                            shell::MessageIcon icon, shell::MessageButtons buttons,
                                            int baseTextHeight);

// The script step `message-snapshot FILE.png`: the last message box of the
// run as the window would have shown it.
std::unique_ptr<shell::Feature> MakeMessageSnapshotFeature(MainWindow& window);

}  // namespace satwalk::app
