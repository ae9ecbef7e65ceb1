// Runs satwalk-tool as a whole process and picks fields out of its JSON.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace satwalk::tools::test {

struct ToolRun {
    int status;
    std::string out, err;
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        std::istringstream in(out);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }
};

// `args` go to the shell as they are (quoting, redirections).
inline ToolRun Tool(const std::string& args) {
    // One file per process: ctest runs the tests side by side.
    const std::string errFile =
        ::testing::TempDir() + "satwalk-tool-" + std::to_string(::getpid()) + ".err";
    const std::string cmd = std::string(SATWALK_TOOL) + " " + args + " 2>" + errFile;
    ToolRun r{};
    FILE* p = ::popen(cmd.c_str(), "r");
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, p)) > 0;) r.out.append(buffer, n);
    r.status = WEXITSTATUS(::pclose(p));
    {
        std::ifstream e(errFile);
        r.err.assign(std::istreambuf_iterator<char>(e), {});
    }
    std::remove(errFile.c_str());
    return r;
}

// The text after "name": up to the end of its value (an object, an array or
// a scalar).
inline std::string Field(const std::string& json, const std::string& name) {
    const auto at = json.find("\"" + name + "\":");
    if (at == std::string::npos)
        return "<missing>";
    const auto start = at + name.size() + 3;
    if (json[start] == '{' || json[start] == '[') {
        int depth = 0;
        for (auto i = start; i < json.size(); ++i) {
            depth += json[i] == '{' || json[i] == '[';
            depth -= json[i] == '}' || json[i] == ']';
            if (depth == 0)
                return json.substr(start, i + 1 - start);
        }
    }
    return json.substr(start, json.find_first_of(",}", start) - start);
}

// Writes `bytes` to a file in the test's temporary folder; returns its path.
inline std::string WriteTemp(const std::string& name, const std::string& bytes) {
    const std::string path = ::testing::TempDir() + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

}  // namespace satwalk::tools::test
