// satwalk-tool log as a whole process on a pseudo-terminal receiver.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

namespace {

TEST(LogCommand, EndsWithoutALossLineAndTellsAnUnwritableFolderOnce) {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(master, 0);
    ASSERT_EQ(::grantpt(master), 0);
    ASSERT_EQ(::unlockpt(master), 0);
    char slave[128];
    ASSERT_EQ(::ptsname_r(master, slave, sizeof slave), 0);

    const std::string err = ::testing::TempDir() + "log_command.err";
    const std::string cmd = std::string(SATWALK_TOOL) + " log --seconds 2 --record " +
                            "/nonexistent/satwalk-rec --port " + slave + " 2>" + err;
    FILE* p = ::popen(cmd.c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::thread receiver([master] {
        const std::string rmc =
            "$GPRMC,010203.000,A,3015.1234,N,12009.5000,E,10.0,90.0,160526,,*01\r\n";
        for (int i = 0; i < 15; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            [[maybe_unused]] const ssize_t n = ::write(master, rmc.data(), rmc.size());
        }
    });
    std::string out;
    char line[1 << 16];
    while (std::fgets(line, sizeof line, p)) out += line;
    const int status = ::pclose(p);
    receiver.join();
    ::close(master);
    std::stringstream errors;
    errors << std::ifstream(err).rdbuf();

    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_NE(out.find("\"batch\":1"), std::string::npos) << out;
    EXPECT_EQ(out.find("linkLossReason"), std::string::npos) << out;
    EXPECT_EQ(errors.str(),
              "satwalk-tool log: cannot record into /nonexistent/satwalk-rec: No such file or "
              "directory\n");
}

}  // namespace
