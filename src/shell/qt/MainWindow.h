// The main window: the screen area painted from an off-screen image, the
// soft-key bar with the "视图" and "菜单" drop-downs, the hardware keys, the
// program timers and the receiver's data and time messages.
#pragma once

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

#include "ScreenView.h"
#include "Shell.h"
#include "StateJson.h"

class QMenu;

namespace satwalk::app {

class MainWindow : public QWidget, public shell::ShellUi {
    Q_OBJECT
  public:
    // Paints one screen into the off-screen image. The image covers the
    // screen area only; view gives its rectangle and what is shown.
    using ScreenPainter = std::function<void(QPainter&, const shell::ScreenView&)>;

    MainWindow(shell::ProgramSettings& settings, shell::LinkControl& link, shell::AlarmSound& sound,
               shell::OptionsStore* options, QSize clientSize, int dpi);

    shell::Shell& shell() { return shell_; }
    void SetScreenPainter(ScreenPainter painter) { painter_ = std::move(painter); }
    shell::ScreenView CurrentView() const;
    int softKeyBarHeight() const { return barHeight_; }

    // Script mode: message boxes never block; each is logged, printed on
    // standard error and answered (`answer` chooses the next reply).
    void SetScriptMode(bool on) { scriptMode_ = on; }
    void SetNextAnswer(shell::MessageAnswer answer) { nextAnswer_ = answer; }
    const std::vector<shell::LoggedMessage>& messages() const { return messages_; }

    // Opens the drop-down of the left (view) or right (menu) soft key.
    QMenu* OpenDropDown(bool viewMenu);

    // Called when the first frame has been painted.
    std::function<void()> onFirstFrame;
    // Backlight hold, set by the program.
    std::function<void(bool)> onBacklight;
    // Track sampling, once the track log exists.
    std::function<void()> onTrackTick;

  public slots:
    void HandleGpsData();  // WM_GPS_DATA
    void HandleGpsTime();  // WM_GPS_TIME

  public:
    // shell::ShellUi
    shell::MessageAnswer ShowMessage(const std::string& text, shell::MessageIcon icon,
                                     shell::MessageButtons buttons) override;
    void Repaint() override;
    void StartBlinkTimer() override { blinkTimer_.start(); }
    void StopBlinkTimer() override { blinkTimer_.stop(); }
    bool StartTrackTimer(std::uint32_t periodMs) override;
    void StopTrackTimer() override { trackTimer_.stop(); }
    bool TrackTimerRunning() const override { return trackTimer_.isActive(); }
    bool StartClockTimer() override;
    void SetBacklightHold(bool hold) override;
    void CloseWindow() override;

  protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void keyPressEvent(QKeyEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void closeEvent(QCloseEvent*) override;

  private:
    void PaintScreenImage();
    void PaintSoftKeyBar(QPainter& p);
    void PopulateMenu(QMenu* menu, const shell::MenuEntry& entry);

    shell::Shell shell_;
    ScreenPainter painter_;
    QImage screenImage_;
    int dpi_;
    int barHeight_;
    bool firstFramePainted_ = false;
    bool scriptMode_ = false;
    bool closing_ = false;
    std::optional<shell::MessageAnswer> nextAnswer_;
    std::vector<shell::LoggedMessage> messages_;
    QTimer blinkTimer_;
    QTimer clockTimer_;  // 1028
    QTimer trackTimer_;  // 1027
};

// The stand-in screen until the instrument screens slot in: white, with the
// screen's name and the main readings.
void PaintPlaceholderScreen(QPainter& p, const shell::ScreenView& view);

}  // namespace satwalk::app
