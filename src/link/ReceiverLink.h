// The receiver link: one NMEA 0183 receiver on a tty (USB, ACM, rfcomm or a
// pseudo-terminal) or at a network source (gpsd, NMEA over TCP; see
// NetSource.h), a reader thread that accumulates what arrives, and a
// one-second watchdog tick that decides when the text is decoded, notices a
// silent or vanished receiver and requests the periodic time sync.
//
// Threads
//   - The owner's thread (the UI thread in the program, the main thread in
//     satwalk-tool, the test itself) calls OpenPort, StartLink, StopLink and,
//     once a second, LinkTimerProc.
//   - The reader thread blocks in poll() on the port and on a wake-up
//     descriptor. Each tick sets processPending and wakes it; the first read
//     after the tick hands the accumulated text to the decoder. A burst that
//     would overflow the 2,048-byte buffer is decoded at once (the bytes that
//     do not fit are not decoded). The recording keeps the bytes as they
//     were read, those too, and text after a NUL. Nothing spins and nothing
//     is allocated per batch.
//
// Standard library and POSIX only.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "BaudRates.h"
#include "ErrorCodes.h"
#include "GpsState.h"
#include "NmeaDecoder.h"

namespace satwalk::link {

// Why the link ended (linkLossReason).
inline constexpr std::uint32_t kLossNone = 0;
inline constexpr std::uint32_t kLossDeviceGone = 1;  // hang-up, EIO/ENODEV/ENXIO
inline constexpr std::uint32_t kLossTimeout = 2;     // 30 ticks without a byte

inline constexpr std::uint32_t kNoDataTicksLimit = 30;
inline constexpr std::uint32_t kTimeSyncEveryTicks = 10;
inline constexpr std::uint32_t kOtherTalkersTicks = 10;  // before the other-talkers hint

inline constexpr std::size_t kBufferSize = 2048;  // accumulation buffer, NUL included
inline constexpr std::size_t kReadSize = 1024;    // one read from the port
// Raw bytes kept for the recording between two batches: a whole buffer and
// the read that did not fit it.
inline constexpr std::size_t kRecordBufferSize = kBufferSize + kReadSize;
inline constexpr int kStopWaitMs = 1000;  // bound on waiting for the reader

// The COM indexes a Bluetooth port may be registered under, tried from the
// highest down.
inline constexpr int kVirtualPortFirst = 9;
inline constexpr int kVirtualPortLast = 0;

class NetSource;

// Takes a copy of every byte the receiver sends (the NMEA relay). Called on
// the reader thread with each read as it came; never waits for anyone.
class ByteTap {
  public:
    virtual void Publish(const char* data, std::size_t length) = 0;

  protected:
    ~ByteTap() = default;
};

// How the link reaches its owner. Every call is synchronous.
class LinkSink {
  public:
    // A batch has been decoded into link.gps. Called on the reader thread;
    // the reader waits until it returns, so the handler may read link.gps
    // freely (the program makes this a blocking queued call into the UI
    // thread).
    virtual void OnGpsData() = 0;

    // An RMC has resynchronised gps.fixTimeLocal. Called on the reader thread
    // from inside the decoder, before the OnGpsData of the same batch.
    virtual void OnGpsTime() = 0;

    // The watchdog gives up the link (command 40012): linkLossReason is
    // already set. Called on the ticking thread from inside LinkTimerProc,
    // with link.lock held. The owner is expected to call StopLink, and may do
    // so right here: StopLink does not take the lock, and a reader waiting
    // for the lock gives up when it sees the stop.
    virtual void OnStopCommand() = 0;

    // The receiver has sent well-formed sentences of other satellite systems'
    // talkers for ten seconds and no GP RMC: without the all-talkers setting
    // it gives no fix. Called once per start, on the reader thread, after
    // the OnGpsData of the batch.
    virtual void OnOtherTalkersOnly() {}

    // The recording could not be written (`error` is the errno): called on
    // the reader thread at the first failure, and again only after a write
    // has worked in between (OnRecordResumed).
    virtual void OnRecordFailed(int /*error*/) {}
    // A write of the recording worked after OnRecordFailed.
    virtual void OnRecordResumed() {}

  protected:
    ~LinkSink() = default;
};

// Notices a receiver that speaks only other talkers: well-formed sentences
// of theirs over kOtherTalkersTicks ticks with no GP RMC since the first of
// them. A GP RMC starts the wait again.
class OtherTalkersWatch {
  public:
    // After each decoded batch, with what the batch held and the ticks since
    // the link started. True once, when the wait is over.
    bool AfterBatch(const gps::TalkerCounts& batch, std::uint32_t tick);

  private:
    bool told_ = false;
    bool waiting_ = false;
    std::uint32_t since_ = 0;
};

// The one-second watchdog timer, owned by whoever runs the link (a QTimer in
// the program, a plain thread in satwalk-tool). StartLink starts it and
// StopLink stops it; it calls LinkTimerProc every second. Optional: without
// one, the owner drives the ticks (tests do so by hand).
class LinkTimer {
  public:
    virtual bool Start() = 0;  // false: the timer cannot be created
    // May be called from inside the tick itself (StopLink from OnStopCommand).
    virtual void Stop() = 0;

  protected:
    ~LinkTimer() = default;
};

// Ports that are not a device of their own: a Bluetooth receiver given a COM
// index for as long as the link uses it. Called on the owner's thread.
class VirtualPortDriver {
  public:
    // Registers a port under `index` for the receiver at `address`; false
    // when the index is taken (a device is behind it, or it is registered).
    virtual bool RegisterPort(int index, std::uint64_t address) = 0;
    virtual void DeregisterPort(int index) = 0;
    // Connects a registered port: a descriptor the reader polls like a tty
    // (a tty such as /dev/rfcommN, or a connected socket), or -1. The link
    // owns and closes it.
    virtual int ConnectPort(int index) = 0;

  protected:
    ~VirtualPortDriver() = default;
};

struct ReceiverLink {
    ReceiverLink();
    ~ReceiverLink();  // stops the link, closes the port, waits for the reader
    ReceiverLink(const ReceiverLink&) = delete;
    ReceiverLink& operator=(const ReceiverLink&) = delete;

    // --- Configuration, set by the owner before OpenPort / StartLink ---
    std::string portName;                     // "COM%d:" of the configured port, for display
    std::string devicePath;                   // the tty or source address actually opened (see
                                              // PortNames.h, SourceAddress.h); when empty,
                                              // portName resolves through the default map
    std::uint32_t baudRate = 38400;           // one of common::kBaudRates
    std::uint32_t byteSize = 8;               // data bits (5..8)
    std::uint32_t parity = 0;                 // 0 none, 1 odd, 2 even
    std::uint32_t stopBits = 0;               // 0 one, 2 two (1, "1.5", is taken as two)
    std::atomic<LinkSink*> sink{nullptr};     // null: batches recorded, not decoded
    LinkTimer* timer = nullptr;               // null: ticks are driven by the owner
    VirtualPortDriver* portDriver = nullptr;  // registers Bluetooth ports; null: none
    std::atomic<ByteTap*> tap{nullptr};       // gets every read of the receiver; null: none
    // Accept all satellite systems: RMC, GGA and GSA of every talker fill the
    // fix, GSV of every talker the satellite table. Read before each decode.
    std::atomic<bool> allTalkers{false};

    // NMEA recording: when recordNmea is set, StartLink names a new file in
    // nmeaFolder and every batch is appended to it.
    std::atomic<bool> recordNmea{false};
    std::string nmeaFolder;
    std::time_t (*clock)() = nullptr;  // the wall clock for file names; null: time()

    // Reading the settings of a tty that is still settling is retried.
    int stateAttempts = 15;
    int stateRetryMs = 1000;

    // --- State ---
    bool virtualPortRegistered = false;           // a Bluetooth port is registered ...
    int virtualPortIndex = -1;                    // ... under this COM index
    int portFd = -1;                              // the open port
    std::unique_ptr<NetSource> net;               // set by OpenPort for a network source
    std::atomic<bool> portOpen{false};            // cleared when the watchdog closes the link
    std::atomic<bool> running{false};             // started and not stopped
    std::atomic<bool> stopRequested{false};       // tells the reader thread to end
    std::atomic<bool> processPending{false};      // decode what has accumulated
    std::atomic<bool> deviceGone{false};          // the reader saw a hang-up or EIO/ENODEV/ENXIO
    std::atomic<std::uint32_t> noDataTicks{0};    // ticks since the last read with data
    std::atomic<std::uint32_t> watchdogTicks{0};  // ticks towards the next time sync
    std::atomic<std::uint32_t> runTicks{0};       // ticks since StartLink
    std::atomic<std::uint32_t> linkLossReason{kLossNone};
    std::atomic<bool> fixValid{false};  // gps.status was 'A' in the last batch

    char buffer[kBufferSize] = {};               // accumulated text, NUL-terminated
    std::atomic<std::uint32_t> bufferLength{0};  // characters in buffer
    gps::GpsState gps;                           // written by the reader while decoding
    gps::GsvAssembly gsvAssembly;
    gps::Talkers talkers;            // the reader's: the setting as decoded, counts, table
    OtherTalkersWatch talkersWatch;  // the reader's; made afresh by StartLink
    bool recordFailing = false;      // the reader's: the last write failed; cleared by StartLink
    char recordBuffer[kRecordBufferSize] = {};  // the reader's: raw bytes since the last write
    std::size_t recordLength = 0;

    std::string lastErrorCode;    // text of the last link error, e.g. "0x08200a06"
    char nmeaLogPath[4096] = {};  // the current recording file ("" = none)

    // Guards noDataTicks and watchdogTicks across a tick and the watchdog's
    // close of the port. Held for the whole of LinkTimerProc.
    std::mutex lock;

    // --- Internals of the reader thread ---
    int wakeFd = -1;                           // eventfd the watchdog and StopLink signal
    std::atomic<bool> timeSyncRequest{false};  // applied to gps before the next decode
    std::mutex recordLock;                     // nmeaLogPath against a change while recording
    std::thread reader;
    std::mutex readerMutex;
    std::condition_variable readerEnded;  // also told when the reader starts listening
    bool readerActive = false;            // guarded by readerMutex
    bool readerListening = false;         // purged the port and waits; guarded by readerMutex
};

// Gives the receiver at `address` a port: the first COM index from 9 down to
// 0 that the driver registers becomes portName. A port registered before is
// deregistered first. False with lastErrorCode "0x08200a10" when none is free.
bool RegisterBluetoothPort(ReceiverLink& link, std::uint64_t address);

// Gives a registered port back; nothing when none is registered.
void DeregisterVirtualPort(ReceiverLink& link);

// Opens the port (a registered Bluetooth port through the driver, else
// devicePath, else portName through the default map). A gpsd or TCP source
// address only begins its connection (NetSource.h): refused, dropped or
// unresolved, it is a receiver gone for the watchdog. A tty is configured: raw 8-bit input, the
// baud rate, byteSize/parity/stopBits, no hardware handshake, DTR and RTS dropped, XON/XOFF both
// ways, reads that return at once, both queues flushed; a connection that is not a tty (a socket)
// is only made non-blocking. False with lastErrorCode set, the port closed and a registered port
// deregistered.
bool OpenPort(ReceiverLink& link);

// Names the recording file (when recordNmea is set), starts the watchdog
// timer (when one is attached) and the reader thread, and returns once the
// reader has purged the port and listens (bytes sent from then on are read).
// False with lastErrorCode set and the port closed.
bool StartLink(ReceiverLink& link);

// Stops the timer and the reader (waiting at most 1,000 ms for it), closes
// the port, deregisters a Bluetooth port, resets the tick counters, running and
// fixValid. Returns linkLossReason. Never hangs; callable from inside OnStopCommand. The
// owner clears its own fix-time-known flag and alarm afterwards.
std::uint32_t StopLink(ReceiverLink& link);

// Empties the four blocks of link.gps (the stop-GPS command); the fix time
// and its sync request stay. Owner's thread, while the link is stopped: the
// reader has ended, or is held in its handler and decodes nothing more.
void ClearFixBlocks(ReceiverLink& link);

// The reader thread's procedure (StartLink runs it).
void ReaderThread(ReceiverLink& link);

// The watchdog tick, once a second while the link runs: sets processPending
// and wakes the reader, counts noDataTicks and watchdogTicks (a time sync is
// requested every 10th tick), and gives up the link through
// sink->OnStopCommand with reason 1 when the device has gone or reason 2
// after 30 ticks without a byte. Does nothing while the link is not running.
void LinkTimerProc(ReceiverLink& link);

// Sets nmeaLogPath to "<nmeaFolder>/YYYYMMDDhhmmss_NMEA0183.log" from the
// local time now (or `now` when given).
void MakeNmeaLogPath(ReceiverLink& link);
void MakeNmeaLogPath(ReceiverLink& link, std::time_t now);

// Appends the raw bytes read since the last write to the recording (when
// recordNmea is set and a file is named) and tells the sink of a change
// between failing and working. Reader thread.
void FlushRecording(ReceiverLink& link);

// Appends one batch to a recording file: open, append, close. The batch is
// written whole or not at all: after a short write (a full disk) the file
// is cut back to its length before, so a recording holds whole batches.
// Returns 0, or the errno of the failure (only this batch is lost).
int AppendNmeaBatch(const char* path, const char* data, std::size_t length);

// The message the program shows for a loss reason (from the string table),
// or null for kLossNone.
const char* LinkLossMessage(std::uint32_t reason);

}  // namespace satwalk::link
