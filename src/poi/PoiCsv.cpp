#include "PoiCsv.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "FixText.h"

namespace satwalk::poi {

void PoiCsvParser::Feed(const char* data, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
        const char c = data[i];
        if (inComment_) {
            inComment_ = c != '\n' && c != '\0';
            continue;
        }
        switch (c) {
            case ';':
                inComment_ = true;
                break;
            case ',':
            case '\r':
            case '@':
                EndField();
                break;
            case '\n':
                Emit();
                record_ = PoiRecord{};
                field_ = 0;
                length_ = 0;
                break;
            case '"':
                break;
            default:
                text_[length_++] = c;
                if (length_ == kFieldDropLength)
                    length_ = 0;
                break;
        }
    }
}

void PoiCsvParser::Emit() {
    if (records_ < maxRecords_)
        sink_(record_);
    ++records_;
}

void PoiCsvParser::Store(char (&to)[kPoiTextBytes]) {
    const std::size_t length = std::min(std::strlen(text_), kTextCut);
    const std::string text = decoder_.Decode(std::string_view(text_, length));
    const std::size_t n = std::min(text.size(), kPoiTextBytes - 1);
    std::memcpy(to, text.data(), n);
    to[n] = '\0';
}

void PoiCsvParser::EndField() {
    text_[length_] = '\0';
    switch (field_) {
        case 0:
            record_.longitude = gps::TextToDouble(text_);
            break;
        case 1:
            record_.latitude = gps::TextToDouble(text_);
            break;
        case 2:
            Store(record_.name);
            break;
        case 3:
            Store(record_.note);
            fourthColumn_ = true;
            break;
        default:
            break;
    }
    if (field_ < 4)
        ++field_;
    length_ = 0;
}

void PoiCsvParser::Finish() {
    inComment_ = false;
    text_[length_] = '\0';
    if (text_[0] != '\0') {
        Store(fourthColumn_ ? record_.note : record_.name);
        Emit();
    }
    record_ = PoiRecord{};
    field_ = 0;
    length_ = 0;
}

namespace {

// Reads the file in blocks, calling fn(data, size) for each until it
// returns false; false on a read error (a file that vanished under us).
template <typename Fn>
bool ReadBlocks(int fd, char* block, std::size_t blockSize, Fn&& fn) {
    for (;;) {
        const ssize_t n = ::read(fd, block, blockSize);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return false;
        if (n == 0 || !fn(block, static_cast<std::size_t>(n)))
            return true;
    }
}

}  // namespace

PoiRead ReadPoiCsv(const std::string& path, const PoiSink& onRecord, std::uint64_t maxRecords) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return PoiRead::OpenFailed;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return PoiRead::OpenFailed;
    }
    constexpr std::size_t kBlock = 1 << 16;
    const std::unique_ptr<char[]> block(new char[kBlock]);

    // The encoding is the whole file's: first see whether all of it is UTF-8.
    Utf8Validator utf8;
    ReadBlocks(fd, block.get(), kBlock, [&](const char* data, std::size_t n) {
        utf8.Feed(reinterpret_cast<const unsigned char*>(data), n);
        return true;
    });
    if (::lseek(fd, 0, SEEK_SET) != 0) {
        ::close(fd);
        return PoiRead::OpenFailed;
    }
    PoiCsvParser parser(utf8.Valid() ? PoiEncoding::Utf8 : PoiEncoding::Gb18030, onRecord,
                        maxRecords);
    ReadBlocks(fd, block.get(), kBlock, [&](const char* data, std::size_t n) {
        parser.Feed(data, n);
        return !parser.Full();
    });
    if (!parser.Full())
        parser.Finish();
    ::close(fd);
    return parser.Full() ? PoiRead::Truncated : PoiRead::Read;
}

bool ReadPoiCsv(const std::string& path, PoiList& list) {
    return ReadPoiCsv(path, [&list](const PoiRecord& r) { list.Append(r); }) != PoiRead::OpenFailed;
}

}  // namespace satwalk::poi
