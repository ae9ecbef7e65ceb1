// What a dialog that stands in the screen's place needs of the main window,
// and nothing more: its parent, the text scale, the screen area and the
// program's hardware keys.
#pragma once

class QKeyEvent;
class QWidget;

namespace satwalk::shell::qt {

class ScreenAreaHost {
  public:
    virtual QWidget* HostWidget() = 0;
    virtual int BaseTextHeight() const = 0;
    // Shows `widget` over the screen area: it follows the window's size and
    // takes the keys. Null gives the screen area back to the screens.
    virtual void SetScreenAreaWidget(QWidget* widget) = 0;
    // Runs one of the program's hardware keys; false when the key is not one.
    virtual bool HandleProgramKey(QKeyEvent* event) = 0;

  protected:
    ~ScreenAreaHost() = default;
};

}  // namespace satwalk::shell::qt
