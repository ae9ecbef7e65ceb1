#include "OptionsRecord.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
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

namespace {

bool WriteWhole(int fd, const std::uint8_t* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t w = ::write(fd, bytes, size);
        if (w < 0 && errno == EINTR)
            continue;
        if (w <= 0)
            return false;
        bytes += w;
        size -= static_cast<std::size_t>(w);
    }
    return true;
}

// Copies what a longer old file holds past the record.
bool CopyTail(const std::string& from, int to) {
    const int fd = ::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    std::uint8_t chunk[16384];
    off_t at = static_cast<off_t>(kOptionsRecordSize);
    bool ok = true;
    for (;;) {
        const ssize_t r = ::pread(fd, chunk, sizeof chunk, at);
        if (r < 0 && errno == EINTR)
            continue;
        if (r <= 0) {
            ok = r == 0;
            break;
        }
        if (!WriteWhole(to, chunk, static_cast<std::size_t>(r))) {
            ok = false;
            break;
        }
        at += r;
    }
    ::close(fd);
    return ok;
}

// Makes the new file beside `target`, retrying a failed attempt as the
// open of the old file was retried. Returns the descriptor with its name in
// `name`, or -1.
int MakeTemporary(const std::string& target, std::string& name, int attempts,
                  std::chrono::milliseconds retryDelay) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        name = target + ".XXXXXX";
        const int fd = ::mkostemp(name.data(), O_CLOEXEC);
        if (fd >= 0)
            return fd;
        if (errno == ENOENT || errno == ENOTDIR)
            return -1;
        if (attempt + 1 < attempts)
            std::this_thread::sleep_for(retryDelay);
    }
    return -1;
}

}  // namespace

int WriteOptionsFile(const std::string& path, const OptionsRecord& record, int attempts,
                     std::chrono::milliseconds retryDelay) {
    // A symbolic link stays a link: the file it names is the one replaced.
    std::string target = path;
    struct stat st {};
    if (::lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
        char* resolved = ::realpath(path.c_str(), nullptr);
        if (resolved == nullptr)
            return 0;
        target = resolved;
        std::free(resolved);
    }
    mode_t mode = 0644;
    bool longer = false;
    if (::stat(target.c_str(), &st) == 0) {
        if (!S_ISREG(st.st_mode))
            return 0;
        mode = st.st_mode & 07777;
        longer = st.st_size > static_cast<off_t>(kOptionsRecordSize);
    } else if (errno != ENOENT) {
        return 0;
    }

    std::string temporary;
    const int fd = MakeTemporary(target, temporary, attempts, retryDelay);
    if (fd < 0)
        return 0;
    bool ok = WriteWhole(fd, reinterpret_cast<const std::uint8_t*>(&record), sizeof record);
    ok = ok && (!longer || CopyTail(target, fd));
    ok = ok && ::fchmod(fd, mode) == 0;
    ok = ok && ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    ok = ok && ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!ok) {
        ::unlink(temporary.c_str());
        return 0;
    }
    // The rename itself reaches the disk with the folder.
    const std::size_t slash = target.rfind('/');
    const std::string folder =
        slash == std::string::npos ? "." : (slash == 0 ? "/" : target.substr(0, slash));
    const int dirFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    return 1;
}

std::string WideSlotToUtf8(const char16_t* slot, std::size_t chars) {
    std::string out;
    // The last unit of a slot is its terminator's place: a slot filled to
    // the end reads as the text a save would write back, so settings survive
    // any number of loads and saves unchanged.
    for (std::size_t i = 0; i + 1 < chars && slot[i] != 0; ++i) {
        char32_t c = slot[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 2 < chars && slot[i + 1] >= 0xDC00 &&
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
