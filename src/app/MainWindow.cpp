#include "MainWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>

#include <cstdio>

#include "CommandIds.h"
#include "MessageBoxes.h"
#include "Screens.h"
#include "Strings.h"
#include "UiScale.h"

namespace satwalk::app {

namespace {

// The style's own measures that do not follow the text: scroll bars, check
// boxes and radio buttons, drawn that much larger at a larger "界面缩放" so
// that they stay in proportion with the text and as easy to hit.
class ScaledControlsStyle final : public QProxyStyle {
  public:
    explicit ScaledControlsStyle(QStyle* base) : QProxyStyle(base) {}
    int percent = 100;

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        const int base = QProxyStyle::pixelMetric(metric, option, widget);
        switch (metric) {
            case PM_ScrollBarExtent:
            case PM_ScrollBarSliderMin:
            case PM_IndicatorWidth:
            case PM_IndicatorHeight:
            case PM_ExclusiveIndicatorWidth:
            case PM_ExclusiveIndicatorHeight:
                return base * percent / 100;
            default:
                return base;
        }
    }
};

// Installed the first time the program is drawn larger than 100 %, so that
// the handheld's sizes keep the style exactly as it is.
void ScaleControls(int percent) {
    static ScaledControlsStyle* style = nullptr;
    if (style != nullptr) {
        // Read as the dialogs lay out: those opened from now on follow.
        style->percent = percent;
        return;
    }
    if (percent == 100)
        return;
    style = new ScaledControlsStyle(QStyleFactory::create(QApplication::style()->name()));
    style->percent = percent;
    QApplication::setStyle(style);  // the application owns it
}

}  // namespace

using shell::Key;
using shell::MessageAnswer;
using shell::MessageButtons;
using shell::MessageIcon;

MainWindow::MainWindow(shell::ProgramSettings& settings, shell::LinkControl& link,
                       shell::AlarmSound& sound, shell::OptionsStore* options, QSize clientSize,
                       int dpi)
    : shell_(settings, link, *this, sound, options),
      dialogs_(*this, common::BaseTextHeightForDpi(dpi)),
      dpi_(dpi) {
    setWindowTitle(QString::fromUtf8(common::LoadString(common::kStrCaption)));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    scaleSetting_ = settings.uiScale;
    scale_ =
        shell::UiScalePercentForClient(scaleSetting_, clientSize.width(), clientSize.height(), dpi);
    barHeight_ = shell::SoftKeyBarHeight(dpi) * scale_ / 100;
    dialogs_.SetBaseTextHeight(BaseTextHeight());
    resize(clientSize.width(), clientSize.height() + barHeight_);
    ApplyScale();
    shell_.version = SATWALK_VERSION;
    shell_.features().Add(dialogs_);
    dialogs_.SetArea(ScreenArea());
    dialogs_.onChange = [this] {
        // The soft keys change with the dialog; with none left, the keys go
        // back to what stands in the screen area.
        if (dialogs_.empty())
            SetScreenAreaWidget(screenAreaWidget_);
        update();
    };

    blinkTimer_.setInterval(1000);
    connect(&blinkTimer_, &QTimer::timeout, this, [this] { shell_.OnBlinkTick(); });
    clockTimer_.setInterval(1000);
    connect(&clockTimer_, &QTimer::timeout, this, [this] { shell_.OnClockTick(); });
}

void MainWindow::SetScreenPainter(ScreenPainter* painter) {
    painter_ = painter;
    if (painter_ != nullptr)
        painter_->Layout(LogicalScreenSize(), dpi_);
}

QRect MainWindow::ScreenArea() const {
    return QRect(0, 0, width(), std::max(1, height() - barHeight_));
}

QSize MainWindow::LogicalScreenSize() const {
    const QSize area = ScreenArea().size();
    return QSize(std::max(1, area.width() * 100 / scale_),
                 std::max(1, area.height() * 100 / scale_));
}

QPoint MainWindow::ToScreenPixels(QPoint p) const {
    return QPoint(p.x() * 100 / scale_, p.y() * 100 / scale_);
}

bool MainWindow::ApplyScale() {
    scaleSetting_ = shell_.settings().uiScale;
    const int percent = shell::UiScalePercent(scaleSetting_, width(), height(), dpi_);
    // The tool strips are bitmaps of fixed size: the window never gets
    // smaller than they are at the scale chosen (automatic scaling never
    // goes below 100 %).
    const int fixed = scaleSetting_ == shell::kUiScaleAuto ? 100 : percent;
    const screens::Size least = screens::MinimumFrameSize(common::BaseTextHeightForDpi(dpi_));
    setMinimumSize(least.width * fixed / 100,
                   (least.height + shell::SoftKeyBarHeight(dpi_)) * fixed / 100);
    ScaleControls(percent);
    if (percent == scale_)
        return false;
    scale_ = percent;
    barHeight_ = shell::SoftKeyBarHeight(dpi_) * scale_ / 100;
    dialogs_.SetBaseTextHeight(BaseTextHeight());
    if (painter_ != nullptr)
        painter_->Layout(LogicalScreenSize(), dpi_);
    if (screenAreaWidget_ != nullptr)
        screenAreaWidget_->setGeometry(ScreenArea());
    dialogs_.SetArea(ScreenArea());
    return true;
}

// ---- receiver messages ----

void MainWindow::HandleGpsData() {
    shell_.OnGpsData();
}
void MainWindow::HandleGpsTime() {
    shell_.OnGpsTime();
}

// ---- ShellUi ----

MessageAnswer MainWindow::ShowMessage(const std::string& text, MessageIcon icon,
                                      MessageButtons buttons) {
    const bool question = buttons == MessageButtons::YesNo;
    if (scriptMode_) {
        messages_.push_back({text, icon});
        lastBox_ = MakeMessageBox(this, text, icon, buttons, BaseTextHeight());
        std::fprintf(stderr, "satwalk: message (%s): %s\n", shell::MessageIconName(icon),
                     text.c_str());
        MessageAnswer answer = question ? MessageAnswer::Yes : MessageAnswer::Ok;
        if (nextAnswer_) {
            answer = *nextAnswer_;
            nextAnswer_.reset();
        } else if (followingAnswer) {
            answer = followingAnswer(question).value_or(answer);
        }
        return answer;
    }
    const std::unique_ptr<QMessageBox> box =
        MakeMessageBox(this, text, icon, buttons, BaseTextHeight());
    const int result = box->exec();
    if (!question)
        return MessageAnswer::Ok;
    return result == QMessageBox::Yes ? MessageAnswer::Yes : MessageAnswer::No;
}

void MainWindow::Repaint() {
    // A new "界面缩放" from the options comes into effect here.
    if (scaleSetting_ != shell_.settings().uiScale)
        ApplyScale();
    // Invalidate and update at once.
    if (isVisible())
        repaint();
}

void MainWindow::RequestRepaint() {
    update();
}

bool MainWindow::StartClockTimer() {
    clockTimer_.stop();
    clockTimer_.start();
    return clockTimer_.isActive();
}

void MainWindow::SetBacklightHold(bool hold) {
    if (onBacklight)
        onBacklight(hold);
}

void MainWindow::CloseWindow() {
    closing_ = true;
    blinkTimer_.stop();
    clockTimer_.stop();
    close();
    QApplication::quit();
}

void MainWindow::SetScreenAreaWidget(QWidget* widget) {
    if (screenAreaWidget_ != nullptr && screenAreaWidget_ != widget)
        screenAreaWidget_->hide();
    screenAreaWidget_ = widget;
    if (widget != nullptr) {
        widget->setGeometry(ScreenArea());
        widget->show();
        if (dialogs_.empty()) {
            widget->raise();
            widget->setFocus();
        }
    } else if (dialogs_.empty()) {
        setFocus();
    }
}

void MainWindow::ShowStatus(const std::string& status) {
    const QString caption = QString::fromUtf8(common::LoadString(common::kStrCaption));
    setWindowTitle(status.empty() ? caption : caption + " - " + QString::fromUtf8(status.c_str()));
}

QWidget* MainWindow::KeyTarget() {
    if (QWidget* dialog = dialogs_.KeyTarget())
        return dialog;
    if (screenAreaWidget_ != nullptr)
        return screenAreaWidget_;
    return this;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // Closing the window is the exit command, with its confirmation.
    if (closing_) {
        event->accept();
        return;
    }
    event->ignore();
    shell_.OnCommand(shell::cmd::kExit);
}

// ---- painting ----

void MainWindow::PaintScreenImage() {
    // Device pixels of the screen area, painted in the screens' own pixels.
    const qreal ratio = devicePixelRatioF() * scale_ / 100.0;
    const QSize size = ScreenArea().size() * devicePixelRatioF();
    if (screenImage_.size() != size || screenImage_.devicePixelRatio() != ratio) {
        screenImage_ = QImage(size, QImage::Format_RGB32);
        screenImage_.setDevicePixelRatio(ratio);
    }
    if (painter_ != nullptr) {
        painter_->Paint(screenImage_, shell_.display(), shell_.fix());
    } else {
        screenImage_.fill(Qt::white);
    }
}

void MainWindow::PaintSoftKeyBar(QPainter& p) {
    const int top = height() - barHeight_;
    const QRect bar(0, top, width(), barHeight_);
    QLinearGradient g(bar.topLeft(), bar.bottomLeft());
    g.setColorAt(0, QColor(70, 78, 92));
    g.setColorAt(1, QColor(28, 32, 40));
    p.fillRect(bar, g);
    p.setPen(QColor(110, 118, 132));
    p.drawLine(width() / 2, top + barHeight_ / 5, width() / 2, top + barHeight_ * 4 / 5);
    QFont f = font();
    f.setPixelSize(std::max(8, barHeight_ * 9 / 20));
    f.setBold(true);
    p.setFont(f);
    // An open dialog's soft keys, or a mode's plain buttons (reference-point
    // placement), stand in for the two drop-downs.
    QString texts[2] = {QString::fromUtf8(common::LoadString(common::kStrView)),
                        QString::fromUtf8(common::LoadString(common::kStrMenu))};
    bool enabled[2] = {true, true};
    if (const shell::qt::FullScreenDialog* dialog = dialogs_.top()) {
        for (int i = 0; i < 2; ++i) {
            texts[i] = dialog->softKey(i).text;
            enabled[i] = dialog->softKey(i).enabled;
        }
    } else if (shell_.softKeys().Plain()) {
        texts[0] = QString::fromUtf8(shell_.softKeys().left.c_str());
        texts[1] = QString::fromUtf8(shell_.softKeys().right.c_str());
    }
    const QRect halves[2] = {QRect(0, top, width() / 2, barHeight_),
                             QRect(width() / 2, top, width() - width() / 2, barHeight_)};
    // A key's text longer than its half ends in "…" rather than running
    // under the other key.
    const QFontMetrics metrics(f);
    for (int i = 0; i < 2; ++i) {
        p.setPen(enabled[i] ? QColor(Qt::white) : QColor(130, 136, 148));
        const QRect room = halves[i].adjusted(barHeight_ / 5, 0, -barHeight_ / 5, 0);
        p.drawText(room, Qt::AlignCenter,
                   metrics.elidedText(texts[i], Qt::ElideRight, room.width()));
    }
}

void MainWindow::paintEvent(QPaintEvent*) {
    PaintScreenImage();
    QPainter p(this);
    p.drawImage(QRectF(ScreenArea()), screenImage_);  // the one copy to the window
    PaintSoftKeyBar(p);
    p.end();
    if (!firstFramePainted_) {
        firstFramePainted_ = true;
        if (onFirstFrame)
            QTimer::singleShot(0, this, onFirstFrame);
    }
}

void MainWindow::resizeEvent(QResizeEvent*) {
    ApplyScale();
    if (painter_ != nullptr)
        painter_->Layout(LogicalScreenSize(), dpi_);
    if (screenAreaWidget_ != nullptr)
        screenAreaWidget_->setGeometry(ScreenArea());
    dialogs_.SetArea(ScreenArea());
    update();
}

// ---- input ----

void MainWindow::keyPressEvent(QKeyEvent* event) {
    // A dialog holds the keys while it is open, as on the handheld.
    if (!dialogs_.empty())
        return;
    if (!HandleProgramKey(event))
        QWidget::keyPressEvent(event);
}

namespace {

// Qt's keys for the handheld's hardware keys; 0 to 9 follow their digits.
constexpr struct {
    int qtKey;
    Key key;
} kKeyMap[] = {
    {Qt::Key_Asterisk, Key::Star},  {Qt::Key_F8, Key::Star},      {Qt::Key_Left, Key::Left},
    {Qt::Key_Right, Key::Right},    {Qt::Key_Up, Key::Up},        {Qt::Key_Down, Key::Down},
    {Qt::Key_Return, Key::Return},  {Qt::Key_Enter, Key::Return}, {Qt::Key_Escape, Key::Escape},
    {Qt::Key_Backspace, Key::Back}, {Qt::Key_Back, Key::Back},
};

}  // namespace

bool MainWindow::HandleProgramKey(QKeyEvent* event) {
    std::optional<Key> key;
    const int k = event->key();
    if (k >= Qt::Key_0 && k <= Qt::Key_9)
        key = static_cast<Key>(static_cast<int>(Key::Digit0) + (k - Qt::Key_0));
    for (const auto& entry : kKeyMap) {
        if (entry.qtKey == k)
            key = entry.key;
    }
    if (!key)
        return false;
    shell_.OnKeyDown(*key);
    return true;
}

void MainWindow::mousePressEvent(QMouseEvent* event) {
    const QPoint pos = event->position().toPoint();
    if (pos.y() >= height() - barHeight_) {
        const shell::SoftKeys& keys = shell_.softKeys();
        if (!dialogs_.empty()) {
            dialogs_.PressSoftKey(pos.x() < width() / 2 ? 0 : 1);
        } else if (keys.Plain()) {
            const int id = pos.x() < width() / 2 ? keys.leftCommand : keys.rightCommand;
            if (id != 0)
                shell_.OnCommand(id);
        } else {
            OpenDropDown(pos.x() < width() / 2);
        }
        return;
    }
    // The tool strip's tabs and the alarm cells take a tap first; the rest
    // of the screen belongs to the map and its buttons.
    const QPoint at = ToScreenPixels(pos);
    if (painter_ != nullptr) {
        if (const int tab = painter_->TabAt(at.x(), at.y()); tab >= 0)
            shell_.OnTabTapped(tab);
        else if (const int cell = painter_->AlarmCellAt(at.x(), at.y()); cell >= 0)
            shell_.OnAlarmCellTap(cell);
        else
            stylusOnScreen_ = shell_.features().NotifyStylusDown(at.x(), at.y());
    }
}

void MainWindow::mouseMoveEvent(QMouseEvent* event) {
    if (stylusOnScreen_) {
        const QPoint pos = ToScreenPixels(event->position().toPoint());
        shell_.features().NotifyStylusMove(pos.x(), pos.y());
    }
}

void MainWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (stylusOnScreen_) {
        stylusOnScreen_ = false;
        const QPoint pos = ToScreenPixels(event->position().toPoint());
        shell_.features().NotifyStylusUp(pos.x(), pos.y());
    }
}

void MainWindow::PopulateMenu(QMenu* menu, const shell::MenuEntry& entry) {
    QActionGroup* group = nullptr;
    for (const shell::MenuEntry& e : entry.items) {
        if (e.IsSubmenu()) {
            group = nullptr;
            QMenu* sub = menu->addMenu(QString::fromUtf8(e.text.c_str()));
            sub->setFont(menu->font());  // a pop-up does not take its parent's font
            PopulateMenu(sub, e);
            continue;
        }
        // Qt shows the shortcut after a tab at the right edge, as the
        // handheld did.
        QAction* a = menu->addAction(QString::fromUtf8(e.text.c_str()));
        a->setEnabled(e.enabled);
        if (e.checkable) {
            a->setCheckable(true);
            a->setChecked(e.checked);
            if (e.radio) {
                if (group == nullptr)
                    group = new QActionGroup(menu);
                group->addAction(a);
            } else {
                group = nullptr;
            }
        } else {
            group = nullptr;
        }
        const int id = e.id;
        connect(
            a, &QAction::triggered, this, [this, id] { shell_.OnCommand(id); },
            Qt::QueuedConnection);
    }
}

QMenu* MainWindow::OpenDropDown(bool viewMenu) {
    // Rebuilt on every opening: start/stop text, marks and greying follow
    // the state of this moment.
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QFont f = menu->font();
    f.setPixelSize(std::max(9, barHeight_ * 2 / 5));  // readable at the screen's density
    menu->setFont(f);
    PopulateMenu(menu, viewMenu ? shell_.BuildViewMenu() : shell_.BuildMainMenu());
    const QSize hint = menu->sizeHint();
    const int x = viewMenu ? 0 : width() - hint.width();
    const QPoint at = mapToGlobal(QPoint(std::max(0, x), height() - barHeight_ - hint.height()));
    connect(menu, &QMenu::aboutToHide, menu, &QMenu::close);
    menu->popup(at);
    return menu;
}

}  // namespace satwalk::app
