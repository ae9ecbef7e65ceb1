#include "ReferencePoints.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <locale.h>
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "Strings.h"

namespace satwalk::map {

std::array<double, kReferenceSlotCount> ReferenceResiduals(const MapCalibration& calibration,
                                                           const ReferencePoints& slots) {
    std::array<double, kReferenceSlotCount> out;
    for (int i = 0; i < kReferenceSlotCount; ++i) {
        const GeoPoint& s = slots[static_cast<std::size_t>(i)];
        out[static_cast<std::size_t>(i)] = std::nan("");
        if (s.valid != 1 || !calibration.IsValid())
            continue;
        GeoPoint p = s;
        ImageToGeo(calibration, p);
        out[static_cast<std::size_t>(i)] =
            GroundDistanceMetres(s.latitude, s.longitude, p.latitude, p.longitude);
    }
    return out;
}

std::string ResidualsText(const std::array<double, kReferenceSlotCount>& residuals) {
    std::string text;
    for (int i = 0; i < kReferenceSlotCount; ++i) {
        const double r = residuals[static_cast<std::size_t>(i)];
        if (!std::isfinite(r))
            continue;
        char part[48];
        std::snprintf(part, sizeof part, "%s%d: %.1f", text.empty() ? "" : "  ", i + 1, r);
        text += part;
    }
    return text.empty() ? text : common::LoadString(common::kStrResiduals) + text;
}

namespace {

// The reference file and the dialog's edits always use '.' for decimals,
// whatever locale the application runs in: numbers are formatted and read
// with the C locale on this thread for the duration.
class CLocaleScope {
  public:
    CLocaleScope() {
        static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t{});
        if (c != locale_t{})
            previous_ = uselocale(c);
    }
    ~CLocaleScope() {
        if (previous_ != locale_t{})
            uselocale(previous_);
    }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

  private:
    locale_t previous_{};
};

// The leading decimal number of a NUL-terminated text, 0 when there is none
// or it is not finite: no coordinate is "nan" or "inf".
double LeadingDouble(const char* text) {
    const double value = std::strtod(text, nullptr);
    return std::isfinite(value) ? value : 0.0;
}

// There, but not to be opened for reading: the user's points may be in it.
bool ThereButUnreadable(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        return false;
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd >= 0) {
        ::close(fd);
        return false;
    }
    return errno != ENOENT;
}

bool IsActiveFlag(const char* text) {
    // The flag is the leading integer, and only exactly 1 counts.
    return std::strtol(text, nullptr, 10) == 1;
}

void WriteDoubleField(GeoPoint& slot, int field, double v) {
    switch (field) {
        case 1:
            slot.latitude = v;
            break;
        case 2:
            slot.longitude = v;
            break;
        case 3:
            slot.imageX = v;
            break;
        case 4:
            slot.imageY = v;
            break;
        default:
            break;
    }
}

bool WriteAllTo(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

std::string_view MapStem(std::string_view mapPath) {
    const std::size_t slash = mapPath.rfind('/');
    std::string_view name = slash == std::string_view::npos ? mapPath : mapPath.substr(slash + 1);
    return name.substr(0, name.find('.'));
}

std::string MakeReferenceFileName(std::string_view storageRoot, std::string_view mapPath) {
    std::string path(storageRoot);
    if (!path.empty() && path.back() == '/')
        path.pop_back();
    path += "/My GPS/Reference Points/Ref Pt_";
    path += MapStem(mapPath);
    path += ".rpt";
    return path;
}

std::string FormatReferenceText(const ReferencePoints& slots) {
    const CLocaleScope c;
    std::string text;
    char line[1600];  // room for five "%f" of the largest doubles
    for (const GeoPoint& p : slots) {
        const int n = std::snprintf(line, sizeof line, "%d,%f,%f,%f,%f,\r\n", p.valid, p.latitude,
                                    p.longitude, p.imageX, p.imageY);
        if (n > 0)
            text.append(line, std::min<std::size_t>(static_cast<std::size_t>(n), sizeof line - 1));
    }
    if (text.size() > kReferenceTextLimit - 1)
        text.resize(kReferenceTextLimit - 1);
    return text;
}

int ParseReferenceText(std::span<const char> text, ReferencePoints& slots) {
    constexpr int kFields = 5 * kReferenceSlotCount;
    // A token has room for 18 characters: when a 19th arrives the collected
    // text is dropped and collecting starts over, so only the tail of an
    // over-long token survives.
    constexpr std::size_t kTokenRoom = 19;
    const CLocaleScope c;
    int active = 0;
    int field = 0;
    std::size_t pos = 0;
    const std::size_t end = text.size();
    auto atEnd = [&] { return pos >= end || text[pos] == '\0'; };
    auto isLineBreak = [](char ch) { return ch == '\r' || ch == '\n'; };
    while (!atEnd()) {
        if (isLineBreak(text[pos])) {
            ++pos;
            continue;
        }
        char token[kTokenRoom + 1];
        std::size_t len = 0;
        for (; !atEnd() && text[pos] != ','; ++pos) {
            if (isLineBreak(text[pos]))
                continue;
            token[len++] = text[pos];
            if (len == kTokenRoom)
                len = 0;
        }
        token[len] = '\0';
        if (field < kFields) {
            GeoPoint& slot = slots[field / 5];
            if (field % 5 == 0) {
                slot.valid = IsActiveFlag(token) ? 1 : 0;
                active += slot.valid;
            } else {
                WriteDoubleField(slot, field % 5, LeadingDouble(token));
            }
        }
        if (!atEnd())
            ++pos;  // the comma
        ++field;
    }
    return active;
}

bool WriteReferenceFile(const std::string& path, const ReferencePoints& slots,
                        std::string* keptAs) {
    if (ThereButUnreadable(path)) {
        const std::string backup = path + ".bak";
        if (::rename(path.c_str(), backup.c_str()) != 0)
            return false;  // never replace what could not be read
        if (keptAs != nullptr)
            *keptAs = backup;
    }
    const std::string text = FormatReferenceText(slots);
    std::string temp = path + ".XXXXXX";
    const int fd = ::mkostemp(temp.data(), O_CLOEXEC);
    if (fd < 0)
        return false;
    bool ok = ::fchmod(fd, 0644) == 0 && WriteAllTo(fd, text);
    ok = ::close(fd) == 0 && ok;
    if (ok && ::rename(temp.c_str(), path.c_str()) == 0)
        return true;
    ::unlink(temp.c_str());
    return false;
}

ReferenceRead ReadReferenceFile(const std::string& path, ReferencePoints& slots, int& activeCount) {
    slots = ReferencePoints{};
    activeCount = 0;
    // Non-blocking, so that a FIFO in the file's place cannot stall the load.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return errno == ENOENT || errno == ENOTDIR ? ReferenceRead::NotOpened
                                                   : ReferenceRead::Unreadable;
    char buf[kReferenceTextLimit];
    std::size_t got = 0;
    bool failed = false;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        failed = true;
    } else {
        while (got < sizeof buf) {
            const ssize_t n = ::read(fd, buf + got, sizeof buf - got);
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                failed = true;
            if (n <= 0)
                break;
            got += static_cast<std::size_t>(n);
        }
    }
    ::close(fd);
    activeCount = ParseReferenceText(std::span<const char>(buf, got), slots);
    return failed ? ReferenceRead::ReadFailed : ReferenceRead::Read;
}

// ----- degrees, minutes and seconds -----

Dms ToDms(double value) {
    const double a = std::fabs(value);
    Dms d;
    d.degrees = std::floor(a);
    const double m = (a - d.degrees) * 60.0;
    d.minutes = std::floor(m);
    d.seconds = (m - d.minutes) * 60.0;
    return d;
}

double FromDms(const Dms& dms, bool negative) {
    constexpr double kPerMinute = 0.016666666666666666;
    constexpr double kPerSecond = 0.0002777777777777778;
    double v = dms.degrees + dms.minutes * kPerMinute + dms.seconds * kPerSecond;
    if (negative && v > 0.0)
        v = -v;
    return v;
}

std::string FormatDialogNumber(double value) {
    const CLocaleScope c;
    char buf[512];
    const int n = std::snprintf(buf, sizeof buf, "%f", value);
    return std::string(
        buf, n > 0 ? std::min<std::size_t>(static_cast<std::size_t>(n), sizeof buf - 1) : 0);
}

double ParseDialogNumber(std::string_view text, std::size_t maxChars) {
    // The limit counts characters, not bytes: stop before the first byte of
    // the character past it.
    std::size_t chars = 0;
    std::size_t cut = 0;
    for (; cut < text.size(); ++cut) {
        const bool starts = (static_cast<unsigned char>(text[cut]) & 0xC0) != 0x80;
        if (starts && chars++ == maxChars)
            break;
    }
    const std::string head(text.substr(0, cut));
    const CLocaleScope c;
    return LeadingDouble(head.c_str());
}

namespace {

void FillDms(std::array<std::string, 3>& edits, double value) {
    const Dms d = ToDms(value);
    edits[0] = FormatDialogNumber(d.degrees);
    edits[1] = FormatDialogNumber(d.minutes);
    edits[2] = FormatDialogNumber(d.seconds);
}

Dms ReadDms(const std::array<std::string, 3>& edits, std::size_t secondsChars) {
    return {ParseDialogNumber(edits[0], kEditChars), ParseDialogNumber(edits[1], kEditChars),
            ParseDialogNumber(edits[2], secondsChars)};
}

}  // namespace

void SlotToFields(const GeoPoint& slot, ReferenceDialogFields& fields) {
    FillDms(fields.latitude, slot.latitude);
    FillDms(fields.longitude, slot.longitude);
}

void FieldsToSlot(const ReferenceDialogFields& fields, GeoPoint& slot) {
    slot.latitude = FromDms(ReadDms(fields.latitude, kEditChars), fields.latitudeHemisphere == 1);
    slot.longitude =
        FromDms(ReadDms(fields.longitude, kLongitudeSecondsChars), fields.longitudeHemisphere == 1);
    slot.valid = fields.active ? 1 : 0;
}

ReferenceDialogFields OpenReferenceDialog(const GeoPoint& slot) {
    ReferenceDialogFields f;
    SlotToFields(slot, f);
    f.active = slot.valid == 1;
    return f;
}

void InsertGpsCoordinate(ReferenceDialogFields& fields, bool haveFix, double latitude,
                         double longitude) {
    fields.active = true;
    if (!haveFix) {
        fields.latitudeHemisphere = 0;
        fields.longitudeHemisphere = 0;
        const std::string zero = FormatDialogNumber(0.0);
        fields.latitude = {zero, zero, zero};
        fields.longitude = {zero, zero, zero};
        return;
    }
    fields.latitudeHemisphere = latitude < 0.0 ? 1 : 0;
    fields.longitudeHemisphere = longitude < 0.0 ? 1 : 0;
    FillDms(fields.latitude, latitude);
    FillDms(fields.longitude, longitude);
}

std::string ActivateCheckBoxText(std::string_view activateText, int slot) {
    std::string text(activateText);
    text += ' ';
    text += static_cast<char>('1' + slot);
    return text;
}

// ----- placing a point and confirming it -----

void EnterPlacementMode(ReferenceEditing& editing, int slot) {
    editing.editedSlot = slot;
    editing.placingReferencePoint = 1;
    editing.savedPlacementCursor = editing.placementCursor;
}

void PlaceCursor(ReferenceEditing& editing, PointF screen, PointF image) {
    editing.placementCursor.screenX = screen.x;
    editing.placementCursor.screenY = screen.y;
    editing.placementCursor.imageX = image.x;
    editing.placementCursor.imageY = image.y;
}

ReferenceConfirmation ConfirmReferencePoint(ReferenceEditing& editing,
                                            const ReferenceDialogFields& fields,
                                            const std::string& referenceFile, bool imageLoaded,
                                            ImageSize image, double displayedWidth,
                                            int scaleBarPixels, MapCalibration& calibration,
                                            MapExtent& extent) {
    ReferenceConfirmation result;
    editing.placingReferencePoint = 0;
    GeoPoint& slot = editing.referencePoints[editing.editedSlot];
    FieldsToSlot(fields, slot);
    slot.imageX = editing.placementCursor.imageX;
    slot.imageY = editing.placementCursor.imageY;

    editing.activeReferenceCount = CountActive(editing.referencePoints);
    result.saved = WriteReferenceFile(referenceFile, editing.referencePoints, &result.keptAs);

    calibration = ComputeCalibration(editing.referencePoints);
    if (!calibration.IsValid()) {
        editing.placementCursor = editing.savedPlacementCursor;
        return result;
    }
    result.calibrated = true;
    ComputeMapExtent(calibration, image, extent);
    if (imageLoaded)
        ImageToGeo(calibration, editing.placementCursor);
    // The cursor goes to the map's centre, whatever was just computed for it.
    editing.placementCursor = extent.centre;
    result.scaleBarDistance = ScaleBarDistance(extent, displayedWidth, scaleBarPixels);
    return result;
}

}  // namespace satwalk::map
