#pragma once

// Memory of one interpreter: mark and sweep, never moving.
//
// Pairs live in 64 KB blocks whose head holds one mark bit per pair. A collection only clears and
// sets bits; afterwards the allocator walks the blocks and hands out runs of unmarked pairs, so
// allocating one is a comparison and an increment, and nothing is swept. Other objects are freed
// one by one when unmarked, which closes files and releases selection sets.

#include "host/lisp/interpreter.h"
#include "host/lisp/value.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace drafthost::lisp {

class Heap {
public:
    // `collectFlag` is set in `pollFlags` when enough was allocated to make a collection worthwhile.
    Heap(std::atomic<std::uint32_t>& pollFlags, std::uint32_t collectFlag);
    ~Heap();
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;

    Value cons(Value car, Value cdr) {
        if (cursor_ == runEnd_) {
            nextRun();
        }
        Pair* pair = cursor_++;
        pair->car = car;
        pair->cdr = cdr;
        return Value::pair(pair);
    }

    // `payload`: bytes the object holds outside itself, for pacing collections
    template <class T, class... Arguments>
    T* make(std::size_t payload, Arguments&&... arguments) {
        auto owned = std::make_unique<T>(std::forward<Arguments>(arguments)...);
        objects_.push_back(owned.get());
        account(sizeof(T) + payload);
        ++objectsMade_;
        return owned.release();
    }

    // Strings are many and short-lived: their objects come from a pool.
    Value makeString(std::wstring text);

    // Frees everything not reached from what `markRoots` marks. `afterMarking` runs before anything is freed
    // and may mark more and drop weak references to what isMarked then denies.
    void collect(const std::function<void()>& markRoots, const std::function<void()>& afterMarking);
    // Only from markRoots and Object::trace; what the value refers to is marked afterwards, in turn.
    void mark(Value value);
    bool isMarked(const Pair* pair) const;
    // Marks what is reached from the values marked so far.
    void propagateMarks();

    AllocationStatistics statistics() const;

private:
    struct Block;

    // Memory for string objects, taken from the system in chunks and reused through a list of free places.
    class StringPool {
    public:
        void* take();
        void giveBack(void* place);

    private:
        struct Free {
            Free* next;
        };
        static constexpr std::size_t placesPerChunk = 1024;

        std::vector<std::unique_ptr<std::byte[]>> chunks_;
        Free* free_ = nullptr;
    };

    void release(Object* object);
    void nextRun();
    void account(std::size_t bytes);
    bool markPair(const Pair* pair);
    void sweepObjects();

    std::vector<std::unique_ptr<Block>> blocks_;
    StringPool strings_;
    std::vector<Object*> objects_;
    std::vector<Value> markStack_;
    Pair* cursor_ = nullptr;
    Pair* runEnd_ = nullptr;
    std::size_t scanBlock_ = 0;
    std::size_t scanSlot_ = 0;
    std::size_t bytesSinceCollection_ = 0;
    std::size_t threshold_;
    std::uint64_t pairsHandedOut_ = 0;
    std::uint64_t objectsMade_ = 0;
    AllocationStatistics atLastCollection_;
    std::atomic<std::uint32_t>& pollFlags_;
    std::uint32_t collectFlag_;
};

}  // namespace drafthost::lisp
