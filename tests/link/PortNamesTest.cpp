#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "PortNames.h"

namespace satwalk::link {
namespace {

TEST(PortNamesTest, ParsesComNames) {
    const std::pair<const char*, int> cases[] = {
        {"COM1:", 1}, {"COM3", 3},   {"com12:", 12},       {" COM0: ", 0}, {"COM", -1},
        {"COM:", -1}, {"COMx:", -1}, {"/dev/ttyUSB0", -1}, {"COM-1:", -1}, {"COM1:x", -1}};
    for (const auto& [name, number] : cases) EXPECT_EQ(ParseComName(name), number) << name;
    EXPECT_EQ(ComName(7), "COM7:");
}

TEST(PortNamesTest, ResolvesOverrideThenMapThenDefault) {
    PortMap map;
    ParsePortMap(
        "# receivers\nCOM3 = /dev/ttyS0\r\ncom4:=/dev/serial/by-id/gps # puck\n"
        "junk\nCOM5=\nCOMx=/dev/null\n",
        map);
    ASSERT_EQ(map.size(), 2u);
    EXPECT_EQ(ResolvePortName("COM3:", map), "/dev/ttyS0");
    EXPECT_EQ(ResolvePortName("COM4:", map), "/dev/serial/by-id/gps");
    EXPECT_EQ(ResolvePortName("COM5:", map), "/dev/ttyACM0");
    EXPECT_EQ(ResolvePortName("COM3:", map, "/dev/pts/4"), "/dev/pts/4");
    EXPECT_EQ(ResolvePortName("/dev/ttyUSB2", map), "/dev/ttyUSB2");

    const std::string dir = test::MakeTempDir();
    std::ofstream(dir + "/ports") << "COM2=/dev/ttyAMA0\n";
    PortMap loaded{{9, "stale"}};
    EXPECT_TRUE(LoadPortMap(dir + "/ports", loaded));
    EXPECT_EQ(loaded, (PortMap{{2, "/dev/ttyAMA0"}}));
    EXPECT_FALSE(LoadPortMap(dir + "/missing", loaded));
    EXPECT_TRUE(loaded.empty());
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace satwalk::link
