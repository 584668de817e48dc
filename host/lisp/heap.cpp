#include "host/lisp/heap.h"

#include <algorithm>
#include <bit>
#include <new>

namespace drafthost::lisp {

namespace {

constexpr std::size_t blockBytes = 64 * 1024;
constexpr std::size_t bitmapWords = blockBytes / sizeof(Pair) / 64;
constexpr std::size_t pairsPerBlock = (blockBytes - bitmapWords * sizeof(std::uint64_t)) / sizeof(Pair);

// Small programs finish without any collection; large ones collect when the heap has doubled.
constexpr std::size_t minimumThreshold = 8 * 1024 * 1024;

}  // namespace

// Blocks are aligned to their size, so that the block of a pair is its address rounded down.
struct Heap::Block {
    std::uint64_t marks[bitmapWords] = {};
    Pair pairs[pairsPerBlock];

    static void* operator new(std::size_t bytes) {
        return ::operator new(bytes, std::align_val_t(blockBytes));
    }
    static void operator delete(void* block) { ::operator delete(block, std::align_val_t(blockBytes)); }

    static Block* of(const Pair* pair) {
        return reinterpret_cast<Block*>(reinterpret_cast<std::uintptr_t>(pair) & ~(blockBytes - 1));
    }
    bool test(std::size_t slot) const { return (marks[slot / 64] >> (slot % 64)) & 1; }
    std::size_t slotOf(const Pair* pair) const { return static_cast<std::size_t>(pair - pairs); }

    // First slot from `slot` on whose mark is `wanted`; pairsPerBlock when there is none.
    std::size_t find(std::size_t slot, bool wanted) const {
        while (slot < pairsPerBlock) {
            const std::uint64_t word = wanted ? marks[slot / 64] : ~marks[slot / 64];
            const std::uint64_t rest = word >> (slot % 64);
            if (rest) {
                return std::min(pairsPerBlock, slot + static_cast<std::size_t>(std::countr_zero(rest)));
            }
            slot = (slot / 64 + 1) * 64;
        }
        return pairsPerBlock;
    }
};

Heap::Heap(std::atomic<std::uint32_t>& pollFlags, std::uint32_t collectFlag)
    : threshold_(minimumThreshold), pollFlags_(pollFlags), collectFlag_(collectFlag) {
    static_assert(sizeof(Block) <= blockBytes);
}

Heap::~Heap() {
    for (Object* object : objects_) {
        release(object);
    }
}

void* Heap::StringPool::take() {
    if (!free_) {
        static_assert(alignof(StringObject) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
        chunks_.push_back(std::make_unique_for_overwrite<std::byte[]>(placesPerChunk * sizeof(StringObject)));
        for (std::size_t index = placesPerChunk; index-- > 0;) {
            giveBack(chunks_.back().get() + index * sizeof(StringObject));
        }
    }
    void* const place = free_;
    free_ = free_->next;
    return place;
}

void Heap::StringPool::giveBack(void* place) {
    free_ = new (place) Free{free_};
}

Value Heap::makeString(std::wstring text) {
    const std::size_t payload = text.capacity() * sizeof(wchar_t);
    auto* string = new (strings_.take()) StringObject(std::move(text));
    objects_.push_back(string);
    account(sizeof(StringObject) + payload);
    ++objectsMade_;
    return Value::string(string);
}

void Heap::release(Object* object) {
    if (object->type == Type::string) {
        auto* string = static_cast<StringObject*>(object);
        string->~StringObject();
        strings_.giveBack(string);
    } else {
        delete object;
    }
}

void Heap::account(std::size_t bytes) {
    bytesSinceCollection_ += bytes;
    if (bytesSinceCollection_ > threshold_) {
        pollFlags_.fetch_or(collectFlag_, std::memory_order_relaxed);
    }
}

void Heap::nextRun() {
    while (scanBlock_ < blocks_.size()) {
        Block& block = *blocks_[scanBlock_];
        const std::size_t first = block.find(scanSlot_, false);
        if (first < pairsPerBlock) {
            const std::size_t end = block.find(first, true);
            scanSlot_ = end;
            cursor_ = block.pairs + first;
            runEnd_ = block.pairs + end;
            pairsHandedOut_ += end - first;
            account((end - first) * sizeof(Pair));
            return;
        }
        ++scanBlock_;
        scanSlot_ = 0;
    }
    blocks_.push_back(std::make_unique<Block>());
    nextRun();
}

bool Heap::markPair(const Pair* pair) {
    Block* block = Block::of(pair);
    const std::size_t slot = block->slotOf(pair);
    std::uint64_t& word = block->marks[slot / 64];
    const std::uint64_t bit = std::uint64_t(1) << (slot % 64);
    if (word & bit) {
        return false;
    }
    word |= bit;
    return true;
}

bool Heap::isMarked(const Pair* pair) const {
    const Block* block = Block::of(pair);
    return block->test(block->slotOf(pair));
}

void Heap::mark(Value value) {
    markStack_.push_back(value);
}

// Lists are followed along cdr in a loop; the explicit stack holds what hangs off them, so nesting
// of any depth is safe.
void Heap::propagateMarks() {
    while (!markStack_.empty()) {
        Value value = markStack_.back();
        markStack_.pop_back();
        while (value.isPair() && markPair(value.asPair())) {
            ++atLastCollection_.livePairs;
            const Value car = value.car();
            if (!car.isNumber() && !car.isSymbol() && !car.isNil()) {
                markStack_.push_back(car);
            }
            value = value.cdr();
        }
        if (value.isString() || value.isObject()) {
            Object* object = value.isString() ? value.asStringObject() : value.asObject();
            if (!object->marked) {
                object->marked = true;
                object->trace(*this);
            }
        }
    }
}

void Heap::sweepObjects() {
    std::size_t kept = 0;
    std::vector<Object*>
        dead;  // released last: what a destructor of the host's does must find the heap in order
    for (Object* object : objects_) {
        if (object->marked) {
            object->marked = false;
            objects_[kept++] = object;
        } else if (object->type == Type::string) {
            release(object);
        } else {
            dead.push_back(object);
        }
    }
    objects_.resize(kept);
    for (Object* object : dead) {
        release(object);
    }
}

void Heap::collect(const std::function<void()>& markRoots, const std::function<void()>& afterMarking) {
    pollFlags_.fetch_and(~collectFlag_, std::memory_order_relaxed);
    // what is left of the run was counted as handed out, but is not
    pairsHandedOut_ -= static_cast<std::uint64_t>(runEnd_ - cursor_);
    cursor_ = runEnd_ = nullptr;
    scanBlock_ = scanSlot_ = 0;
    for (const auto& block : blocks_) {
        std::fill(std::begin(block->marks), std::end(block->marks), 0);
    }
    atLastCollection_.livePairs = 0;
    markRoots();
    propagateMarks();
    afterMarking();
    propagateMarks();
    sweepObjects();
    atLastCollection_.liveObjects = objects_.size();
    ++atLastCollection_.collections;
    const std::size_t live = atLastCollection_.livePairs * sizeof(Pair);
    threshold_ = std::max(minimumThreshold, live);
    bytesSinceCollection_ = 0;
}

AllocationStatistics Heap::statistics() const {
    AllocationStatistics result = atLastCollection_;
    result.pairs = pairsHandedOut_ - static_cast<std::uint64_t>(runEnd_ - cursor_);
    result.objects = objectsMade_;
    result.heapBytes = blocks_.size() * blockBytes;
    return result;
}

}  // namespace drafthost::lisp
