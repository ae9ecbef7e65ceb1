#include "NetSource.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace satwalk::link {

// What the resolver thread hands over. It outlives whichever of the two
// sides lets go last.
struct NetSource::Resolution {
    std::mutex lock;
    bool done = false;
    addrinfo* result = nullptr;  // guarded by lock; taken by the reader
    int notifyFd = -1;           // the resolver's own copy of the eventfd

    ~Resolution() {
        if (result != nullptr)
            ::freeaddrinfo(result);
        if (notifyFd >= 0)
            ::close(notifyFd);
    }
};

namespace {

// A non-blocking socket with its connection to `ai` begun, or -1. A
// connection refused at once leaves the socket closed for the reader to see
// as hung up, so every failure is reported the same way.
int StartSocket(const addrinfo* ai) {
    const int s =
        ::socket(ai->ai_family, ai->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, ai->ai_protocol);
    if (s < 0)
        return -1;
    [[maybe_unused]] const int r = ::connect(s, ai->ai_addr, ai->ai_addrlen);
    return s;
}

addrinfo Hints(int flags) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    return hints;
}

}  // namespace

std::size_t GpsdFilter::Feed(char* data, std::size_t n) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const char c = data[i];
        if (atLineStart_)
            inJson_ = c == '{';
        atLineStart_ = c == '\n';
        if (!inJson_)
            data[kept++] = c;
        if (atLineStart_)
            inJson_ = false;
    }
    return kept;
}

NetSource::~NetSource() {
    if (addresses_ != nullptr)
        ::freeaddrinfo(addresses_);
}

int NetSource::Begin(const SourceAddress& address, std::unique_ptr<NetSource>& out) {
    out.reset();
    if (address.kind != SourceKind::Gpsd && address.kind != SourceKind::Tcp)
        return -1;
    std::unique_ptr<NetSource> source(new NetSource);
    source->kind_ = address.kind;
    const std::string service = std::to_string(address.port);

    // A numeric address needs no name server: connected right here.
    const addrinfo numeric = Hints(AI_NUMERICHOST | AI_NUMERICSERV);
    addrinfo* list = nullptr;
    if (::getaddrinfo(address.host.c_str(), service.c_str(), &numeric, &list) == 0) {
        source->addresses_ = list;
        int fd = -1;
        for (const addrinfo* ai = list; ai != nullptr && fd < 0; ai = ai->ai_next) {
            fd = StartSocket(ai);
            source->next_ = ai->ai_next;
        }
        if (fd < 0)
            return -1;
        source->phase_ = Phase::Connecting;
        out = std::move(source);
        return fd;
    }

    // A name: resolved on a thread of its own, which signals the eventfd.
    auto resolution = std::make_shared<Resolution>();
    resolution->notifyFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (resolution->notifyFd < 0)
        return -1;
    const int fd = ::fcntl(resolution->notifyFd, F_DUPFD_CLOEXEC, 0);
    if (fd < 0)
        return -1;
    try {
        std::thread([resolution, host = address.host, service] {
            const addrinfo hints = Hints(AI_NUMERICSERV | AI_ADDRCONFIG);
            addrinfo* found = nullptr;
            if (::getaddrinfo(host.c_str(), service.c_str(), &hints, &found) != 0)
                found = nullptr;
            std::lock_guard<std::mutex> g(resolution->lock);
            resolution->result = found;
            resolution->done = true;
            const std::uint64_t one = 1;
            [[maybe_unused]] const ssize_t n = ::write(resolution->notifyFd, &one, sizeof one);
        }).detach();
    } catch (...) {
        ::close(fd);
        return -1;
    }
    source->resolution_ = std::move(resolution);
    source->phase_ = Phase::Resolving;
    out = std::move(source);
    return fd;
}

short NetSource::Events() const {
    switch (phase_) {
        case Phase::Resolving:
        case Phase::Streaming:
            return POLLIN;
        case Phase::Connecting:
            return POLLOUT;
        case Phase::Failed:
            break;
    }
    return 0;
}

bool NetSource::ConnectNext(int fd) {
    while (next_ != nullptr) {
        const int s = StartSocket(next_);
        next_ = next_->ai_next;
        if (s < 0)
            continue;
        // The socket takes the descriptor's number: the link's view of its
        // port never changes.
        const int r = ::dup3(s, fd, O_CLOEXEC);
        ::close(s);
        if (r < 0)
            break;
        phase_ = Phase::Connecting;
        return true;
    }
    phase_ = Phase::Failed;
    return false;
}

bool NetSource::Advance(int fd, short revents) {
    if (phase_ == Phase::Resolving) {
        std::uint64_t value = 0;
        [[maybe_unused]] const ssize_t n = ::read(fd, &value, sizeof value);
        std::lock_guard<std::mutex> g(resolution_->lock);
        if (!resolution_->done)
            return true;
        addresses_ = resolution_->result;
        resolution_->result = nullptr;
        next_ = addresses_;
        return ConnectNext(fd);
    }
    if (phase_ == Phase::Connecting) {
        int error = 0;
        socklen_t size = sizeof error;
        if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
            error = errno;
        if (error != 0 || (revents & (POLLERR | POLLHUP | POLLNVAL)) != 0)
            return ConnectNext(fd);  // refused or unreachable: the next address
        if (kind_ == SourceKind::Gpsd) {
            const std::size_t length = sizeof kGpsdWatch - 1;
            if (::send(fd, kGpsdWatch, length, MSG_NOSIGNAL) != static_cast<ssize_t>(length)) {
                phase_ = Phase::Failed;
                return false;
            }
        }
        phase_ = Phase::Streaming;
        return true;
    }
    return phase_ != Phase::Failed;
}

bool GpsdAnswers(std::uint16_t port, int timeoutMs) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = htons(port);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    const auto left = [&end] {
        return static_cast<int>(
            std::max<long long>(0, std::chrono::duration_cast<std::chrono::milliseconds>(
                                       end - std::chrono::steady_clock::now())
                                       .count()));
    };
    std::string got;
    constexpr std::string_view kGreeting = "{\"class\":\"VERSION\"";
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&a), sizeof a) == 0 ||
        errno == EINPROGRESS) {
        // Its greeting comes unasked, right after the connection.
        for (int reads = 0; reads < 8 && got.size() < kGreeting.size(); ++reads) {
            pollfd p{fd, POLLIN, 0};
            if (::poll(&p, 1, left()) != 1)
                break;
            char buf[64];
            const ssize_t n = ::recv(fd, buf, sizeof buf, 0);
            if (n <= 0)
                break;
            got.append(buf, static_cast<std::size_t>(n));
        }
    }
    ::close(fd);
    return got.starts_with(kGreeting);
}

std::size_t NetSource::Filter(char* data, std::size_t n) {
    return kind_ == SourceKind::Gpsd ? gpsd_.Feed(data, n) : n;
}

}  // namespace satwalk::link
