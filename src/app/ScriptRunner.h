// Script mode: drives the window line by line for unattended runs.
//
//   command ID            as from the menu
//   key NAME              0-9, star, left, right, up, down, return, escape, back
//   tap|press|move|release X Y   stylus at client coordinates
//   wait MS               runs the event loop
//   answer yes|no|ok|cancel      reply to a message box, or end the open
//                         dialog (ok or cancel)
//   set CONTROL_ID VALUE  an open dialog's edit, check box (0/1) or list
//   choose PATH           the open file browser walks to the file and opens it
//   snapshot FILE.png     the window as painted, soft-key bar included
//   state FILE.json       the program's state
//   quit                  ends at once, without confirmation or saving
//   VERB WORDS...         a step a feature registered
//
// '#' starts a comment. The script ends the program after its last line.
//
// A message box takes its reply from an `answer` given before it, else from
// an `answer` on the line right after the one that opened it when the word
// fits the box (yes or no to a question, ok to a notice), else the default
// (yes, ok). Dialogs never block: while one is open the script goes on,
// keys and taps reach the dialog, and `answer ok|cancel` ends it.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

#include "Shell.h"

namespace satwalk::app {

class MainWindow;

class ScriptRunner : public QObject {
  public:
    ScriptRunner(MainWindow& window, std::function<std::string()> stateJson);

    // Reads the script; false (with a message on standard error) when the
    // file cannot be read.
    bool Load(const QString& path);
    // Runs it from the event loop, one line after the other.
    void Start();
    int exitCode() const { return exitCode_; }

  private:
    void Next();
    bool Run(const QString& line, int& waitMs);
    // Line `i` without its comment and blanks.
    QString LineAt(qsizetype i) const;
    // The reply the next line gives a box just opened, which it then takes.
    std::optional<shell::MessageAnswer> TakeFollowingAnswer(bool question);
    void Fail(const QString& why);

    MainWindow& window_;
    std::function<std::string()> stateJson_;
    QString path_;
    QStringList lines_;
    qsizetype index_ = 0;
    int exitCode_ = 0;
    QPointer<QWidget> pressTarget_;  // what the stylus went down on
};

}  // namespace satwalk::app
