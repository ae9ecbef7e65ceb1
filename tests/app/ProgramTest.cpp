// The satwalk binary from outside: what it answers without a display, the
// one-copy rule under simultaneous starts, and the README's command list.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

extern char** environ;

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Standard output of a shell command, and its exit status.
std::string Capture(const std::string& command, int& status) {
    std::string out;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr)
        return out;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        out.append(buffer, n);
    const int raw = ::pclose(pipe);
    status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return out;
}

TEST(ProgramTest, HelpAndVersionNeedNoDisplay) {
    const std::pair<const char*, const char*> cases[] = {
        {"--help", "usage: satwalk"}, {"-h", "usage: satwalk"}, {"--version", "satwalk 0."}};
    for (const auto& [flag, starts] : cases) {
        // The xcb platform with no display would abort any Qt start-up.
        int status = -1;
        const std::string out =
            Capture("env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb '" SATWALK_BINARY "' " +
                        std::string(flag) + " 2>&1",
                    status);
        EXPECT_EQ(status, 0) << flag << "\n" << out;
        EXPECT_EQ(out.rfind(starts, 0), 0u) << flag << "\n" << out;
    }
}

// A command line that cannot be read names what is wrong with exit status
// 2, before any display is looked for; a display that cannot be opened is
// said in one line with status 1, not Qt's abort.
TEST(ProgramTest, CommandLineAndDisplayErrors) {
    const std::tuple<const char*, const char*, int, const char*> cases[] = {
        {"", "--bogus", 2, "satwalk: unknown option --bogus\n"},
        {"", "--size 0x0", 2, "satwalk: --size 0x0: width and height must be positive\n"},
        {"", "--size 20x9000", 2, "satwalk: --size 20x9000: width and height must be 16 to 8192\n"},
        {"", "--dpi", 2, "satwalk: --dpi needs a value\n"},
        {"", "--replay-rate -1", 2, "satwalk: --replay-rate -1: the rate must be above 0"},
        {"", "-platform xcb map.png", 2, "satwalk: unexpected argument map.png\n"},
        {"", "--size 100x100", 1, "satwalk: no display to open: neither DISPLAY nor"},
        {"DISPLAY=:97", "--dpi 96", 1, "satwalk: cannot open the display :97\n"}};
    for (const auto& [env, args, code, says] : cases) {
        int status = -1;
        const std::string err =
            Capture(std::string("env -u DISPLAY -u WAYLAND_DISPLAY ") + env +
                        " QT_QPA_PLATFORM=xcb '" SATWALK_BINARY "' " + args + " 2>&1 >/dev/null",
                    status);
        EXPECT_EQ(status, code) << args << "\n" << err;
        EXPECT_EQ(err.rfind(says, 0), 0u) << args << "\n" << err;
    }
}

// The README's list of command ids is the one the program prints.
TEST(ProgramTest, ReadmeListsTheProgramsCommands) {
    int status = -1;
    const std::string listed =
        Capture("env -u DISPLAY '" SATWALK_BINARY "' --list-commands 2>/dev/null", status);
    ASSERT_EQ(status, 0);
    ASSERT_NE(listed.find("| 40011 |"), std::string::npos) << listed;
    const std::string readme = ReadFile(fs::path(SATWALK_SOURCE_DIR) / "README.md");
    const std::string begin = "<!-- command list: scripts/readme-commands writes it -->\n";
    const std::string end = "<!-- end of the command list -->";
    const auto from = readme.find(begin), to = readme.find(end);
    ASSERT_TRUE(from != std::string::npos && to != std::string::npos);
    EXPECT_EQ(readme.substr(from + begin.size(), to - from - begin.size()), "\n" + listed + "\n")
        << "the README's command list is out of date: scripts/readme-commands rewrites it";
}

// The language of a run: --language, else the `language` file beside the
// options, "auto" following the environment; --help and --list-commands
// answer in it.
TEST(ProgramTest, HelpAndCommandListInTheLanguageOfTheRun) {
    const std::string config =
        fs::temp_directory_path() / ("satwalk-lang-" + std::to_string(::getpid()));
    fs::create_directories(config);
    std::ofstream(config + "/language") << "en\n";
    const std::string options = " --options '" + config + "/options'";
    const struct {
        std::string arguments;
        const char* environment;
        const char* expected;
        int status;
    } cases[] = {
        {"--list-commands --language en", "", "| 40059 | View › GPS Information [1] | yes |", 0},
        {"--list-commands --language auto", "LANGUAGE= LC_ALL= LANG=en_US.UTF-8",
         "| 40003 | Menu › Exit | yes |", 0},
        {"--list-commands --language auto", "LANGUAGE= LC_ALL= LANG=zh_CN.UTF-8",
         "| 40003 | 菜单 › 退出 | yes |", 0},
        {"--list-commands" + options, "", "| 40197 | Menu › Options | yes |", 0},
        {"--list-commands --language zh_CN" + options, "", "| 40197 | 菜单 › 选项 | yes |", 0},
        {"--help --language en", "", "  --language LANG ", 0},
        {"--list-commands --language de", "", "--language de: choose zh_CN, en or auto", 2},
    };
    for (const auto& c : cases) {
        int status = -1;
        const std::string out = Capture("env -u DISPLAY " + std::string(c.environment) + " '" +
                                            SATWALK_BINARY "' " + c.arguments + " 2>&1",
                                        status);
        EXPECT_EQ(status, c.status) << c.arguments;
        EXPECT_NE(out.find(c.expected), std::string::npos) << c.arguments << "\n" << out;
    }
    fs::remove_all(config);
}

// Copies started at the same moment under one instance name: one keeps
// running, every other one reaches it and ends well. Two rounds, the first
// survivor ended abruptly so that the second round meets its stale socket.
class SingleInstanceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("satwalk-one-copy-" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_ / "home");
        std::ofstream(dir_ / "script.txt") << "wait 60000\nquit\n";
        env_ = {"QT_QPA_PLATFORM=offscreen", "HOME=" + (dir_ / "home").string(),
                "XDG_CONFIG_HOME=" + (dir_ / "home/.config").string(),
                "XDG_RUNTIME_DIR=" + (dir_ / "home").string(),
                "SATWALK_INSTANCE_NAME=" + (dir_ / "instance").string()};  // goes with the folder
        const std::regex own("^(DISPLAY|WAYLAND_DISPLAY|QT_QPA_PLATFORM|HOME)=|^(XDG|SATWALK)_");
        for (char** e = environ; *e != nullptr; ++e)
            if (!std::regex_search(*e, own))
                env_.push_back(*e);
    }
    void TearDown() override { fs::remove_all(dir_); }

    // Starts one copy with its own options file; its standard error goes to
    // err-N.txt. With a `gate` (a pipe) the copy waits until the parent
    // closes the pipe's write end, so that many start at one moment.
    pid_t Start(int n, const int* gate = nullptr) const {
        const std::string options = (dir_ / ("options-" + std::to_string(n))).string();
        const std::string script = (dir_ / "script.txt").string(), err = Err(n);
        std::vector<std::string> args = {SATWALK_BINARY, "--options", options,
                                         "--script",     script,      "--single-instance"};
        std::vector<std::string> env = env_;
        std::vector<char*> argv, envp;
        for (std::string& a : args) argv.push_back(a.data());
        for (std::string& e : env) envp.push_back(e.data());
        argv.push_back(nullptr);
        envp.push_back(nullptr);
        const pid_t pid = ::fork();
        if (pid != 0)
            return pid;
        const int fd = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ::dup2(fd, 2);
        if (gate != nullptr) {
            ::close(gate[1]);
            char c;
            while (::read(gate[0], &c, 1) > 0) {
            }
            ::close(gate[0]);
        }
        ::execve(SATWALK_BINARY, argv.data(), envp.data());
        ::_exit(127);
    }

    std::string Err(int n) const { return (dir_ / ("err-" + std::to_string(n) + ".txt")).string(); }

    fs::path dir_;
    std::vector<std::string> env_;
};

TEST_F(SingleInstanceTest, SimultaneousStartsLeaveOne) {
    for (int round = 0; round < 2; ++round) {
        std::vector<pid_t> alive;
        int gate[2];
        ASSERT_EQ(::pipe(gate), 0);
        for (int n = 0; n < 6; ++n) alive.push_back(Start(n, gate));
        ::close(gate[0]);
        ::close(gate[1]);  // and they are off
        const auto deadline = std::chrono::steady_clock::now() + 20s;
        while (alive.size() > 1 && std::chrono::steady_clock::now() < deadline) {
            for (auto it = alive.begin(); it != alive.end();) {
                int status = 0;
                const bool ended = ::waitpid(*it, &status, WNOHANG) == *it;
                EXPECT_TRUE(!ended || (WIFEXITED(status) && WEXITSTATUS(status) == 0));
                it = ended ? alive.erase(it) : it + 1;
            }
            std::this_thread::sleep_for(50ms);
        }
        EXPECT_EQ(alive.size(), 1u) << "round " << round;
        for (int n = 0; n < 6; ++n)
            EXPECT_EQ(ReadFile(Err(n)).find("does not answer"), std::string::npos);
        for (const pid_t pid : alive) {
            ::kill(pid, SIGKILL);
            ::waitpid(pid, nullptr, 0);
        }
    }
}

}  // namespace
