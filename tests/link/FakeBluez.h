// A fake BlueZ for the tests: python3-dbusmock's bluez5 template on a
// private bus of its own, for the life of the object. Programs started with
// DBUS_SYSTEM_BUS_ADDRESS set to `address` take it for the system's.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

namespace satwalk::link {

class FakeBluez {
  public:
    ~FakeBluez() {
        if (mock_ > 0)
            ::kill(mock_, SIGTERM), ::waitpid(mock_, nullptr, 0);
        QDBusConnection::disconnectFromBus("fake-bluez-control");
        if (daemon_ > 0)
            ::kill(daemon_, SIGTERM);
    }

    // Empty when the fake can be had; else why not.
    std::string Start() {
        FILE* p = ::popen("dbus-daemon --session --fork --print-address=1 --print-pid=1", "r");
        if (p == nullptr)
            return "no dbus-daemon";
        char line[512] = {}, pid[32] = {};
        const bool read = std::fgets(line, sizeof line, p) != nullptr &&
                          std::fgets(pid, sizeof pid, p) != nullptr;
        ::pclose(p);
        if (!read)
            return "dbus-daemon did not start";
        address = QString::fromUtf8(line).trimmed();
        daemon_ = std::atoi(pid);

        mock_ = ::fork();
        if (mock_ == 0) {
            ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.toUtf8().constData(), 1);
            std::freopen("/dev/null", "w", stdout);
            std::freopen("/dev/null", "w", stderr);
            ::execl("/usr/bin/python3", "python3", "-m", "dbusmock", "--system", "--template",
                    "bluez5", static_cast<char*>(nullptr));
            ::_exit(127);
        }
        bus_.emplace(QDBusConnection::connectToBus(address, "fake-bluez-control"));
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 15000) {
            if (bus_->interface()->isServiceRegistered("org.bluez"))
                return {};
            int status = 0;
            if (::waitpid(mock_, &status, WNOHANG) == mock_) {
                mock_ = -1;
                return "python3-dbusmock is not installed";
            }
            QThread::msleep(50);
        }
        return "the fake BlueZ did not appear";
    }

    QDBusConnection& bus() { return *bus_; }

    bool Call(const QString& path, const QString& interface, const QString& method,
              const QVariantList& args) {
        QDBusMessage m = QDBusMessage::createMethodCall("org.bluez", path, interface, method);
        m.setArguments(args);
        return bus_->call(m, QDBus::Block, 5000).type() == QDBusMessage::ReplyMessage;
    }
    void AddAdapter() { Call("/", "org.bluez.Mock", "AddAdapter", {"hci0", "laptop"}); }
    void RemoveAdapter() { Call("/", "org.bluez.Mock", "RemoveAdapterWithDevices", {"hci0"}); }
    void AddDevice(const QString& device, const QString& name) {
        Call("/", "org.bluez.Mock", "AddDevice", {"hci0", device, name});
    }
    void RemoveDevice(const QString& device) {
        const QString path = "/org/bluez/hci0/dev_" + QString(device).replace(':', '_');
        Call("/org/bluez/hci0", "org.bluez.Adapter1", "RemoveDevice",
             {QVariant::fromValue(QDBusObjectPath(path))});
    }
    std::optional<bool> Property(const QString& name) {
        QDBusMessage m = QDBusMessage::createMethodCall("org.bluez", "/org/bluez/hci0",
                                                        "org.freedesktop.DBus.Properties", "Get");
        m.setArguments({"org.bluez.Adapter1", name});
        const QDBusMessage r = bus_->call(m, QDBus::Block, 5000);
        if (r.type() != QDBusMessage::ReplyMessage)
            return std::nullopt;
        return r.arguments().at(0).value<QDBusVariant>().variant().toBool();
    }
    void SetPowered(bool on) {
        Call("/org/bluez/hci0", "org.freedesktop.DBus.Properties", "Set",
             {"org.bluez.Adapter1", "Powered", QVariant::fromValue(QDBusVariant(on))});
    }

    QString address;

  private:
    pid_t daemon_ = -1;
    pid_t mock_ = -1;
    std::optional<QDBusConnection> bus_;
};

}  // namespace satwalk::link
