// The NMEA 0183 sentence decoder: RMC, GGA, GSA and GSV of the GPS talker
// into GpsState, checksum-checked, one batch at a time. It allocates nothing
// and reads only inside the bytes it is given. On request it also takes the
// same sentences from the other satellite systems' talkers (see Talkers).
#pragma once

#include <cstdint>
#include <string_view>

#include "GpsState.h"

namespace satwalk::gps {

// The state of a GSV cycle that is being put together, kept between
// batches (the satellite table arrives over several sentences).
struct GsvAssembly {
    std::uint32_t recordIndex = 0;  // next record to fill; records filled so far
    char totalMessages = 0;         // field 1 as first seen; 0 when no cycle is open
    char messageNumber = 0;         // field 2 of the last sentence
    std::uint32_t countParsed = 0;  // satellitesInView already taken this cycle

    void Reset() { *this = GsvAssembly{}; }
};

// Told when an RMC has resynchronised the fix time (the WM_GPS_TIME
// notification). Called on the decoding thread, synchronously.
class TimeSyncSink {
  public:
    virtual void OnGpsTime() = 0;

  protected:
    ~TimeSyncSink() = default;
};

// The talkers a receiver may use: GPS first (index 0), then GLONASS,
// Galileo, BeiDou (both of its names), the combined solution, QZSS, NavIC.
inline constexpr int kTalkerCount = 8;
inline constexpr char kTalkerNames[kTalkerCount][3] = {"GP", "GL", "GA", "GB",
                                                       "BD", "GN", "GQ", "GI"};

// Well-formed (checksum-correct) RMC, GGA, GSA and GSV sentences seen, added
// to by every decode whatever the setting; whoever reads them clears them.
struct TalkerCounts {
    std::uint32_t gpRmc = 0;         // GP RMC: where a GPS-only decode takes its fix
    std::uint32_t otherTalkers = 0;  // any of the four from a talker other than GP
};

// The satellite table put together from the GSV cycles of several systems.
// An epoch gathers one cycle per talker (and per signal, for receivers that
// name it in a last field); the table is emptied only when a cycle that the
// epoch already holds begins again, so each system's cycle adds its
// satellites to the others' instead of wiping them.
struct SkyAssembly {
    bool epochOpen = false;
    bool unsorted = false;                    // rows added since the last sort
    std::uint32_t cycles[kTalkerCount] = {};  // per talker: one bit per signal begun
    std::uint8_t inView[kTalkerCount] = {};   // per talker: its largest in-view count
    std::uint32_t rows = 0;                   // rows of the table filled in this epoch
    // Per row: its talker, number and signal (-1: not tracked) as numbers.
    std::uint8_t rowTalker[kSatelliteRows] = {};
    std::int16_t rowNumber[kSatelliteRows] = {};
    std::int16_t rowSignal[kSatelliteRows] = {};

    void Reset() { *this = SkyAssembly{}; }
};

// The "accept all satellite systems" setting and what goes with it. With
// acceptAll clear the decoder keeps to the GP talker exactly as without this
// record, and only counts. With it set, RMC, GGA and GSA of every talker in
// kTalkerNames fill the fix as GP's do, and the GSV cycles of all of them
// fill one table: each system's satellites under their own numbers, the 12
// with the strongest signals when more are in view, sorted by number as
// ever (once a batch, when the batch has been read); satellitesInView is the
// sum over the systems (at most 99).
struct Talkers {
    bool acceptAll = false;
    TalkerCounts counts;
    SkyAssembly sky;
};

// Decodes every complete sentence in `text`. The batch ends at its first NUL
// byte or at its end, whichever comes first; a sentence cut by the end is
// lost. `sink` and `talkers` may be null; without `talkers` only the GP
// talker is read.
void ParseNmeaBuffer(GpsState& state, GsvAssembly& assembly, std::string_view text,
                     TimeSyncSink* sink, Talkers* talkers = nullptr);

// True when the two received characters are the checksum `computed` written
// in uppercase hexadecimal with two digits. Lowercase letters never match.
bool VerifyChecksum(unsigned computed, const char received[2]);

// Each parser clears its block, then fills it from the fields that start at
// `fields` (the first character after the header) and end at `end` (the '*').
void ParseRmc(GpsState& state, const char* fields, const char* end);
void ParseGga(GpsState& state, const char* fields, const char* end);
void ParseGsa(GpsState& state, const char* fields, const char* end);
void ParseGsv(GpsState& state, GsvAssembly& assembly, const char* fields, const char* end);
// GSV of any talker (`talker` indexes kTalkerNames) into the combined table.
void ParseSkyGsv(GpsState& state, SkyAssembly& sky, int talker, const char* fields,
                 const char* end);

// Sets fixTimeLocal from the ddmmyy date and hhmmss.sss UTC texts, through
// the system time zone. A date-time that is not a real calendar moment
// stores 0.
void FixTimeToFileTime(GpsState& state, const char* date, const char* utcTime);

}  // namespace satwalk::gps
