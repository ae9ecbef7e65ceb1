// The NMEA relay under load, as a whole run (not Google Benchmark: the
// figures are a reader's time per batch and a process's memory over time).
// Sixteen clients at 10 Hz: fifteen read everything, one never reads (a
// small receive buffer, as a stuck plotter would have). Meanwhile a
// client connects and goes a thousand times, and others send garbage.
// Prints the reader's extra time per batch (the Publish call), how long
// the stuck client was served before being dropped and how long after its
// backlog began, the bytes every reader got against those sent, and the
// resident memory at the start and end.
//   build/default/bench/bench_relay [SECONDS]
// Budgets: reader's extra time per batch under 50 us; a client that stops
// reading dropped within 2 s; no memory growth.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "NmeaRelay.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

int Connect(std::uint16_t port, int receiveBuffer) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (receiveBuffer > 0)
        ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = htons(port);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

long RssKb() {
    std::ifstream in("/proc/self/status");
    std::string key;
    long value = 0;
    while (in >> key) {
        if (key == "VmRSS:") {
            in >> value;
            return value;
        }
        in.ignore(1 << 12, '\n');
    }
    return 0;
}

std::string LoadAverage() {
    std::ifstream in("/proc/loadavg");
    std::string one;
    in >> one;
    return one;
}

// One epoch of a 10 Hz receiver: RMC, GGA, GSA and three GSV, about 450 bytes.
std::string Epoch(int k) {
    char buf[1024];
    const int n =
        std::snprintf(buf, sizeof buf,
                      "$GPRMC,12%04d.%d0,A,3112.%04d,N,12128.0000,E,10.5,90.0,150307,,,A*00\r\n"
                      "$GPGGA,12%04d.%d0,3112.%04d,N,12128.0000,E,1,08,1.0,12.0,M,8.0,M,,*00\r\n"
                      "$GPGSA,A,3,01,02,03,04,05,06,07,08,,,,,2.0,1.0,1.7*00\r\n"
                      "$GPGSV,3,1,12,01,10,0,30,02,20,40,31,03,30,80,32,04,40,120,33*00\r\n"
                      "$GPGSV,3,2,12,05,10,0,30,06,20,40,31,07,30,80,32,08,40,120,33*00\r\n"
                      "$GPGSV,3,3,12,09,10,0,30,10,20,40,31,11,30,80,32,12,40,120,33*00\r\n",
                      k / 10 % 10000, k % 10, k % 10000, k / 10 % 10000, k % 10, k % 10000);
    return std::string(buf, static_cast<std::size_t>(n));
}

}  // namespace

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::max(5, std::atoi(argv[1])) : 20;
    satwalk::link::NmeaRelay relay;
    std::string error;
    if (!relay.Start("127.0.0.1", 0, error)) {
        std::fprintf(stderr, "bench_relay: cannot listen: %s\n", error.c_str());
        return 1;
    }
    const std::uint16_t port = relay.Port();

    // Fifteen readers, each counting what it gets; two of them also talk.
    constexpr int kReaders = 15;
    std::atomic<bool> stop{false};
    std::vector<std::atomic<long long>> got(kReaders);
    std::vector<std::thread> readers;
    for (int i = 0; i < kReaders; ++i) {
        const int fd = Connect(port, 0);
        readers.emplace_back([fd, i, &got, &stop] {
            char buf[8192];
            while (!stop) {
                const ssize_t n = ::recv(fd, buf, sizeof buf, MSG_DONTWAIT);
                if (n > 0)
                    got[static_cast<std::size_t>(i)] += n;
                else
                    std::this_thread::sleep_for(2ms);
                if (i < 2) [[maybe_unused]]
                    const ssize_t w = ::send(fd, "garbage\r\n", 9, MSG_DONTWAIT | MSG_NOSIGNAL);
            }
            ::close(fd);
        });
    }
    const int stuck = Connect(port, 4096);
    while (relay.Clients() < kReaders + 1) std::this_thread::sleep_for(1ms);

    // A client that connects and goes, a thousand times, while it all runs.
    std::thread churn([port, &stop] {
        for (int i = 0; i < 1000 && !stop; ++i) {
            const int fd = Connect(port, 0);
            if (fd >= 0)
                ::close(fd);
            std::this_thread::sleep_for(5ms);
        }
    });

    const auto start = Clock::now();
    long rssStart = 0;
    long long sent = 0;
    std::vector<double> publishUs;
    std::vector<double> floorUs;
    double droppedAfter = -1;
    double fellBehind = -1;  // the stuck client's receive buffer stopped filling
    int stuckQueued = -1;
    auto stuckSince = start;
    const int batches = seconds * 10;
    for (int k = 0; k < batches; ++k) {
        const std::string epoch = Epoch(k);
        // The same stopwatch around a copy of the epoch alone: the machine's
        // own noise (preemption) at this moment, for comparison.
        const auto n0 = Clock::now();
        std::string copy = epoch;
        const auto n1 = Clock::now();
        floorUs.push_back(std::chrono::duration<double, std::micro>(n1 - n0).count() +
                          static_cast<double>(copy.size() & 0));
        const auto t0 = Clock::now();
        relay.Publish(epoch.data(), epoch.size());
        const auto t1 = Clock::now();
        publishUs.push_back(std::chrono::duration<double, std::micro>(t1 - t0).count());
        sent += static_cast<long long>(epoch.size());
        if (droppedAfter < 0 && relay.Dropped() > 0)
            droppedAfter = std::chrono::duration<double>(t1 - start).count();
        if (fellBehind < 0) {
            int queued = 0;
            ::ioctl(stuck, FIONREAD, &queued);
            if (queued != stuckQueued) {
                stuckQueued = queued;
                stuckSince = t1;
            } else if (t1 - stuckSince > 500ms) {
                fellBehind = std::chrono::duration<double>(stuckSince - start).count();
            }
        }
        if (k == 20)
            rssStart = RssKb();
        std::this_thread::sleep_until(start + (k + 1) * 100ms);
    }
    std::this_thread::sleep_for(500ms);
    stop = true;
    churn.join();
    for (std::thread& t : readers) t.join();
    const long rssEnd = RssKb();

    ::close(stuck);

    std::sort(publishUs.begin(), publishUs.end());
    std::sort(floorUs.begin(), floorUs.end());
    const auto at = [](const std::vector<double>& v, double q) {
        return v[std::min(v.size() - 1,
                          static_cast<std::size_t>(q * static_cast<double>(v.size())))];
    };
    long long minGot = sent;
    for (const auto& g : got) minGot = std::min<long long>(minGot, g.load());
    std::printf("relay, 16 clients, 10 Hz, %d s, %lld bytes sent to each\n", seconds, sent);
    std::printf(
        "  reader's extra time per batch (Publish): median %.2f us, p99 %.2f us, max %.2f "
        "us (budget 50 us)\n",
        at(publishUs, 0.5), at(publishUs, 0.99), publishUs.back());
    std::printf(
        "  (the same stopwatch around a copy of the epoch: median %.2f us, p99 %.2f us, "
        "max %.2f us; load average now %s)\n",
        at(floorUs, 0.5), at(floorUs, 0.99), floorUs.back(), LoadAverage().c_str());
    if (droppedAfter >= 0) {
        std::printf(
            "  stuck client: its receive buffer full (%d bytes) %.2f s after the start, "
            "dropped at %.2f s: %.2f s after it fell behind (budget 2 s)\n",
            stuckQueued, fellBehind, droppedAfter, droppedAfter - fellBehind);
    } else {
        std::printf("  stuck client NOT dropped\n");
    }
    std::printf("  readers: the slowest got %lld of %lld bytes; clients now %zu, dropped %zu\n",
                minGot, sent, relay.Clients(), relay.Dropped());
    std::printf("  RSS %ld kB after 2 s, %ld kB at the end (budget: no growth)\n", rssStart,
                rssEnd);
    return 0;
}
