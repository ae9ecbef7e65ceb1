#include "QtPlatform.h"

#include <QAudioDevice>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QUrl>

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

bool SingleInstance::Listen() {
    server_ = new QLocalServer(this);
    if (!server_->listen(name_)) {
        // A socket left behind by a copy that crashed.
        QLocalServer::removeServer(name_);
        if (!server_->listen(name_))
            return false;
    }
    connect(server_, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* s = server_->nextPendingConnection()) {
            connect(s, &QLocalSocket::readyRead, this, [this, s] {
                if (s->readAll().contains("raise"))
                    emit raiseRequested();
            });
            connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
        }
    });
    return true;
}

}  // namespace satwalk::app
