// Bluetooth receivers as COM ports on Linux.
//
// A registered index is only a name until the link opens it; the connection
// to the receiver's Serial Port service is made then:
//   1. where the kernel lets us bind one (it takes CAP_NET_ADMIN), a
//      /dev/rfcommN tty bound to the receiver, opened like any serial port
//      and released again at deregistration;
//   2. otherwise an RFCOMM socket connected to the receiver, which the
//      reader polls like a tty: no pairing tool, no `rfcomm bind`, no root.
// The Serial Port service of GPS receivers sits on RFCOMM channel 1; a
// receiver that uses another one is set with `channel`.
//
// An index is taken while we have it registered, or when a device is behind
// its COM name (see PortNames.h): a Bluetooth port never hides a real one.
//
// Owner's thread only. Standard library and POSIX only: the few Bluetooth
// socket constants are spelled out here, so that no Bluetooth headers are
// needed to build.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "PortNames.h"
#include "ReceiverLink.h"

namespace satwalk::link {

// Connects to the receiver at `address`: a descriptor, or -1.
using RfcommConnector = std::function<int(std::uint64_t address, int channel)>;

// An RFCOMM socket connected to the receiver, non-blocking, or -1; waits at
// most `timeoutMs` for the receiver to answer.
int ConnectRfcommSocket(std::uint64_t address, int channel, int timeoutMs);

// A non-blocking RFCOMM socket whose connection to the receiver is under
// way, or -1 when it fails at once (no Bluetooth in the kernel, no adapter).
// Nobody waits for the receiver: the reader polls the socket like a tty, its
// first bytes come once the receiver has answered, and a receiver that
// refuses or does not answer hangs the socket up, which the link's next
// tick reports as a receiver gone (reason 1).
int BeginRfcommConnect(std::uint64_t address, int channel);

// Binds /dev/rfcomm<index> to the receiver; false where the kernel refuses
// (no Bluetooth, no CAP_NET_ADMIN, the number in use).
bool BindRfcommTty(int index, std::uint64_t address, int channel);
void ReleaseRfcommTty(int index);

class RfcommPortDriver final : public VirtualPortDriver {
  public:
    // Whether a device is behind COM<index>; when empty, whether the path
    // of COM<index> by `portMap` and the default map exists.
    std::function<bool(int index)> deviceBehind;
    // How a registered port connects when no tty can be bound; when empty,
    // ConnectRfcommSocket.
    RfcommConnector connect;
    bool tryBindTty = true;
    int channel = 1;
    int connectTimeoutMs = 15000;
    PortMap portMap;

    bool RegisterPort(int index, std::uint64_t address) override;
    void DeregisterPort(int index) override;
    int ConnectPort(int index) override;

    bool Registered(int index) const;

  private:
    struct Slot {
        bool registered = false;
        std::uint64_t address = 0;
        bool bound = false;  // /dev/rfcomm<index> was bound by us
    };
    std::array<Slot, 10> slots_{};
};

}  // namespace satwalk::link
