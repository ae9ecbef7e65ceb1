#include "OptionsDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QStyle>

#include <algorithm>
#include <iterator>

#include "LanguageOption.h"
#include "OptionsFeature.h"
#include "QtCanvas.h"
#include "RelaySetting.h"
#include "Shell.h"
#include "Strings.h"
#include "TrackGpxOption.h"
#include "UiScale.h"

namespace satwalk::shell::qt {

namespace {

QRect ToQRect(const screens::Rect& r) {
    return QRect(r.left, r.top, r.Width(), r.Height());
}

QString Text(int id) {
    return QString::fromUtf8(common::LoadString(id));
}

QString Q(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// A font of the given cell height in pixels: the glyphs take four fifths.
QFont CellFont(int height, bool bold) {
    QFont f(screens::ScreenFontFamily());
    f.setPixelSize(std::max(8, (4 * height) / 5));
    f.setBold(bold);
    return f;
}

}  // namespace

OptionsWidget::OptionsWidget(DialogStack& stack)
    : FullScreenDialog(stack, 182, Text(common::kStrMenuOptions), true) {
    const int b = baseTextHeight();
    const QFont regular = CellFont(OptionsRegularFontHeight(b), false);
    const QFont bold = CellFont(OptionsBoldFontHeight(b), true);

    heading_ = AddLabel(kIdGeneralHeading, Text(common::kStrGeneralHeading));
    autoBluetooth_ = AddCheckBox(kIdAutoBluetooth, Text(common::kStrAutoBluetooth));
    keepAwake_ = AddCheckBox(kIdKeepAwake, Text(common::kStrKeepAwake));
    recordNmea_ = AddCheckBox(kIdRecordNmea, Text(common::kStrRecordNmea));
    storageLabel_ = AddLabel(kIdStorageLabel, Text(common::kStrStorageLabel));
    storage_ = AddList(kIdStorageCombo, {});
    allTalkers_ = AddCheckBox(kIdAllTalkers, Text(common::kStrAllTalkers));
    saveGpxTrack_ = AddCheckBox(kIdSaveGpxTrack, Text(common::kStrSaveGpxTrack));
    relay_ = AddCheckBox(kIdRelay, Text(common::kStrRelayOption));
    languageLabel_ = AddLabel(kIdLanguageLabel, Text(common::kStrLanguageLabel));
    QStringList languages;
    for (const Language& l : kLanguages) languages << QString::fromUtf8(l.name);
    languages << Text(common::kStrLanguageAutomatic);
    language_ = AddList(kIdLanguageCombo, languages);
    relayAddress_ = AddEdit(kIdRelayAddress);
    uiScaleLabel_ =
        AddLabel(kIdUiScaleLabel, QString::fromUtf8(common::LoadString(common::kStrUiScaleOption)));
    QStringList scales;
    for (const std::uint32_t choice : kUiScaleChoices) {
        scales << (choice == kUiScaleAuto
                       ? QString::fromUtf8(common::LoadString(common::kStrUiScaleAuto))
                       : QStringLiteral("%1 %").arg(choice));
    }
    uiScale_ = AddList(kIdUiScale, scales);
    relayAddress_->setFont(regular);
    relayAddress_->setPlaceholderText(QString::fromUtf8(link::kRelayDefaultAddress));

    for (QLabel* l : {heading_, storageLabel_}) {
        l->setFont(bold);
        l->setStyleSheet(QStringLiteral("color: rgb(34,89,172);"));
    }
    const int box = std::max(12, (3 * b) / 5);
    const QString boxStyle =
        QStringLiteral("QCheckBox::indicator { width: %1px; height: %1px; }").arg(box);
    for (QCheckBox* c :
         {autoBluetooth_, keepAwake_, recordNmea_, allTalkers_, relay_, saveGpxTrack_}) {
        c->setFont(regular);
        c->setStyleSheet(boxStyle);
    }
    storage_->setFont(regular);
    uiScaleLabel_->setFont(regular);
    uiScale_->setFont(regular);
    languageLabel_->setFont(regular);
    languageLabel_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    language_->setFont(regular);
    storage_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    storage_->setMinimumContentsLength(6);

    const auto forward = [this](QCheckBox* check, int id) {
        connect(check, &QCheckBox::toggled, this, [this, id](bool checked) {
            if (!syncing_ && onCheck)
                onCheck(id, checked);
        });
    };
    forward(autoBluetooth_, kIdAutoBluetooth);
    forward(keepAwake_, kIdKeepAwake);
    forward(recordNmea_, kIdRecordNmea);
    forward(allTalkers_, kIdAllTalkers);
    forward(relay_, kIdRelay);
    // An address that does not parse is shown in red; OK keeps the old one.
    connect(relayAddress_, &QLineEdit::textChanged, this, [this](const QString& text) {
        const bool ok = link::IsRelayAddress(text.toStdString());
        relayAddress_->setStyleSheet(ok ? QString() : QStringLiteral("color: rgb(200,0,0);"));
        if (!syncing_ && onRelayAddress)
            onRelayAddress(text.toStdString());
    });
    connect(storage_, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (!syncing_ && onStorage)
            onStorage(index);
    });
    // The controls sit where the layout puts them, at every size, on a page
    // that scrolls when the screen is shorter than they need.
    scroll_ = new QScrollArea(body());
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    content_ = new QWidget;
    for (QWidget* w : std::initializer_list<QWidget*>{
             heading_, autoBluetooth_, keepAwake_, recordNmea_, storageLabel_, storage_,
             allTalkers_, saveGpxTrack_, relay_, relayAddress_, uiScaleLabel_, uiScale_,
             languageLabel_, language_})
        w->setParent(content_);
    scroll_->setWidget(content_);
    body()->installEventFilter(this);
}

bool OptionsWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == body() && event->type() == QEvent::Resize)
        LayOut();
    return FullScreenDialog::eventFilter(watched, event);
}

void OptionsWidget::LayOut() {
    scroll_->setGeometry(body()->rect());
    LayOutRows(body()->width());
    // Taller than the screen: the rows leave room for the scroll bar.
    if (content_->height() > body()->height())
        LayOutRows(body()->width() - scroll_->style()->pixelMetric(QStyle::PM_ScrollBarExtent));
}

void OptionsWidget::LayOutRows(int width) {
    const OptionsLayout l = LayOutOptionsDialog(width, baseTextHeight());
    heading_->setGeometry(ToQRect(l.heading));
    autoBluetooth_->setGeometry(ToQRect(l.autoBluetooth));
    keepAwake_->setGeometry(ToQRect(l.keepAwake));
    recordNmea_->setGeometry(ToQRect(l.recordNmea));
    storageLabel_->setGeometry(ToQRect(l.storageLabel));
    storage_->setGeometry(ToQRect(l.storage));
    allTalkers_->setGeometry(ToQRect(l.allTalkers));
    relay_->setGeometry(ToQRect(l.relay));
    relayAddress_->setGeometry(ToQRect(l.relayAddress));
    languageLabel_->setGeometry(ToQRect(l.languageLabel));
    language_->setGeometry(ToQRect(l.language));
    // The GPX option below the relay's address, a step as between the boxes.
    const int gap = baseTextHeight() / 3;
    const QRect gpx =
        ToQRect(l.allTalkers).translated(0, l.relayAddress.bottom + gap - l.allTalkers.top);
    saveGpxTrack_->setGeometry(gpx);
    // "界面缩放" and its list share the next row, as the relay's do.
    const QRect scale = gpx.translated(0, gpx.height() + gap);
    const int split = ToQRect(l.relay).width();
    uiScaleLabel_->setGeometry(scale.adjusted(0, 0, split - scale.width(), 0));
    uiScale_->setGeometry(scale.adjusted(split, 0, 0, 0));
    // Where the screen ends before the last row (a small landscape one), the
    // rows scroll.
    content_->resize(width, std::max(scale.bottom() + 1 + gap, body()->height()));
}

void OptionsWidget::Sync(const OptionsDialog& d) {
    syncing_ = true;
    autoBluetooth_->setChecked(d.autoBluetooth);
    keepAwake_->setChecked(d.keepAwake);
    recordNmea_->setChecked(d.recordNmea);
    allTalkers_->setChecked(d.allTalkers);
    relay_->setChecked(d.relay);
    if (relayAddress_->text() != Q(d.relayAddress))
        relayAddress_->setText(Q(d.relayAddress));
    QStringList items;
    for (const std::string& root : d.storage) items << Q(root);
    QStringList shown;
    for (int i = 0; i < storage_->count(); ++i) shown << storage_->itemText(i);
    if (shown != items) {
        storage_->clear();
        storage_->addItems(items);
    }
    storage_->setCurrentIndex(d.storageSelection);
    syncing_ = false;
}

std::vector<std::string> RemovableVolumes() {
    std::vector<std::string> mounts;
    for (const QStorageInfo& v : QStorageInfo::mountedVolumes()) {
        if (!v.isValid() || !v.isReady() || v.isReadOnly())
            continue;
        const QString root = v.rootPath();
        if (root.startsWith(QLatin1String("/media/")) ||
            root.startsWith(QLatin1String("/run/media/")) ||
            root.startsWith(QLatin1String("/mnt/")))
            mounts.push_back(root.toStdString());
    }
    std::sort(mounts.begin(), mounts.end());
    return mounts;
}

namespace {

class DialogView final : public OptionsView {
  public:
    DialogView(DialogStack& stack, Shell& shell) : stack_(stack), shell_(shell) {}

    OptionsFeature* feature = nullptr;

    void Show(const OptionsDialog& dialog) override {
        if (widget_ != nullptr) {
            widget_->Sync(dialog);
            return;
        }
        widget_ = new OptionsWidget(stack_);
        OptionsFeature* f = feature;
        widget_->onCheck = [f](int id, bool checked) { f->SetCheck(id, checked); };
        widget_->onStorage = [f](int index) { f->SelectStorage(index); };
        widget_->saveGpxTrack()->setChecked(shell_.settings().saveGpxTrack != 0);
        for (int i = 0; i < static_cast<int>(std::size(kUiScaleChoices)); ++i) {
            if (kUiScaleChoices[i] == shell_.settings().uiScale)
                widget_->uiScale()->setCurrentIndex(i);
        }
        widget_->onRelayAddress = [f](const std::string& a) { f->SetRelayAddress(a); };
        widget_->language()->setCurrentIndex(LanguageIndex(shell_.settings().language));
        widget_->onFinished = [this, f](DialogResult result) {
            const int language = widget_->language()->currentIndex();
            if (result == DialogResult::Ok) {
                SaveGpxTrackOption(widget_->saveGpxTrack()->isChecked());
                SaveUiScaleOption(widget_->uiScale()->currentIndex());
            }
            widget_ = nullptr;
            if (result == DialogResult::Ok)
                f->Ok();
            else
                f->Cancel();
            if (result == DialogResult::Ok)
                SaveLanguage(language);
        };
        widget_->Sync(dialog);
        stack_.Open(widget_);
    }

    void Close() override {
        if (OptionsWidget* w = std::exchange(widget_, nullptr))
            w->Reject();
    }

  private:
    // Taken at OK and written to its own file at once (the new track logs
    // from then on follow it).
    void SaveGpxTrackOption(bool on) {
        ProgramSettings& s = shell_.settings();
        const std::uint32_t value = on ? 1 : 0;
        if (value == s.saveGpxTrack)
            return;
        s.saveGpxTrack = value;
        if (!s.saveGpxTrackFile.empty())
            SaveTrackGpxOption(s.saveGpxTrackFile, on);
    }

    // The index of a choice in the language list: the languages, then "自动".
    static int LanguageIndex(const std::string& choice) {
        for (std::size_t i = 0; i < std::size(kLanguages); ++i) {
            if (choice == kLanguages[i].code)
                return static_cast<int>(i);
        }
        return choice == kAutomaticLanguage ? static_cast<int>(std::size(kLanguages)) : 0;
    }

    // Taken at OK and written to its own file at once; the texts change at
    // the next start, which the user is told.
    void SaveLanguage(int index) {
        ProgramSettings& s = shell_.settings();
        const std::string choice = index >= 0 && index < static_cast<int>(std::size(kLanguages))
                                       ? kLanguages[index].code
                                       : kAutomaticLanguage;
        if (choice == s.language)
            return;
        s.language = choice;
        if (!s.languageFile.empty())
            SaveLanguageOption(s.languageFile, choice);
        shell_.ui().ShowMessage(common::LoadString(common::kStrLanguageNextStart),
                                MessageIcon::Information, MessageButtons::Ok);
    }

    // Taken at OK into its own file; the window takes it at the repaint
    // that follows.
    void SaveUiScaleOption(int index) {
        if (index < 0 || index >= static_cast<int>(std::size(kUiScaleChoices)))
            return;
        ProgramSettings& s = shell_.settings();
        if (s.uiScale == kUiScaleChoices[index])
            return;
        s.uiScale = kUiScaleChoices[index];
        if (!s.uiScaleFile.empty())
            SaveUiScale(s.uiScaleFile, s.uiScale);
    }

    DialogStack& stack_;
    Shell& shell_;
    OptionsWidget* widget_ = nullptr;
};

std::string DocumentsFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return ResolveStorageRoot({}, documents.toStdString());
}

class OptionsDialogFeature final : public Feature {
  public:
    OptionsDialogFeature(Shell& shell, DialogStack& stack)
        : view_(stack, shell), feature_(shell, view_, DocumentsFolder(), RemovableVolumes) {
        view_.feature = &feature_;
    }
    void Register(FeatureRegistry& registry) override { feature_.Register(registry); }
    void OnExit() override { feature_.OnExit(); }

  private:
    DialogView view_;
    OptionsFeature feature_;
};

}  // namespace

std::unique_ptr<Feature> MakeOptionsFeature(Shell& shell, DialogStack& dialogs) {
    return std::make_unique<OptionsDialogFeature>(shell, dialogs);
}

}  // namespace satwalk::shell::qt
