#include "FileChooserStandIn.h"

#include <QFileDialog>
#include <QFileInfo>

#include "FileListing.h"
#include "MainWindow.h"

namespace satwalk::app {

void FileChooserStandIn::Register(shell::FeatureRegistry& registry) {
    registry.AddScriptStep(
        "choose", [this](const std::vector<std::string>& words, std::string& error) {
            if (!pending_) {
                error = "choose: no file is being asked for";
                return false;
            }
            std::string path;
            for (const std::string& w : words) path += (path.empty() ? "" : " ") + w;
            browser::FileChosen chosen = std::move(pending_);
            pending_ = nullptr;
            if (path.empty() || path == "cancel")
                return true;
            chosen({path, QFileInfo(QString::fromStdString(path)).fileName().toStdString()});
            return true;
        });
}

void FileChooserStandIn::ChooseFile(int mode, const std::string& title,
                                    browser::FileChosen chosen) {
    if (window_.scriptMode()) {
        pending_ = std::move(chosen);
        return;
    }
    const QString filter = mode == browser::kBrowseTrackLogs ? QStringLiteral("*.log")
                           : mode == browser::kBrowsePoi     ? QStringLiteral("*.csv")
                                                             : QString();
    const QString path =
        QFileDialog::getOpenFileName(&window_, QString::fromStdString(title), QString(), filter);
    if (path.isEmpty())
        return;
    chosen({path.toStdString(), QFileInfo(path).fileName().toStdString()});
}

}  // namespace satwalk::app
