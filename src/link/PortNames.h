// COM port names on Linux.
//
// The settings keep a port number and the link is started on "COM%d:". On
// Linux that name resolves to a tty device path, in this order:
//   1. an override path given by the user (`--port PATH`): any device,
//      a pseudo-terminal included, stands for the configured port;
//   2. the port map file: lines "COM3=/dev/ttyS0" ('#' starts a comment,
//      blanks around the parts are ignored, "COM3:" and "com3" also match);
//   3. the default map, stable across runs:
//        COM1..COM4  -> /dev/ttyUSB0..3  (USB serial adapters, most pucks)
//        COM5..COM8  -> /dev/ttyACM0..3  (USB CDC receivers)
//        COM9        -> /dev/rfcomm0     (a bound Bluetooth receiver)
//        COM0, COM10 and above -> /dev/ttyS<n> (on-board serial ports)
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace satwalk::link {

using PortMap = std::map<int, std::string>;

// The port number of "COM%d:" ("COM3:", "COM3", case-insensitive), or -1.
int ParseComName(std::string_view name);

// "COM%d:" of a port number.
std::string ComName(int number);

// The device path of a port number by the default map.
std::string DefaultPortPath(int number);

// Reads a port map file; lines that do not parse are skipped. False when the
// file cannot be read (the map is then left empty).
bool LoadPortMap(const std::string& path, PortMap& map);
void ParsePortMap(std::string_view text, PortMap& map);

// The device path for a port name: `overridePath` when not empty, else the
// map's entry, else the default map. A name that is not "COM%d:" is taken as
// a path itself.
std::string ResolvePortName(std::string_view name, const PortMap& map,
                            const std::string& overridePath = {});

}  // namespace satwalk::link
