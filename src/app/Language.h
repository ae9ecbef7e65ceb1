// The interface's language at the Qt edge. The core keeps its string table
// (ids and their Chinese texts); a language other than Chinese is a Qt
// Linguist translation, satwalk_<code>.qm, built from
// resources/translations/satwalk_<code>.ts and carried in the program.
// Installing it asks the translation once for every entry of the table, so
// that LoadString stays a plain lookup; Qt's own texts (the standard
// buttons of message boxes) follow the same language.
#pragma once

#include <QString>

#include <string>

class QCoreApplication;

namespace satwalk::app {

// Where the program carries its translations.
inline constexpr const char* kTranslationsFolder = ":/i18n";

// The texts of language `code` for this run, from satwalk_<code>.qm in
// `folder`: every entry of the string table that the file translates takes
// the translation, the others keep the table's text. Chinese needs no file.
// False when the file could not be read (the table's texts stay).
bool InstallLanguage(const QString& code, const QString& folder = kTranslationsFolder);

// The language installed for this run ("zh_CN" until another is).
std::string CurrentLanguage();

// The translation of one table entry from a loaded file's context, or empty:
// looked up by its Chinese text and its id, so that one Chinese word may
// have different translations under different ids.
inline constexpr const char* kTranslationContext = "satwalk";

// Qt's own translation of its standard buttons for `code` (qtbase_<code>
// from Qt's translations folder), installed for the life of `app`; nothing
// to do for English. False when it is missing: the buttons then stay in
// English.
bool InstallQtTranslation(QCoreApplication& app, const QString& code = "zh_CN");

}  // namespace satwalk::app
