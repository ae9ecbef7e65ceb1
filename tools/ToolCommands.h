// The sub-commands of satwalk-tool. Each takes the arguments after its name
// and returns the process exit status.
#pragma once

#include <string_view>

namespace satwalk::tools {

// Writes all of `data` to `fd`, through interrupted and partial writes;
// false when the descriptor refuses it.
bool WriteAll(int fd, std::string_view data);

// Each command's usage, as its --help prints it and satwalk-tool --help
// lists them all.
const char* DecodeUsage();
const char* ReplayUsage();
const char* LogUsage();
const char* MapUsage();
const char* TrackUsage();
const char* PoiUsage();

int RunDecode(int argc, char** argv);
int RunReplay(int argc, char** argv);
int RunLog(int argc, char** argv);
int RunMap(int argc, char** argv);
int RunTrack(int argc, char** argv);
int RunPoi(int argc, char** argv);

}  // namespace satwalk::tools
