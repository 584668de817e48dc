// A damaged file may ask for any amount of memory. Beyond this limit an allocation fails, as it would in the
// end anyway, before the machine has come to a standstill.

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

// A drawing of 100 MB stays below a third of it.
constexpr std::size_t kLimit = std::size_t{2} << 30;
std::size_t inUse = 0;  // this program has one thread

}  // namespace

void* operator new(std::size_t size) {
    if (inUse > kLimit || size > kLimit - inUse)
        throw std::bad_alloc();
    void* const memory = std::malloc(size ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    inUse += _msize(memory);
    return memory;
}

void operator delete(void* memory) noexcept {
    if (!memory)
        return;
    inUse -= _msize(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    ::operator delete(memory);
}
