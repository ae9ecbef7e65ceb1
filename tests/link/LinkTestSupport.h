// Pseudo-terminal receivers and a recording sink for the link tests.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "ReceiverLink.h"

namespace satwalk::link::test {

// "$<body>*HH\r\n" with the right checksum.
std::string Sentence(const std::string& body);
// An RMC with the given latitude minutes text ("3112.0001") and time.
std::string Rmc(const std::string& latitude, const std::string& time = "120000.00");

// The far end of a port: the master side of a pseudo-terminal.
class FakeReceiver {
  public:
    FakeReceiver();
    ~FakeReceiver();
    const std::string& path() const { return path_; }
    void Send(const std::string& bytes);
    void HangUp();

  private:
    int master_ = -1;
    std::string path_;
};

// Polls `done` every millisecond for up to `limit`.
bool WaitFor(const std::function<bool()>& done,
             std::chrono::milliseconds limit = std::chrono::milliseconds(3000));

// Counts what the link delivers and keeps the latitude of every batch.
class RecordingSink final : public LinkSink {
  public:
    explicit RecordingSink(ReceiverLink& l) : link(l) {}
    void OnGpsData() override;
    void OnGpsTime() override;
    void OnStopCommand() override;

    std::size_t batches();
    std::string latitude(std::size_t batch);  // from 0
    std::vector<bool> syncs();                // per batch: a time sync came first
    bool WaitBatches(std::size_t n);

    ReceiverLink& link;
    bool stopInsideTick = true;  // call StopLink from the stop command
    int stopCommands = 0;        // touched on the ticking thread only
    std::uint32_t stopResult = 0;
    std::function<void()> onData;  // runs inside OnGpsData when set

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> latitudes_;
    std::vector<bool> syncs_;
    bool syncPending_ = false;
};

// Reads a whole file; "" when missing.
std::string ReadFile(const std::string& path);
// A fresh empty folder under the temporary directory.
std::string MakeTempDir();
// Names of the entries of a folder.
std::vector<std::string> ListDir(const std::string& path);

}  // namespace satwalk::link::test
