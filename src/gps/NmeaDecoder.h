// The NMEA 0183 sentence decoder: RMC, GGA, GSA and GSV of the GPS talker
// into GpsState, checksum-checked, one batch at a time. It allocates nothing
// and reads only inside the bytes it is given.
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

// Decodes every complete sentence in `text`. The batch ends at its first NUL
// byte or at its end, whichever comes first; a sentence cut by the end is
// lost. `sink` may be null.
void ParseNmeaBuffer(GpsState& state, GsvAssembly& assembly, std::string_view text,
                     TimeSyncSink* sink);

// True when the two received characters are the checksum `computed` written
// in uppercase hexadecimal with two digits. Lowercase letters never match.
bool VerifyChecksum(unsigned computed, const char received[2]);

// Each parser clears its block, then fills it from the fields that start at
// `fields` (the first character after the header) and end at `end` (the '*').
void ParseRmc(GpsState& state, const char* fields, const char* end);
void ParseGga(GpsState& state, const char* fields, const char* end);
void ParseGsa(GpsState& state, const char* fields, const char* end);
void ParseGsv(GpsState& state, GsvAssembly& assembly, const char* fields, const char* end);

// Sets fixTimeLocal from the ddmmyy date and hhmmss.sss UTC texts, through
// the system time zone. A date-time that is not a real calendar moment
// stores 0.
void FixTimeToFileTime(GpsState& state, const char* date, const char* utcTime);

}  // namespace satwalk::gps
