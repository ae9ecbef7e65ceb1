#include "BluezSearch.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMap>
#include <QMetaObject>
#include <QThread>
#include <QTimer>
#include <QVariantMap>

#include <map>
#include <mutex>
#include <vector>

#include "ErrorCodes.h"

namespace satwalk::link {

namespace {

const QString kService = QStringLiteral("org.bluez");
const QString kAdapter = QStringLiteral("org.bluez.Adapter1");
const QString kDevice = QStringLiteral("org.bluez.Device1");
const QString kObjectManager = QStringLiteral("org.freedesktop.DBus.ObjectManager");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

using Interfaces = QMap<QString, QVariantMap>;

// a{sv} arrives either demarshalled or as an argument to walk.
QVariantMap ToMap(const QVariant& v) {
    if (v.canConvert<QDBusArgument>()) {
        QVariantMap map;
        v.value<QDBusArgument>() >> map;
        return map;
    }
    return v.toMap();
}

Interfaces ToInterfaces(const QVariant& v) {
    Interfaces interfaces;
    if (v.canConvert<QDBusArgument>())
        v.value<QDBusArgument>() >> interfaces;
    return interfaces;
}

// The ObjectManager's objects, by path; false when BlueZ does not answer.
bool ManagedObjects(const QDBusConnection& bus, int timeoutMs, std::map<QString, Interfaces>& out) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, "/", kObjectManager, "GetManagedObjects");
    const QDBusMessage reply = bus.call(call, QDBus::Block, timeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return false;
    const QDBusArgument arg = reply.arguments().at(0).value<QDBusArgument>();
    arg.beginMap();
    while (!arg.atEnd()) {
        QDBusObjectPath path;
        Interfaces interfaces;
        arg.beginMapEntry();
        arg >> path >> interfaces;
        arg.endMapEntry();
        out[path.path()] = interfaces;
    }
    arg.endMap();
    return true;
}

bool CallAdapter(const QDBusConnection& bus, const QString& adapter, const QString& method,
                 const QVariantList& args = {}, int timeoutMs = 3000) {
    QDBusMessage call = QDBusMessage::createMethodCall(kService, adapter, kAdapter, method);
    call.setArguments(args);
    return bus.call(call, QDBus::Block, timeoutMs).type() == QDBusMessage::ReplyMessage;
}

// What the inquiry knows of one device.
struct Seen {
    InquiryAnswer answer;
    bool gone = false;
};

void Update(Seen& seen, const QVariantMap& properties) {
    if (properties.contains("Name")) {
        seen.answer.hasName = true;
        seen.answer.name = properties.value("Name").toString().toStdString();
    }
    if (properties.contains("Address"))
        seen.answer.address = properties.value("Address").toString().toStdString();
}

// Follows BlueZ's signals on the inquiry's thread while the search runs.
class InquiryWatcher : public QObject {
    Q_OBJECT
  public:
    InquiryWatcher(QDBusConnection bus, QString adapter) : bus_(std::move(bus)), adapter_(adapter) {
        bus_.connect(kService, "/", kObjectManager, "InterfacesAdded", this,
                     SLOT(OnAdded(QDBusMessage)));
        bus_.connect(kService, "/", kObjectManager, "InterfacesRemoved", this,
                     SLOT(OnRemoved(QDBusMessage)));
        bus_.connect(kService, QString(), kProperties, "PropertiesChanged", this,
                     SLOT(OnChanged(QDBusMessage)));
    }
    ~InquiryWatcher() override {
        bus_.disconnect(kService, "/", kObjectManager, "InterfacesAdded", this,
                        SLOT(OnAdded(QDBusMessage)));
        bus_.disconnect(kService, "/", kObjectManager, "InterfacesRemoved", this,
                        SLOT(OnRemoved(QDBusMessage)));
        bus_.disconnect(kService, QString(), kProperties, "PropertiesChanged", this,
                        SLOT(OnChanged(QDBusMessage)));
    }

    void Add(const QString& path, const QVariantMap& properties) {
        if (!path.startsWith(adapter_ + "/"))
            return;
        auto it = seen_.find(path);
        if (it == seen_.end()) {
            order_.push_back(path);
            it = seen_.emplace(path, Seen{}).first;
        }
        it->second.gone = false;
        Update(it->second, properties);
    }

    std::vector<InquiryAnswer> Answers() const {
        std::vector<InquiryAnswer> answers;
        for (const QString& path : order_) {
            const Seen& s = seen_.at(path);
            if (!s.gone)
                answers.push_back(s.answer);
        }
        return answers;
    }
    std::size_t Count() const {
        std::size_t n = 0;
        for (const auto& [path, s] : seen_) n += s.gone ? 0 : 1;
        return n;
    }
    bool adapterLost = false;

  public slots:
    void OnAdded(const QDBusMessage& m) {
        if (m.arguments().size() < 2)
            return;
        const QString path = m.arguments().at(0).value<QDBusObjectPath>().path();
        const Interfaces interfaces = ToInterfaces(m.arguments().at(1));
        if (interfaces.contains(kDevice))
            Add(path, interfaces.value(kDevice));
    }
    void OnRemoved(const QDBusMessage& m) {
        if (m.arguments().size() < 2)
            return;
        const QString path = m.arguments().at(0).value<QDBusObjectPath>().path();
        if (path == adapter_)
            adapterLost = true;
        if (auto it = seen_.find(path); it != seen_.end())
            it->second.gone = true;
    }
    void OnChanged(const QDBusMessage& m) {
        if (m.arguments().size() < 2 || m.arguments().at(0).toString() != kDevice)
            return;
        if (auto it = seen_.find(m.path()); it != seen_.end())
            Update(it->second, ToMap(m.arguments().at(1)));
    }

  private:
    QDBusConnection bus_;
    QString adapter_;
    std::vector<QString> order_;
    std::map<QString, Seen> seen_;
};

}  // namespace

QString FirstBluezAdapter(const QDBusConnection& bus, int timeoutMs) {
    std::map<QString, Interfaces> objects;
    if (!ManagedObjects(bus, timeoutMs, objects))
        return {};
    for (const auto& [path, interfaces] : objects) {
        if (interfaces.contains(kAdapter))
            return path;
    }
    return {};
}

int BluezRadio::ReadRadioMode() {
    const QString adapter = FirstBluezAdapter(bus_, timeoutMs_);
    if (adapter.isEmpty())
        return -1;
    QDBusMessage call = QDBusMessage::createMethodCall(kService, adapter, kProperties, "Get");
    call.setArguments({kAdapter, QStringLiteral("Powered")});
    const QDBusMessage reply = bus_.call(call, QDBus::Block, timeoutMs_);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return -1;
    return reply.arguments().at(0).value<QDBusVariant>().variant().toBool() ? 1 : 0;
}

bool BluezRadio::SetRadioMode(int mode) {
    const QString adapter = FirstBluezAdapter(bus_, timeoutMs_);
    if (adapter.isEmpty())
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(kService, adapter, kProperties, "Set");
    call.setArguments({kAdapter, QStringLiteral("Powered"),
                       QVariant::fromValue(QDBusVariant(QVariant(mode != 0)))});
    return bus_.call(call, QDBus::Block, timeoutMs_).type() == QDBusMessage::ReplyMessage;
}

InquiryResult BluezInquiry(const QDBusConnection& bus, int maxCount, int durationMs,
                           const std::atomic<bool>* cancel) {
    InquiryResult failed;
    failed.result = kInquiryFailed;
    failed.errorCode = common::err::kInquiryBegin;

    std::map<QString, Interfaces> objects;
    if (!ManagedObjects(bus, 3000, objects))
        return failed;  // BlueZ is not running
    QString adapter;
    for (const auto& [path, interfaces] : objects) {
        if (interfaces.contains(kAdapter)) {
            adapter = path;
            break;
        }
    }
    if (adapter.isEmpty())
        return failed;
    if (!objects[adapter].value(kAdapter).value("Powered").toBool())
        return InquiryResult{kInquiryRadioOff, {}, {}};

    // Listening first, so that nothing answering right away is missed.
    InquiryWatcher watcher(bus, adapter);
    for (const auto& [path, interfaces] : objects) {
        if (interfaces.contains(kDevice))
            watcher.Add(path, interfaces.value(kDevice));
    }
    // GPS receivers speak the classic Serial Port profile; low-energy
    // devices, most of them nameless, stay out of the list.
    CallAdapter(bus, adapter, "SetDiscoveryFilter",
                {QVariant::fromValue(QVariantMap{{"Transport", QStringLiteral("bredr")}})});
    if (!CallAdapter(bus, adapter, "StartDiscovery"))
        return failed;

    QEventLoop loop;
    QTimer tick;
    QElapsedTimer elapsed;
    elapsed.start();
    QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
        const bool enough = static_cast<int>(watcher.Count()) >= maxCount;
        if (enough || watcher.adapterLost || elapsed.elapsed() >= durationMs ||
            (cancel != nullptr && cancel->load()))
            loop.quit();
    });
    tick.start(20);
    loop.exec();

    if (watcher.adapterLost) {
        failed.errorCode = common::err::kInquiryLost;
        return failed;
    }
    CallAdapter(bus, adapter, "StopDiscovery");
    return FinishInquiry(watcher.Answers(), maxCount);
}

// ---- the worker ----

struct BluetoothSearch::Shared {
    std::mutex mutex;
    BluetoothSearch* owner = nullptr;  // null once the owner is gone
    std::atomic<bool> cancel{false};
    std::atomic<bool> running{false};
    int generation = 0;  // which search the owner still waits for
};

BluetoothSearch::BluetoothSearch(QObject* parent)
    : QObject(parent), shared_(std::make_shared<Shared>()) {
    shared_->owner = this;
}

BluetoothSearch::~BluetoothSearch() {
    std::lock_guard<std::mutex> g(shared_->mutex);
    shared_->owner = nullptr;
    shared_->cancel = true;
}

bool BluetoothSearch::Running() const {
    return shared_->running;
}

void BluetoothSearch::Cancel() {
    std::lock_guard<std::mutex> g(shared_->mutex);
    shared_->cancel = true;
    ++shared_->generation;
}

bool BluetoothSearch::Start(bool autoBluetooth) {
    if (shared_->running)
        return false;
    int generation = 0;
    {
        std::lock_guard<std::mutex> g(shared_->mutex);
        shared_->cancel = false;
        generation = ++shared_->generation;
    }
    shared_->running = true;
    const std::shared_ptr<Shared> shared = shared_;
    const QString address = busAddress;
    const int duration = inquiryMs;
    QThread* worker = QThread::create([shared, address, duration, autoBluetooth, generation] {
        static std::atomic<int> serial{0};
        const QString name = QStringLiteral("satwalk-bluetooth-search-%1").arg(++serial);
        SearchOutcome outcome;
        {
            QDBusConnection bus =
                address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SystemBus, name)
                                  : QDBusConnection::connectToBus(address, name);
            if (!bus.isConnected()) {
                outcome.inquiry.result = kInquiryFailed;
                outcome.inquiry.errorCode = common::err::kInquiryBegin;
            } else {
                BluezRadio radio(bus);
                outcome = RunSearch(
                    radio,
                    [&](int maxCount) {
                        return BluezInquiry(bus, maxCount, duration, &shared->cancel);
                    },
                    autoBluetooth);
            }
        }
        QDBusConnection::disconnectFromBus(name);
        std::lock_guard<std::mutex> g(shared->mutex);
        shared->running = false;
        BluetoothSearch* owner = shared->owner;
        if (owner == nullptr)
            return;
        const bool current = generation == shared->generation && !shared->cancel;
        QMetaObject::invokeMethod(
            owner,
            [owner, outcome, current] {
                // Even a cancelled search tells of a radio it switched on,
                // so that exit switches it off again.
                if (outcome.radioSwitchedOn && owner->onRadioSwitchedOn)
                    owner->onRadioSwitchedOn();
                if (current && owner->onFinished)
                    owner->onFinished(outcome);
            },
            Qt::QueuedConnection);
    });
    if (worker == nullptr) {
        shared_->running = false;
        return false;
    }
    QObject::connect(worker, &QThread::finished, worker, &QObject::deleteLater);
    worker->start(QThread::LowPriority);
    return true;
}

}  // namespace satwalk::link

#include "BluezSearch.moc"
