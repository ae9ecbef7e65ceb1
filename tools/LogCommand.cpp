// satwalk-tool log: the receiver link run headless. Prints the fix after
// every decoded batch (the same JSON object as `decode`) and, when the link
// ends by itself, one line with the loss reason and the message the program
// shows. Unlike the window it says on standard error when a recording
// cannot be written, and when the receiver speaks only other talkers.
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

#include "GpsJson.h"
#include "Json.h"
#include "NmeaRelay.h"
#include "ReceiverLink.h"
#include "SourceAddress.h"
#include "ThreadTimer.h"
#include "ToolCommands.h"

namespace satwalk::tools {

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool log --port SOURCE [--baud N] [--record DIR] [--seconds S] "
    "[--all-talkers] [--relay [HOST:]PORT]\n"
    "  Opens the receiver at SOURCE (a tty or pseudo-terminal, gpsd://HOST[:PORT]\n"
    "  or tcp://HOST:PORT) as the program does and prints one JSON object per\n"
    "  decoded batch; when the receiver falls silent for 30 s or vanishes,\n"
    "  prints the loss and exits 0.\n"
    "  --baud N        4800, 9600, 14400, 19200, 38400 (default) or 57600\n"
    "  --record DIR    record the raw stream into DIR as the program does\n"
    "  --seconds S     stop after S seconds (no loss line when none happened)\n"
    "  --all-talkers   accept all satellite systems (GN, GL, GA, GB, BD, ... talkers)\n"
    "  --relay [HOST:]PORT  serve the receiver's bytes to TCP clients (host 127.0.0.1\n"
    "                  unless named)\n";

// Prints each batch; hands the stop command back to the main thread.
class PrintingSink final : public link::LinkSink {
  public:
    PrintingSink(link::ReceiverLink& l, const char* recordFolder)
        : link_(l), recordFolder_(recordFolder) {
        out_.reserve(16384);
    }

    void OnGpsData() override {
        ++batch_;
        out_.clear();
        out_ += "{\"batch\":";
        char num[24];
        out_.append(num, std::to_chars(num, num + sizeof num, batch_).ptr);
        out_ += ",\"timeSync\":";
        out_ += synced_ ? "true," : "false,";
        gps::AppendGpsJsonMembers(out_, link_.gps, gps::ReadFix(link_.gps), timeKnown_);
        out_ += "}\n";
        WriteAll(STDOUT_FILENO, out_);
        synced_ = false;
    }

    void OnGpsTime() override {
        synced_ = true;
        timeKnown_ = true;
    }

    void OnStopCommand() override {
        link::StopLink(link_);
        ::kill(::getpid(), SIGUSR1);
    }

    void OnOtherTalkersOnly() override {
        WriteAll(STDERR_FILENO,
                 "satwalk-tool log: the receiver sends other satellite systems' talkers and "
                 "no GP RMC, so there is no fix: try --all-talkers\n");
    }

    void OnRecordFailed(int error) override {
        std::string line = "satwalk-tool log: cannot record into ";
        line += recordFolder_ != nullptr ? recordFolder_ : "the folder";
        line += ": ";
        line += std::strerror(error);
        line += "\n";
        WriteAll(STDERR_FILENO, line);
    }

    void OnRecordResumed() override {
        std::string line = "satwalk-tool log: recording into ";
        line += recordFolder_ != nullptr ? recordFolder_ : "the folder";
        line += " again\n";
        WriteAll(STDERR_FILENO, line);
    }

  private:
    link::ReceiverLink& link_;
    const char* recordFolder_;
    std::string out_;
    unsigned long batch_ = 0;
    bool synced_ = false;
    bool timeKnown_ = false;
};

bool ParseNumber(std::string_view text, unsigned long& out) {
    const auto r = std::from_chars(text.data(), text.data() + text.size(), out);
    return r.ec == std::errc() && r.ptr == text.data() + text.size();
}

}  // namespace

const char* LogUsage() {
    return kUsage;
}

int RunLog(int argc, char** argv) {
    const char* port = nullptr;
    const char* record = nullptr;
    const char* relay = nullptr;
    unsigned long baud = 38400;
    unsigned long seconds = 0;
    bool allTalkers = false;
    for (int i = 0; i < argc; ++i) {
        const std::string_view arg = argv[i];
        const bool takesValue = arg == "--port" || arg == "--baud" || arg == "--record" ||
                                arg == "--seconds" || arg == "--relay";
        if (arg == "-h" || arg == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (arg == "--all-talkers") {
            allTalkers = true;
            continue;
        }
        if (!takesValue) {
            std::fprintf(stderr, "satwalk-tool log: unknown argument %s\n%s", argv[i], kUsage);
            return 2;
        }
        if (i + 1 >= argc) {
            std::fprintf(stderr, "satwalk-tool log: %s needs a value\n%s", argv[i], kUsage);
            return 2;
        }
        const char* value = argv[++i];
        if (arg == "--port") {
            port = value;
        } else if (arg == "--record") {
            record = value;
        } else if (arg == "--relay") {
            relay = value;
        } else if (!ParseNumber(value, arg == "--baud" ? baud : seconds) || baud > 0xffffffffUL) {
            std::fprintf(stderr, "satwalk-tool log: %s needs a number\n%s", argv[i - 1], kUsage);
            return 2;
        }
    }
    if (port == nullptr) {
        std::fprintf(stderr, "satwalk-tool log: --port is required\n%s", kUsage);
        return 2;
    }

    sigset_t signals;
    sigemptyset(&signals);
    for (const int s : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) sigaddset(&signals, s);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    // The link is torn down explicitly before the sink: a reader still inside
    // OnGpsData (a stalled standard output) must finish before the sink goes.
    auto owned = std::make_unique<link::ReceiverLink>();
    link::ReceiverLink& receiver = *owned;
    PrintingSink sink(receiver, record);
    link::ThreadTimer timer([&receiver] { link::LinkTimerProc(receiver); },
                            std::chrono::milliseconds(1000));
    receiver.devicePath = port;
    receiver.baudRate = static_cast<std::uint32_t>(baud);
    receiver.sink = &sink;
    receiver.timer = &timer;
    receiver.allTalkers = allTalkers;
    if (record != nullptr) {
        receiver.recordNmea = true;
        receiver.nmeaFolder = record;
    }

    // The relay is the receiver's second reader: one that cannot listen is
    // said once, and the receiver runs on.
    link::NmeaRelay relayServer;
    if (relay != nullptr) {
        std::string host;
        std::uint16_t relayPort = 0;
        std::string error = "not [HOST:]PORT";
        if (link::ParseHostPort(relay, "127.0.0.1", host, relayPort) &&
            relayServer.Start(host, relayPort, error)) {
            receiver.tap = &relayServer;
        } else {
            std::fprintf(stderr, "satwalk-tool log: cannot relay on %s: %s\n", relay,
                         error.c_str());
        }
    }

    if (!link::OpenPort(receiver)) {
        std::fprintf(stderr, "satwalk-tool log: cannot connect to the receiver on %s (%s)\n", port,
                     receiver.lastErrorCode.c_str());
        return 2;
    }
    if (!link::StartLink(receiver)) {
        std::fprintf(stderr, "satwalk-tool log: cannot start the link on %s: %s\n", port,
                     receiver.lastErrorCode.c_str());
        return 2;
    }

    int received = 0;
    if (seconds > 0) {
        const timespec wait{static_cast<std::time_t>(seconds), 0};
        received = sigtimedwait(&signals, nullptr, &wait);
    } else {
        sigwait(&signals, &received);
    }
    const std::uint32_t reason = link::StopLink(receiver);  // again after a loss: harmless
    receiver.sink = nullptr;

    // A loss is reported; an end by --seconds or a signal is no loss.
    std::string line;
    if (const char* message = link::LinkLossMessage(reason)) {
        line = "{\"linkLossReason\":";
        line += std::to_string(reason);
        line += ",\"message\":";
        common::AppendJsonString(line, message);
        line += "}\n";
    }
    timer.Stop();
    owned.reset();  // waits for the reader to end
    relayServer.Stop();
    WriteAll(STDOUT_FILENO, line);
    return 0;
}

}  // namespace satwalk::tools
