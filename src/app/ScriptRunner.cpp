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

ScriptRunner::ScriptRunner(MainWindow& window, std::function<std::string()> stateJson)
    : window_(window), stateJson_(std::move(stateJson)) {
    window_.followingAnswer = [this](bool question) { return TakeFollowingAnswer(question); };
}

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

QString ScriptRunner::LineAt(qsizetype i) const {
    QString line = lines_[i];
    const qsizetype hash = line.indexOf(QLatin1Char('#'));
    if (hash >= 0)
        line.truncate(hash);
    return line.trimmed();
}

std::optional<shell::MessageAnswer> ScriptRunner::TakeFollowingAnswer(bool question) {
    qsizetype i = index_;
    while (i < lines_.size() && LineAt(i).isEmpty()) ++i;
    if (i >= lines_.size())
        return std::nullopt;
    const QStringList words = LineAt(i).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.size() != 2 || words[0] != QLatin1String("answer"))
        return std::nullopt;
    const QString word = words[1].toLower();
    std::optional<shell::MessageAnswer> answer;
    if (question && word == QLatin1String("yes"))
        answer = shell::MessageAnswer::Yes;
    else if (question && word == QLatin1String("no"))
        answer = shell::MessageAnswer::No;
    else if (!question && word == QLatin1String("ok"))
        answer = shell::MessageAnswer::Ok;
    if (answer)
        index_ = i + 1;  // the line is spent on this box
    return answer;
}

void ScriptRunner::Next() {
    while (index_ < lines_.size()) {
        const QString line = LineAt(index_++);
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

// The stylus at `at` (window coordinates) on `target`, the window or one of
// its children.
void SendMouse(QWidget& window, QWidget& target, QEvent::Type type, QPoint at) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons buttons =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
    const QPoint local = &target == &window ? at : target.mapFrom(&window, at);
    QMouseEvent e(type, QPointF(local), QPointF(window.mapToGlobal(at)), button, buttons,
                  Qt::NoModifier);
    QApplication::sendEvent(&target, &e);
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
        // A soft key of the open dialog takes its own command, as a tap would.
        if (!window_.dialogs().PressCommand(id))
            window_.shell().OnCommand(id);
    } else if (verb == QLatin1String("key")) {
        int key = 0;
        QString text;
        if (words.size() < 2 || !ParseKey(words[1].toLower(), key, text)) {
            return Fail(QStringLiteral("unknown key")), false;
        }
        // To a dialog in the screen's place while one is open, or to a
        // modal window over it (a progress dialog), as a real key.
        QWidget* target = QApplication::activeModalWidget();
        if (target == nullptr)
            target = window_.KeyTarget();
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
        // As a real stylus: the press goes to the widget under it (a
        // dialog's control, else the window), the moves and the release
        // follow the press.
        if (verb == QLatin1String("tap") || verb == QLatin1String("press")) {
            QWidget* child = window_.childAt(at);
            pressTarget_ = child != nullptr ? child : &window_;
            SendMouse(window_, *pressTarget_, QEvent::MouseButtonPress, at);
        }
        QWidget* target = pressTarget_ != nullptr ? pressTarget_.data() : &window_;
        if (verb == QLatin1String("move"))
            SendMouse(window_, *target, QEvent::MouseMove, at);
        if (verb == QLatin1String("tap") || verb == QLatin1String("release")) {
            SendMouse(window_, *target, QEvent::MouseButtonRelease, at);
            pressTarget_ = nullptr;
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
        const QString word = words.size() > 1 ? words[1].toLower() : QString();
        // ok and cancel end an open dialog; otherwise they wait for a box.
        using shell::qt::DialogResult;
        if (word == QLatin1String("ok") || word == QLatin1String("cancel")) {
            found = window_.dialogs().Answer(word == QLatin1String("ok") ? DialogResult::Ok
                                                                         : DialogResult::Cancel);
        }
        for (const auto& a : kAnswers) {
            if (!found && word == QLatin1String(a.word)) {
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
        // So is a modal window over it, centred as a window manager would.
        if (QWidget* modal = QApplication::activeModalWidget();
            modal != nullptr && modal->isVisible()) {
            QPainter p(&shot);
            const QPixmap over = modal->grab();
            p.drawPixmap((shot.width() - over.width()) / 2, (shot.height() - over.height()) / 2,
                         over);
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
