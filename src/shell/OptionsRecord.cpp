#include "OptionsRecord.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

namespace satwalk::shell {

void SetOptionDefaults(OptionsRecord& record) {
    const std::uint32_t keep572 = record.unused572;
    const std::uint32_t keep3716 = record.unused3716;
    std::memset(&record, 0, sizeof record);
    record.unused572 = keep572;
    record.unused3716 = keep3716;
    record.showMap = 1;
    record.showTrack = 1;
    record.showReferencePoints = 1;
    record.showPoi = 1;
    record.bluetoothReceiver = 1;
    record.trackIntervalMs = 10000;
    record.speedAlarmLimit = 50;
    record.speedAlarmOn = 1;
    record.backlightAlwaysOn = 1;
}

namespace {

bool IsRegularFile(int fd) {
    struct stat st {};
    return ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

void ReadOptionsBytes(std::span<const std::uint8_t> bytes, OptionsRecord& record) {
    const std::size_t n = bytes.size() < sizeof record ? bytes.size() : sizeof record;
    if (n > 0)
        std::memcpy(&record, bytes.data(), n);
}

namespace {

// Opens the options file, retrying a failed open `attempts` times
// `retryDelay` apart. Non-blocking, so that a FIFO at the path cannot hang
// start-up or exit; only a regular file is an options file. Returns the
// descriptor, or -1 when there is no such file, it is not a regular file,
// or every attempt failed.
int OpenOptionsFile(const std::string& path, int flags, int attempts,
                    std::chrono::milliseconds retryDelay) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const int fd = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0644);
        if (fd < 0) {
            if (errno == ENOENT || errno == ENOTDIR)
                return -1;
            if (attempt + 1 < attempts)
                std::this_thread::sleep_for(retryDelay);
            continue;
        }
        if (!IsRegularFile(fd)) {
            ::close(fd);
            return -1;
        }
        return fd;
    }
    return -1;
}

}  // namespace

int ReadOptionsFile(const std::string& path, OptionsRecord& record, int attempts,
                    std::chrono::milliseconds retryDelay) {
    const int fd = OpenOptionsFile(path, O_RDONLY, attempts, retryDelay);
    if (fd < 0)
        return 0;
    std::uint8_t buffer[kOptionsRecordSize];
    std::size_t got = 0;
    while (got < sizeof buffer) {
        const ssize_t r = ::read(fd, buffer + got, sizeof buffer - got);
        if (r < 0 && errno == EINTR)
            continue;
        if (r <= 0)
            break;
        got += static_cast<std::size_t>(r);
    }
    ::close(fd);
    ReadOptionsBytes(std::span<const std::uint8_t>(buffer, got), record);
    return 1;
}

int WriteOptionsFile(const std::string& path, const OptionsRecord& record, int attempts,
                     std::chrono::milliseconds retryDelay) {
    const int fd = OpenOptionsFile(path, O_WRONLY | O_CREAT, attempts, retryDelay);
    if (fd < 0)
        return 0;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&record);
    std::size_t done = 0;
    bool ok = true;
    while (done < sizeof record) {
        const ssize_t w = ::write(fd, bytes + done, sizeof record - done);
        if (w < 0 && errno == EINTR)
            continue;
        if (w <= 0) {
            ok = false;
            break;
        }
        done += static_cast<std::size_t>(w);
    }
    if (::close(fd) != 0)
        ok = false;
    return ok ? 1 : 0;
}

std::string WideSlotToUtf8(const char16_t* slot, std::size_t chars) {
    std::string out;
    for (std::size_t i = 0; i < chars && slot[i] != 0; ++i) {
        char32_t c = slot[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < chars && slot[i + 1] >= 0xDC00 &&
            slot[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (slot[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = 0xFFFD;  // a lone surrogate
        }
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

namespace {

// Decodes one UTF-8 sequence at `i`; malformed bytes give U+FFFD.
char32_t NextCodePoint(const std::string& s, std::size_t& i) {
    const auto b0 = static_cast<unsigned char>(s[i++]);
    if (b0 < 0x80)
        return b0;
    int extra = 0;
    char32_t c = 0;
    if ((b0 & 0xE0) == 0xC0) {
        extra = 1;
        c = b0 & 0x1F;
    } else if ((b0 & 0xF0) == 0xE0) {
        extra = 2;
        c = b0 & 0x0F;
    } else if ((b0 & 0xF8) == 0xF0) {
        extra = 3;
        c = b0 & 0x07;
    } else {
        return 0xFFFD;
    }
    for (int k = 0; k < extra; ++k) {
        if (i >= s.size() || (static_cast<unsigned char>(s[i]) & 0xC0) != 0x80)
            return 0xFFFD;
        c = (c << 6) | (static_cast<unsigned char>(s[i++]) & 0x3F);
    }
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        return 0xFFFD;
    return c;
}

}  // namespace

void Utf8ToWideSlot(const std::string& text, char16_t* slot, std::size_t chars) {
    std::size_t out = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        const char32_t c = NextCodePoint(text, i);
        if (c == 0)
            break;
        if (c >= 0x10000) {
            if (out + 2 >= chars)
                break;
            slot[out++] = static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            slot[out++] = static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            if (out + 1 >= chars)
                break;
            slot[out++] = static_cast<char16_t>(c);
        }
    }
    for (std::size_t k = out; k < chars; ++k) slot[k] = 0;
}

}  // namespace satwalk::shell
