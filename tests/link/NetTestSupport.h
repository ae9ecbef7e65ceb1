// Loopback peers for the network source and relay tests: a one-shot TCP
// server, a process group of our own (gpsd, gpsfake, gpspipe), and a sink
// that keeps the fix of every batch. Everything on 127.0.0.1, every wait
// bounded.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "LinkTestSupport.h"
#include "ReceiverLink.h"

namespace satwalk::link::test {

using namespace std::chrono_literals;

inline sockaddr_in Loopback(std::uint16_t port) {
    return {AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
}

// A listening socket on 127.0.0.1 with a port of the kernel's choosing.
inline int ListenLoopback(std::uint16_t& port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in a = Loopback(0);
    socklen_t size = sizeof a;
    if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0 ||
        ::listen(fd, 4) != 0 || ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &size) != 0)
        std::abort();
    port = ntohs(a.sin_port);
    return fd;
}

// A loopback port that nothing listens on right now.
inline std::uint16_t FreePort() {
    std::uint16_t port = 0;
    ::close(ListenLoopback(port));
    return port;
}

inline int ConnectLoopback(std::uint16_t port, int receiveBuffer = 0) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (receiveBuffer > 0)
        ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    const sockaddr_in a = Loopback(port);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&a), sizeof a) == 0)
        return fd;
    ::close(fd);
    return -1;
}

inline void SendAll(int fd, const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t n = ::send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n <= 0)
            return;
        done += static_cast<std::size_t>(n);
    }
}

// Reads what arrives within `limit`, up to `want` bytes; ends early at EOF.
inline std::string ReceiveFor(int fd, std::size_t want, std::chrono::milliseconds limit) {
    std::string got;
    char buf[4096];
    for (const auto end = std::chrono::steady_clock::now() + limit;
         got.size() < want && std::chrono::steady_clock::now() < end;) {
        const ssize_t n = ::recv(fd, buf, sizeof buf, MSG_DONTWAIT);
        if (n == 0)
            break;
        if (n > 0)
            got.append(buf, static_cast<std::size_t>(n));
        else
            std::this_thread::sleep_for(2ms);
    }
    return got;
}

// Accepts one connection on a thread and runs `serve` on it; the
// connection is closed when `serve` returns.
class OneShotServer {
  public:
    explicit OneShotServer(std::function<void(int fd)> serve)
        : listen_(ListenLoopback(port_)), thread_([this, serve = std::move(serve)] {
              pollfd p{listen_, POLLIN, 0};
              const int fd = ::poll(&p, 1, 5000) == 1
                                 ? ::accept4(listen_, nullptr, nullptr, SOCK_CLOEXEC)
                                 : -1;
              if (fd >= 0)
                  serve(fd), ::close(fd);
          }) {}
    ~OneShotServer() { thread_.join(), ::close(listen_); }
    std::uint16_t port() const { return port_; }

  private:
    std::uint16_t port_ = 0;
    int listen_;
    std::thread thread_;
};

// A program run in a process group of its own, killed with its children.
class Child {
  public:
    explicit Child(std::vector<std::string> argv) : pid_(::fork()) {
        if (pid_ == 0) {
            ::setpgid(0, 0);
            std::vector<char*> args;
            for (std::string& a : argv) args.push_back(a.data());
            args.push_back(nullptr);
            ::execvp(args[0], args.data());
            ::_exit(127);
        }
        ::setpgid(pid_, pid_);
    }
    ~Child() { Kill(); }
    void Kill() {
        if (pid_ > 0)
            ::kill(-pid_, SIGKILL), ::waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }

  private:
    pid_t pid_;
};

inline bool WaitListening(std::uint16_t port) {
    return WaitFor(
        [port] {
            const int fd = ConnectLoopback(port);
            return fd >= 0 && ::close(fd) == 0;
        },
        10000ms);
}

struct Fix {
    std::string time, latitude, longitude;
    bool operator==(const Fix&) const = default;
};

// Keeps the fix of every batch and the loss reason the watchdog gave.
class FixSink final : public LinkSink {
  public:
    explicit FixSink(ReceiverLink& l) : link_(l) {}
    ~FixSink() { StopLink(link_); }
    void OnGpsData() override {
        std::lock_guard<std::mutex> g(mutex_);
        fixes_.push_back({link_.gps.utcTime, link_.gps.latitude, link_.gps.longitude});
    }
    void OnGpsTime() override {}
    void OnStopCommand() override { lost = link_.linkLossReason.load(); }
    std::vector<Fix> fixes() {
        std::lock_guard<std::mutex> g(mutex_);
        return fixes_;
    }
    void Reset() {
        std::lock_guard<std::mutex> g(mutex_);
        fixes_.clear();
        lost = 0;
    }
    std::atomic<std::uint32_t> lost{0};

  private:
    ReceiverLink& link_;
    std::mutex mutex_;
    std::vector<Fix> fixes_;
};

// The log cut before each RMC, so that each piece is one epoch.
inline std::vector<std::string> Epochs(const std::string& log) {
    std::vector<std::string> epochs;
    for (std::size_t at = 0, next; at < log.size(); at = next) {
        next = std::min(log.find("$GPRMC", at + 1), log.size());
        epochs.push_back(log.substr(at, next - at));
    }
    return epochs;
}

// The fix after each RMC of a log, decoded line by line.
inline std::vector<Fix> FixesOfLog(const std::string& log) {
    gps::GpsState state;
    gps::GsvAssembly assembly;
    std::vector<Fix> fixes;
    for (std::size_t at = 0, end; at < log.size(); at = end + 1) {
        end = std::min(log.find('\n', at), log.size());
        const std::string_view line(log.data() + at, end - at);
        gps::ParseNmeaBuffer(state, assembly, line, nullptr);
        if (line.substr(3, 4) == "RMC,")
            fixes.push_back({state.utcTime, state.latitude, state.longitude});
    }
    return fixes;
}

// The lines of the demo drive from its first valid fix, `epochs` RMCs long.
inline std::string DemoExcerpt(int epochs) {
    const std::string all = ReadFile(SATWALK_DEMO_LOG);
    const std::size_t from = all.find("$GPRMC,015850.000,A");
    std::size_t to = from;
    for (int i = 0; i <= epochs && to != std::string::npos; ++i) to = all.find("$GPRMC", to + 1);
    return all.substr(from, to == std::string::npos ? std::string::npos : to - from);
}

}  // namespace satwalk::link::test
