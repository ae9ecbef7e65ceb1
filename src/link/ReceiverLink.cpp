#include "ReceiverLink.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <utility>

#include "NetSource.h"
#include "PortNames.h"
#include "SourceAddress.h"
#include "Strings.h"
#include "TtyBaud.h"

namespace satwalk::link {

namespace {

using namespace std::chrono_literals;

// Forwards the decoder's time-sync notification to the link's sink.
class TimeForwarder final : public gps::TimeSyncSink {
  public:
    explicit TimeForwarder(LinkSink* s) : sink_(s) {}
    void OnGpsTime() override { sink_->OnGpsTime(); }

  private:
    LinkSink* sink_;
};

speed_t BaudConstant(std::uint32_t rate) {
    switch (rate) {
        case 4800:
            return B4800;
        case 9600:
            return B9600;
        case 19200:
            return B19200;
        case 38400:
            return B38400;
        case 57600:
            return B57600;
        default:
            return B0;
    }
}

bool IsOfferedBaud(std::uint32_t rate) {
    for (const std::uint32_t r : common::kBaudRates) {
        if (r == rate)
            return true;
    }
    return false;
}

// A tty whose device went away, or a Bluetooth connection that broke (the
// receiver walked out of range or was switched off), or a network source
// that refused or dropped the connection.
bool IsGoneError(int err) {
    return err == EIO || err == ENODEV || err == ENXIO || err == ECONNRESET || err == ENOTCONN ||
           err == ETIMEDOUT || err == EHOSTDOWN || err == EHOSTUNREACH || err == ECONNREFUSED ||
           err == EPIPE || err == ENETUNREACH;
}

void Wake(const ReceiverLink& link) {
    if (link.wakeFd < 0)
        return;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t n = ::write(link.wakeFd, &one, sizeof one);
}

void DrainWake(const ReceiverLink& link) {
    std::uint64_t value;
    [[maybe_unused]] const ssize_t n = ::read(link.wakeFd, &value, sizeof value);
}

void ClosePortFd(ReceiverLink& link) {
    link.portOpen = false;
    if (link.portFd >= 0) {
        ::ioctl(link.portFd, TIOCNXCL);  // the next user may open the device again
        ::close(link.portFd);
    }
    link.portFd = -1;
}

bool FailOpen(ReceiverLink& link, int fd, const char* code) {
    if (fd >= 0)
        ::close(fd);
    link.lastErrorCode = code;
    DeregisterVirtualPort(link);
    return false;
}

bool Opened(ReceiverLink& link, int fd) {
    link.portFd = fd;
    link.portOpen = true;
    link.deviceGone = false;
    link.noDataTicks = 0;
    link.linkLossReason = kLossNone;
    return true;
}

// True when a poll of the port reports the device gone.
bool PortVanished(int fd) {
    pollfd p{fd, POLLIN, 0};
    if (::poll(&p, 1, 0) < 0)
        return false;
    return (p.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

// The watchdog closes the link: the reader leaves its loop; the descriptor
// itself is closed by StopLink once the reader is gone.
void CloseByWatchdog(ReceiverLink& link) {
    link.portOpen = false;
    Wake(link);
}

// Takes the lock unless the link is stopping meanwhile (the stop may be
// running inside a tick that holds the lock).
bool LockUnlessStopping(ReceiverLink& link) {
    // Polled rather than waited on with a time-out: the lock is held only
    // for a tick, and a plain try-lock is what every thread checker knows.
    while (!link.lock.try_lock()) {
        if (link.stopRequested || !link.portOpen)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

void MarkReaderEnded(ReceiverLink& link) {
    std::lock_guard<std::mutex> g(link.readerMutex);
    link.readerActive = false;
    link.readerListening = false;
    link.readerEnded.notify_all();
}

}  // namespace

ReceiverLink::ReceiverLink() {
    wakeFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
}

ReceiverLink::~ReceiverLink() {
    if (running || reader.joinable())
        StopLink(*this);
    {
        // A reader that outlived the stop's bound ends once its handler returns.
        std::unique_lock<std::mutex> g(readerMutex);
        readerEnded.wait(g, [this] { return !readerActive; });
    }
    ClosePortFd(*this);
    DeregisterVirtualPort(*this);
    if (wakeFd >= 0)
        ::close(wakeFd);
}

bool RegisterBluetoothPort(ReceiverLink& link, std::uint64_t address) {
    DeregisterVirtualPort(link);
    if (link.portDriver != nullptr) {
        for (int index = kVirtualPortFirst; index >= kVirtualPortLast; --index) {
            if (link.portDriver->RegisterPort(index, address)) {
                link.virtualPortRegistered = true;
                link.virtualPortIndex = index;
                link.portName = ComName(index);
                link.devicePath.clear();
                return true;
            }
        }
    }
    link.lastErrorCode = common::err::kBluetoothPort;
    return false;
}

void DeregisterVirtualPort(ReceiverLink& link) {
    if (!link.virtualPortRegistered)
        return;
    if (link.portDriver != nullptr)
        link.portDriver->DeregisterPort(link.virtualPortIndex);
    link.virtualPortRegistered = false;
    link.virtualPortIndex = -1;
}

bool OpenPort(ReceiverLink& link) {
    ClosePortFd(link);
    link.net.reset();
    int fd = -1;
    if (link.virtualPortRegistered && link.portDriver != nullptr) {
        fd = link.portDriver->ConnectPort(link.virtualPortIndex);
        if (fd < 0)
            return FailOpen(link, -1, common::err::kPortOpen);
        if (::isatty(fd) == 0) {
            // A connected socket: no line settings, only reads that never wait.
            const int flags = ::fcntl(fd, F_GETFL);
            if (flags < 0 || ::fcntl(fd, F_SETFL, flags | O_NONBLOCK) != 0)
                return FailOpen(link, fd, common::err::kPortQueues);
            ::fcntl(fd, F_SETFD, FD_CLOEXEC);
            return Opened(link, fd);
        }
    } else {
        const std::string path =
            link.devicePath.empty() ? ResolvePortName(link.portName, {}) : link.devicePath;
        const SourceAddress source = ParseSourceAddress(path);
        if (source.kind != SourceKind::Tty) {
            fd = NetSource::Begin(source, link.net);
            if (fd < 0)
                return FailOpen(link, -1, common::err::kPortOpen);
            return Opened(link, fd);
        }
        // Non-blocking, so that a port without carrier does not hold the open.
        fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            return FailOpen(link, -1, common::err::kPortOpen);
    }

    // A tty that is still being set up by the kernel may refuse for a moment;
    // something that is not a tty never becomes one, so that is not retried.
    termios tio{};
    bool haveState = false;
    for (int attempt = 0; attempt < link.stateAttempts; ++attempt) {
        if (::tcgetattr(fd, &tio) == 0) {
            haveState = true;
            break;
        }
        if (errno == ENOTTY || errno == EBADF || errno == EINVAL)
            break;
        if (attempt + 1 < link.stateAttempts) {
            std::this_thread::sleep_for(std::chrono::milliseconds(link.stateRetryMs));
        }
    }
    if (!haveState)
        return FailOpen(link, fd, common::err::kPortGetState);
    ::ioctl(fd, TIOCEXCL);  // no sharing; ignored where unsupported

    // Line settings: raw 8-bit input, the frame, XON/XOFF, no handshake.
    if (!IsOfferedBaud(link.baudRate))
        return FailOpen(link, fd, common::err::kPortSetState);
    const speed_t speed = BaudConstant(link.baudRate);
    tio.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR |
                                          ICRNL | IXANY | INPCK);
    tio.c_iflag |= IXON | IXOFF;
    tio.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    tio.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
    tio.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS | HUPCL);
    switch (link.byteSize) {
        case 5:
            tio.c_cflag |= CS5;
            break;
        case 6:
            tio.c_cflag |= CS6;
            break;
        case 7:
            tio.c_cflag |= CS7;
            break;
        default:
            tio.c_cflag |= CS8;
            break;
    }
    if (link.parity == 1)
        tio.c_cflag |= PARENB | PARODD;
    if (link.parity == 2)
        tio.c_cflag |= PARENB;
    if (link.stopBits != 0)
        tio.c_cflag |= CSTOPB;
    tio.c_cflag |= CLOCAL | CREAD;
    const speed_t frameSpeed = speed != B0 ? speed : B9600;  // 14400 is set below
    ::cfsetispeed(&tio, frameSpeed);
    ::cfsetospeed(&tio, frameSpeed);
    if (::tcsetattr(fd, TCSANOW, &tio) != 0)
        return FailOpen(link, fd, common::err::kPortSetState);
    // DTR and RTS dropped; a pseudo-terminal has no modem lines to drop.
    const int lines = TIOCM_DTR | TIOCM_RTS;
    ::ioctl(fd, TIOCMBIC, &lines);

    // Reads return at once with whatever has arrived.
    tio.c_cc[VMIN] = 0;
    tio.c_cc[VTIME] = 0;
    if (::tcsetattr(fd, TCSANOW, &tio) != 0)
        return FailOpen(link, fd, common::err::kPortTimeouts);
    if (speed == B0 && !SetArbitraryBaud(fd, link.baudRate)) {
        return FailOpen(link, fd, common::err::kPortSetState);
    }

    // Reads never wait, whatever the open left behind.
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags < 0 || ::fcntl(fd, F_SETFL, flags | O_NONBLOCK) != 0) {
        return FailOpen(link, fd, common::err::kPortQueues);
    }
    if (::tcflush(fd, TCIOFLUSH) != 0)
        return FailOpen(link, fd, common::err::kPortPurge);
    return Opened(link, fd);
}

bool StartLink(ReceiverLink& link) {
    if (link.recordNmea)
        MakeNmeaLogPath(link);

    if (link.timer != nullptr && !link.timer->Start()) {
        ClosePortFd(link);
        DeregisterVirtualPort(link);
        link.lastErrorCode = common::err::kLinkTimer;
        return false;
    }
    const auto failThread = [&link] {
        if (link.timer != nullptr)
            link.timer->Stop();
        ClosePortFd(link);
        DeregisterVirtualPort(link);
        link.lastErrorCode = common::err::kReaderStart;
        return false;
    };
    {
        // A reader left over from a stop that timed out must be gone first.
        Wake(link);
        std::unique_lock<std::mutex> g(link.readerMutex);
        if (!link.readerEnded.wait_for(g, std::chrono::milliseconds(kStopWaitMs),
                                       [&link] { return !link.readerActive; })) {
            return failThread();
        }
    }
    if (link.reader.joinable())
        link.reader.join();
    if (link.wakeFd < 0)
        link.wakeFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (link.wakeFd < 0 || link.portFd < 0)
        return failThread();
    DrainWake(link);

    link.stopRequested = false;
    link.processPending = false;
    link.noDataTicks = 0;
    link.watchdogTicks = 0;
    link.runTicks = 0;
    link.talkersWatch = OtherTalkersWatch{};
    link.recordFailing = false;
    link.recordLength = 0;
    {
        std::lock_guard<std::mutex> g(link.readerMutex);
        link.readerActive = true;
        link.readerListening = false;
    }
    try {
        link.reader = std::thread(ReaderThread, std::ref(link));
    } catch (...) {
        MarkReaderEnded(link);
        return failThread();
    }
    {
        std::unique_lock<std::mutex> g(link.readerMutex);
        link.readerEnded.wait_for(g, std::chrono::milliseconds(kStopWaitMs),
                                  [&link] { return link.readerListening || !link.readerActive; });
    }
    link.running = true;
    return true;
}

std::uint32_t StopLink(ReceiverLink& link) {
    if (link.timer != nullptr)
        link.timer->Stop();
    link.processPending = false;

    link.stopRequested = true;
    Wake(link);
    if (link.portFd >= 0 && link.portOpen)
        ::tcflush(link.portFd, TCIOFLUSH);

    if (link.reader.joinable()) {
        bool ended = false;
        if (link.reader.get_id() != std::this_thread::get_id()) {
            std::unique_lock<std::mutex> g(link.readerMutex);
            ended = link.readerEnded.wait_for(g, std::chrono::milliseconds(kStopWaitMs),
                                              [&link] { return !link.readerActive; });
        }
        if (ended) {
            link.reader.join();
        } else {
            // The reader is held up in its handler; it ends by itself once
            // that returns, as it finds stopRequested set.
            link.reader.detach();
            link.lastErrorCode = common::err::kReaderClose;
        }
    }
    ClosePortFd(link);
    DeregisterVirtualPort(link);

    link.noDataTicks = 0;
    link.watchdogTicks = 0;
    link.running = false;
    link.fixValid = false;
    return link.linkLossReason;
}

void ClearFixBlocks(ReceiverLink& link) {
    link.gps.ClearAllBlocks();
}

void ReaderThread(ReceiverLink& link) {
    // Below the UI in priority, as the original reader was.
    const int tid = static_cast<int>(::gettid());
    errno = 0;
    const int nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(tid));
    if (errno == 0)
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(tid), nice + 1);

    link.processPending = false;
    link.buffer[0] = '\0';
    link.bufferLength = 0;
    const int fd = link.portFd;
    if (fd < 0 || !link.portOpen) {
        MarkReaderEnded(link);
        return;
    }
    ::tcflush(fd, TCIOFLUSH);
    {
        std::lock_guard<std::mutex> g(link.readerMutex);
        link.readerListening = true;
        link.readerEnded.notify_all();
    }

    char chunk[kReadSize + 1];
    bool watchPort = true;
    NetSource* const net = link.net.get();
    while (link.portOpen) {
        const short events = net != nullptr ? net->Events() : POLLIN;
        pollfd fds[2] = {{link.wakeFd, POLLIN, 0}, {fd, events, 0}};
        if (::poll(fds, watchPort ? 2 : 1, -1) < 0 && errno != EINTR) {
            // Nothing sensible to wait on any more: treat the port as gone
            // and wait for the wake-up alone.
            link.deviceGone = true;
            watchPort = false;
            continue;
        }
        if (fds[0].revents != 0)
            DrainWake(link);
        if (link.stopRequested || !link.portOpen)
            break;

        // A network source still connecting reads nothing yet.
        const bool connecting = net != nullptr && !net->Streaming();
        if (watchPort && connecting && fds[1].revents != 0 && !net->Advance(fd, fds[1].revents)) {
            link.deviceGone = true;
            watchPort = false;
        }

        // Read when the port has something, and once after every tick.
        std::size_t count = 0;
        if (watchPort && !connecting && (fds[1].revents != 0 || link.processPending)) {
            const ssize_t n = ::read(fd, chunk, kReadSize);
            if (n > 0) {
                count = net != nullptr ? net->Filter(chunk, static_cast<std::size_t>(n))
                                       : static_cast<std::size_t>(n);
                if (ByteTap* tap = link.tap.load(); tap != nullptr && count > 0)
                    tap->Publish(chunk, count);
            } else if ((n < 0 && IsGoneError(errno)) ||
                       (n == 0 && net != nullptr && (fds[1].revents & POLLIN) != 0) ||
                       (n <= 0 && (fds[1].revents & (POLLHUP | POLLERR | POLLNVAL)))) {
                // (A socket that reads nothing although it polled readable
                // has been closed by the peer.)
                // The device has vanished; the watchdog ends the link. Stop
                // watching the descriptor so that the hang-up cannot spin.
                link.deviceGone = true;
                watchPort = false;
            }
        }

        if (count > 0 && link.recordNmea) {
            if (link.recordLength + count > kRecordBufferSize)
                FlushRecording(link);  // text without line ends, or NULs: no batch yet
            std::memcpy(link.recordBuffer + link.recordLength, chunk, count);
            link.recordLength += count;
        }
        if (count > 0) {
            if (!LockUnlessStopping(link))
                break;
            link.noDataTicks = 0;
            link.lock.unlock();
            const std::uint32_t length = link.bufferLength;
            if (length + count < kBufferSize) {
                // Appended as text: up to the first NUL of what was read.
                const std::size_t text = ::strnlen(chunk, count);
                std::memcpy(link.buffer + length, chunk, text);
                link.buffer[length + text] = '\0';
                link.bufferLength = length + static_cast<std::uint32_t>(text);
            } else {
                link.processPending = true;  // an overflow forces a decode
            }
        }
        if (!link.processPending)
            continue;
        const std::uint32_t length = link.bufferLength;
        if (length == 0)
            continue;  // the request stays until text arrives

        if (link.timeSyncRequest.exchange(false))
            link.gps.timeSyncPending = 1;
        if (LinkSink* sink = link.sink.load(); sink != nullptr) {
            const bool all = link.allTalkers;
            if (all != link.talkers.acceptAll) {
                // Switched while running: the satellite table is put
                // together afresh the new way.
                link.talkers.acceptAll = all;
                link.talkers.sky.Reset();
                link.gsvAssembly.Reset();
            }
            link.talkers.counts = {};
            TimeForwarder forward(sink);
            gps::ParseNmeaBuffer(link.gps, link.gsvAssembly, std::string_view(link.buffer, length),
                                 &forward, &link.talkers);
            link.fixValid = link.gps.status == 'A';
            sink->OnGpsData();
            if (!all && link.talkersWatch.AfterBatch(link.talkers.counts, link.runTicks))
                sink->OnOtherTalkersOnly();
        }
        FlushRecording(link);
        link.buffer[0] = '\0';
        link.bufferLength = 0;
        link.processPending = false;
    }
    if (!link.stopRequested)
        FlushRecording(link);  // the port went away: what it sent last is kept too
    MarkReaderEnded(link);
}

void FlushRecording(ReceiverLink& link) {
    const std::size_t length = std::exchange(link.recordLength, 0);
    if (length == 0 || !link.recordNmea)
        return;
    int error = 0;
    {
        std::lock_guard<std::mutex> g(link.recordLock);
        if (link.nmeaLogPath[0] == '\0')
            return;
        error = AppendNmeaBatch(link.nmeaLogPath, link.recordBuffer, length);
    }
    if ((error != 0) == link.recordFailing)
        return;
    link.recordFailing = error != 0;
    if (LinkSink* sink = link.sink.load(); sink != nullptr) {
        if (error != 0)
            sink->OnRecordFailed(error);
        else
            sink->OnRecordResumed();
    }
}

void LinkTimerProc(ReceiverLink& link) {
    if (!link.running)
        return;
    std::lock_guard<std::mutex> g(link.lock);
    link.processPending = true;
    ++link.runTicks;
    ++link.noDataTicks;
    if (++link.watchdogTicks >= kTimeSyncEveryTicks) {
        link.watchdogTicks = 0;
        link.timeSyncRequest = true;
    }
    Wake(link);
    if (!link.portOpen)
        return;  // already given up

    std::uint32_t reason = kLossNone;
    if (link.deviceGone || PortVanished(link.portFd)) {
        reason = kLossDeviceGone;
    } else if (link.noDataTicks >= kNoDataTicksLimit) {
        reason = kLossTimeout;
    }
    if (reason == kLossNone)
        return;
    link.linkLossReason = reason;
    if (LinkSink* sink = link.sink.load(); sink != nullptr)
        sink->OnStopCommand();
    if (link.portOpen)
        CloseByWatchdog(link);
}

void MakeNmeaLogPath(ReceiverLink& link) {
    MakeNmeaLogPath(link, link.clock != nullptr ? link.clock() : std::time(nullptr));
}

void MakeNmeaLogPath(ReceiverLink& link, std::time_t now) {
    std::tm local{};
    ::localtime_r(&now, &local);
    const char* folder = link.nmeaFolder.c_str();
    const bool slash = !link.nmeaFolder.empty() && link.nmeaFolder.back() != '/';
    std::lock_guard<std::mutex> g(link.recordLock);
    const int n = std::snprintf(link.nmeaLogPath, sizeof link.nmeaLogPath,
                                "%s%s%d%02d%02d%02d%02d%02d_NMEA0183.log", folder, slash ? "/" : "",
                                local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                local.tm_hour, local.tm_min, local.tm_sec);
    // A folder too long for a path records nothing rather than somewhere else.
    if (n < 0 || static_cast<std::size_t>(n) >= sizeof link.nmeaLogPath)
        link.nmeaLogPath[0] = '\0';
}

int AppendNmeaBatch(const char* path, const char* data, std::size_t length) {
    const int fd = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0)
        return errno;
    const off_t before = ::lseek(fd, 0, SEEK_END);
    int error = 0;
    while (length > 0) {
        const ssize_t n = ::write(fd, data, length);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            error = n < 0 ? errno : ENOSPC;
            break;
        }
        data += n;
        length -= static_cast<std::size_t>(n);
    }
    // A batch cut short would have the next one spliced onto it mid-line:
    // the file goes back to what it held.
    if (error != 0 && before >= 0) {
        while (::ftruncate(fd, before) != 0 && errno == EINTR) {
        }
    }
    if (::close(fd) != 0 && error == 0)
        error = errno;
    return error;
}

bool OtherTalkersWatch::AfterBatch(const gps::TalkerCounts& batch, std::uint32_t tick) {
    if (told_)
        return false;
    if (batch.gpRmc > 0) {
        waiting_ = false;
        return false;
    }
    if (batch.otherTalkers == 0)
        return false;
    if (!waiting_) {
        waiting_ = true;
        since_ = tick;
    }
    if (tick - since_ < kOtherTalkersTicks)
        return false;
    told_ = true;
    return true;
}

const char* LinkLossMessage(std::uint32_t reason) {
    switch (reason) {
        case kLossDeviceGone:
            return common::LoadString(common::kStrConnectionLost);
        case kLossTimeout:
            return common::LoadString(common::kStrDataTimeout);
        default:
            return nullptr;
    }
}

}  // namespace satwalk::link
