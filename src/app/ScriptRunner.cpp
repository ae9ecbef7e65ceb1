#include "ScriptRunner.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QTimer>

#include <cstdio>

#include "MainWindow.h"

namespace satwalk::app {

bool ScriptRunner::Load(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "satwalk: cannot read script %s\n", qPrintable(path));
        return false;
    }
    path_ = path;
    lines_ = QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'));
    return true;
}

void ScriptRunner::Start() {
    QTimer::singleShot(0, this, [this] { Next(); });
}

void ScriptRunner::Fail(const QString& why) {
    std::fprintf(stderr, "satwalk: %s:%lld: %s\n", qPrintable(path_),
                 static_cast<long long>(index_), qPrintable(why));
    exitCode_ = 2;
    QApplication::exit(exitCode_);
}

void ScriptRunner::Next() {
    while (index_ < lines_.size()) {
        QString line = lines_[index_++];
        const qsizetype hash = line.indexOf(QLatin1Char('#'));
        if (hash >= 0)
            line.truncate(hash);
        line = line.trimmed();
        if (line.isEmpty())
            continue;
        int waitMs = 0;
        if (!Run(line, waitMs))
            return;  // failed or quit
        // Let what the line caused (repaints, queued calls) happen first.
        QTimer::singleShot(waitMs, this, [this] { Next(); });
        return;
    }
    QApplication::exit(exitCode_);
}

namespace {

bool ParseKey(const QString& name, int& key, QString& text) {
    static const struct {
        const char* name;
        int key;
    } kKeys[] = {
        {"star", Qt::Key_F8},       {"left", Qt::Key_Left},      {"right", Qt::Key_Right},
        {"up", Qt::Key_Up},         {"down", Qt::Key_Down},      {"return", Qt::Key_Return},
        {"escape", Qt::Key_Escape}, {"back", Qt::Key_Backspace},
    };
    if (name.size() == 1 && name[0].isDigit()) {
        key = Qt::Key_0 + name[0].digitValue();
        text = name;
        return true;
    }
    for (const auto& k : kKeys) {
        if (name == QLatin1String(k.name)) {
            key = k.key;
            return true;
        }
    }
    return false;
}

void SendMouse(QWidget& w, QEvent::Type type, QPoint at) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons buttons =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
    QMouseEvent e(type, QPointF(at), QPointF(w.mapToGlobal(at)), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(&w, &e);
}

}  // namespace

bool ScriptRunner::Run(const QString& line, int& waitMs) {
    const QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QString& verb = words[0];
    auto number = [&](int i, int& out) {
        bool ok = false;
        out = i < words.size() ? words[i].toInt(&ok) : 0;
        return ok;
    };
    auto rest = [&] { return line.mid(verb.size()).trimmed(); };

    if (verb == QLatin1String("command")) {
        int id = 0;
        if (!number(1, id))
            return Fail(QStringLiteral("command needs an id")), false;
        window_.shell().OnCommand(id);
    } else if (verb == QLatin1String("key")) {
        int key = 0;
        QString text;
        if (words.size() < 2 || !ParseKey(words[1].toLower(), key, text)) {
            return Fail(QStringLiteral("unknown key")), false;
        }
        // To a dialog in the screen's place while one is open, as a real key.
        QWidget* target = window_.KeyTarget();
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(target, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QApplication::sendEvent(target, &up);
    } else if (verb == QLatin1String("tap") || verb == QLatin1String("press") ||
               verb == QLatin1String("move") || verb == QLatin1String("release")) {
        int x = 0;
        int y = 0;
        if (!number(1, x) || !number(2, y))
            return Fail(verb + QStringLiteral(" needs X Y")), false;
        const QPoint at(x, y);
        if (verb == QLatin1String("tap") || verb == QLatin1String("press")) {
            SendMouse(window_, QEvent::MouseButtonPress, at);
        }
        if (verb == QLatin1String("move"))
            SendMouse(window_, QEvent::MouseMove, at);
        if (verb == QLatin1String("tap") || verb == QLatin1String("release")) {
            SendMouse(window_, QEvent::MouseButtonRelease, at);
        }
    } else if (verb == QLatin1String("wait")) {
        if (!number(1, waitMs) || waitMs < 0)
            return Fail(QStringLiteral("wait needs MS")), false;
    } else if (verb == QLatin1String("answer")) {
        static const struct {
            const char* word;
            shell::MessageAnswer answer;
        } kAnswers[] = {{"yes", shell::MessageAnswer::Yes},
                        {"no", shell::MessageAnswer::No},
                        {"ok", shell::MessageAnswer::Ok},
                        {"cancel", shell::MessageAnswer::Cancel}};
        bool found = false;
        for (const auto& a : kAnswers) {
            if (words.size() > 1 && words[1].toLower() == QLatin1String(a.word)) {
                window_.SetNextAnswer(a.answer);
                found = true;
            }
        }
        if (!found)
            return Fail(QStringLiteral("answer needs yes, no, ok or cancel")), false;
    } else if (verb == QLatin1String("snapshot")) {
        window_.repaint();
        QPixmap shot = window_.grab();
        // An open drop-down is part of what the user sees.
        if (QWidget* popup = QApplication::activePopupWidget()) {
            QPainter p(&shot);
            p.drawPixmap(window_.mapFromGlobal(popup->pos()), popup->grab());
        }
        if (!shot.save(rest(), "PNG")) {
            return Fail(QStringLiteral("cannot write ") + rest()), false;
        }
    } else if (verb == QLatin1String("state")) {
        QFile f(rest());
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            return Fail(QStringLiteral("cannot write ") + rest()), false;
        }
        f.write(QByteArray::fromStdString(stateJson_() + "\n"));
    } else if (verb == QLatin1String("quit")) {
        QApplication::exit(exitCode_);
        return false;
    } else if (const shell::ScriptStep* step =
                   window_.shell().features().FindScriptStep(verb.toStdString())) {
        std::vector<std::string> args;
        for (qsizetype i = 1; i < words.size(); ++i) args.push_back(words[i].toStdString());
        std::string error;
        if (!(*step)(args, error))
            return Fail(QString::fromStdString(error)), false;
    } else {
        return Fail(QStringLiteral("unknown line: ") + line), false;
    }
    if (window_.shell().exited)
        return false;  // a confirmed exit ended the program
    return true;
}

}  // namespace satwalk::app
