// Platform services of the program: the alarm sound, the idle inhibition
// that stands for the backlight hold, and the single-instance socket.
#pragma once

#include <QObject>
#include <QString>

#include <memory>

#include "SpeedAlarm.h"

class QLocalServer;
class QSoundEffect;

namespace satwalk::app {

// The looping alarm through Qt Multimedia. Without an audio output or a
// sound file it reports failure at once and never blocks.
class QtAlarmSound : public shell::AlarmSound {
  public:
    explicit QtAlarmSound(QString path) : path_(std::move(path)) {}
    ~QtAlarmSound();
    bool PlayLoop() override;
    bool Stop() override;

  private:
    bool Ready();
    QString path_;
    QSoundEffect* effect_ = nullptr;
    bool probed_ = false;
    bool usable_ = false;
};

// Keeps the display awake through the desktop's screen-saver service
// (org.freedesktop.ScreenSaver) while held; a no-op where there is none.
class IdleInhibitor : public QObject {
  public:
    void Hold(bool hold);
    bool held() const { return cookie_ != 0 || pending_; }

  private:
    unsigned cookie_ = 0;
    bool pending_ = false;
    bool wanted_ = false;
};

// One running copy: the first start listens on a local socket, a later one
// asks it to come forward and ends.
class SingleInstance : public QObject {
    Q_OBJECT
  public:
    explicit SingleInstance(QString name) : name_(std::move(name)) {}
    // True when another copy answered (and was asked to raise itself).
    bool AskRunningCopy();
    // Starts listening; raiseRequested() follows each later start.
    bool Listen();

  signals:
    void raiseRequested();

  private:
    QString name_;
    QLocalServer* server_ = nullptr;
};

}  // namespace satwalk::app
