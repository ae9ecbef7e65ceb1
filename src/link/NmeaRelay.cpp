#include "NmeaRelay.h"

#include <linux/sockios.h>
#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace satwalk::link {

namespace {

using Clock = std::chrono::steady_clock;

// Room in the kernel for a client: small, so that a client that stops
// reading is noticed within its stall time rather than after a long buffer.
constexpr int kClientSendBuffer = 4 * 1024;
constexpr int kPollTickMs = 200;  // while some client is behind
constexpr int kCollectMs = 20;    // the inbox is collected this often while clients listen

void Signal(int fd) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t n = ::write(fd, &one, sizeof one);
}

}  // namespace

NmeaRelay::NmeaRelay() {
    wakeFd_ = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
}

NmeaRelay::~NmeaRelay() {
    Stop();
    if (wakeFd_ >= 0)
        ::close(wakeFd_);
}

bool NmeaRelay::Start(const std::string& host, std::uint16_t port, std::string& error) {
    Stop();
    if (wakeFd_ < 0) {
        error = std::strerror(EMFILE);
        return false;
    }
    // Listening needs no name server: only numbers, and localhost.
    const std::string numeric = host == "localhost" ? "127.0.0.1" : host;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    addrinfo* list = nullptr;
    const int gai = ::getaddrinfo(numeric.c_str(), std::to_string(port).c_str(), &hints, &list);
    if (gai != 0) {
        error = ::gai_strerror(gai);
        return false;
    }
    const int fd = ::socket(list->ai_family, list->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int one = 1;
    bool ok = fd >= 0;
    ok = ok && ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one) == 0;
    ok = ok && ::bind(fd, list->ai_addr, list->ai_addrlen) == 0;
    ok = ok && ::listen(fd, 16) == 0;
    ::freeaddrinfo(list);
    sockaddr_storage bound{};
    socklen_t size = sizeof bound;
    ok = ok && ::getsockname(fd, reinterpret_cast<sockaddr*>(&bound), &size) == 0;
    if (!ok) {
        error = std::strerror(errno);
        if (fd >= 0)
            ::close(fd);
        return false;
    }
    port_ =
        ntohs(bound.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6*>(&bound)->sin6_port
                                          : reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);
    listenFd_ = fd;
    stop_ = false;
    {
        std::lock_guard<std::mutex> g(inboxLock_);
        inbox_.clear();
        inboxOverflowed_ = false;
    }
    try {
        thread_ = std::thread(&NmeaRelay::Run, this);
    } catch (...) {
        ::close(listenFd_);
        listenFd_ = -1;
        error = std::strerror(EAGAIN);
        return false;
    }
    return true;
}

void NmeaRelay::Stop() {
    if (!thread_.joinable())
        return;
    stop_ = true;
    Signal(wakeFd_);
    thread_.join();
    for (Client& c : clients_) ::close(c.fd);
    clients_.clear();
    clientCount_ = 0;
    ::close(listenFd_);
    listenFd_ = -1;
}

void NmeaRelay::Publish(const char* data, std::size_t length) {
    // No system call here: the relay thread collects the inbox on its own
    // short clock while it has clients, so the reader never wakes anyone
    // (a wake-up can cost the waker the rest of its time slice).
    if (clientCount_.load(std::memory_order_relaxed) == 0)
        return;
    std::lock_guard<std::mutex> g(inboxLock_);
    if (inbox_.size() + length > kRelayInboxLimit)
        inboxOverflowed_ = true;  // every client would miss bytes: all are dropped
    else
        inbox_.append(data, length);
}

void NmeaRelay::Run() {
    // A batch thread: woken by the reader, it waits for the reader's time
    // slice to end instead of taking the core from it mid-read.
    sched_param none{};
    ::pthread_setschedparam(::pthread_self(), SCHED_BATCH, &none);
    std::string batch;
    std::vector<pollfd> fds;
    char discard[4096];
    while (!stop_) {
        fds.clear();
        fds.push_back({wakeFd_, POLLIN, 0});
        fds.push_back({listenFd_, POLLIN, 0});
        bool behind = false;
        for (const Client& c : clients_) {
            fds.push_back(
                {c.fd, static_cast<short>(POLLIN | (c.backlog.empty() ? 0 : POLLOUT)), 0});
            behind = behind || !c.backlog.empty();
        }
        const int wait = !clients_.empty() ? kCollectMs : -1;
        if (::poll(fds.data(), fds.size(), behind ? std::min(wait, kPollTickMs) : wait) < 0 &&
            errno != EINTR)
            break;
        if (stop_)
            break;

        // Clients first, by their poll slots, from the last so that a drop
        // does not move the ones still to be looked at.
        for (std::size_t i = clients_.size(); i-- > 0;) {
            const short re = fds[i + 2].revents;
            Client& c = clients_[i];
            bool gone = (re & (POLLERR | POLLHUP | POLLNVAL)) != 0;
            if (!gone && (re & POLLIN) != 0) {
                const ssize_t n = ::recv(c.fd, discard, sizeof discard, MSG_DONTWAIT);
                gone = n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR);
            }
            if (!gone && (re & POLLOUT) != 0)
                Flush(c);
            if (gone)
                Drop(i, false);
        }

        {
            bool overflowed = false;
            {
                std::lock_guard<std::mutex> g(inboxLock_);
                batch.swap(inbox_);
                inbox_.clear();
                overflowed = inboxOverflowed_;
                inboxOverflowed_ = false;
            }
            for (std::size_t i = clients_.size(); i-- > 0;) {
                if (overflowed) {
                    Drop(i, true);
                } else {
                    Send(clients_[i], batch.data(), batch.size());
                }
            }
            batch.clear();
        }

        const auto now = Clock::now();
        for (std::size_t i = clients_.size(); i-- > 0;) {
            Client& c = clients_[i];
            if (c.fd >= 0)
                Watch(c, now);
            if (c.fd < 0 || c.backlog.size() > kRelayBacklogLimit ||
                (c.behind && now - c.since > std::chrono::milliseconds(kRelayStallMs))) {
                Drop(i, true);
            }
        }
        if ((fds[1].revents & POLLIN) != 0)
            Accept();
    }
}

void NmeaRelay::Accept() {
    // A burst of connections is taken in one go; those beyond the limit are
    // closed at once rather than left waiting in the queue.
    for (int n = 0; n < 64; ++n) {
        const int fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0)
            return;
        if (clients_.size() >= kRelayMaxClients) {
            ::close(fd);
            continue;
        }
        ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &kClientSendBuffer, sizeof kClientSendBuffer);
        clients_.push_back(Client{fd, {}, 0, 0, false, {}});
        clientCount_ = clients_.size();
    }
}

void NmeaRelay::Send(Client& client, const char* data, std::size_t length) {
    if (length == 0 || client.fd < 0)
        return;
    if (!client.backlog.empty()) {
        // Behind already: the new bytes queue after the old ones (one byte
        // over the limit marks it for the drop).
        const std::size_t room =
            kRelayBacklogLimit + 1 - std::min(kRelayBacklogLimit + 1, client.backlog.size());
        client.backlog.append(data, std::min(length, room));
        return;
    }
    const ssize_t n = ::send(client.fd, data, length, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (n < 0 && errno != EAGAIN && errno != EINTR) {
        ::close(client.fd);
        client.fd = -1;  // dropped by the next check
        return;
    }
    const std::size_t sent = n > 0 ? static_cast<std::size_t>(n) : 0;
    client.written += sent;
    if (sent < length)
        client.backlog.assign(data + sent, std::min(length - sent, kRelayBacklogLimit + 1));
}

void NmeaRelay::Flush(Client& client) {
    if (client.backlog.empty() || client.fd < 0)
        return;
    const ssize_t n = ::send(client.fd, client.backlog.data(), client.backlog.size(),
                             MSG_DONTWAIT | MSG_NOSIGNAL);
    if (n < 0 && errno != EAGAIN && errno != EINTR) {
        ::close(client.fd);
        client.fd = -1;
        return;
    }
    if (n > 0) {
        client.backlog.erase(0, static_cast<std::size_t>(n));
        client.written += static_cast<std::uint64_t>(n);
    }
}

void NmeaRelay::Watch(Client& client, Clock::time_point now) {
    // What the kernel still holds for the client, sent or not; the client
    // has taken the rest of what was written.
    int queued = 0;
    if (::ioctl(client.fd, SIOCOUTQ, &queued) != 0)
        queued = 0;
    const std::uint64_t acked = client.written - static_cast<std::uint64_t>(std::max(queued, 0));
    if (queued <= 0 && client.backlog.empty()) {
        client.behind = false;
    } else if (!client.behind || acked > client.acked) {
        client.behind = true;  // the clock starts, or starts again after progress
        client.since = now;
    }
    client.acked = acked;
}

void NmeaRelay::Drop(std::size_t index, bool lagging) {
    if (clients_[index].fd >= 0)
        ::close(clients_[index].fd);
    clients_.erase(clients_.begin() + static_cast<std::ptrdiff_t>(index));
    clientCount_ = clients_.size();
    if (lagging)
        ++dropped_;
}

}  // namespace satwalk::link
