#include "BrowserChooser.h"

#include <QDir>
#include <QFileInfo>

#include "FileBrowser.h"
#include "Strings.h"

namespace satwalk::app {

void BrowserChooser::ChooseFile(int mode, const std::string&, browser::FileChosen chosen) {
    // Every open-file request of the program carries the same title; the
    // first one starts in the home folder rather than at the root.
    browser::qt::ChooseFile(
        stack_, mode, common::kStrOpenFile,
        [chosen = std::move(chosen)](const std::string& path) {
            if (path.empty() || !chosen)
                return;
            const QString name =
                QFileInfo(QFile::decodeName(QByteArray::fromStdString(path))).fileName();
            chosen({path, name.toStdString()});
        },
        QFile::encodeName(QDir::homePath()).toStdString());
}

}  // namespace satwalk::app
