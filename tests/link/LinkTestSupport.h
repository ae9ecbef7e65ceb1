// Pseudo-terminal receivers and a recording sink for the link tests.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "../gps/NmeaTestUtil.h"
#include "ReceiverLink.h"

namespace satwalk::link::test {

// "$<body>*HH\r\n" with the right checksum.
using gps::testing::Sentence;

// An RMC with the given latitude minutes text ("3112.0001") and time.
inline std::string Rmc(const std::string& latitude, const std::string& time = "120000.00") {
    return Sentence("GPRMC," + time + ",A," + latitude + ",N,12128.0000,E,10.5,90.0,150307,,,A");
}

// The far end of a port: the master side of a pseudo-terminal.
class FakeReceiver {
  public:
    FakeReceiver() {
        master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        char name[128];
        if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0 ||
            ::ptsname_r(master_, name, sizeof name) != 0)
            std::abort();
        path_ = name;
    }
    ~FakeReceiver() { HangUp(); }
    const std::string& path() const { return path_; }
    void Send(const std::string& bytes) {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t n = ::write(master_, bytes.data() + done, bytes.size() - done);
            if (n <= 0)
                std::abort();
            done += static_cast<std::size_t>(n);
        }
    }
    void HangUp() { ::close(std::exchange(master_, -1)); }  // -1 after the first: EBADF

  private:
    int master_ = -1;
    std::string path_;
};

// Polls `done` every millisecond for up to `limit`.
inline bool WaitFor(const std::function<bool()>& done,
                    std::chrono::milliseconds limit = std::chrono::milliseconds(3000)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    for (; !done(); std::this_thread::sleep_for(std::chrono::milliseconds(1)))
        if (std::chrono::steady_clock::now() > end)
            return false;
    return true;
}

// Counts what the link delivers and keeps the latitude of every batch.
class RecordingSink final : public LinkSink {
  public:
    explicit RecordingSink(ReceiverLink& l) : link(l) {}
    // The reader may be inside a handler: it ends before the sink goes.
    ~RecordingSink() { StopLink(link); }
    void OnGpsData() override {
        if (onData)
            onData();
        {
            std::lock_guard<std::mutex> g(mutex_);
            latitudes_.emplace_back(link.gps.latitude);
            syncs_.push_back(std::exchange(syncPending_, false));
        }
        changed_.notify_all();
    }
    void OnGpsTime() override {
        std::lock_guard<std::mutex> g(mutex_);
        syncPending_ = true;
    }
    void OnStopCommand() override {
        ++stopCommands;
        if (stopInsideTick)
            stopResult = StopLink(link);
    }
    void OnOtherTalkersOnly() override { ++otherTalkerHints; }
    void OnRecordFailed(int error) override { recordError = error, ++recordFailures; }
    void OnRecordResumed() override { ++recordResumes; }

    std::size_t batches() {
        std::lock_guard<std::mutex> g(mutex_);
        return latitudes_.size();
    }
    // The latitude of a batch (from 0).
    std::string latitude(std::size_t batch) {
        std::lock_guard<std::mutex> g(mutex_);
        return batch < latitudes_.size() ? latitudes_[batch] : "<none>";
    }
    // Per batch: a time sync came first.
    std::vector<bool> syncs() {
        std::lock_guard<std::mutex> g(mutex_);
        return syncs_;
    }
    // Waits for data in the reader's buffer, ticks, and waits until batch
    // `n` is decoded and the reader is idle again.
    bool TickAndWait(std::size_t n) {
        if (!WaitFor([&] { return link.bufferLength > 0; }))
            return false;
        LinkTimerProc(link);
        return WaitBatches(n) &&
               WaitFor([&] { return link.bufferLength == 0 && !link.processPending; });
    }
    bool WaitBatches(std::size_t n) {
        std::unique_lock<std::mutex> g(mutex_);
        return changed_.wait_for(g, std::chrono::seconds(3),
                                 [&] { return latitudes_.size() >= n; });
    }

    ReceiverLink& link;
    bool stopInsideTick = true;  // call StopLink from the stop command
    int stopCommands = 0;        // touched on the ticking thread only
    std::uint32_t stopResult = 0;
    std::function<void()> onData;  // runs inside OnGpsData when set
    std::atomic<int> otherTalkerHints{0}, recordFailures{0}, recordResumes{0}, recordError{0};

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> latitudes_;
    std::vector<bool> syncs_;
    bool syncPending_ = false;
};

// Reads a whole file; "" when missing.
inline std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A fresh empty folder under the temporary directory, removed when the test
// program ends (by the process that made it, not by a child that exits).
inline std::string MakeTempDir() {
    static struct Made {
        pid_t owner = ::getpid();
        std::vector<std::string> folders;
        ~Made() {
            std::error_code error;
            if (::getpid() == owner)
                for (const std::string& f : folders) std::filesystem::remove_all(f, error);
        }
    } made;
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base ? base : "/tmp") + "/satwalk-link-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr)
        std::abort();
    made.folders.push_back(pattern);
    return pattern;
}

// Names of the entries of a folder.
inline std::vector<std::string> ListDir(const std::string& path) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& e : std::filesystem::directory_iterator(path, error))
        names.push_back(e.path().filename());
    return names;
}

}  // namespace satwalk::link::test
