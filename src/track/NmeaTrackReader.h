// NMEA 0183 recordings as tracks: every RMC with a valid fix is a point,
// decoded by the program's own decoder with every satellite system's
// talkers accepted. Its time is the RMC's (UTC, in local time), its
// elevation the latest GGA's altitude, its fix and satellite count the
// latest GSA's mode and GGA's count. Lines longer than an NMEA sentence can
// be are passed over, so memory stays flat.
#pragma once

#include <cstddef>
#include <string>

#include "GpsState.h"
#include "NmeaDecoder.h"
#include "TrackFile.h"

namespace satwalk::track {

class NmeaTrackParser {
  public:
    static constexpr std::size_t kLineMax = 256;

    explicit NmeaTrackParser(TrackFilePointSink onPoint);

    void Feed(const char* data, std::size_t size);
    void Finish();  // the end of the file: a last line without its LF

    // Whether any checksum-correct RMC, GGA or GSA was seen.
    bool SawSentence() const { return sentences_ > 0; }

  private:
    void Line(std::string_view line);

    TrackFilePointSink onPoint_;
    gps::GpsState state_{};
    gps::GsvAssembly gsv_;
    gps::Talkers talkers_;
    std::string line_;
    bool overlong_ = false;
    std::size_t sentences_ = 0;
};

}  // namespace satwalk::track
