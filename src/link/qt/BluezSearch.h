// Bluetooth through BlueZ, the system's Bluetooth service, over D-Bus.
//
// Why QtDBus against org.bluez and not Qt Bluetooth: the search has rules of
// its own that Qt Bluetooth's discovery agent hides. We need to know that
// there is no adapter or no service at all (0x08200a01), that the adapter
// is powered off (-2), that it went away in the middle (0x08200a03), that a
// device vanished before the search ended, and whether a device told its
// name; we also want the cached devices BlueZ already knows, which the agent
// drops. All of that is plain D-Bus: the ObjectManager's objects and
// signals, the adapter's Powered property, StartDiscovery and StopDiscovery.
// It also lets the tests run against a fake BlueZ on a private bus.
//
// Threads: BluezRadio and BluezInquiry make blocking calls (each bounded)
// on the connection they are given and are used on one thread at a time.
// BluetoothSearch runs the search on its own worker thread with its own
// connection, so the dialog never waits; its callback runs on the thread
// that owns the BluetoothSearch (the UI thread).
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

#include "BluetoothSearch.h"

class QThread;

namespace satwalk::link {

// The first adapter's power: mode 0 Powered false, 1 Powered true.
class BluezRadio final : public BluetoothRadio {
  public:
    explicit BluezRadio(QDBusConnection bus, int timeoutMs = 3000)
        : bus_(std::move(bus)), timeoutMs_(timeoutMs) {}
    int ReadRadioMode() override;
    bool SetRadioMode(int mode) override;

  private:
    QDBusConnection bus_;
    int timeoutMs_;
};

// The object path of the first Bluetooth adapter, or empty (no service, no
// adapter).
QString FirstBluezAdapter(const QDBusConnection& bus, int timeoutMs = 3000);

// One general inquiry of `durationMs` on the first adapter: the devices it
// knows and those that answer, in that order, less those that vanish before
// the end; ended early at `maxCount` devices or when `cancel` is set.
InquiryResult BluezInquiry(const QDBusConnection& bus, int maxCount, int durationMs,
                           const std::atomic<bool>* cancel = nullptr);

// The search worker behind the receiver settings dialog.
class BluetoothSearch : public QObject {
  public:
    explicit BluetoothSearch(QObject* parent = nullptr);
    ~BluetoothSearch() override;  // abandons a running search

    // A general inquiry lasts 10 units of 1.28 s.
    int inquiryMs = 12800;
    // The bus to search on; empty: the system bus.
    QString busAddress;
    // Called with the outcome on this object's thread, unless cancelled.
    std::function<void(const SearchOutcome&)> onFinished;
    // Called on this object's thread when a search, cancelled or not,
    // switched the radio on.
    std::function<void()> onRadioSwitchedOn;

    // Starts a search on a new worker thread; false when it cannot start.
    bool Start(bool autoBluetooth);
    // Abandons the running search: no onFinished for it, and its worker
    // ends on its own within a moment.
    void Cancel();
    bool Running() const;

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

}  // namespace satwalk::link
