// Decoder throughput: the demo drive, alone and mixed with the kinds of
// noise a real serial line carries, cut into 2,047-byte batches exactly as
// the receiver link hands them over, decoded in-process. Each corpus also
// runs with the "accept all satellite systems" setting off (the link's way:
// other talkers only counted) and on, and a multi-system version of the
// drive (combined-solution fix sentences, GPS and GLONASS cycles) runs with
// the setting on.
//
// The binary replaces the global operator new with a counting one, so the
// "allocations" counter shows every allocation made while decoding; it must
// stay 0 (a non-zero count fails the benchmark).
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "GpsState.h"
#include "NmeaDecoder.h"

namespace {

std::atomic<unsigned long> gAllocations{0};

void* CountedAlloc(std::size_t size) {
    gAllocations.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size == 0 ? 1 : size);
}

void* CountedAlignedAlloc(std::size_t size, std::align_val_t align) {
    gAllocations.fetch_add(1, std::memory_order_relaxed);
    const auto a = static_cast<std::size_t>(align);
    return std::aligned_alloc(a, (size + a - 1) / a * a);
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* p = CountedAlloc(size))
        return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    if (void* p = CountedAlloc(size))
        return p;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return CountedAlloc(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return CountedAlloc(size);
}
void* operator new(std::size_t size, std::align_val_t align) {
    if (void* p = CountedAlignedAlloc(size, align))
        return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size, std::align_val_t align) {
    if (void* p = CountedAlignedAlloc(size, align))
        return p;
    throw std::bad_alloc();
}
// The replacement deletes hand back what the replacement news took from
// malloc; GCC cannot see that pairing once they are inlined.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept {
    std::free(p);
}
#pragma GCC diagnostic pop

namespace {

using satwalk::gps::GpsState;
using satwalk::gps::GsvAssembly;
using satwalk::gps::ParseNmeaBuffer;
using satwalk::gps::Talkers;

constexpr std::size_t kBatchBytes = 2047;   // the link's accumulation buffer less its NUL
constexpr unsigned kSyncEveryBatches = 10;  // the watchdog asks for a time sync every 10th tick

std::string ReadDemoLog() {
    std::ifstream in(SATWALK_DEMO_LOG, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (text.empty()) {
        std::fprintf(stderr, "bench_decoder: cannot read %s\n", SATWALK_DEMO_LOG);
        std::exit(1);
    }
    return text;
}

std::string Checksummed(const std::string& body) {
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    char tail[8];
    std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
    return "$" + body + tail;
}

// A u-blox style binary frame (sync bytes, class, id, length, payload,
// Fletcher checksum) of random payload bytes, as a receiver that talks both
// protocols interleaves with its NMEA output. Its zero bytes are replaced:
// a NUL ends the decoder's batch, and the NULs of this corpus are placed
// on their own, rarely, so that most bytes are really decoded.
void AppendBinaryFrame(std::string& out, std::mt19937& rng) {
    const std::size_t length = 257 + rng() % 99;  // two non-zero length bytes
    std::string frame = {'\xB5',
                         '\x62',
                         '\x01',
                         '\x07',
                         static_cast<char>(length & 0xFF),
                         static_cast<char>(length >> 8)};
    for (std::size_t i = 0; i < length; ++i) frame += static_cast<char>(1 + rng() % 255);
    unsigned char a = 0, b = 0;
    for (std::size_t i = 2; i < frame.size(); ++i) {
        a = static_cast<unsigned char>(a + static_cast<unsigned char>(frame[i]));
        b = static_cast<unsigned char>(b + a);
    }
    frame += static_cast<char>(a == 0 ? 1 : a);
    frame += static_cast<char>(b == 0 ? 1 : b);
    out += frame;
}

// Calls each(line) for every line of `text`, its line end included.
template <typename Each>
void ForEachLine(const std::string& text, Each each) {
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        end = end == std::string::npos ? text.size() : end + 1;
        each(text.substr(pos, end - pos));
        pos = end;
    }
}

// The demo drive with noise between (and inside) its lines: binary frames,
// lowercase checksums, sentences of other talkers, truncated sentences, a
// '$' inside a sentence, over-long sentences with valid checksums, and now
// and then a NUL byte. About a fifth of the bytes are noise.
std::string MixedCorpus(const std::string& clean) {
    std::mt19937 rng(20260516);
    std::string out;
    out.reserve(clean.size() * 3 / 2);
    ForEachLine(clean, [&](const std::string& line) {
        const auto roll = rng() % 1000;
        if (roll < 30) {
            AppendBinaryFrame(out, rng);
            out += line;
        } else if (roll < 90) {
            // Lowercase hexadecimal checksum letters: rejected by design.
            std::string lower = line;
            const std::size_t star = lower.rfind('*');
            for (std::size_t i = star + 1; star != std::string::npos && i < lower.size(); ++i)
                if (lower[i] >= 'A' && lower[i] <= 'F')
                    lower[i] = static_cast<char>(lower[i] + 32);
            out += lower;
        } else if (roll < 130) {
            // Another talker (GLONASS, BeiDou, combined): skipped whole.
            std::string other = line;
            static const char* const kTalkers[] = {"GN", "GL", "BD"};
            if (other.size() > 3)
                other.replace(1, 2, kTalkers[rng() % 3]);
            out += other;
        } else if (roll < 160) {
            // Cut short by a lost byte run: no '*', no line end.
            out += line.substr(0, 1 + rng() % (line.size() - 1));
            out += line;
        } else if (roll < 175) {
            // A '$' inside a sentence restarts the framing there.
            std::string broken = line;
            broken.insert(broken.size() / 2, 1, '$');
            out += broken;
        } else if (roll < 190) {
            // Over-long fields with a valid checksum: every copied field is
            // truncated to its width.
            std::string body = "GPGSV,3,1,12";
            for (int i = 0; i < 12; ++i)
                body += "," + std::to_string(rng() % 100) + std::string(1 + rng() % 20, '9');
            out += Checksummed(body);
            out += Checksummed("GPRMC,020000.000000000000,A," + std::string(40, '3') +
                               ",N,12009.123456789,E,123456789.5,359.999999,160526,,,A");
            out += line;
        } else if (roll < 192) {
            out += '\0';
            out += line;
        } else {
            out += line;
        }
    });
    return out;
}

// The demo drive as a multi-system receiver sends it: RMC, GGA and GSA under
// the combined talker, and every GSV cycle followed by a GLONASS cycle of
// the same satellites renumbered into GLONASS's range.
std::string MultiSystemCorpus(const std::string& clean) {
    std::string out;
    out.reserve(clean.size() * 2);
    ForEachLine(clean, [&](const std::string& line) {
        const std::size_t star = line.rfind('*');
        if (line.size() < 7 || line.compare(0, 3, "$GP") != 0 || star == std::string::npos) {
            out += line;
            return;
        }
        std::string body = line.substr(1, star - 1);
        const std::string kind = body.substr(2, 3);
        if (kind == "RMC" || kind == "GGA" || kind == "GSA") {
            body.replace(0, 2, "GN");
            out += Checksummed(body);
        } else if (kind == "GSV") {
            out += line;
            // Fields 4, 8, 12 and 16 are numbers: 65 onward for GLONASS.
            std::string glonass;
            std::size_t at = 0;
            for (int field = 0; at <= body.size(); ++field) {
                std::size_t stop = body.find(',', at);
                stop = stop == std::string::npos ? body.size() : stop;
                std::string text = body.substr(at, stop - at);
                if (field == 0)
                    text.replace(0, 2, "GL");
                else if (field >= 4 && field % 4 == 0 && !text.empty())
                    text = std::to_string(65 + std::atoi(text.c_str()) % 32);
                glonass += (field == 0 ? "" : ",") + text;
                at = stop + 1;
            }
            out += Checksummed(glonass);
        } else {
            out += line;
        }
    });
    return out;
}

struct Corpus {
    std::string bytes;
    std::vector<std::string_view> batches;
    std::size_t decodedBytes = 0;  // bytes before each batch's first NUL: what the decoder sees
};

Corpus Slice(std::string bytes) {
    Corpus c;
    c.bytes = std::move(bytes);
    const std::string_view all = c.bytes;
    for (std::size_t at = 0; at < all.size(); at += kBatchBytes) {
        const std::string_view batch = all.substr(at, kBatchBytes);
        c.batches.push_back(batch);
        const std::size_t nul = batch.find('\0');
        c.decodedBytes += nul == std::string_view::npos ? batch.size() : nul;
    }
    return c;
}

const Corpus& CleanCorpus() {
    static const Corpus corpus = Slice(ReadDemoLog());
    return corpus;
}

const Corpus& NoisyCorpus() {
    static const Corpus corpus = Slice(MixedCorpus(ReadDemoLog()));
    return corpus;
}

const Corpus& MultiSystem() {
    static const Corpus corpus = Slice(MultiSystemCorpus(ReadDemoLog()));
    return corpus;
}

class SyncCounter final : public satwalk::gps::TimeSyncSink {
  public:
    void OnGpsTime() override { ++count; }
    unsigned long count = 0;
};

enum class Setting { kAbsent, kOff, kOn };

void RunDecoder(benchmark::State& state, const Corpus& corpus, Setting setting = Setting::kAbsent) {
    GpsState gps;
    GsvAssembly assembly;
    SyncCounter sink;
    Talkers talkerRecord;
    talkerRecord.acceptAll = setting == Setting::kOn;
    Talkers* talkers = setting == Setting::kAbsent ? nullptr : &talkerRecord;
    // Warm up outside the timed loop: the first time-zone lookup of the C
    // library loads its data.
    for (const std::string_view batch : corpus.batches)
        ParseNmeaBuffer(gps, assembly, batch, &sink, talkers);

    unsigned batchNumber = 0;
    const unsigned long allocationsBefore = gAllocations.load();
    for (auto _ : state) {
        for (const std::string_view batch : corpus.batches) {
            if (++batchNumber % kSyncEveryBatches == 0)
                gps.timeSyncPending = 1;
            ParseNmeaBuffer(gps, assembly, batch, &sink, talkers);
        }
        benchmark::DoNotOptimize(gps);
        benchmark::ClobberMemory();
    }
    const unsigned long allocations = gAllocations.load() - allocationsBefore;

    const auto bytes =
        static_cast<double>(state.iterations()) * static_cast<double>(corpus.decodedBytes);
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["MB/s"] = benchmark::Counter(bytes / 1e6, benchmark::Counter::kIsRate);
    state.counters["allocations"] = static_cast<double>(allocations);
    state.counters["corpusKB"] = static_cast<double>(corpus.bytes.size()) / 1e3;
    if (allocations != 0)
        state.SkipWithError("the decoder allocated memory");
    if (sink.count == 0)
        state.SkipWithError("no time sync: the corpus decoded nothing");
}

void BM_DecodeMixed(benchmark::State& state) {
    RunDecoder(state, NoisyCorpus());
}
void BM_DecodeClean(benchmark::State& state) {
    RunDecoder(state, CleanCorpus());
}

void BM_DecodeMixedTalkersOff(benchmark::State& state) {
    RunDecoder(state, NoisyCorpus(), Setting::kOff);
}
void BM_DecodeMixedTalkersOn(benchmark::State& state) {
    RunDecoder(state, NoisyCorpus(), Setting::kOn);
}
void BM_DecodeCleanTalkersOff(benchmark::State& state) {
    RunDecoder(state, CleanCorpus(), Setting::kOff);
}
void BM_DecodeCleanTalkersOn(benchmark::State& state) {
    RunDecoder(state, CleanCorpus(), Setting::kOn);
}
void BM_DecodeMultiSystemTalkersOn(benchmark::State& state) {
    RunDecoder(state, MultiSystem(), Setting::kOn);
}

BENCHMARK(BM_DecodeMixed)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeClean)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeMixedTalkersOff)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeMixedTalkersOn)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeCleanTalkersOff)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeCleanTalkersOn)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DecodeMultiSystemTalkersOn)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
