// Full-screen dialogs: a dialog covers the screen area of the main window
// (everything above the soft-key bar), with its caption across the top, an
// optional OK button beside it, its controls below, and its two soft keys in
// the window's soft-key bar while it is open. Dialogs open without blocking:
// DialogStack::Open returns at once and the dialog calls `onFinished` when
// it ends, so the receiver's data, the timers and a running script carry on
// while it is open; no nested event loop runs anywhere.
//
// Each control is declared with its resource id. The state dump of script
// mode describes the top dialog through those ids (`dialog`), and the script
// steps `set ID VALUE`, `choose PATH` and `answer ok|cancel` reach it through
// the DialogStack, which every feature gets from the window.
//
// Example: a dialog with an edit and a check box, opened by a command; OK
// hands the values to the feature.
//
//   class NameDialog : public FullScreenDialog {
//     public:
//       explicit NameDialog(DialogStack& stack) : FullScreenDialog(stack, 120, "名称") {
//           auto* form = new QFormLayout(body());
//           form->addRow(AddLabel(1201, "名称:"), name_ = AddEdit(1202));
//           form->addRow(AddCheckBox(1203, "显示"));
//       }
//       QLineEdit* name_;
//   };
//   registry.AddCommand(41000, {[&stack](int) {
//       auto* d = new NameDialog(stack);  // the stack owns it until it ends
//       d->onFinished = [d](DialogResult r) { if (r == DialogResult::Ok) Use(d->name_->text()); };
//       stack.Open(d);
//   }, {}});
//
// While it is open `state` shows "dialog":{"resourceId":120,"caption":"名称",
// "softKeys":["确定","取消"],"controls":[{"id":1201,"kind":"label","text":"名称:",
// "value":null,"enabled":true},{"id":1202,"kind":"edit","text":"","value":"",...},
// {"id":1203,"kind":"checkBox","text":"显示","value":0,...}]}; "dialog":null
// when none is open. `set 1202 西湖`, `set 1203 1`, `answer ok` drive it. The
// dialog's widgets stay alive during `onFinished` and go afterwards.
//
// A control changed by `set` emits the widget's own change signal
// (textChanged, toggled, currentIndexChanged, currentRowChanged), never a
// click: connect a dialog's rules to those.
//
// Fonts: the dialog sets its font (the screens' CJK family at the density's
// size) and its controls inherit it. Qt gives a control with a style sheet
// of its own the application's font once the dialog has a sheet too, so
// put style rules in one sheet on the dialog.
#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "DialogState.h"
#include "Features.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace satwalk::shell::qt {

class DialogStack;

// A widget property: the widget shortens a text too long for it by itself,
// so the state's `clipped` leaves it out.
inline constexpr const char* kElidesItsText = "elidesItsText";

enum class DialogResult { Ok, Cancel };

// One of the two soft keys of a dialog's menu bar.
struct SoftKey {
    QString text;
    std::function<void()> run;
    bool enabled = true;
    int command = 0;  // the menu bar's command id: a script's `command` presses it
};

class FullScreenDialog : public QWidget {
  public:
    // `titleOk` puts an OK button beside the caption (for dialogs whose soft
    // keys do something else). The soft keys start as "确定" and "取消".
    FullScreenDialog(DialogStack& stack, int resourceId, const QString& caption,
                     bool titleOk = false);

    int resourceId() const { return resourceId_; }
    QString caption() const;
    // Where the dialog lays out its controls: below the caption.
    QWidget* body() const { return body_; }
    DialogStack& stack() const { return stack_; }
    // The program's text height at this density (30 at 192 dpi).
    int baseTextHeight() const { return baseTextHeight_; }

    // Controls by resource id, made as children of body() with the dialog's
    // font; the caller places them in its layout.
    QLabel* AddLabel(int id, const QString& text);
    QGroupBox* AddGroup(int id, const QString& title);
    QLineEdit* AddEdit(int id);
    QCheckBox* AddCheckBox(int id, const QString& text);
    QComboBox* AddList(int id, const QStringList& items);
    // A widget made elsewhere: a QLabel, QGroupBox, QLineEdit, QCheckBox or
    // QAbstractButton, QComboBox, QListWidget or QTreeWidget (its rows'
    // first column) for the kinds those stand for.
    void AddControl(int id, ControlKind kind, QWidget* widget);

    void SetSoftKeys(SoftKey left, SoftKey right);
    const SoftKey& softKey(int index) const { return softKeys_[index == 0 ? 0 : 1]; }
    void SetSoftKeyEnabled(int index, bool enabled);

    // OK (the title's button, the soft key, `answer ok`): ends the dialog
    // with Ok when Accepting() agrees.
    void Accept();
    // Cancel (soft key, Escape, `answer cancel`).
    void Reject();
    bool finished() const { return finished_; }

    // The script's `set`: false with `error` when the control is unknown or
    // the value does not fit it.
    bool SetControl(int id, std::string_view value, std::string& error);
    // The script's `choose`: only the file browser takes it.
    virtual bool Choose(const std::string& path, std::string& error);

    DialogState State() const;
    // Members of the state's `dialog` beside the controls (the file
    // browser's folder and rows).
    virtual void WriteExtraState(common::JsonMembers& members) const { (void)members; }

    // Called once when the dialog ends, after it has left the stack; the
    // dialog is deleted afterwards.
    std::function<void(DialogResult)> onFinished;

  protected:
    // OK was chosen: true ends the dialog, false keeps it open.
    virtual bool Accepting() { return true; }
    // Escape and the Back key cancel.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    struct Control {
        int id;
        ControlKind kind;
        QWidget* widget;
    };
    void Finish(DialogResult result);

    DialogStack& stack_;
    int resourceId_;
    int baseTextHeight_;
    QLabel* caption_;
    QWidget* body_;
    std::vector<Control> controls_;
    SoftKey softKeys_[2];
    bool finished_ = false;
};

// The open dialogs over one window, the topmost last. A feature of its own:
// it adds `dialog` to the state and the script steps `set` and `choose`.
class DialogStack final : public Feature {
  public:
    DialogStack(QWidget& window, int baseTextHeight)
        : window_(window), baseTextHeight_(baseTextHeight) {}

    // Shows `dialog` (made with new on this stack) over the screen area and
    // gives it the keys; it deletes itself when it ends.
    void Open(FullScreenDialog* dialog);
    FullScreenDialog* top() const { return open_.empty() ? nullptr : open_.back(); }
    bool empty() const { return open_.empty(); }

    // The screen area, kept by the window as it changes size.
    void SetArea(QRect area);
    QWidget& window() const { return window_; }
    int baseTextHeight() const { return baseTextHeight_; }
    // "界面缩放" changed: the dialogs opened from now on take this height.
    void SetBaseTextHeight(int height) { baseTextHeight_ = height; }

    // Where keys go while a dialog is open (its focused control), or null.
    QWidget* KeyTarget() const;
    // A tap on the left (0) or right (1) half of the soft-key bar.
    void PressSoftKey(int index);
    // The top dialog's soft key whose command is `id`, pressed as a tap
    // would; false when no open dialog has it.
    bool PressCommand(int id);
    // `answer ok|cancel`: false when no dialog is open.
    bool Answer(DialogResult result);

    // Something the window draws changed: the soft keys, or a dialog came or
    // went (the window gives the keys back to what lies below).
    std::function<void()> onChange;

    void Register(FeatureRegistry& registry) override;

  private:
    friend class FullScreenDialog;
    void Closed(FullScreenDialog* dialog);
    void Changed() const {
        if (onChange)
            onChange();
    }

    QWidget& window_;
    int baseTextHeight_;
    QRect area_;
    std::vector<FullScreenDialog*> open_;
};

}  // namespace satwalk::shell::qt
