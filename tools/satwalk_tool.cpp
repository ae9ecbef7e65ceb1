// satwalk-tool: Satwalk's command-line companion for receiver logs and maps.
#include <cstdio>
#include <string_view>

#include "ToolCommands.h"

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool COMMAND [ARGS]\n"
    "commands:\n"
    "  decode [--batch N] [--cut] [--sync-every K] [FILE]\n"
    "      decode an NMEA 0183 log into one JSON fix per batch\n"
    "  replay FILE [--rate X] [--loop]\n"
    "      play an NMEA log through a pseudo-terminal at its recorded pace\n"
    "  log --port PATH [--baud N] [--record DIR] [--seconds S]\n"
    "      run the receiver link on a port, one JSON fix per decoded batch\n"
    "  map --rpt FILE --size WxH [--to-geo X,Y]... [--to-image LAT,LON]...\n"
    "      [--northing LAT]... [--view-scale KM] [--scale-bar PX]\n"
    "      calibrate an image from its reference-point file, as one JSON object\n"
    "  track FILE.log [--gpx]\n"
    "      a track log's points as JSON, or as a GPX 1.1 track\n"
    "  poi FILE.csv\n"
    "      a POI file's category and points as the program imports them\n";

struct Command {
    std::string_view name;
    int (*run)(int, char**);
};

constexpr Command kCommands[] = {
    {"decode", satwalk::tools::RunDecode}, {"replay", satwalk::tools::RunReplay},
    {"log", satwalk::tools::RunLog},       {"map", satwalk::tools::RunMap},
    {"track", satwalk::tools::RunTrack},   {"poi", satwalk::tools::RunPoi},
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const std::string_view name = argv[1];
    if (name == "-h" || name == "--help" || name == "help") {
        std::fputs(kUsage, stdout);
        return 0;
    }
    for (const Command& c : kCommands) {
        if (c.name == name)
            return c.run(argc - 2, argv + 2);
    }
    std::fprintf(stderr, "satwalk-tool: unknown command '%s'\n%s", argv[1], kUsage);
    return 2;
}
