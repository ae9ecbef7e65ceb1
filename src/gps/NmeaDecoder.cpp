#include "NmeaDecoder.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <utility>

namespace satwalk::gps {

namespace {

enum class Sentence { None, Rmc, Gsv, Gsa, Gga };

constexpr int kSatellitesPerGsv = 4;

// Each seed is the XOR of the six header characters (comma included), so
// the running value ends as the standard XOR of everything between '$'
// and '*'.
constexpr unsigned kSeedRmc = 103;
constexpr unsigned kSeedGsv = 121;
constexpr unsigned kSeedGsa = 110;
constexpr unsigned kSeedGga = 122;

Sentence MatchHeader(const char* h) {
    // Compared exactly, case-sensitive, in this order.
    if (std::memcmp(h, "GPRMC,", 6) == 0)
        return Sentence::Rmc;
    if (std::memcmp(h, "GPGSV,", 6) == 0)
        return Sentence::Gsv;
    if (std::memcmp(h, "GPGSA,", 6) == 0)
        return Sentence::Gsa;
    if (std::memcmp(h, "GPGGA,", 6) == 0)
        return Sentence::Gga;
    return Sentence::None;
}

unsigned SeedOf(Sentence s) {
    switch (s) {
        case Sentence::Rmc:
            return kSeedRmc;
        case Sentence::Gsv:
            return kSeedGsv;
        case Sentence::Gsa:
            return kSeedGsa;
        case Sentence::Gga:
            return kSeedGga;
        case Sentence::None:
            break;
    }
    return 0;
}

// XORs bytes from p into `sum` until a '*' or '$' or `end`, eight bytes at a
// time where it can. Returns the position of the stop.
const char* ChecksumScan(const char* p, const char* end, unsigned& sum) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
    constexpr std::uint64_t kHighs = 0x8080808080808080ULL;
    constexpr std::uint64_t kStars = kOnes * '*';
    constexpr std::uint64_t kDollars = kOnes * '$';
    std::uint64_t folded = 0;
    while (end - p >= 8) {
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        const std::uint64_t a = w ^ kStars;
        const std::uint64_t b = w ^ kDollars;
        // Non-zero exactly when some byte of a or b is zero.
        if ((((a - kOnes) & ~a) | ((b - kOnes) & ~b)) & kHighs)
            break;
        folded ^= w;
        p += 8;
    }
    folded ^= folded >> 32;
    folded ^= folded >> 16;
    folded ^= folded >> 8;
    sum ^= static_cast<unsigned>(folded & 0xFF);
    while (p < end && *p != '*' && *p != '$') {
        sum ^= static_cast<unsigned char>(*p);
        ++p;
    }
    return p;
}

// Walks comma-separated fields of one sentence body, [p, end), where end is
// the '*'. A field that reaches the '*' is the last.
class FieldWalker {
  public:
    FieldWalker(const char* p, const char* end) : p_(p), end_(end) {}

    // The next field as [begin, stop); false when the sentence has ended.
    bool Next(const char*& begin, const char*& stop) {
        if (done_)
            return false;
        begin = p_;
        // Fields are short: a plain loop beats a library call per field.
        const char* q = p_;
        while (q < end_ && *q != ',') ++q;
        if (q < end_) {
            stop = q;
            p_ = q + 1;
        } else {
            stop = end_;
            p_ = end_;
            done_ = true;
        }
        return true;
    }

    // Copies the next field into a text of N bytes (NUL included), keeping
    // the first N-1 characters and zeroing the rest, in one pass over the
    // field; false when the sentence had already ended.
    template <std::size_t N>
    bool NextInto(char (&dst)[N]) {
        if (done_)
            return false;
        const char* q = p_;
        std::size_t n = 0;
        while (q < end_ && *q != ',' && n < N - 1) dst[n++] = *q++;
        std::memset(dst + n, 0, N - n);
        while (q < end_ && *q != ',') ++q;
        Advance(q);
        return true;
    }

    // Steps over the next field; false when the sentence had already ended.
    bool Skip() {
        if (done_)
            return false;
        const char* q = p_;
        while (q < end_ && *q != ',') ++q;
        Advance(q);
        return true;
    }

    // The character a C walk would see at the start of the field: the first
    // text character, or the terminator of an empty field.
    char FirstChar(const char* begin, const char* stop) const {
        if (begin < stop)
            return *begin;
        return stop < end_ ? ',' : '*';
    }

  private:
    void Advance(const char* stop) {
        if (stop < end_) {
            p_ = stop + 1;
        } else {
            p_ = end_;
            done_ = true;
        }
    }

    const char* p_;
    const char* end_;
    bool done_ = false;
};

// Copies a field into a text of `width` bytes (NUL included), keeping the
// first width-1 characters; the rest of the text is zeroed.
template <std::size_t N>
void CopyField(char (&dst)[N], const char* begin, const char* stop) {
    std::size_t n = static_cast<std::size_t>(stop - begin);
    if (n > N - 1)
        n = N - 1;
    std::memcpy(dst, begin, n);
    std::memset(dst + n, 0, N - n);
}

// A one-character field keeps its first character; an empty one stores
// nothing (the block was cleared before).
void CopyChar(char& dst, const char* begin, const char* stop) {
    if (begin < stop)
        dst = *begin;
}

// Days since 1970-01-01 of a proleptic Gregorian date.
std::int64_t DaysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

bool IsLeap(int y) {
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int DaysInMonth(int y, int m) {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

}  // namespace

namespace {

// Orders the first `count` rows by numeric PRN with an exchange sort: for
// each i, every later row j with a smaller number is swapped in. The numbers
// and the permutation are sorted side by side, and the 21-byte rows are
// moved once at the end; equal numbers end in the same order as swapping
// the rows themselves would leave them.
void SortByPrn(SatelliteRecord* rows, int count) {
    if (count <= 0)
        return;
    int number[kSatelliteRows];
    int order[kSatelliteRows];
    for (int i = 0; i < count; ++i) {
        number[i] = TextToInt(rows[i].prn);
        order[i] = i;
    }
    for (int i = 0; i < count; ++i) {
        for (int j = i; j < count; ++j) {
            if (number[i] > number[j]) {
                std::swap(number[i], number[j]);
                std::swap(order[i], order[j]);
            }
        }
    }
    SatelliteRecord sorted[kSatelliteRows];
    for (int i = 0; i < count; ++i) sorted[i] = rows[order[i]];
    std::memcpy(rows, sorted, sizeof(SatelliteRecord) * static_cast<std::size_t>(count));
}

// The index in kTalkerNames of a talker other than GP, or -1.
int OtherTalker(const char* h) {
    for (int i = 1; i < kTalkerCount; ++i) {
        if (h[0] == kTalkerNames[i][0] && h[1] == kTalkerNames[i][1])
            return i;
    }
    return -1;
}

// The sentence named by the four characters after a talker ("RMC," ...).
Sentence SentenceAfterTalker(const char* t) {
    if (std::memcmp(t, "RMC,", 4) == 0)
        return Sentence::Rmc;
    if (std::memcmp(t, "GSV,", 4) == 0)
        return Sentence::Gsv;
    if (std::memcmp(t, "GSA,", 4) == 0)
        return Sentence::Gsa;
    if (std::memcmp(t, "GGA,", 4) == 0)
        return Sentence::Gga;
    return Sentence::None;
}

unsigned HeaderXor(const char* h) {
    unsigned x = 0;
    for (int i = 0; i < 6; ++i) x ^= static_cast<unsigned char>(h[i]);
    return x;
}

// The signal a GSV cycle reports, as a bit number: 0 when the sentence
// names none, else 1 + the hexadecimal digit of its last field.
int SignalBit(char c) {
    if (c >= '0' && c <= '9')
        return 1 + (c - '0');
    if (c >= 'A' && c <= 'F')
        return 11 + (c - 'A');
    return 0;
}

// The value of a short field: plain digits at once, anything else as the
// screens read it.
int SmallNumber(const char* text) {
    int value = 0;
    for (const char* p = text; *p != '\0'; ++p) {
        if (*p < '0' || *p > '9')
            return TextToInt(text);
        value = value * 10 + (*p - '0');
    }
    return value;
}

// A satellite's signal for choosing among satellites: -1 when not tracked.
int SignalOf(const SatelliteRecord& r) {
    return r.snr[0] != '\0' ? SmallNumber(r.snr) : -1;
}

// Puts one satellite into the combined table: a satellite already there
// (same talker and number, reported for another signal) keeps the stronger
// report; a full table gives up its weakest row to a stronger satellite.
void AddSkySatellite(GpsState& state, SkyAssembly& sky, int talker, const SatelliteRecord& sat) {
    const auto number = static_cast<std::int16_t>(std::clamp(SmallNumber(sat.prn), -99, 999));
    const auto signal = static_cast<std::int16_t>(std::clamp(SignalOf(sat), -1, 9999));
    const auto rows = static_cast<int>(sky.rows);
    int at = -1;
    for (int i = 0; i < rows; ++i) {
        if (sky.rowNumber[i] == number && sky.rowTalker[i] == talker) {
            if (signal <= sky.rowSignal[i])
                return;
            at = i;
            break;
        }
    }
    if (at < 0 && rows < kSatelliteRows) {
        at = rows;
        ++sky.rows;
    } else if (at < 0) {
        at = 0;
        for (int i = 1; i < rows; ++i) {
            if (sky.rowSignal[i] < sky.rowSignal[at])
                at = i;
        }
        if (signal <= sky.rowSignal[at])
            return;
    }
    state.satellites[at] = sat;
    sky.rowTalker[at] = static_cast<std::uint8_t>(talker);
    sky.rowNumber[at] = number;
    sky.rowSignal[at] = signal;
    sky.unsorted = true;
}

// Orders the combined table by number, and rows of one number by talker
// (GPS first); the bookkeeping of each row moves with it.
void SortSky(GpsState& state, SkyAssembly& sky) {
    sky.unsorted = false;
    const auto count = static_cast<int>(sky.rows);
    int key[kSatelliteRows];
    int order[kSatelliteRows];
    for (int i = 0; i < count; ++i) {
        key[i] = sky.rowNumber[i] * kTalkerCount + sky.rowTalker[i];
        order[i] = i;
    }
    for (int i = 1; i < count; ++i) {  // insertion sort: at most 12 rows
        for (int j = i; j > 0 && key[j - 1] > key[j]; --j) {
            std::swap(key[j - 1], key[j]);
            std::swap(order[j - 1], order[j]);
        }
    }
    const SkyAssembly before = sky;
    SatelliteRecord rows[kSatelliteRows];
    for (int i = 0; i < count; ++i) {
        const int from = order[i];
        rows[i] = state.satellites[from];
        sky.rowTalker[i] = before.rowTalker[from];
        sky.rowNumber[i] = before.rowNumber[from];
        sky.rowSignal[i] = before.rowSignal[from];
    }
    std::memcpy(state.satellites, rows, sizeof(SatelliteRecord) * static_cast<std::size_t>(count));
}
}  // namespace

bool VerifyChecksum(unsigned computed, const char received[2]) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    computed &= 0xFF;
    if (computed < 16)
        return received[0] == '0' && received[1] == kDigits[computed];
    return received[0] == kDigits[computed >> 4] && received[1] == kDigits[computed & 0xF];
}

void ParseRmc(GpsState& state, const char* fields, const char* end) {
    state.ClearRmcBlock();
    if (fields == nullptr || fields >= end)
        return;
    FieldWalker walk(fields, end);
    const char* b;
    const char* e;
    for (int n = 1; n <= 9 && walk.Next(b, e); ++n) {
        switch (n) {
            case 1:
                CopyField(state.utcTime, b, e);
                break;
            case 2:
                CopyChar(state.status, b, e);
                break;
            case 3:
                CopyField(state.latitude, b, e);
                break;
            case 4:
                CopyChar(state.northSouth, b, e);
                break;
            case 5:
                CopyField(state.longitude, b, e);
                break;
            case 6:
                CopyChar(state.eastWest, b, e);
                break;
            case 7:
                CopyField(state.speedKnots, b, e);
                break;
            case 8:
                CopyField(state.course, b, e);
                break;
            case 9:
                CopyField(state.date, b, e);
                break;
            default:
                break;
        }
    }
}

void ParseGga(GpsState& state, const char* fields, const char* end) {
    state.ClearGgaBlock();
    if (fields == nullptr || fields >= end)
        return;
    FieldWalker walk(fields, end);
    const char* b;
    const char* e;
    for (int n = 1; n <= 12 && walk.Next(b, e); ++n) {
        switch (n) {
            case 6:
                CopyChar(state.fixQuality, b, e);
                break;
            case 7:
                CopyField(state.satellitesUsed, b, e);
                break;
            case 9:
                CopyField(state.altitude, b, e);
                break;
            case 10:
                CopyChar(state.altitudeUnit, b, e);
                break;
            case 11:
                CopyField(state.geoidSeparation, b, e);
                break;
            case 12:
                CopyChar(state.geoidUnit, b, e);
                break;
            default:
                break;
        }
    }
}

void ParseGsa(GpsState& state, const char* fields, const char* end) {
    state.ClearGsaBlock();
    if (fields == nullptr || fields >= end)
        return;
    FieldWalker walk(fields, end);
    const char* b;
    const char* e;
    for (int n = 1; n <= 17 && walk.Next(b, e); ++n) {
        switch (n) {
            case 2:
                CopyChar(state.fixMode, b, e);
                break;
            case 15:
                CopyField(state.pdop, b, e);
                break;
            case 16:
                CopyField(state.hdop, b, e);
                break;
            case 17:
                CopyField(state.vdop, b, e);
                break;
            default:
                break;
        }
    }
}

void ParseGsv(GpsState& state, GsvAssembly& a, const char* fields, const char* end) {
    if (a.recordIndex == 0)
        state.ClearGsvBlock();
    if (fields == nullptr || fields >= end)
        return;

    FieldWalker walk(fields, end);
    const char* b;
    const char* e;

    // Field 1: number of messages in the cycle.
    if (!walk.Next(b, e))
        return;
    const char total = walk.FirstChar(b, e);
    if (a.totalMessages != 0 && a.totalMessages != total) {
        a.Reset();
        state.ClearGsvBlock();
        return;
    }
    if (a.totalMessages == 0)
        a.totalMessages = total;

    // Field 2: this message's number; message n fills records 4(n-1) onward.
    if (!walk.Next(b, e))
        return;
    const char number = walk.FirstChar(b, e);
    if (number == '1') {
        state.ClearGsvBlock();
        a.countParsed = 0;
        a.recordIndex = 0;
        a.messageNumber = '1';
    } else {
        a.messageNumber = number;
        a.recordIndex = static_cast<std::uint32_t>((number - '1') * 4);
    }

    // Field 3: satellites in view, taken once per cycle.
    if (!walk.Next(b, e))
        return;
    if (a.countParsed == 0)
        CopyField(state.satellitesInView, b, e);
    a.countParsed = 1;

    // Fields 4 on: groups of PRN, elevation, azimuth, SNR. The count in view
    // cannot change for the rest of this sentence.
    const int inView = TextToInt(state.satellitesInView);
    for (int k = 0;; k = (k + 1) % 4) {
        SatelliteRecord* row = a.recordIndex < static_cast<std::uint32_t>(kSatelliteRows)
                                   ? &state.satellites[a.recordIndex]
                                   : nullptr;
        bool more;
        switch (k) {
            case 0:
                more = row ? walk.NextInto(row->prn) : walk.Skip();
                break;
            case 1:
                more = row ? walk.NextInto(row->elevation) : walk.Skip();
                break;
            case 2:
                more = row ? walk.NextInto(row->azimuth) : walk.Skip();
                break;
            default:
                more = row ? walk.NextInto(row->snr) : walk.Skip();
                if (!more)
                    break;
                ++a.recordIndex;
                if (a.recordIndex == static_cast<std::uint32_t>(inView)) {
                    SortByPrn(state.satellites, inView < kSatelliteRows ? inView : kSatelliteRows);
                    a.Reset();
                }
                break;
        }
        if (!more)
            return;
    }
}

void ParseSkyGsv(GpsState& state, SkyAssembly& sky, int talker, const char* fields,
                 const char* end) {
    if (fields == nullptr || fields >= end || talker < 0 || talker >= kTalkerCount)
        return;
    // Fields: count of messages, message number, satellites in view, four
    // per satellite (at most four satellites), and from newer receivers one
    // more naming the signal. An incomplete group is dropped.
    FieldWalker walk(fields, end);
    const char* b = fields;
    const char* e = fields;
    char inViewText[3];
    if (!walk.Skip() || !walk.Next(b, e))
        return;
    const char number = walk.FirstChar(b, e);
    if (!walk.NextInto(inViewText))
        return;
    SatelliteRecord sats[kSatellitesPerGsv + 1];
    int count = 0;
    int signal = 0;
    for (;;) {
        SatelliteRecord& sat = sats[count];
        if (!walk.NextInto(sat.prn))
            break;
        if (!walk.NextInto(sat.elevation)) {
            signal = SignalBit(sat.prn[0]);  // a lone last field names the signal
            break;
        }
        if (!walk.NextInto(sat.azimuth) || !walk.NextInto(sat.snr))
            break;
        if (count < kSatellitesPerGsv && sat.prn[0] != '\0')
            ++count;
    }

    // A cycle that this epoch already holds begins again: a new epoch.
    const std::uint32_t bit = 1u << signal;
    if (!sky.epochOpen || (number == '1' && (sky.cycles[talker] & bit) != 0)) {
        sky.Reset();
        sky.epochOpen = true;
        state.ClearGsvBlock();
    }
    sky.cycles[talker] |= bit;
    const int inView = std::clamp(TextToInt(inViewText), 0, 99);
    if (inView > sky.inView[talker])
        sky.inView[talker] = static_cast<std::uint8_t>(inView);
    int total = 0;
    for (const std::uint8_t n : sky.inView) total += n;
    total = std::min(total, 99);
    state.satellitesInView[0] = static_cast<char>('0' + total / 10);
    state.satellitesInView[1] = static_cast<char>('0' + total % 10);
    state.satellitesInView[2] = '\0';

    for (int k = 0; k < count; ++k) AddSkySatellite(state, sky, talker, sats[k]);
    // Sorted once at the end of the batch (ParseNmeaBuffer).
}

void FixTimeToFileTime(GpsState& state, const char* date, const char* utcTime) {
    char part[8];
    char yearText[8] = "20";
    Substring(date, 4, 2, yearText + 2);
    const int year = TextToInt(yearText);
    Substring(date, 2, 2, part);
    const int month = TextToInt(part);
    Substring(date, 0, 2, part);
    const int day = TextToInt(part);
    Substring(utcTime, 0, 2, part);
    const int hour = TextToInt(part);
    Substring(utcTime, 2, 2, part);
    const int minute = TextToInt(part);
    Substring(utcTime, 4, 2, part);
    const int second = TextToInt(part);
    Substring(utcTime, 7, 3, part);
    const int millisecond = TextToInt(part);

    // Only a real calendar moment converts; anything else leaves no time.
    if (year < 1601 || year > 30827 || month < 1 || month > 12 || day < 1 ||
        day > DaysInMonth(year, month) || hour < 0 || hour > 23 || minute < 0 || minute > 59 ||
        second < 0 || second > 59 || millisecond < 0 || millisecond > 999) {
        state.fixTimeLocal = 0;
        return;
    }

    const std::int64_t days =
        DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day));
    const std::int64_t unixSeconds = days * 86400 + hour * 3600 + minute * 60 + second;
    long offset = 0;
    const std::time_t t = static_cast<std::time_t>(unixSeconds);
    std::tm local{};
    if (localtime_r(&t, &local) != nullptr)
        offset = local.tm_gmtoff;
    const std::int64_t localSeconds = unixSeconds + offset + kDaysFrom1601To1970 * 86400;
    state.fixTimeLocal = static_cast<FileTime>(localSeconds) * kFileTimeTicksPerSecond +
                         static_cast<FileTime>(millisecond) * 10'000;
}

namespace {

void DecodeBatch(GpsState& state, GsvAssembly& assembly, std::string_view text, TimeSyncSink* sink,
                 Talkers* talkers) {
    if (text.data() == nullptr || text.empty())
        return;
    const char* p = text.data();
    const char* end = p + text.size();
    // The batch is text: it ends at its first NUL.
    if (const void* nul = std::memchr(p, '\0', text.size()))
        end = static_cast<const char*>(nul);

    for (;;) {
        // Find the next '$'; everything else between sentences is skipped.
        const void* found = std::memchr(p, '$', static_cast<std::size_t>(end - p));
        if (found == nullptr)
            return;
        p = static_cast<const char*>(found);

    sentence:  // p is at a '$'
        if (end - p < 2)
            return;
        std::memset(state.header, 0, sizeof state.header);
        {
            const char* h = p + 1;
            int n = 0;
            while (n < 6) {
                if (h == end)  // cut at the end of the batch: lost
                    return;
                if (*h == '$') {  // a new sentence begins inside the header
                    p = h;
                    goto sentence;
                }
                state.header[n++] = *h++;
            }
            Sentence kind = MatchHeader(state.header);
            int talker = 0;
            if (kind == Sentence::None) {
                if (talkers != nullptr)
                    talker = OtherTalker(state.header);
                if (talker > 0)
                    kind = SentenceAfterTalker(state.header + 2);
                if (kind == Sentence::None) {
                    p = h;
                    continue;
                }
                if (!talkers->acceptAll) {
                    // Counted, then skipped exactly as any unknown sentence.
                    unsigned sum = HeaderXor(state.header);
                    const char* star = ChecksumScan(h, end, sum);
                    if (end - star >= 3 && *star == '*' && star[1] != '$' && star[2] != '$' &&
                        VerifyChecksum(sum, star + 1))
                        ++talkers->counts.otherTalkers;
                    p = h;
                    continue;
                }
            }

            unsigned sum = talker == 0 ? SeedOf(kind) : HeaderXor(state.header);
            const char* star = ChecksumScan(h, end, sum);
            if (star == end)  // cut before its checksum: lost
                return;
            if (*star == '$') {
                p = star;
                goto sentence;
            }
            // At the '*': a '$' in the checksum position starts a new sentence.
            if (end - star < 2) {
                std::memset(state.header, 0, sizeof state.header);
                return;
            }
            if (end - star >= 3 && star[2] == '$') {
                std::memset(state.header, 0, sizeof state.header);
                p = star + 2;
                continue;
            }
            if (star[1] == '$') {
                std::memset(state.header, 0, sizeof state.header);
                p = star + 1;
                continue;
            }
            if (end - star < 3) {  // only one checksum character before the end
                std::memset(state.header, 0, sizeof state.header);
                return;
            }
            const char received[2] = {star[1], star[2]};
            if (VerifyChecksum(sum, received)) {
                const char* fields = p + 7;
                if (talkers != nullptr) {
                    if (talker != 0)
                        ++talkers->counts.otherTalkers;
                    else if (kind == Sentence::Rmc)
                        ++talkers->counts.gpRmc;
                }
                switch (kind) {
                    case Sentence::Rmc:
                        ParseRmc(state, fields, star);
                        if (state.timeSyncPending) {
                            state.timeSyncPending = 0;
                            FixTimeToFileTime(state, state.date, state.utcTime);
                            if (sink)
                                sink->OnGpsTime();
                        }
                        break;
                    case Sentence::Gsv:
                        if (talkers != nullptr && talkers->acceptAll)
                            ParseSkyGsv(state, talkers->sky, talker, fields, star);
                        else
                            ParseGsv(state, assembly, fields, star);
                        break;
                    case Sentence::Gsa:
                        ParseGsa(state, fields, star);
                        break;
                    case Sentence::Gga:
                        ParseGga(state, fields, star);
                        break;
                    case Sentence::None:
                        break;
                }
            }
            std::memset(state.header, 0, sizeof state.header);
            p = star + 3;
        }
    }
}

}  // namespace

void ParseNmeaBuffer(GpsState& state, GsvAssembly& assembly, std::string_view text,
                     TimeSyncSink* sink, Talkers* talkers) {
    DecodeBatch(state, assembly, text, sink, talkers);
    // The combined table is sorted once a batch, not after every sentence.
    if (talkers != nullptr && talkers->sky.unsorted)
        SortSky(state, talkers->sky);
}

}  // namespace satwalk::gps
