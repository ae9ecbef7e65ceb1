#include "Dialogs.h"

#include <QCoreApplication>
#include <QPointer>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProxyStyle>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <charconv>
#include <map>

#include "QtCanvas.h"
#include "Strings.h"

namespace satwalk::shell::qt {

namespace {

QString Text(int id) {
    return QString::fromUtf8(common::LoadString(id));
}

std::string Std(const QString& text) {
    return text.toStdString();
}

// Check boxes as large as the text beside them, for a finger. A style and
// not a style sheet: a widget with a style sheet no longer takes the font
// its dialog sets. One per size, owned by the application so that it goes
// with it.
class IndicatorStyle final : public QProxyStyle {
  public:
    static QStyle* For(int size) {
        static std::map<int, QPointer<IndicatorStyle>> styles;
        QPointer<IndicatorStyle>& style = styles[size];
        if (style.isNull()) {
            style = new IndicatorStyle(size);
            style->setParent(QCoreApplication::instance());
        }
        return style.data();
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        if (metric == PM_IndicatorWidth || metric == PM_IndicatorHeight ||
            metric == PM_ExclusiveIndicatorWidth || metric == PM_ExclusiveIndicatorHeight) {
            return size_;
        }
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

  private:
    explicit IndicatorStyle(int size) : size_(size) {}
    int size_;
};

}  // namespace

FullScreenDialog::FullScreenDialog(DialogStack& stack, int resourceId, const QString& caption,
                                   bool titleOk)
    : QWidget(&stack.window()),
      stack_(stack),
      resourceId_(resourceId),
      baseTextHeight_(stack.baseTextHeight()),
      caption_(new QLabel(caption, this)),
      body_(new QWidget(this)) {
    hide();
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::white);
    pal.setColor(QPalette::Base, Qt::white);
    pal.setColor(QPalette::WindowText, Qt::black);
    pal.setColor(QPalette::Text, Qt::black);
    setPalette(pal);
    setFocusPolicy(Qt::StrongFocus);

    const int b = baseTextHeight_;
    QFont font(screens::ScreenFontFamily());
    font.setPixelSize(std::max(9, (2 * b) / 3));
    font.setWeight(QFont::Normal);
    setFont(font);
    QFont titleFont = font;
    titleFont.setPixelSize(std::max(10, (4 * b) / 5));
    titleFont.setBold(true);
    caption_->setFont(titleFont);

    caption_->setStyleSheet(QStringLiteral("color: rgb(34,89,172);"));

    // The caption across the top with a rule under it, as the handheld's
    // full-screen dialogs have it; the OK button at its right end.
    auto* layout = new QVBoxLayout(this);
    const int m = std::max(2, b / 4);
    layout->setContentsMargins(m, m / 2, m, m);
    layout->setSpacing(m / 2);
    auto* top = new QHBoxLayout;
    top->addWidget(caption_, 1);
    if (titleOk) {
        auto* ok = new QPushButton(Text(common::kStrOk), this);
        ok->setFocusPolicy(Qt::NoFocus);
        ok->setMinimumWidth(3 * b);
        connect(ok, &QPushButton::clicked, this, [this] { Accept(); });
        top->addWidget(ok);
    }
    layout->addLayout(top);
    auto* rule = new QFrame(this);
    rule->setFrameShape(QFrame::HLine);
    rule->setFixedHeight(std::max(1, b / 15));
    rule->setStyleSheet(QStringLiteral("background: rgb(34,89,172); border: none;"));
    layout->addWidget(rule);
    layout->addWidget(body_, 1);

    softKeys_[0] = {Text(common::kStrOk), [this] { Accept(); }, true, common::kStrOk};
    softKeys_[1] = {Text(common::kStrCancel), [this] { Reject(); }, true, common::kStrCancel};
}

QString FullScreenDialog::caption() const {
    return caption_->text();
}

QLabel* FullScreenDialog::AddLabel(int id, const QString& text) {
    auto* w = new QLabel(text, body_);
    AddControl(id, ControlKind::Label, w);
    return w;
}

QGroupBox* FullScreenDialog::AddGroup(int id, const QString& title) {
    auto* w = new QGroupBox(title, body_);
    AddControl(id, ControlKind::Group, w);
    return w;
}

QLineEdit* FullScreenDialog::AddEdit(int id) {
    auto* w = new QLineEdit(body_);
    AddControl(id, ControlKind::Edit, w);
    return w;
}

QCheckBox* FullScreenDialog::AddCheckBox(int id, const QString& text) {
    auto* w = new QCheckBox(text, body_);
    w->setStyle(IndicatorStyle::For(std::max(10, (2 * baseTextHeight_) / 3)));
    AddControl(id, ControlKind::CheckBox, w);
    return w;
}

QComboBox* FullScreenDialog::AddList(int id, const QStringList& items) {
    auto* w = new QComboBox(body_);
    w->addItems(items);
    AddControl(id, ControlKind::List, w);
    return w;
}

void FullScreenDialog::AddControl(int id, ControlKind kind, QWidget* widget) {
    controls_.push_back({id, kind, widget});
}

void FullScreenDialog::SetSoftKeys(SoftKey left, SoftKey right) {
    softKeys_[0] = std::move(left);
    softKeys_[1] = std::move(right);
    stack_.Changed();
}

void FullScreenDialog::SetSoftKeyEnabled(int index, bool enabled) {
    SoftKey& key = softKeys_[index == 0 ? 0 : 1];
    if (key.enabled != enabled) {
        key.enabled = enabled;
        stack_.Changed();
    }
}

void FullScreenDialog::Accept() {
    if (!finished_ && Accepting())
        Finish(DialogResult::Ok);
}

void FullScreenDialog::Reject() {
    if (!finished_)
        Finish(DialogResult::Cancel);
}

void FullScreenDialog::Finish(DialogResult result) {
    finished_ = true;
    hide();
    stack_.Closed(this);
    if (onFinished)
        onFinished(result);
    deleteLater();
}

void FullScreenDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back) {
        Reject();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool FullScreenDialog::Choose(const std::string&, std::string& error) {
    error = "choose needs the file browser";
    return false;
}

namespace {

// The entries of a list control and its selected row.
QStringList ListItems(QWidget* w, int& selected) {
    QStringList items;
    selected = -1;
    if (auto* combo = qobject_cast<QComboBox*>(w)) {
        for (int i = 0; i < combo->count(); ++i) items << combo->itemText(i);
        selected = combo->currentIndex();
    } else if (auto* list = qobject_cast<QListWidget*>(w)) {
        for (int i = 0; i < list->count(); ++i) items << list->item(i)->text();
        selected = list->currentRow();
    } else if (auto* tree = qobject_cast<QTreeWidget*>(w)) {
        for (int i = 0; i < tree->topLevelItemCount(); ++i) items << tree->topLevelItem(i)->text(0);
        selected = tree->indexOfTopLevelItem(tree->currentItem());
    }
    return items;
}

}  // namespace

namespace {

// A single-line text wider than the room its widget gives it, or a widget
// that reaches past its dialog's body. Lists and edits elide or scroll by
// themselves and are left out.
bool Clipped(const QWidget* widget, const QWidget* body) {
    if (!widget->isVisibleTo(body->window()) || widget->property(kElidesItsText).toBool())
        return false;
    const QRect box(widget->mapTo(body, QPoint(0, 0)), widget->size());
    if (widget->parentWidget() == body && !body->rect().contains(box))
        return true;
    if (const auto* label = qobject_cast<const QLabel*>(widget)) {
        return !label->wordWrap() && label->fontMetrics().horizontalAdvance(label->text()) >
                                         label->contentsRect().width();
    }
    if (const auto* group = qobject_cast<const QGroupBox*>(widget))
        return group->fontMetrics().horizontalAdvance(group->title()) > group->width();
    if (qobject_cast<const QAbstractButton*>(widget) != nullptr)
        return widget->sizeHint().width() > widget->width();
    return false;
}

}  // namespace

DialogState FullScreenDialog::State() const {
    DialogState state;
    state.resourceId = resourceId_;
    state.caption = Std(caption());
    state.leftSoftKey = Std(softKeys_[0].text);
    state.rightSoftKey = Std(softKeys_[1].text);
    for (const Control& c : controls_) {
        DialogControl d;
        d.id = c.id;
        d.kind = c.kind;
        d.enabled = c.widget->isEnabled();
        if (auto* label = qobject_cast<QLabel*>(c.widget)) {
            d.text = Std(label->text());
        } else if (auto* group = qobject_cast<QGroupBox*>(c.widget)) {
            d.text = Std(group->title());
        } else if (auto* edit = qobject_cast<QLineEdit*>(c.widget)) {
            d.text = Std(edit->text());
        } else if (auto* button = qobject_cast<QAbstractButton*>(c.widget)) {
            d.text = Std(button->text());
            d.checked = button->isChecked();
        } else if (c.kind == ControlKind::List) {
            const QStringList items = ListItems(c.widget, d.selected);
            for (const QString& item : items) d.items.push_back(Std(item));
            if (d.selected >= 0 && d.selected < items.size())
                d.text = Std(items[d.selected]);
        }
        state.controls.push_back(std::move(d));
        if (Clipped(c.widget, body_))
            state.clipped.push_back(c.id);
    }
    if (caption_->fontMetrics().horizontalAdvance(caption_->text()) >
        caption_->contentsRect().width())
        state.clipped.insert(state.clipped.begin(), 0);
    return state;
}

bool FullScreenDialog::SetControl(int id, std::string_view value, std::string& error) {
    const DialogState state = State();
    const DialogControl* control = FindControl(state, id);
    const auto it = std::find_if(controls_.begin(), controls_.end(),
                                 [id](const Control& c) { return c.id == id; });
    if (control == nullptr || it == controls_.end()) {
        error = "dialog " + std::to_string(resourceId_) + " has no control " + std::to_string(id);
        return false;
    }
    ControlValue v;
    if (!ParseControlValue(*control, value, v, error))
        return false;
    QWidget* w = it->widget;
    if (auto* edit = qobject_cast<QLineEdit*>(w)) {
        edit->setText(QString::fromUtf8(v.text.data(), static_cast<qsizetype>(v.text.size())));
    } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
        button->setChecked(v.checked);
    } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
        combo->setCurrentIndex(v.selected);
    } else if (auto* list = qobject_cast<QListWidget*>(w)) {
        list->setCurrentRow(v.selected);
    } else if (auto* tree = qobject_cast<QTreeWidget*>(w)) {
        tree->setCurrentItem(tree->topLevelItem(v.selected));
    }
    return true;
}

// ---- the stack ----

void DialogStack::Open(FullScreenDialog* dialog) {
    open_.push_back(dialog);
    dialog->setGeometry(area_);
    dialog->show();
    dialog->raise();
    // The first control that takes the keys has them, else the dialog.
    dialog->setFocus();
    for (QWidget* w = dialog->nextInFocusChain(); w != dialog && dialog->isAncestorOf(w);
         w = w->nextInFocusChain()) {
        if ((w->focusPolicy() & Qt::TabFocus) != 0 && w->isEnabled() && w->isVisibleTo(dialog)) {
            w->setFocus();
            break;
        }
    }
    Changed();
}

void DialogStack::Closed(FullScreenDialog* dialog) {
    open_.erase(std::remove(open_.begin(), open_.end(), dialog), open_.end());
    if (FullScreenDialog* below = top())
        below->setFocus();
    Changed();
}

void DialogStack::SetArea(QRect area) {
    area_ = area;
    for (FullScreenDialog* d : open_) d->setGeometry(area);
}

QWidget* DialogStack::KeyTarget() const {
    FullScreenDialog* d = top();
    if (d == nullptr)
        return nullptr;
    QWidget* focus = d->focusWidget();
    return focus != nullptr && d->isAncestorOf(focus) ? focus : d;
}

void DialogStack::PressSoftKey(int index) {
    if (FullScreenDialog* d = top()) {
        const SoftKey& key = d->softKey(index);
        if (key.enabled && key.run)
            key.run();
    }
}

bool DialogStack::PressCommand(int id) {
    FullScreenDialog* d = top();
    if (d == nullptr || id == 0)
        return false;
    for (int index : {0, 1}) {
        if (d->softKey(index).command == id) {
            PressSoftKey(index);
            return true;
        }
    }
    return false;
}

bool DialogStack::Answer(DialogResult result) {
    FullScreenDialog* d = top();
    if (d == nullptr)
        return false;
    if (result == DialogResult::Ok)
        d->Accept();
    else
        d->Reject();
    return true;
}

void DialogStack::Register(FeatureRegistry& registry) {
    registry.AddStateSection([this](common::JsonMembers& members) {
        std::string& out = members.Name("dialog");
        FullScreenDialog* d = top();
        if (d == nullptr) {
            out += "null";
            return;
        }
        AppendDialogJson(out, d->State(), [d](common::JsonMembers& m) { d->WriteExtraState(m); });
    });
    // set ID VALUE: the rest of the line, words joined by one space, is the
    // value (an edit's text may hold blanks).
    registry.AddScriptStep(
        "set", [this](const std::vector<std::string>& words, std::string& error) {
            FullScreenDialog* d = top();
            if (d == nullptr) {
                error = "set: no dialog is open";
                return false;
            }
            int id = 0;
            if (words.empty() ||
                std::from_chars(words[0].data(), words[0].data() + words[0].size(), id).ec !=
                    std::errc()) {
                error = "set needs CONTROL_ID VALUE";
                return false;
            }
            std::string value;
            for (std::size_t i = 1; i < words.size(); ++i) value += (i > 1 ? " " : "") + words[i];
            return d->SetControl(id, value, error);
        });
    registry.AddScriptStep("choose",
                           [this](const std::vector<std::string>& words, std::string& error) {
                               FullScreenDialog* d = top();
                               if (d == nullptr || words.empty()) {
                                   error = "choose needs an open file browser and a PATH";
                                   return false;
                               }
                               std::string path = words[0];
                               for (std::size_t i = 1; i < words.size(); ++i)
                                   path += " " + words[i];
                               return d->Choose(path, error);
                           });
}

}  // namespace satwalk::shell::qt
