// The fixture of the end-to-end tests: each test writes a script into its
// own folder and runs `satwalk` offscreen on it, with a home of its own and
// the test hooks' commands present.
#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>

namespace fs = std::filesystem;

class ScriptRunTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() /
               ("satwalk-e2e-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir_);
        fs::create_directories(dir_ / "home");
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::string Path(const std::string& name) const { return (dir_ / name).string(); }

    // Writes the script with every "@/" standing for the test's folder.
    void WriteScript(std::string text) const {
        const std::string dir = dir_.string();
        for (auto at = text.find("@/"); at != std::string::npos; at = text.find("@/", at + 1))
            text.replace(at, 1, dir);
        std::ofstream(Path("script.txt")) << text;
    }

    std::string Command(const std::string& extra = {}) const {
        return "env QT_QPA_PLATFORM=offscreen SATWALK_TEST_HOOKS=1 HOME='" + Path("home") +
               "' XDG_CONFIG_HOME='" + Path("home/.config") + "' SATWALK_INSTANCE_NAME='" +
               Path("instance") + "' '" SATWALK_BINARY "' --options '" + Path("options") +
               "' --script '" + Path("script.txt") + "' " + extra + " 2>'" + Path("stderr.txt") +
               "'";
    }

    int Run(const std::string& extra = {}) const {
        const int status = std::system(Command(extra).c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string Read(const std::string& name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    // Every part is somewhere in the named output file.
    void ExpectHas(const std::string& name, std::initializer_list<std::string> parts) const {
        const std::string text = Read(name);
        for (const std::string& part : parts)
            EXPECT_NE(text.find(part), std::string::npos) << name << ": " << part << "\n" << text;
    }

    fs::path dir_;
};
