// The program's bundled data (the manual, the demo drive, the world map, the
// alarm sound): found beside an installed program, else in the source tree
// the program was built from; SATWALK_DATA_DIR names another folder.
#pragma once

#include <QString>

namespace satwalk::shell::qt {

// The data folder that holds `name` (a file or a folder below it): the one
// SATWALK_DATA_DIR names, else the installed one if `name` is there, else
// the source tree's.
QString DataFolderOf(const QString& name);

// The path of the bundled `name`, in the folder DataFolderOf chooses.
QString DataFile(const QString& name);

}  // namespace satwalk::shell::qt
