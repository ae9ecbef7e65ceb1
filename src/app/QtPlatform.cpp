#include "QtPlatform.h"

#include <QAudioDevice>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QThread>
#include <QUrl>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>

namespace satwalk::app {

// ---- sound ----

QtAlarmSound::~QtAlarmSound() {
    delete effect_;
}

bool QtAlarmSound::Ready() {
    if (!probed_) {
        probed_ = true;
        usable_ = QFileInfo::exists(path_) && !QMediaDevices::audioOutputs().isEmpty();
        if (usable_) {
            effect_ = new QSoundEffect;
            effect_->setSource(QUrl::fromLocalFile(path_));
            effect_->setLoopCount(QSoundEffect::Infinite);
        }
    }
    return usable_;
}

bool QtAlarmSound::PlayLoop() {
    if (!Ready())
        return false;
    if (effect_->status() == QSoundEffect::Error)
        return false;
    effect_->play();
    return true;
}

bool QtAlarmSound::Stop() {
    if (effect_ != nullptr)
        effect_->stop();
    return true;
}

// ---- idle inhibition ----

namespace {

QDBusMessage ScreenSaverCall(const char* method) {
    return QDBusMessage::createMethodCall("org.freedesktop.ScreenSaver",
                                          "/org/freedesktop/ScreenSaver",
                                          "org.freedesktop.ScreenSaver", method);
}

}  // namespace

void IdleInhibitor::Hold(bool hold) {
    wanted_ = hold;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    if (hold && cookie_ == 0 && !pending_) {
        QDBusMessage call = ScreenSaverCall("Inhibit");
        call << QStringLiteral("Satwalk") << QStringLiteral("GPS display");
        pending_ = true;
        auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, 2000), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [this](QDBusPendingCallWatcher* w) {
                    QDBusPendingReply<unsigned> reply = *w;
                    pending_ = false;
                    if (!reply.isError())
                        cookie_ = reply.value();
                    w->deleteLater();
                    if (!wanted_)
                        Hold(false);  // released while the answer was on its way
                });
    } else if (!hold && cookie_ != 0) {
        QDBusMessage call = ScreenSaverCall("UnInhibit");
        call << cookie_;
        cookie_ = 0;
        bus.call(call, QDBus::NoBlock);
    }
}

// ---- single instance ----

SingleInstance::~SingleInstance() {
    if (lockFd_ >= 0)
        ::close(lockFd_);  // releases the lock; the file stays for the next copy
}

bool SingleInstance::Claim() {
    // Where QLocalServer puts the socket of a plain name.
    const QString socketPath =
        name_.startsWith(QLatin1Char('/')) ? name_ : QDir(QDir::tempPath()).filePath(name_);
    lockFd_ = ::open(QFile::encodeName(socketPath + ".lock").constData(),
                     O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lockFd_ < 0) {
        // No lock to be had: the socket alone decides, as well as it can.
        if (AskRunningCopy())
            return false;
        Listen();
        return true;
    }
    // The holder may still be on its way to listening, or just ending: ask,
    // and try the lock again, for up to five seconds.
    for (int round = 0; round < 25; ++round) {
        if (::flock(lockFd_, LOCK_EX | LOCK_NB) == 0) {
            // Whatever socket is there was left by a copy that is gone.
            QLocalServer::removeServer(name_);
            Listen();
            return true;
        }
        if (AskRunningCopy())
            return false;
        QThread::msleep(200);
    }
    std::fprintf(stderr, "satwalk: another copy is running and does not answer\n");
    return false;
}

bool SingleInstance::AskRunningCopy() {
    QLocalSocket socket;
    socket.connectToServer(name_);
    if (!socket.waitForConnected(500))
        return false;
    socket.write("raise\n");
    socket.flush();
    socket.waitForBytesWritten(500);
    socket.disconnectFromServer();
    return true;
}

void SingleInstance::Listen() {
    server_ = new QLocalServer(this);
    if (!server_->listen(name_))
        return;  // runs on, only without being brought forward
    connect(server_, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* s = server_->nextPendingConnection()) {
            connect(s, &QLocalSocket::readyRead, this, [this, s] {
                if (s->readAll().contains("raise"))
                    emit raiseRequested();
            });
            connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
        }
    });
}

}  // namespace satwalk::app
