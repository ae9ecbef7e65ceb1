// Receivers reached over the network: a gpsd or a raw NMEA TCP stream (see
// SourceAddress.h). Each opens to one descriptor that the reader polls like
// a tty, and whose number never changes while the link has it:
//   - a numeric host is connected at once, non-blocking: the descriptor is
//     the socket, its connection under way;
//   - a name is resolved on a short-lived resolver thread, so the window
//     never waits for a name server: the descriptor is at first an eventfd
//     the resolver signals, and the reader puts the socket in its place
//     (dup3 onto the same number) when the name has resolved.
// While the connection is being made the reader hands the descriptor's
// events to Advance; once streaming, what it reads goes through Filter,
// which for gpsd drops its JSON lines and keeps the NMEA sentences.
//
// Threads: Begin on the owner's thread before the reader starts; every other
// member on the reader thread only. The resolver touches only its own
// shared record.
#pragma once

#include <netdb.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "SourceAddress.h"

namespace satwalk::link {

// What gpsd is asked for once connected: its sentences as NMEA, no JSON
// reports.
inline constexpr char kGpsdWatch[] = "?WATCH={\"enable\":true,\"nmea\":true};\n";

// Drops gpsd's JSON lines (those that start with '{') from a stream,
// keeping every other byte as it came. Lines of any length, split anywhere
// between reads; nothing is buffered.
class GpsdFilter {
  public:
    // Filters data[0, n) in place; returns the count kept.
    std::size_t Feed(char* data, std::size_t n);

  private:
    bool atLineStart_ = true;
    bool inJson_ = false;
};

// How long opening the receiver settings waits for a gpsd on this machine.
inline constexpr int kGpsdProbeMs = 300;

// Whether a gpsd answers on 127.0.0.1:`port` (its VERSION greeting) within
// `timeoutMs`. Loopback only: no name is resolved.
bool GpsdAnswers(std::uint16_t port, int timeoutMs);

class NetSource {
  public:
    ~NetSource();
    NetSource(const NetSource&) = delete;
    NetSource& operator=(const NetSource&) = delete;

    // Begins opening a gpsd or TCP source. Returns the descriptor for the
    // link (non-blocking, close-on-exec; the link owns it) and sets `out`,
    // or returns -1 when not even a descriptor can be made. A connection
    // refused at once still returns the descriptor: it polls as hung up, and
    // the link reports the receiver gone like any other.
    static int Begin(const SourceAddress& address, std::unique_ptr<NetSource>& out);

    // The events the reader polls the descriptor for.
    short Events() const;
    bool Streaming() const { return phase_ == Phase::Streaming; }

    // The descriptor reported `revents` before streaming: moves the
    // connection on. False when the source has failed (no address answers).
    bool Advance(int fd, short revents);

    // What was read turned into the receiver's bytes; returns their count.
    std::size_t Filter(char* data, std::size_t n);

  private:
    struct Resolution;
    enum class Phase { Resolving, Connecting, Streaming, Failed };

    NetSource() = default;
    // Starts connecting to the next address of the list onto `fd`.
    bool ConnectNext(int fd);

    SourceKind kind_ = SourceKind::Tcp;
    Phase phase_ = Phase::Failed;
    std::shared_ptr<Resolution> resolution_;
    addrinfo* addresses_ = nullptr;  // freed by the destructor (numeric hosts)
    const addrinfo* next_ = nullptr;
    GpsdFilter gpsd_;
};

}  // namespace satwalk::link
