#include "Language.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>

#include <string>

#include "LanguageOption.h"
#include "Strings.h"

namespace satwalk::app {

namespace {

std::string& Installed() {
    static std::string code = shell::kDefaultLanguage;
    return code;
}

}  // namespace

std::string CurrentLanguage() {
    return Installed();
}

bool InstallLanguage(const QString& code, const QString& folder) {
    if (code == QLatin1String(shell::kDefaultLanguage)) {
        common::InstallTranslation({});
        Installed() = shell::kDefaultLanguage;
        return true;
    }
    QTranslator translator;
    if (!translator.load(QStringLiteral("satwalk_") + code, folder))
        return false;
    common::InstallTranslation([&translator](const common::StringEntry& entry) {
        const QString text =
            translator.translate(kTranslationContext, entry.text, std::to_string(entry.id).c_str());
        return text.toStdString();
    });
    Installed() = code.toStdString();
    return true;
}

bool InstallQtTranslation(QCoreApplication& app, const QString& code) {
    if (code == QLatin1String("en"))
        return true;
    auto* translator = new QTranslator(&app);
    if (!translator->load(QStringLiteral("qtbase_") + code,
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    return true;
}

}  // namespace satwalk::app
