// The script step `message-snapshot FILE.png`, kept apart from the message
// boxes themselves so that their tests need no window.
#include <QApplication>
#include <QMessageBox>

#include "MainWindow.h"
#include "MessageBoxes.h"

namespace satwalk::app {

namespace {

class MessageSnapshotFeature final : public shell::Feature {
  public:
    explicit MessageSnapshotFeature(MainWindow& window) : window_(window) {}

    void Register(shell::FeatureRegistry& registry) override {
        registry.AddScriptStep(
            "message-snapshot", [this](const std::vector<std::string>& words, std::string& error) {
                QMessageBox* box = window_.lastMessageBox();
                if (words.size() != 1) {
                    error = "message-snapshot needs FILE.png";
                    return false;
                }
                if (box == nullptr) {
                    error = "message-snapshot: no message box yet";
                    return false;
                }
                // Laid out as it would be on the screen, then taken away again.
                box->show();
                QApplication::processEvents();
                const bool saved = box->grab().save(QString::fromStdString(words[0]), "PNG");
                box->hide();
                if (!saved)
                    error = "cannot write " + words[0];
                return saved;
            });
    }

  private:
    MainWindow& window_;
};

}  // namespace

std::unique_ptr<shell::Feature> MakeMessageSnapshotFeature(MainWindow& window) {
    return std::make_unique<MessageSnapshotFeature>(window);
}

}  // namespace satwalk::app
