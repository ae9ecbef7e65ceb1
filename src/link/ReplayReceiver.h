// A receiver made of a recorded NMEA log: a pseudo-terminal whose far end is
// a thread that writes the log at the pace it was recorded, one second per
// RMC epoch (scaled by a rate). The link opens slavePath() like any port, so
// everything above the port runs for real without a receiver.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace satwalk::link {

class ReplayReceiver {
  public:
    struct Options {
        double rate = 1.0;  // epochs per second
        bool loop = false;  // start again at the end instead of hanging up
    };

    ReplayReceiver() = default;
    ~ReplayReceiver();  // Stop()
    ReplayReceiver(const ReplayReceiver&) = delete;
    ReplayReceiver& operator=(const ReplayReceiver&) = delete;

    // Opens the pseudo-terminal (raw, no echo). False with error() set.
    bool Open();
    // The path a link opens, e.g. "/dev/pts/7"; empty before Open().
    const std::string& slavePath() const { return slavePath_; }

    // The log to play: read from a file (false with error() set) or given.
    bool LoadFile(const std::string& path);
    void SetLog(std::string text);

    // Starts playing. False when not open, already playing, or the log has
    // no sentence.
    bool Start(const Options& options);
    // Stops playing and hangs up the terminal (the link sees the device gone).
    void Stop();
    // Waits until the log has been played to its end (never with loop) or
    // Stop() was called.
    void WaitFinished();
    bool finished() const { return finished_; }
    // Epochs written so far (across loops).
    unsigned long epochsWritten() const { return epochs_; }

    const std::string& error() const { return error_; }

    // The log cut into epochs: each starts at an RMC sentence (lines before
    // the first RMC join the first epoch). Views into `log`.
    static std::vector<std::string_view> SplitEpochs(std::string_view log);

  private:
    void Play(Options options);
    bool WriteEpoch(std::string_view bytes);
    void CloseTerminal();

    int master_ = -1;
    int slave_ = -1;  // held so the terminal does not hang up between users
    std::string slavePath_;
    std::string log_;
    std::string error_;
    std::thread writer_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stop_ = false;  // guarded by mutex_
    std::atomic<bool> finished_{false};
    std::atomic<unsigned long> epochs_{0};
};

}  // namespace satwalk::link
