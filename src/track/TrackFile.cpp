#include "TrackFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "FixText.h"
#include "GpxReader.h"
#include "NmeaTrackReader.h"

namespace satwalk::track {

namespace {

constexpr double kMetresPerSecondPerKnot = 1852.0 / 3600.0;

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsNmeaAddress(std::string_view text) {
    if (text.size() < 7 || text[0] != '$' || text[6] != ',')
        return false;
    for (std::size_t i = 1; i < 6; ++i) {
        if (!((text[i] >= 'A' && text[i] <= 'Z') || (text[i] >= '0' && text[i] <= '9')))
            return false;
    }
    return true;
}

// The number a log field's text holds, NaN when it holds none.
double FieldNumber(const char* text) {
    while (*text == ' ') ++text;
    if (*text == '\0')
        return kNoValue;
    return gps::TextToDouble(text);
}

// The log's byte walker with the three fields after the date-time (speed
// in knots, course, altitude) that the recorder writes: the point of a line
// is handed on once its line has ended, with them. Fields are split exactly
// as the log reader splits them (see TrackLogReader.h).
class LogFileParser {
  public:
    explicit LogFileParser(const TrackFilePointSink& onPoint) : onPoint_(onPoint) {}

    void Feed(const char* data, std::size_t size) {
        while (size > 0) {
            const void* lf = std::memchr(data, '\n', size);
            const std::size_t n =
                lf != nullptr ? static_cast<std::size_t>(static_cast<const char*>(lf) - data) + 1
                              : size;
            parser_.Feed(data, n, [this](const TrackLogPoint& p) {
                pending_ = true;
                point_ = TrackFilePoint{};
                point_.latitude = p.latitude;
                point_.longitude = p.longitude;
                point_.time = p.time;
                point_.hasTime = true;
            });
            Track(data, n);
            data += n;
            size -= n;
        }
    }

    void Finish() { Flush(); }

  private:
    void Track(const char* data, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            const char c = data[i];
            if (c == ',' || c == '\r') {
                text_[length_] = '\0';
                if (field_ >= 4 && field_ <= 6)
                    extras_[field_ - 4] = FieldNumber(text_);
                if (field_ < 7)
                    ++field_;
                length_ = 0;
            } else if (c == '\n') {
                Flush();
            } else {
                text_[length_++] = c;
                if (length_ == TrackLogParser::kFieldDropLength)
                    length_ = 0;
            }
        }
    }

    void Flush() {
        if (pending_ && onPoint_) {
            point_.speed = extras_[0] >= 0 ? extras_[0] * kMetresPerSecondPerKnot : kNoValue;
            point_.course = extras_[1];
            point_.elevation = extras_[2];
            onPoint_(point_);
        }
        pending_ = false;
        field_ = 0;
        length_ = 0;
        extras_[0] = extras_[1] = extras_[2] = kNoValue;
    }

    const TrackFilePointSink& onPoint_;
    TrackLogParser parser_;
    bool pending_ = false;
    TrackFilePoint point_;
    std::uint32_t field_ = 0;
    char text_[TrackLogParser::kFieldDropLength + 1] = {};
    std::size_t length_ = 0;
    double extras_[3] = {kNoValue, kNoValue, kNoValue};
};

// Points handed from the thread that parses to a thread of their own that
// runs the sink, in batches, so that expat's tokenising and what the caller
// does with each point (projecting, statistics) overlap on two cores. At
// most kInFlight batches wait, so memory stays bounded; the sink sees the
// points in order, on its thread only.
class PointPipe {
  public:
    explicit PointPipe(const TrackFilePointSink& sink) : sink_(sink) {
        batch_.reserve(kBatch);
        thread_ = std::thread([this] { Run(); });
    }
    ~PointPipe() { Close(); }

    void Push(const TrackFilePoint& point) {
        batch_.push_back(point);
        if (batch_.size() == kBatch)
            Send();
    }

    // Hands on what is left and waits until the sink has seen every point.
    void Close() {
        if (!thread_.joinable())
            return;
        Send();
        {
            const std::lock_guard lock(mutex_);
            closed_ = true;
        }
        changed_.notify_all();
        thread_.join();
    }

  private:
    static constexpr std::size_t kBatch = 4096;
    static constexpr std::size_t kInFlight = 4;

    void Send() {
        if (batch_.empty())
            return;
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return waiting_.size() < kInFlight; });
        waiting_.push_back(std::move(batch_));
        lock.unlock();
        changed_.notify_all();
        batch_ = std::vector<TrackFilePoint>();
        batch_.reserve(kBatch);
    }

    void Run() {
        for (;;) {
            std::vector<TrackFilePoint> batch;
            {
                std::unique_lock lock(mutex_);
                changed_.wait(lock, [this] { return !waiting_.empty() || closed_; });
                if (waiting_.empty())
                    return;
                batch = std::move(waiting_.front());
                waiting_.pop_front();
            }
            changed_.notify_all();
            for (const TrackFilePoint& p : batch) sink_(p);
        }
    }

    const TrackFilePointSink& sink_;
    std::vector<TrackFilePoint> batch_;  // the parsing thread's
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::vector<TrackFilePoint>> waiting_;  // under mutex_
    bool closed_ = false;                              // under mutex_
    std::thread thread_;
};

}  // namespace

std::string FileNameOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::int64_t DaysFromCivil(int y, int m, int d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - static_cast<int>(era) * 400;
    const int doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

double TrackSeconds(const TrackTime& t) {
    return static_cast<double>(DaysFromCivil(t.year, t.month, t.day) * 86400 + t.hour * 3600 +
                               t.minute * 60 + t.second) +
           t.millisecond / 1000.0;
}

TrackTime UtcToLocal::Convert(std::int64_t utcSeconds, int millisecond) {
    const std::int64_t hour = utcSeconds >= 0 ? utcSeconds / 3600 : (utcSeconds - 3599) / 3600;
    if (hour != hour_) {
        const auto at = static_cast<std::time_t>(hour * 3600);
        std::tm local{};
        offset_ = localtime_r(&at, &local) != nullptr ? local.tm_gmtoff : 0;
        hour_ = hour;
    }
    const std::int64_t local = utcSeconds + offset_;
    const std::int64_t days = local >= 0 ? local / 86400 : (local - 86399) / 86400;
    const std::int64_t rest = local - days * 86400;
    // Civil date from days (the inverse of DaysFromCivil).
    const std::int64_t z = days + 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t doe = z - era * 146097;
    const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const std::int64_t mp = (5 * doy + 2) / 153;
    const std::int64_t day = doy - (153 * mp + 2) / 5 + 1;
    const std::int64_t month = mp < 10 ? mp + 3 : mp - 9;
    const std::int64_t year = yoe + era * 400 + (month <= 2);
    TrackTime t;
    t.year = static_cast<std::int16_t>(year);
    t.month = static_cast<std::int8_t>(month);
    t.day = static_cast<std::int8_t>(day);
    t.hour = static_cast<std::int8_t>(rest / 3600);
    t.minute = static_cast<std::int8_t>(rest / 60 % 60);
    t.second = static_cast<std::int8_t>(rest % 60);
    t.dayOfWeek = static_cast<std::int8_t>((days % 7 + 11) % 7);  // 1970-01-01 was a Thursday
    t.millisecond = static_cast<std::int16_t>(millisecond);
    return t;
}

TrackFileKind SniffTrackFile(std::string_view head) {
    if (head.size() > kSniffBytes)
        head = head.substr(0, kSniffBytes);
    if (head.starts_with("\xEF\xBB\xBF"))
        head.remove_prefix(3);
    std::size_t i = 0;
    while (i < head.size() && IsSpace(head[i])) ++i;
    if (i == head.size())
        return TrackFileKind::Log;  // empty: a log without points, as ever
    if (head[i] == '<')
        return TrackFileKind::Gpx;
    // NMEA: a line that begins with a sentence address. Recordings may begin
    // with the tail of a sentence cut by the start of the recording.
    for (std::size_t at = i; at < head.size();) {
        if (IsNmeaAddress(head.substr(at)))
            return TrackFileKind::Nmea;
        const std::size_t lf = head.find('\n', at);
        if (lf == std::string_view::npos)
            break;
        at = lf + 1;
    }
    // A log: its first line begins with a number and has the date-time's
    // field after three commas.
    const std::string_view line = head.substr(i, head.find('\n', i) - i);
    const char c = line[0];
    const bool numeric = (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.';
    std::size_t commas = 0;
    for (const char ch : line) commas += ch == ',';
    return numeric && commas >= 3 ? TrackFileKind::Log : TrackFileKind::Unknown;
}

NmeaTrackParser::NmeaTrackParser(TrackFilePointSink onPoint) : onPoint_(std::move(onPoint)) {
    talkers_.acceptAll = true;
    line_.reserve(kLineMax);
}

void NmeaTrackParser::Feed(const char* data, std::size_t size) {
    while (size > 0) {
        const void* lf = std::memchr(data, '\n', size);
        const std::size_t n =
            lf != nullptr ? static_cast<std::size_t>(static_cast<const char*>(lf) - data) : size;
        if (!overlong_) {
            if (line_.size() + n > kLineMax)
                overlong_ = true;
            else
                line_.append(data, n);
        }
        if (lf == nullptr)
            return;
        if (!overlong_)
            Line(line_);
        line_.clear();
        overlong_ = false;
        data += n + 1;
        size -= n + 1;
    }
}

void NmeaTrackParser::Finish() {
    if (!overlong_)
        Line(line_);
    line_.clear();
    overlong_ = false;
}

void NmeaTrackParser::Line(std::string_view line) {
    const std::size_t start = line.find('$');
    if (start == std::string_view::npos || line.size() - start < 7)
        return;
    line.remove_prefix(start);
    const std::string_view type = line.substr(3, 3);
    const bool rmc = type == "RMC";
    if (!rmc && type != "GGA" && type != "GSA")
        return;
    const std::uint32_t before = talkers_.counts.gpRmc + talkers_.counts.otherTalkers;
    if (rmc)
        state_.timeSyncPending = 1;  // every RMC's own time
    gps::ParseNmeaBuffer(state_, gsv_, line, nullptr, &talkers_);
    if (!rmc || talkers_.counts.gpRmc + talkers_.counts.otherTalkers == before)
        return;
    ++sentences_;
    if (state_.status != 'A' || !onPoint_)
        return;
    gps::GpsState fix = state_;
    fix.TerminateTexts();
    TrackFilePoint p;
    gps::NmeaToDegrees(fix.latitude, fix.northSouth, fix.longitude, fix.eastWest, &p.latitude,
                       &p.longitude);
    if (!(p.latitude >= -90 && p.latitude <= 90 && p.longitude >= -180 && p.longitude <= 180))
        return;
    if (fix.fixTimeLocal != 0) {
        const gps::CalendarTime c = gps::FileTimeToCalendar(fix.fixTimeLocal);
        p.time = TrackTime{static_cast<std::int16_t>(c.year),
                           static_cast<std::int8_t>(c.month),
                           static_cast<std::int8_t>(c.day),
                           static_cast<std::int8_t>(c.hour),
                           static_cast<std::int8_t>(c.minute),
                           static_cast<std::int8_t>(c.second),
                           0,
                           static_cast<std::int16_t>(c.millisecond)};
        p.hasTime = true;
    }
    p.speed = FieldNumber(fix.speedKnots) * kMetresPerSecondPerKnot;
    p.course = FieldNumber(fix.course);
    p.elevation = FieldNumber(fix.altitude);
    p.fix = GpxFixOf(fix.fixQuality, fix.fixMode);
    if (fix.satellitesUsed[0] != '\0')
        p.satellites = static_cast<std::int16_t>(gps::TextToInt(fix.satellitesUsed));
    onPoint_(p);
}

TrackFileKind SniffTrackFilePath(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return TrackFileKind::Unknown;
    struct stat st {};
    char head[kSniffBytes];
    ssize_t n = -1;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        do {
            n = ::read(fd, head, sizeof head);
        } while (n < 0 && errno == EINTR);
    }
    ::close(fd);
    return n < 0 ? TrackFileKind::Unknown
                 : SniffTrackFile(std::string_view(head, static_cast<std::size_t>(n)));
}

std::int8_t GpxFixOf(char fixQuality, char fixMode) {
    if (fixQuality == '2')
        return kFixDgps;
    if (fixMode == '3')
        return kFix3d;
    if (fixMode == '2')
        return kFix2d;
    return -1;
}

TrackFileRead ReadTrackFile(const std::string& path, const TrackFilePointSink& onPoint,
                            const TrackWaypointSink& onWaypoint, const TrackProgress& progress,
                            std::uint64_t maxPoints) {
    // Points past the budget are not handed on, and reading stops soon after
    // (points may be counted on the pipe's thread).
    std::atomic<std::uint64_t> points{0};
    const TrackFilePointSink counted = [&points, &onPoint, maxPoints](const TrackFilePoint& p) {
        if (points.fetch_add(1, std::memory_order_relaxed) < maxPoints)
            onPoint(p);
    };
    const TrackFilePointSink& sink = onPoint ? counted : onPoint;
    TrackFileRead read;
    // Non-blocking open: a FIFO named like a track must not hang the reader.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return read;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return read;
    }
    constexpr std::size_t kBlock = 1 << 20;
    const std::unique_ptr<char[]> block(new char[kBlock]);
    const auto total = static_cast<std::uint64_t>(st.st_size);
    std::uint64_t done = 0;

    // The first block decides the reader; a short read is topped up so that
    // the decision sees the whole head of the file.
    std::size_t have = 0;
    for (;;) {
        const ssize_t n = ::read(fd, block.get() + have, kBlock - have);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        have += static_cast<std::size_t>(n);
        if (have >= kSniffBytes)
            break;
    }
    read.kind = SniffTrackFile(std::string_view(block.get(), have));

    std::unique_ptr<LogFileParser> log;
    std::unique_ptr<PointPipe> pipe;
    std::unique_ptr<GpxParser> gpx;
    std::unique_ptr<NmeaTrackParser> nmea;
    switch (read.kind) {
        case TrackFileKind::Log:
            log = std::make_unique<LogFileParser>(sink);
            break;
        case TrackFileKind::Gpx:
            // Points go through a pipe to a thread of their own, unless
            // waypoints are wanted too (both sinks then run here, in order).
            if (onPoint && !onWaypoint) {
                pipe = std::make_unique<PointPipe>(sink);
                gpx = std::make_unique<GpxParser>(
                    [p = pipe.get()](const TrackFilePoint& point) { p->Push(point); },
                    TrackWaypointSink{});
            } else {
                gpx = std::make_unique<GpxParser>(sink, onWaypoint);
            }
            break;
        case TrackFileKind::Nmea:
            nmea = std::make_unique<NmeaTrackParser>(sink);
            break;
        case TrackFileKind::Unknown:
            ::close(fd);
            read.result = TrackFileResult::NotATrack;
            return read;
    }
    // The file is a track: said before any point, so that a caller can make
    // room for it on its own thread (points may come on another).
    if (progress)
        progress(0, total);
    bool going = true;
    while (going && have > 0 && points.load(std::memory_order_relaxed) <= maxPoints) {
        if (log)
            log->Feed(block.get(), have);
        else if (gpx)
            going = gpx->Feed(block.get(), have, false);
        else
            nmea->Feed(block.get(), have);
        done += have;
        if (progress)
            progress(done, total < done ? done : total);
        for (;;) {
            const ssize_t n = ::read(fd, block.get(), kBlock);
            if (n < 0 && errno == EINTR)
                continue;
            // The end, or a file that vanished under us: keep what was read.
            have = n > 0 ? static_cast<std::size_t>(n) : 0;
            break;
        }
    }
    ::close(fd);
    read.result = TrackFileResult::Read;
    if (log) {
        log->Finish();
    } else if (nmea) {
        nmea->Finish();
    } else {
        if (going)
            gpx->Feed(nullptr, 0, true);
        if (pipe)
            pipe->Close();
        if (!gpx->IsGpx())
            read.result = TrackFileResult::NotATrack;
        else if (!gpx->Complete())
            read.result = TrackFileResult::Truncated;
    }
    if (read.result != TrackFileResult::NotATrack && points.load() > maxPoints)
        read.result = TrackFileResult::TooLarge;
    return read;
}

}  // namespace satwalk::track
