// Script mode: drives the window line by line for unattended runs.
//
//   command ID            as from the menu
//   key NAME              0-9, star, left, right, up, down, return, escape, back
//   tap|press|move|release X Y   stylus at client coordinates
//   wait MS               runs the event loop
//   answer yes|no|ok|cancel      reply to the next message box
//   snapshot FILE.png     the window as painted, soft-key bar included
//   state FILE.json       the program's state
//   quit                  ends at once, without confirmation or saving
//   VERB WORDS...         a step a feature registered
//
// '#' starts a comment. The script ends the program after its last line.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace satwalk::app {

class MainWindow;

class ScriptRunner : public QObject {
  public:
    ScriptRunner(MainWindow& window, std::function<std::string()> stateJson)
        : window_(window), stateJson_(std::move(stateJson)) {}

    // Reads the script; false (with a message on standard error) when the
    // file cannot be read.
    bool Load(const QString& path);
    // Runs it from the event loop, one line after the other.
    void Start();
    int exitCode() const { return exitCode_; }

  private:
    void Next();
    bool Run(const QString& line, int& waitMs);
    void Fail(const QString& why);

    MainWindow& window_;
    std::function<std::string()> stateJson_;
    QString path_;
    QStringList lines_;
    qsizetype index_ = 0;
    int exitCode_ = 0;
};

}  // namespace satwalk::app
