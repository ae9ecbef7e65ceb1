#include "LinkTestSupport.h"

#include <dirent.h>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace satwalk::link::test {

std::string Sentence(const std::string& body) {
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    char tail[8];
    std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
    return "$" + body + tail;
}

std::string Rmc(const std::string& latitude, const std::string& time) {
    return Sentence("GPRMC," + time + ",A," + latitude + ",N,12128.0000,E,10.5,90.0,150307,,,A");
}

FakeReceiver::FakeReceiver() {
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0)
        std::abort();
    char name[128];
    if (::ptsname_r(master_, name, sizeof name) != 0)
        std::abort();
    path_ = name;
}

FakeReceiver::~FakeReceiver() {
    HangUp();
}

void FakeReceiver::Send(const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(master_, bytes.data() + done, bytes.size() - done);
        if (n <= 0)
            std::abort();
        done += static_cast<std::size_t>(n);
    }
}

void FakeReceiver::HangUp() {
    if (master_ >= 0)
        ::close(master_);
    master_ = -1;
}

bool WaitFor(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void RecordingSink::OnGpsData() {
    if (onData)
        onData();
    {
        std::lock_guard<std::mutex> g(mutex_);
        latitudes_.emplace_back(link.gps.latitude);
        syncs_.push_back(syncPending_);
        syncPending_ = false;
    }
    changed_.notify_all();
}

void RecordingSink::OnGpsTime() {
    std::lock_guard<std::mutex> g(mutex_);
    syncPending_ = true;
}

void RecordingSink::OnStopCommand() {
    ++stopCommands;
    if (stopInsideTick)
        stopResult = StopLink(link);
}

std::size_t RecordingSink::batches() {
    std::lock_guard<std::mutex> g(mutex_);
    return latitudes_.size();
}

std::string RecordingSink::latitude(std::size_t batch) {
    std::lock_guard<std::mutex> g(mutex_);
    return batch < latitudes_.size() ? latitudes_[batch] : "<none>";
}

std::vector<bool> RecordingSink::syncs() {
    std::lock_guard<std::mutex> g(mutex_);
    return syncs_;
}

bool RecordingSink::WaitBatches(std::size_t n) {
    std::unique_lock<std::mutex> g(mutex_);
    return changed_.wait_for(g, std::chrono::seconds(3), [&] { return latitudes_.size() >= n; });
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string MakeTempDir() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base ? base : "/tmp") + "/satwalk-link-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr)
        std::abort();
    return pattern;
}

std::vector<std::string> ListDir(const std::string& path) {
    std::vector<std::string> names;
    if (DIR* d = ::opendir(path.c_str())) {
        while (const dirent* e = ::readdir(d)) {
            const std::string name = e->d_name;
            if (name != "." && name != "..")
                names.push_back(name);
        }
        ::closedir(d);
    }
    return names;
}

}  // namespace satwalk::link::test
