// The NMEA relay: every byte the receiver sends, served unchanged to any
// number of TCP clients (gpsd, chart plotters, a second Satwalk).
//
// The reader thread hands each read to Publish, which only appends it to an
// inbox (nothing at all while no client listens); the relay thread collects
// the inbox every 20 ms while it has clients, accepts clients, sends, and
// reads and discards what clients send. A client that cannot take what it is
// sent for kStallMs (bytes wait for it in the kernel or here, and it takes
// none of them), or falls kBacklogLimit bytes behind, is dropped: it never
// delays the reader and never makes memory grow. At most kMaxClients
// at once; a connection beyond them is closed at once.
//
// Threads: Start and Stop on the owner's thread; Publish on the reader
// thread; everything else on the relay thread ("relay"), which Start
// begins and Stop ends.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ReceiverLink.h"

namespace satwalk::link {

inline constexpr std::size_t kRelayMaxClients = 16;
inline constexpr std::size_t kRelayBacklogLimit = 64 * 1024;  // per client
inline constexpr std::size_t kRelayInboxLimit = 256 * 1024;   // between reader and relay
inline constexpr int kRelayStallMs = 1500;

class NmeaRelay final : public ByteTap {
  public:
    NmeaRelay();
    ~NmeaRelay();
    NmeaRelay(const NmeaRelay&) = delete;
    NmeaRelay& operator=(const NmeaRelay&) = delete;

    // Listens on `host` (a numeric address, or "localhost" for 127.0.0.1)
    // and `port` (0: any free port, see Port) and starts the relay thread.
    // False with `error` set (the system's text) when it cannot listen.
    bool Start(const std::string& host, std::uint16_t port, std::string& error);
    // Closes every client and the listener; waits for the relay thread.
    void Stop();
    bool Listening() const { return thread_.joinable(); }
    std::uint16_t Port() const { return port_; }

    // Reader thread: queues a copy of the bytes for every client.
    void Publish(const char* data, std::size_t length) override;

    // Clients connected now, and clients dropped for lagging so far.
    std::size_t Clients() const { return clientCount_.load(); }
    std::size_t Dropped() const { return dropped_.load(); }

  private:
    struct Client {
        int fd = -1;
        std::string backlog;        // what the kernel would not take yet
        std::uint64_t written = 0;  // bytes the kernel took
        std::uint64_t acked = 0;    // of them, taken by the client (written - queued)
        bool behind = false;        // bytes wait for it ...
        std::chrono::steady_clock::time_point since;  // ... with no progress since
    };

    void Run();
    void Accept();
    void Send(Client& client, const char* data, std::size_t length);
    void Flush(Client& client);
    void Drop(std::size_t index, bool lagging);
    // Notes whether the client is behind and whether it made progress.
    void Watch(Client& client, std::chrono::steady_clock::time_point now);

    int listenFd_ = -1;
    int wakeFd_ = -1;
    std::uint16_t port_ = 0;
    std::atomic<bool> stop_{false};
    std::thread thread_;
    std::vector<Client> clients_;  // the relay thread's
    std::atomic<std::size_t> clientCount_{0};
    std::atomic<std::size_t> dropped_{0};

    std::mutex inboxLock_;
    std::string inbox_;             // guarded by inboxLock_
    bool inboxOverflowed_ = false;  // guarded by inboxLock_: the relay thread fell behind
};

}  // namespace satwalk::link
