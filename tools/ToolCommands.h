// The sub-commands of satwalk-tool. Each takes the arguments after its name
// and returns the process exit status.
#pragma once

namespace satwalk::tools {

int RunDecode(int argc, char** argv);
int RunReplay(int argc, char** argv);
int RunLog(int argc, char** argv);

}  // namespace satwalk::tools
