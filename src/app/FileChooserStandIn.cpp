#include "FileChooserStandIn.h"

#include <QFileDialog>
#include <QFileInfo>

#include "FileListing.h"
#include "MainWindow.h"

namespace satwalk::app {

void FileChooserStandIn::Register(shell::FeatureRegistry& registry) {
    registry.AddScriptStep("choose",
                           [this](const std::vector<std::string>& words, std::string& error) {
                               if (!pending_) {
                                   error = "choose: no file is being asked for";
                                   return false;
                               }
                               std::string path;
                               for (const std::string& w : words)
                                   path += (path.empty() ? "" : " ") + w;
                               if (path == "cancel")
                                   path.clear();
                               std::exchange(pending_, nullptr)(path);
                               return true;
                           });
}

void FileChooserStandIn::Ask(int mode, const std::string& title,
                             std::function<void(const std::string&)> answer) {
    if (window_.scriptMode()) {
        pending_ = std::move(answer);
        return;
    }
    const QString filter = mode == browser::kBrowseTrackLogs ? QStringLiteral("*.log")
                           : mode == browser::kBrowsePoi
                               ? QStringLiteral("*.csv")
                               : QStringLiteral("*.bmp *.jpg *.jpeg *.gif *.png");
    answer(QFileDialog::getOpenFileName(&window_, QString::fromStdString(title), QString(), filter)
               .toStdString());
}

void FileChooserStandIn::ChooseFile(int mode, const std::string& title,
                                    browser::FileChosen chosen) {
    Ask(mode, title, [chosen = std::move(chosen)](const std::string& path) {
        if (!path.empty())
            chosen({path, QFileInfo(QString::fromStdString(path)).fileName().toStdString()});
    });
}

void FileChooserStandIn::ChooseFile(int mode, const std::string& title,
                                    std::function<void(const std::string& path)> done) {
    Ask(mode, title, std::move(done));
}

}  // namespace satwalk::app
