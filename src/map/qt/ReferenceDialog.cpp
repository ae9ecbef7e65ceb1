#include "ReferenceDialog.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QResizeEvent>

#include <algorithm>

#include "Strings.h"

namespace satwalk::map::qt {

namespace {

QString Text(int id) {
    return QString::fromUtf8(common::LoadString(id));
}

constexpr int kActivateText = 40111;
constexpr int kInsertGpsCoordinate = 40199;

// Both halves of the dialog, latitude then longitude: their group, the
// hemisphere label and list with its two entries, and the three edits with
// their labels.
struct Half {
    int group;
    int title;
    int hemisphereLabel;
    int hemisphereText;
    int list;
    int entries[2];
    int labels[3];
    int edits[3];
};
constexpr Half kHalves[2] = {
    {1119,
     common::kStrLatitude,
     1118,
     common::kStrNorthSouth,
     1010,
     {40119, 40120},
     {1111, 1112, 1113},
     {1003, 1004, 1005}},
    {1120,
     common::kStrLongitude,
     1114,
     common::kStrEastWest,
     1011,
     {40121, 40122},
     {1115, 1116, 1117},
     {1007, 1008, 1009}},
};
constexpr int kUnitLabels[3] = {common::kStrDegreesLabel, common::kStrMinutesLabel,
                                common::kStrSecondsLabel};

QString FromStd(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

ReferenceDialog::ReferenceDialog(shell::qt::DialogStack& stack, int slot, const GeoPoint& point,
                                 std::function<ReferenceFix()> currentFix)
    : FullScreenDialog(stack, kReferenceDialog, Text(kActivateText), true),
      currentFix_(std::move(currentFix)) {
    const int b = baseTextHeight();
    auto* layout = new QVBoxLayout(body());
    layout->setContentsMargins(b / 5, b / 5, b / 5, 0);
    layout->setSpacing(b / 3);

    active_ =
        AddCheckBox(1013, FromStd(ActivateCheckBoxText(common::LoadString(kActivateText), slot)));
    layout->addWidget(active_);

    // The two groups one above the other, or side by side when the screen
    // is wider than high (see resizeEvent).
    groups_ = new QBoxLayout(QBoxLayout::TopToBottom);
    groups_->setSpacing(b / 3);
    for (int h = 0; h < 2; ++h) {
        const Half& half = kHalves[h];
        QGroupBox* group = AddGroup(half.group, Text(half.title));
        auto* grid = new QGridLayout(group);
        grid->setHorizontalSpacing(b / 3);
        grid->setVerticalSpacing(b / 5);
        grid->setColumnStretch(1, 1);
        grid->addWidget(AddLabel(half.hemisphereLabel, Text(half.hemisphereText)), 0, 0);
        hemisphere_[h] = AddList(half.list, {Text(half.entries[0]), Text(half.entries[1])});
        grid->addWidget(hemisphere_[h], 0, 1);
        for (int u = 0; u < 3; ++u) {
            grid->addWidget(AddLabel(half.labels[u], Text(kUnitLabels[u])), u + 1, 0);
            QLineEdit* edit = AddEdit(half.edits[u]);
            edit->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
            edits_[h][u] = edit;
            grid->addWidget(edit, u + 1, 1);
        }
        groups_->addWidget(group, 1);
    }
    layout->addLayout(groups_);
    status_ = AddLabel(1121, QString());
    layout->addWidget(status_);
    layout->addStretch(1);

    setStyleSheet(styleSheet() +
                  QStringLiteral("QGroupBox { font-weight: bold; color: rgb(34,89,172);"
                                 " border: 1px solid rgb(160,180,210); border-radius: %1px;"
                                 " margin-top: %2px; padding: %3px %1px %1px %1px; }"
                                 "QGroupBox::title { subcontrol-origin: margin; left: %1px;"
                                 " padding: 0px %4px; }"
                                 "QGroupBox QLabel { color: black; font-weight: normal; }")
                      .arg(b / 5)
                      .arg(b * 2 / 3)
                      .arg(b / 2)
                      .arg(b / 8));

    connect(active_, &QCheckBox::toggled, this, [this](bool on) { EnableFields(on); });
    SetSoftKeys({Text(kInsertGpsCoordinate), [this] { InsertCurrentCoordinate(); }, true,
                 kInsertGpsCoordinate},
                {Text(common::kStrCancel), [this] { Reject(); }, true, common::kStrCancel});

    // As it opens: north and east, the edits from the slot, and the check
    // box (with the fields it enables) as the slot is active.
    SetFields(OpenReferenceDialog(point));
}

ReferenceDialogFields ReferenceDialog::Fields() const {
    ReferenceDialogFields f;
    f.active = active_->isChecked();
    f.latitudeHemisphere = std::max(0, hemisphere_[0]->currentIndex());
    f.longitudeHemisphere = std::max(0, hemisphere_[1]->currentIndex());
    for (int u = 0; u < 3; ++u) {
        f.latitude[static_cast<std::size_t>(u)] = edits_[0][u]->text().toStdString();
        f.longitude[static_cast<std::size_t>(u)] = edits_[1][u]->text().toStdString();
    }
    return f;
}

void ReferenceDialog::SetFields(const ReferenceDialogFields& f) {
    hemisphere_[0]->setCurrentIndex(f.latitudeHemisphere);
    hemisphere_[1]->setCurrentIndex(f.longitudeHemisphere);
    for (int u = 0; u < 3; ++u) {
        edits_[0][u]->setText(FromStd(f.latitude[static_cast<std::size_t>(u)]));
        edits_[1][u]->setText(FromStd(f.longitude[static_cast<std::size_t>(u)]));
    }
    active_->setChecked(f.active);
    EnableFields(f.active);
}

void ReferenceDialog::InsertCurrentCoordinate() {
    const ReferenceFix fix = currentFix_ ? currentFix_() : ReferenceFix{};
    ReferenceDialogFields f = Fields();
    InsertGpsCoordinate(f, fix.haveFix, fix.latitude, fix.longitude);
    SetFields(f);
}

void ReferenceDialog::SetResiduals(const std::string& text) {
    status_->setText(FromStd(text));
}

void ReferenceDialog::EnableFields(bool enabled) {
    for (int h = 0; h < 2; ++h) {
        hemisphere_[h]->setEnabled(enabled);
        for (QLineEdit* edit : edits_[h]) edit->setEnabled(enabled);
    }
}

void ReferenceDialog::resizeEvent(QResizeEvent* event) {
    FullScreenDialog::resizeEvent(event);
    groups_->setDirection(event->size().width() > event->size().height() ? QBoxLayout::LeftToRight
                                                                         : QBoxLayout::TopToBottom);
}

ReferenceDialog* OpenReferencePointDialog(
    shell::qt::DialogStack& stack, int slot, const GeoPoint& point,
    std::function<ReferenceFix()> currentFix,
    std::function<void(const ReferenceDialogFields& fields)> confirmed,
    std::function<void()> cancelled, const std::string& residuals) {
    auto* dialog = new ReferenceDialog(stack, slot, point, std::move(currentFix));
    dialog->SetResiduals(residuals);
    dialog->onFinished = [dialog, confirmed = std::move(confirmed),
                          cancelled = std::move(cancelled)](shell::qt::DialogResult result) {
        if (result == shell::qt::DialogResult::Ok) {
            if (confirmed)
                confirmed(dialog->Fields());
        } else if (cancelled) {
            cancelled();
        }
    };
    stack.Open(dialog);
    return dialog;
}

}  // namespace satwalk::map::qt
