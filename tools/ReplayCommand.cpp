// satwalk-tool replay: a recorded NMEA log played through a pseudo-terminal
// at the pace it was recorded, for the program or `satwalk-tool log`.
#include <signal.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>
#include <thread>

#include "ReplayReceiver.h"
#include "ToolCommands.h"

namespace satwalk::tools {

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool replay FILE [--rate X] [--loop]\n"
    "  Opens a pseudo-terminal, prints its path, and writes the NMEA log FILE\n"
    "  into it, one RMC epoch per second (X epochs per second with --rate).\n"
    "  --loop  start again at the end instead of hanging up\n";

}  // namespace

const char* ReplayUsage() {
    return kUsage;
}

int RunReplay(int argc, char** argv) {
    link::ReplayReceiver::Options options;
    const char* path = nullptr;
    for (int i = 0; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--rate") {
            if (i + 1 >= argc) {
                std::fprintf(stderr, "satwalk-tool replay: --rate needs a number\n%s", kUsage);
                return 2;
            }
            const std::string_view v = argv[++i];
            const auto r = std::from_chars(v.data(), v.data() + v.size(), options.rate);
            if (r.ec != std::errc() || r.ptr != v.data() + v.size() || !(options.rate > 0) ||
                options.rate > 1000) {
                std::fprintf(stderr, "satwalk-tool replay: --rate must be above 0, at most 1000\n");
                return 2;
            }
        } else if (arg == "--loop") {
            options.loop = true;
        } else if (arg == "-h" || arg == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        } else if (!arg.empty() && arg[0] == '-') {
            std::fprintf(stderr, "satwalk-tool replay: unknown option %s\n%s", argv[i], kUsage);
            return 2;
        } else if (path == nullptr) {
            path = argv[i];
        } else {
            std::fprintf(stderr, "satwalk-tool replay: only one FILE may be given\n%s", kUsage);
            return 2;
        }
    }
    if (path == nullptr) {
        std::fputs(kUsage, stderr);
        return 2;
    }

    // Signals are taken by sigwait below; every thread inherits the mask.
    sigset_t signals;
    sigemptyset(&signals);
    for (const int s : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) sigaddset(&signals, s);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    link::ReplayReceiver replay;
    if (!replay.LoadFile(path) || !replay.Open()) {
        std::fprintf(stderr, "satwalk-tool replay: %s\n", replay.error().c_str());
        return 2;
    }
    if (!replay.Start(options)) {
        std::fprintf(stderr, "satwalk-tool replay: %s holds no NMEA text\n", path);
        return 2;
    }
    std::printf("%s\n", replay.slavePath().c_str());
    std::fflush(stdout);

    std::thread waiter([&replay] {
        replay.WaitFinished();
        ::kill(::getpid(), SIGUSR1);
    });
    int received = 0;
    sigwait(&signals, &received);
    replay.Stop();
    waiter.join();
    return 0;
}

}  // namespace satwalk::tools
