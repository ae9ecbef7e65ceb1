#include "RfcommPort.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace satwalk::link {

namespace {

// The kernel's Bluetooth socket interface, as its headers define it.
constexpr int kAfBluetooth = 31;
constexpr int kBtProtoRfcomm = 3;

struct BdAddr {
    std::uint8_t b[6];  // least significant byte first
};

struct SockAddrRc {
    sa_family_t family;
    BdAddr address;
    std::uint8_t channel;
};

struct RfcommDevRequest {
    std::int16_t devId;
    std::uint32_t flags;
    BdAddr source;
    BdAddr destination;
    std::uint8_t channel;
};

constexpr unsigned long kRfcommCreateDev = _IOW('R', 200, int);
constexpr unsigned long kRfcommReleaseDev = _IOW('R', 201, int);

BdAddr ToBdAddr(std::uint64_t address) {
    BdAddr a{};
    for (int i = 0; i < 6; ++i) a.b[i] = static_cast<std::uint8_t>(address >> (8 * i));
    return a;
}

std::string TtyPath(int index) {
    return "/dev/rfcomm" + std::to_string(index);
}

}  // namespace

int BeginRfcommConnect(std::uint64_t address, int channel) {
    const int fd =
        ::socket(kAfBluetooth, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, kBtProtoRfcomm);
    if (fd < 0)
        return -1;
    SockAddrRc to{};
    to.family = kAfBluetooth;
    to.address = ToBdAddr(address);
    to.channel = static_cast<std::uint8_t>(channel);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&to), sizeof to) == 0 ||
        errno == EINPROGRESS || errno == EAGAIN)
        return fd;
    ::close(fd);
    return -1;
}

int ConnectRfcommSocket(std::uint64_t address, int channel, int timeoutMs) {
    const int fd = BeginRfcommConnect(address, channel);
    if (fd < 0)
        return -1;
    // Paging the receiver takes a few seconds; a refusal or silence ends it.
    pollfd p{fd, POLLOUT, 0};
    int error = 0;
    socklen_t length = sizeof error;
    if (::poll(&p, 1, timeoutMs) != 1 ||
        ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0 || error != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

bool BindRfcommTty(int index, std::uint64_t address, int channel) {
    const int control = ::socket(kAfBluetooth, SOCK_RAW | SOCK_CLOEXEC, kBtProtoRfcomm);
    if (control < 0)
        return false;
    RfcommDevRequest request{};
    request.devId = static_cast<std::int16_t>(index);
    request.destination = ToBdAddr(address);
    request.channel = static_cast<std::uint8_t>(channel);
    const bool bound = ::ioctl(control, kRfcommCreateDev, &request) >= 0;
    ::close(control);
    return bound;
}

void ReleaseRfcommTty(int index) {
    const int control = ::socket(kAfBluetooth, SOCK_RAW | SOCK_CLOEXEC, kBtProtoRfcomm);
    if (control < 0)
        return;
    RfcommDevRequest request{};
    request.devId = static_cast<std::int16_t>(index);
    ::ioctl(control, kRfcommReleaseDev, &request);
    ::close(control);
}

bool RfcommPortDriver::RegisterPort(int index, std::uint64_t address) {
    if (index < 0 || index >= static_cast<int>(slots_.size()))
        return false;
    Slot& slot = slots_[static_cast<std::size_t>(index)];
    if (slot.registered)
        return false;
    if (deviceBehind) {
        if (deviceBehind(index))
            return false;
    } else {
        struct stat st {};
        if (::stat(ResolvePortName(ComName(index), portMap).c_str(), &st) == 0)
            return false;
    }
    slot = Slot{true, address, false};
    return true;
}

void RfcommPortDriver::DeregisterPort(int index) {
    if (index < 0 || index >= static_cast<int>(slots_.size()))
        return;
    Slot& slot = slots_[static_cast<std::size_t>(index)];
    if (slot.bound)
        ReleaseRfcommTty(index);
    slot = Slot{};
}

int RfcommPortDriver::ConnectPort(int index) {
    if (!Registered(index))
        return -1;
    Slot& slot = slots_[static_cast<std::size_t>(index)];
    if (tryBindTty && !slot.bound && BindRfcommTty(index, slot.address, channel))
        slot.bound = true;
    if (slot.bound) {
        // Opening the bound tty makes the connection.
        const int fd = ::open(TtyPath(index).c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (fd >= 0)
            return fd;
    }
    return connect ? connect(slot.address, channel)
                   : ConnectRfcommSocket(slot.address, channel, connectTimeoutMs);
}

bool RfcommPortDriver::Registered(int index) const {
    return index >= 0 && index < static_cast<int>(slots_.size()) &&
           slots_[static_cast<std::size_t>(index)].registered;
}

}  // namespace satwalk::link
