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

// One running copy. The copy that holds an advisory lock on a file beside
// the socket (`<socket>.lock`) is the one; the kernel hands the lock to
// exactly one of any number of simultaneous starts and drops it when its
// holder ends, however it ends. Only the holder removes a socket left
// behind and listens; every other start asks the holder to come forward.
class SingleInstance : public QObject {
    Q_OBJECT
  public:
    explicit SingleInstance(QString name) : name_(std::move(name)) {}
    ~SingleInstance() override;
    // True when this copy is the one and listens; false when another copy
    // holds the lock (and was asked to raise itself if it answered within
    // five seconds).
    bool Claim();

  signals:
    // A later start asked this copy to come forward.
    void raiseRequested();

  private:
    bool AskRunningCopy();
    void Listen();

    QString name_;
    QLocalServer* server_ = nullptr;
    int lockFd_ = -1;
};

}  // namespace satwalk::app
