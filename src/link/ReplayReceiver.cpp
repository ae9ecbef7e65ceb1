#include "ReplayReceiver.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace satwalk::link {

namespace {

using namespace std::chrono_literals;

bool IsRmcLine(std::string_view line) {
    // "$GPRMC", "$GNRMC", ...: the sentence type follows a two-letter talker.
    return line.size() >= 6 && line[0] == '$' && line.substr(3, 3) == "RMC";
}

}  // namespace

ReplayReceiver::~ReplayReceiver() {
    Stop();
}

bool ReplayReceiver::Open() {
    CloseTerminal();
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char name[128];
    if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0 ||
        ::ptsname_r(master_, name, sizeof name) != 0) {
        error_ = std::string("cannot open a pseudo-terminal: ") + std::strerror(errno);
        CloseTerminal();
        return false;
    }
    slave_ = ::open(name, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (slave_ < 0) {
        error_ = std::string("cannot open ") + name + ": " + std::strerror(errno);
        CloseTerminal();
        return false;
    }
    // Raw and silent until the link sets it up, so nothing is echoed back.
    termios tio{};
    if (::tcgetattr(slave_, &tio) == 0) {
        ::cfmakeraw(&tio);
        ::tcsetattr(slave_, TCSANOW, &tio);
    }
    ::fcntl(master_, F_SETFL, ::fcntl(master_, F_GETFL) | O_NONBLOCK);
    slavePath_ = name;
    return true;
}

bool ReplayReceiver::LoadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error_ = "cannot open " + path + ": " + std::strerror(errno);
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    log_ = text.str();
    return true;
}

void ReplayReceiver::SetLog(std::string text) {
    log_ = std::move(text);
}

std::vector<std::string_view> ReplayReceiver::SplitEpochs(std::string_view log) {
    std::vector<std::string_view> epochs;
    std::size_t epochStart = 0;
    std::size_t pos = 0;
    bool sawRmc = false;
    while (pos < log.size()) {
        std::size_t end = log.find('\n', pos);
        end = end == std::string_view::npos ? log.size() : end + 1;
        if (IsRmcLine(log.substr(pos, end - pos))) {
            if (sawRmc && pos > epochStart) {
                epochs.push_back(log.substr(epochStart, pos - epochStart));
                epochStart = pos;
            }
            sawRmc = true;
        }
        pos = end;
    }
    if (epochStart < log.size())
        epochs.push_back(log.substr(epochStart));
    return epochs;
}

bool ReplayReceiver::Start(const Options& options) {
    if (master_ < 0 || writer_.joinable() || log_.empty() || !(options.rate > 0))
        return false;
    {
        std::lock_guard<std::mutex> g(mutex_);
        stop_ = false;
    }
    finished_ = false;
    writer_ = std::thread(&ReplayReceiver::Play, this, options);
    return true;
}

void ReplayReceiver::Stop() {
    {
        std::lock_guard<std::mutex> g(mutex_);
        stop_ = true;
    }
    wake_.notify_all();
    if (writer_.joinable())
        writer_.join();
    CloseTerminal();
}

void ReplayReceiver::WaitFinished() {
    std::unique_lock<std::mutex> g(mutex_);
    wake_.wait(g, [this] { return stop_ || finished_; });
}

void ReplayReceiver::CloseTerminal() {
    if (slave_ >= 0)
        ::close(slave_);
    if (master_ >= 0)
        ::close(master_);
    slave_ = master_ = -1;
}

bool ReplayReceiver::WriteEpoch(std::string_view bytes) {
    // Nothing reads the far end's output; drop it so it cannot pile up.
    char sink[256];
    while (::read(master_, sink, sizeof sink) > 0) {
    }
    while (!bytes.empty()) {
        const ssize_t n = ::write(master_, bytes.data(), bytes.size());
        if (n > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(n));
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno != EAGAIN)
            return false;
        // The terminal's queue is full (nobody reads): wait a little, then
        // drop the rest of the epoch as a receiver would lose it.
        pollfd p{master_, POLLOUT, 0};
        if (::poll(&p, 1, 100) <= 0)
            return true;
        std::lock_guard<std::mutex> g(mutex_);
        if (stop_)
            return false;
    }
    return true;
}

void ReplayReceiver::Play(Options options) {
    // Plays the epochs; false when stopped or the terminal failed.
    const auto playAll = [&]() -> bool {
        const std::vector<std::string_view> epochs = SplitEpochs(log_);
        const auto interval = std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::duration<double>(1.0 / options.rate));
        auto next = std::chrono::steady_clock::now();
        bool more = !epochs.empty();
        while (more) {
            for (const std::string_view epoch : epochs) {
                {
                    std::unique_lock<std::mutex> g(mutex_);
                    if (wake_.wait_until(g, next, [this] { return stop_; }))
                        return false;
                }
                if (!WriteEpoch(epoch))
                    return false;
                ++epochs_;
                next += interval;
            }
            more = options.loop;
        }
        // Time for the last epoch to be read and decoded (at least one and a
        // half watchdog ticks).
        const auto hold = std::max(next, std::chrono::steady_clock::now() + 1500ms);
        std::unique_lock<std::mutex> g(mutex_);
        wake_.wait_until(g, hold, [this] { return stop_; });
        return true;
    };
    playAll();
    {
        std::lock_guard<std::mutex> g(mutex_);
        finished_ = true;
    }
    wake_.notify_all();
}

}  // namespace satwalk::link
