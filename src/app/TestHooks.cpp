#include "TestHooks.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

#include <cstdlib>

#include "FileBrowser.h"
#include "MainWindow.h"
#include "ReferenceDialog.h"

namespace satwalk::app {

namespace {

using shell::qt::DialogResult;
using shell::qt::FullScreenDialog;

class TestForm final : public FullScreenDialog {
  public:
    explicit TestForm(shell::qt::DialogStack& stack)
        : FullScreenDialog(stack, 900, QStringLiteral("测试表单")) {
        auto* form = new QFormLayout(body());
        name = AddEdit(902);
        form->addRow(AddLabel(901, QStringLiteral("名称:")), name);
        enable = AddCheckBox(903, QStringLiteral("启用名称"));
        enable->setChecked(true);
        form->addRow(enable);
        list = AddList(904, {QStringLiteral("甲"), QStringLiteral("乙"), QStringLiteral("丙")});
        form->addRow(list);
        connect(enable, &QCheckBox::toggled, name, &QWidget::setEnabled);
    }
    QLineEdit* name;
    QCheckBox* enable;
    QComboBox* list;
};

class TestHooks final : public shell::Feature {
  public:
    explicit TestHooks(MainWindow& window) : window_(window) {}

    void Register(shell::FeatureRegistry& registry) override {
        registry.AddCommand(kTestFormCommand, {[this](int) { OpenForm(); }, {}});
        for (int mode = browser::kBrowseMaps; mode <= browser::kBrowsePoi; ++mode) {
            registry.AddCommand(
                kTestBrowserCommand + mode - browser::kBrowseMaps,
                {[this, mode](int) {
                     browser::qt::ChooseFile(
                         window_.dialogs(), mode, 40118, [this](const std::string& path) {
                             Tell(QStringLiteral("chosen ") + QString::fromStdString(path));
                         });
                 },
                 {}});
        }
        for (int slot = 0; slot < map::kReferenceSlotCount; ++slot) {
            registry.AddCommand(kTestReferenceCommand + slot,
                                {[this, slot](int) { OpenReference(slot); }, {}});
        }
    }

  private:
    void Tell(const QString& text) {
        window_.ShowMessage(text.toStdString(), shell::MessageIcon::Information,
                            shell::MessageButtons::Ok);
    }

    void OpenForm() {
        auto* d = new TestForm(window_.dialogs());
        d->onFinished = [this, d](DialogResult r) {
            if (r == DialogResult::Cancel) {
                Tell(QStringLiteral("form cancel"));
                return;
            }
            Tell(QStringLiteral("form ok name=%1 enabled=%2 list=%3")
                     .arg(d->name->text())
                     .arg(d->enable->isChecked() ? 1 : 0)
                     .arg(d->list->currentIndex()));
        };
        window_.dialogs().Open(d);
    }

    void OpenReference(int slot) {
        map::GeoPoint point;
        if (slot == 0)
            point = {1, -33.5, 151.25, 0, 0, 0, 0};
        auto fix = [this] {
            map::qt::ReferenceFix f;
            const shell::Shell& shell = window_.shell();
            f.haveFix = shell.link().Running() && shell.link().FixValid();
            f.latitude = shell.fixValues().latitude.value_or(gps::kAbsentDegrees);
            f.longitude = shell.fixValues().longitude.value_or(gps::kAbsentDegrees);
            return f;
        };
        map::qt::OpenReferencePointDialog(
            window_.dialogs(), slot, point, fix,
            [this](const map::ReferenceDialogFields& fields) {
                map::GeoPoint stored;
                map::FieldsToSlot(fields, stored);
                Tell(QStringLiteral("reference ok valid=%1 latitude=%2 longitude=%3")
                         .arg(stored.valid)
                         .arg(stored.latitude, 0, 'f', 9)
                         .arg(stored.longitude, 0, 'f', 9));
            },
            [this] { Tell(QStringLiteral("reference cancel")); });
    }

    MainWindow& window_;
};

}  // namespace

std::unique_ptr<shell::Feature> MakeTestHooks(MainWindow& window) {
    if (std::getenv("SATWALK_TEST_HOOKS") == nullptr)
        return nullptr;
    return std::make_unique<TestHooks>(window);
}

}  // namespace satwalk::app
