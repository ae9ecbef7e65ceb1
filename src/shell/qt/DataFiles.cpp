#include "DataFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <cstdlib>

namespace satwalk::shell::qt {

QString DataFolderOf(const QString& name) {
    if (const char* dir = std::getenv("SATWALK_DATA_DIR"))
        return QString::fromLocal8Bit(dir);
    const QString installed =
        QDir(QCoreApplication::applicationDirPath()).filePath("../share/satwalk");
    if (QFileInfo::exists(QDir(installed).filePath(name)))
        return QDir::cleanPath(installed);
    return QStringLiteral(SATWALK_SOURCE_RESOURCES);
}

QString DataFile(const QString& name) {
    return QDir(DataFolderOf(name)).filePath(name);
}

}  // namespace satwalk::shell::qt
