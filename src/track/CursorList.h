// The one list container of the track and POI code: a list that carries its
// own cursor (Seek, Next, Current) and owns copies of its elements.
//
// Elements live in fixed-size chunks rather than one node each: a trail of
// a million points then costs its elements plus a pointer per chunk, and
// drawing walks contiguous memory (ForEachSpan). The cursor keeps the
// behaviour of a singly linked list's cursor: Seek(i) and Next() move it,
// Current() reads it, and past the last element there is no current one.
//
// Failures end the program, as there is no way to go on without the list:
// an allocation that fails reports kListOutOfMemory, reading Current() with
// no current element reports kListNoCurrent. Both go to the handler set with
// SetListFailureHandler (the application shows its message box there) and
// then the process exits with status 1.
//
// Not thread-safe: the owner says which lock guards a list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <string>
#include <utility>

namespace satwalk::track {

enum class ListFailure : std::uint32_t {
    OutOfMemory = 0x08200c01,
    NoCurrent = 0x08200c02,
};

// "Critical Error: 0x08200c01\nThe program will now exit." and its sibling.
std::string ListFailureMessage(ListFailure failure);

// Called once before the process exits with status 1; it may show the
// message and need not return. The default writes the message to stderr.
using ListFailureHandler = void (*)(ListFailure failure);
void SetListFailureHandler(ListFailureHandler handler);
[[noreturn]] void ReportListFailure(ListFailure failure);

// A stamp that no list modification has carried before: caches of drawn
// lists compare it to know whether a list changed.
std::uint64_t NextListStamp();

template <typename T>
class CursorList {
  public:
    // About 16 KiB a chunk, at least 4 elements.
    static constexpr std::uint32_t kChunk = sizeof(T) * 4 > 16384
                                                ? 4u
                                                : static_cast<std::uint32_t>(16384 / sizeof(T));

    // A list never grows past a gigabyte: beyond that, as when memory runs
    // out, the program ends with kListOutOfMemory rather than being killed.
    static constexpr std::uint32_t kMaxCount =
        static_cast<std::uint32_t>((std::size_t{1} << 30) / sizeof(T));

    CursorList() = default;
    ~CursorList() { Free(); }
    CursorList(const CursorList& other) { CopyFrom(other); }
    CursorList& operator=(const CursorList& other) {
        if (this != &other) {
            Clear();
            CopyFrom(other);
        }
        return *this;
    }
    CursorList(CursorList&& other) noexcept { Steal(other); }
    CursorList& operator=(CursorList&& other) noexcept {
        if (this != &other) {
            Free();
            Steal(other);
        }
        return *this;
    }

    // Copies the element in at the end and puts the cursor on it. Returns
    // the new count.
    std::uint32_t Append(const T& element) { return Emplace(element); }
    std::uint32_t Append(T&& element) { return Emplace(std::move(element)); }

    // Puts the cursor on element i; an index out of range leaves it alone.
    void Seek(std::int32_t i) {
        if (count_ > 0 && i >= 0 && static_cast<std::uint32_t>(i) < count_)
            index_ = i;
    }
    // Moves the cursor one on; past the last element there is no current.
    void Next() {
        if (HasCurrent())
            ++index_;
    }
    bool HasCurrent() const { return index_ >= 0 && static_cast<std::uint32_t>(index_) < count_; }
    // The element under the cursor; with none the program ends.
    const T& Current() const {
        if (!HasCurrent())
            ReportListFailure(ListFailure::NoCurrent);
        return At(static_cast<std::uint32_t>(index_));
    }
    T& Current() {
        if (!HasCurrent())
            ReportListFailure(ListFailure::NoCurrent);
        return At(static_cast<std::uint32_t>(index_));
    }

    // Frees every element; the cursor index becomes -1.
    void Clear() {
        Free();
        stamp_ = NextListStamp();
    }

    std::uint32_t Count() const { return count_; }
    bool Empty() const { return count_ == 0; }
    // The cursor's position: -1 when empty or freshly cleared, Count() when
    // it has moved past the end.
    std::int32_t Index() const { return index_; }
    // Changes with every Append and Clear.
    std::uint64_t Stamp() const { return stamp_; }

    // Direct access for walkers that must not move the cursor.
    const T& At(std::uint32_t i) const { return chunks_[i / kChunk][i % kChunk]; }
    T& At(std::uint32_t i) { return chunks_[i / kChunk][i % kChunk]; }

    // Calls fn(std::span<const T>) for each run of contiguous elements, in
    // list order: the fast way to walk a long list.
    template <typename Fn>
    void ForEachSpan(Fn&& fn) const {
        std::uint32_t left = count_;
        for (std::uint32_t c = 0; left > 0; ++c) {
            const std::uint32_t n = left < kChunk ? left : kChunk;
            fn(std::span<const T>(chunks_[c], n));
            left -= n;
        }
    }

    // Bytes held by the list itself (chunks and the chunk table).
    std::size_t MemoryBytes() const {
        return chunkCount_ * sizeof(T) * kChunk + chunkCapacity_ * sizeof(T*);
    }

  private:
    template <typename U>
    std::uint32_t Emplace(U&& element) {
        if (count_ >= kMaxCount)
            ReportListFailure(ListFailure::OutOfMemory);
        const std::uint32_t c = count_ / kChunk;
        if (c == chunkCount_)
            AddChunk();
        new (&chunks_[c][count_ % kChunk]) T(std::forward<U>(element));
        index_ = static_cast<std::int32_t>(count_);
        ++count_;
        stamp_ = NextListStamp();
        return count_;
    }

    void AddChunk() {
        if (chunkCount_ == chunkCapacity_) {
            const std::uint32_t capacity = chunkCapacity_ == 0 ? 4 : chunkCapacity_ * 2;
            void* table = std::realloc(static_cast<void*>(chunks_), capacity * sizeof(T*));
            if (table == nullptr)
                ReportListFailure(ListFailure::OutOfMemory);
            chunks_ = static_cast<T**>(table);
            chunkCapacity_ = capacity;
        }
        void* chunk =
            ::operator new (sizeof(T) * kChunk, std::align_val_t{alignof(T)}, std::nothrow);
        if (chunk == nullptr)
            ReportListFailure(ListFailure::OutOfMemory);
        chunks_[chunkCount_++] = static_cast<T*>(chunk);
    }

    void Free() {
        for (std::uint32_t i = 0; i < count_; ++i) At(i).~T();
        for (std::uint32_t c = 0; c < chunkCount_; ++c)
            ::operator delete (static_cast<void*>(chunks_[c]), std::align_val_t{alignof(T)});
        std::free(static_cast<void*>(chunks_));
        chunks_ = nullptr;
        chunkCount_ = chunkCapacity_ = count_ = 0;
        index_ = -1;
    }

    void CopyFrom(const CursorList& other) {
        other.ForEachSpan([this](std::span<const T> span) {
            for (const T& e : span) Emplace(e);
        });
        index_ = other.index_;
    }

    void Steal(CursorList& other) {
        chunks_ = std::exchange(other.chunks_, nullptr);
        chunkCount_ = std::exchange(other.chunkCount_, 0);
        chunkCapacity_ = std::exchange(other.chunkCapacity_, 0);
        count_ = std::exchange(other.count_, 0);
        index_ = std::exchange(other.index_, -1);
        stamp_ = NextListStamp();
        other.stamp_ = NextListStamp();
    }

    T** chunks_ = nullptr;
    std::uint32_t chunkCount_ = 0;
    std::uint32_t chunkCapacity_ = 0;
    std::uint32_t count_ = 0;
    std::int32_t index_ = -1;
    std::uint64_t stamp_ = NextListStamp();
};

}  // namespace satwalk::track
