// The program's own failure codes, as the message boxes and the link's
// lastErrorCode show them.
#pragma once

namespace satwalk::common::err {

// The receiver link, one per step of opening and starting it.
inline constexpr const char* kPortOpen = "0x08200a06";       // the port cannot be opened
inline constexpr const char* kPortGetState = "0x08200a07";   // not a tty / settings unreadable
inline constexpr const char* kPortSetState = "0x08200a08";   // line settings refused
inline constexpr const char* kPortTimeouts = "0x08200a09";   // read timing (VMIN/VTIME) refused
inline constexpr const char* kPortQueues = "0x08200a0b";     // non-blocking reads refused
inline constexpr const char* kPortPurge = "0x08200a0c";      // flushing the queues failed
inline constexpr const char* kLinkTimer = "0x08200a0d";      // the watchdog cannot be started
inline constexpr const char* kReaderStart = "0x08200a0e";    // the reader cannot be started
inline constexpr const char* kReaderClose = "0x08200a0f";    // the reader did not end in time
inline constexpr const char* kBluetoothPort = "0x08200a10";  // no Bluetooth port for the receiver

// The Bluetooth receiver search.
inline constexpr const char* kInquiryBegin = "0x08200a01";    // no service, no adapter, refused
inline constexpr const char* kInquiryBuffer = "0x08200a02";   // no room for the results
inline constexpr const char* kInquiryLost = "0x08200a03";     // the adapter went away meanwhile
inline constexpr const char* kInquiryAddress = "0x08200a04";  // an answer without an address
inline constexpr const char* kInquiryRelease = "0x08200a05";  // the search could not be ended
inline constexpr const char* kSearchStart = "0x08200a25";     // the search worker did not start
inline constexpr const char* kSearchRetry = "0x08200a26";     // ... nor on a retry

// The window's timers.
inline constexpr const char* kTrackTimer = "0x08200a13";
inline constexpr const char* kClockTimer = "0x08200a21";

// The screen bitmaps, one per bitmap that start-up cannot do without.
inline constexpr const char* kBitmapStatusIcons = "0x08200a15";
inline constexpr const char* kBitmapSmallSymbol = "0x08200a16";
inline constexpr const char* kBitmapWorld = "0x08200a17";
inline constexpr const char* kBitmapSquareSymbol = "0x08200a18";
inline constexpr const char* kBitmapToolStrip = "0x08200a28";  // the map overlay shares it
inline constexpr const char* kBitmapToolStripLandscape = "0x08200a29";
inline constexpr const char* kBitmapAlarmStrip = "0x08200a2a";

}  // namespace satwalk::common::err
