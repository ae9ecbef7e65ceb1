// satwalk-tool decode: an NMEA log through the decoder, one JSON object per
// batch, exactly as the receiver link would decode it.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "BatchSplitter.h"
#include "GpsJson.h"
#include "NmeaDecoder.h"
#include "ToolCommands.h"

namespace satwalk::tools {

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool decode [--batch N] [--cut] [--sync-every K] [--all-talkers] [FILE]\n"
    "  Decodes an NMEA 0183 log (or standard input) and prints one JSON object\n"
    "  per batch.\n"
    "  --batch N       batch size in bytes (default 2047)\n"
    "  --cut           cut the input every N bytes, as a raw stream arrives\n"
    "  --sync-every K  request a time sync before every K-th batch\n"
    "  --all-talkers   accept all satellite systems (GN, GL, GA, GB, BD, ... talkers)\n";

class SyncFlag final : public gps::TimeSyncSink {
  public:
    void OnGpsTime() override { fired = true; }
    bool fired = false;
};

bool ParseCount(std::string_view text, unsigned long& out) {
    const auto r = std::from_chars(text.data(), text.data() + text.size(), out);
    return r.ec == std::errc() && r.ptr == text.data() + text.size() && out > 0;
}

}  // namespace

bool WriteAll(int fd, std::string_view data) {
    const char* p = data.data();
    std::size_t left = data.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, left);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (n == 0)
            return false;
        p += n;
        left -= static_cast<std::size_t>(n);
    }
    return true;
}

const char* DecodeUsage() {
    return kUsage;
}

int RunDecode(int argc, char** argv) {
    unsigned long batchSize = 2047;
    unsigned long syncEvery = 0;
    bool cut = false;
    bool allTalkers = false;
    const char* path = nullptr;
    for (int i = 0; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--batch" || arg == "--sync-every") {
            unsigned long& target = arg == "--batch" ? batchSize : syncEvery;
            if (i + 1 >= argc || !ParseCount(argv[i + 1], target)) {
                std::fprintf(stderr, "satwalk-tool decode: %s needs a positive number\n%s", argv[i],
                             kUsage);
                return 2;
            }
            ++i;
        } else if (arg == "--cut") {
            cut = true;
        } else if (arg == "--all-talkers") {
            allTalkers = true;
        } else if (arg == "-h" || arg == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        } else if (arg == "-") {
            path = nullptr;
        } else if (!arg.empty() && arg[0] == '-') {
            std::fprintf(stderr, "satwalk-tool decode: unknown option %s\n%s", argv[i], kUsage);
            return 2;
        } else if (path == nullptr) {
            path = argv[i];
        } else {
            std::fprintf(stderr, "satwalk-tool decode: only one FILE may be given\n%s", kUsage);
            return 2;
        }
    }
    if (batchSize > (1ul << 24)) {
        std::fprintf(stderr, "satwalk-tool decode: --batch is at most %lu bytes\n", 1ul << 24);
        return 2;
    }

    int fd = STDIN_FILENO;
    const char* name = path ? path : "standard input";
    if (path != nullptr) {
        fd = ::open(path, O_RDONLY | O_CLOEXEC);
        if (fd < 0) {
            std::fprintf(stderr, "satwalk-tool decode: cannot open %s: %s\n", path,
                         std::strerror(errno));
            return 2;
        }
    }
    int readError = 0;
    BatchSplitter splitter(
        [fd, &readError](char* buf, std::size_t size) -> long {
            for (;;) {
                const ssize_t n = ::read(fd, buf, size);
                if (n < 0 && errno == EINTR)
                    continue;
                if (n < 0)
                    readError = errno;
                return static_cast<long>(n);
            }
        },
        batchSize, cut);

    gps::GpsState state;
    gps::GsvAssembly assembly;
    gps::Talkers talkers;
    talkers.acceptAll = true;
    SyncFlag sync;
    bool timeKnown = false;
    std::string out;
    out.reserve(1 << 20);
    std::string_view batch;
    unsigned long number = 0;
    while (splitter.Next(batch)) {
        ++number;
        if (syncEvery > 0 && number % syncEvery == 0)
            state.timeSyncPending = 1;
        sync.fired = false;
        gps::ParseNmeaBuffer(state, assembly, batch, &sync, allTalkers ? &talkers : nullptr);
        timeKnown = timeKnown || sync.fired;

        out += "{\"batch\":";
        char num[24];
        out.append(num, std::to_chars(num, num + sizeof num, number).ptr);
        out += ",\"timeSync\":";
        out += sync.fired ? "true," : "false,";
        gps::AppendGpsJsonMembers(out, state, gps::ReadFix(state), timeKnown);
        out += "}\n";
        if (out.size() > (1u << 20) - 8192) {
            if (!WriteAll(STDOUT_FILENO, out))
                return 1;
            out.clear();
        }
    }
    if (!WriteAll(STDOUT_FILENO, out))
        return 1;
    if (path != nullptr)
        ::close(fd);
    if (splitter.failed()) {
        std::fprintf(stderr, "satwalk-tool decode: cannot read %s: %s\n", name,
                     std::strerror(readError));
        return 2;
    }
    return 0;
}

}  // namespace satwalk::tools
