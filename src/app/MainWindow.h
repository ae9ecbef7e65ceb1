// The main window: the screen area painted from an off-screen image, the
// soft-key bar with the "视图" and "菜单" drop-downs, the hardware keys, the
// program timers and the receiver's data and time messages.
#pragma once

#include <QImage>
#include <QMessageBox>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Dialogs.h"
#include "ScreenAreaHost.h"
#include "Shell.h"
#include "StateJson.h"

class QMenu;
class QKeyEvent;

namespace satwalk::app {

// What paints the screens into the window's off-screen image, which covers
// the screen area (the client area less the soft-key bar).
class ScreenPainter {
  public:
    // The screen area was made or changed its size.
    virtual void Layout(QSize screenArea, int dpi) = 0;
    // Paints the whole screen area, tool strip included.
    virtual void Paint(QImage& image, const screens::DisplayState& display,
                       const gps::GpsState& fix) = 0;
    // The tool-strip tab under (x, y), or -1.
    virtual int TabAt(int x, int y) const = 0;
    // The alarm cell (0..7) under (x, y), or -1.
    virtual int AlarmCellAt(int x, int y) const = 0;

  protected:
    ~ScreenPainter() = default;
};

class MainWindow : public QWidget, public shell::ShellUi, public shell::qt::ScreenAreaHost {
    Q_OBJECT
  public:
    MainWindow(shell::ProgramSettings& settings, shell::LinkControl& link, shell::AlarmSound& sound,
               shell::OptionsStore* options, QSize clientSize, int dpi);

    shell::Shell& shell() { return shell_; }
    // The painter outlives the window; without one the screen area is white.
    void SetScreenPainter(ScreenPainter* painter);
    int softKeyBarHeight() const { return barHeight_; }
    // "界面缩放" in effect, in percent: the screens lay out at the window's
    // size divided by it and are drawn that much larger.
    int uiScalePercent() const { return scale_; }

    // Where keys go: the open full-screen dialog, a dialog standing in the
    // screen's place, else the window.
    QWidget* KeyTarget();
    // The full-screen dialogs over the window; features open theirs here.
    shell::qt::DialogStack& dialogs() { return dialogs_; }

    // Script mode: message boxes never block; each is logged, printed on
    // standard error and answered (`answer` chooses the next reply).
    void SetScriptMode(bool on) { scriptMode_ = on; }
    bool scriptMode() const { return scriptMode_; }
    void SetNextAnswer(shell::MessageAnswer answer) { nextAnswer_ = answer; }
    // Script mode: the reply that the script's next line gives a box just
    // opened (a question or a notice), if it gives one.
    std::function<std::optional<shell::MessageAnswer>(bool question)> followingAnswer;
    const std::vector<shell::LoggedMessage>& messages() const { return messages_; }
    // Script mode: the box the last message would have been shown in.
    QMessageBox* lastMessageBox() const { return lastBox_.get(); }

    // Opens the drop-down of the left (view) or right (menu) soft key.
    QMenu* OpenDropDown(bool viewMenu);

    // Called when the first frame has been painted.
    std::function<void()> onFirstFrame;
    // Backlight hold, set by the program.
    std::function<void(bool)> onBacklight;
    // Track sampling (timer 1027).

  public slots:
    // The receiver's messages, called while the reader thread waits.
    void HandleGpsData();  // WM_GPS_DATA
    void HandleGpsTime();  // WM_GPS_TIME

  public:
    // shell::ShellUi
    shell::MessageAnswer ShowMessage(const std::string& text, shell::MessageIcon icon,
                                     shell::MessageButtons buttons) override;
    void Repaint() override;
    void RequestRepaint() override;
    void StartBlinkTimer() override { blinkTimer_.start(); }
    void StopBlinkTimer() override { blinkTimer_.stop(); }
    bool StartClockTimer() override;
    void SetBacklightHold(bool hold) override;
    void CloseWindow() override;
    void ShowStatus(const std::string& status) override;

    // shell::qt::ScreenAreaHost
    QWidget* HostWidget() override { return this; }
    int BaseTextHeight() const override {
        return common::BaseTextHeightForDpi(dpi_) * scale_ / 100;
    }
    void SetScreenAreaWidget(QWidget* widget) override;
    bool HandleProgramKey(QKeyEvent* event) override;

  protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void keyPressEvent(QKeyEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;
    void mouseReleaseEvent(QMouseEvent*) override;
    void closeEvent(QCloseEvent*) override;

  private:
    void PaintScreenImage();
    void PaintSoftKeyBar(QPainter& p);
    void PopulateMenu(QMenu* menu, const shell::MenuEntry& entry);
    QRect ScreenArea() const;
    // The screen area in the screens' own pixels.
    QSize LogicalScreenSize() const;
    QPoint ToScreenPixels(QPoint widgetPoint) const;
    // Takes the scale the setting and the window's size give; true when it
    // changed (the bar, the text height and the layout follow).
    bool ApplyScale();

    shell::Shell shell_;
    shell::qt::DialogStack dialogs_;
    ScreenPainter* painter_ = nullptr;
    QWidget* screenAreaWidget_ = nullptr;  // a dialog in the screen's place
    QImage screenImage_;
    int dpi_;
    int barHeight_;
    int scale_ = 100;
    std::uint32_t scaleSetting_ = 0;
    bool firstFramePainted_ = false;
    bool scriptMode_ = false;
    bool closing_ = false;
    bool stylusOnScreen_ = false;  // a press on the screen area is held
    std::optional<shell::MessageAnswer> nextAnswer_;
    std::vector<shell::LoggedMessage> messages_;
    std::unique_ptr<QMessageBox> lastBox_;
    QTimer blinkTimer_;
    QTimer clockTimer_;  // 1028
};

}  // namespace satwalk::app
