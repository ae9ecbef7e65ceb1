// satwalk-tool: Satwalk's command-line companion for receiver logs and maps.
#include <cstdio>
#include <string_view>

#include "ToolCommands.h"

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool COMMAND [ARGS]\n"
    "       satwalk-tool --help | --version\n"
    "Satwalk's command-line companion for receiver logs, tracks, points of interest\n"
    "and maps. The commands and their options:\n";

struct Command {
    std::string_view name;
    int (*run)(int, char**);
    const char* (*usage)();
};

using namespace satwalk::tools;
constexpr Command kCommands[] = {
    {"decode", RunDecode, DecodeUsage}, {"replay", RunReplay, ReplayUsage},
    {"log", RunLog, LogUsage},          {"map", RunMap, MapUsage},
    {"track", RunTrack, TrackUsage},    {"poi", RunPoi, PoiUsage},
};

void PrintUsage(std::FILE* to) {
    std::fputs(kUsage, to);
    for (const Command& c : kCommands) {
        std::fputc('\n', to);
        std::fputs(c.usage(), to);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        PrintUsage(stderr);
        return 2;
    }
    const std::string_view name = argv[1];
    if (name == "-h" || name == "--help" || name == "help") {
        PrintUsage(stdout);
        return 0;
    }
    if (name == "--version") {
        std::printf("satwalk-tool %s\n", SATWALK_VERSION);
        return 0;
    }
    for (const Command& c : kCommands) {
        if (c.name == name)
            return c.run(argc - 2, argv + 2);
    }
    std::fprintf(stderr, "satwalk-tool: unknown command %s\n(satwalk-tool --help lists them)\n",
                 argv[1]);
    return 2;
}
