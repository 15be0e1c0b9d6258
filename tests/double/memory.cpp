#include "double/memory.h"

#include <cstring>
#include <mutex>
#include <unordered_set>

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__real_realloc(void *block, size_t size);
void __real_free(void *block);

void *__wrap_malloc(size_t size);
void *__wrap_calloc(size_t count, size_t size);
void *__wrap_realloc(void *block, size_t size);
void __wrap_free(void *block);
}

namespace test::memory {
namespace {

struct Heap {
    std::mutex mutex;
    std::unordered_set<void *> blocks;
    size_t until_failure = 0;
    bool failed = false;

    bool fails()
    {
        std::lock_guard lock(mutex);
        if (until_failure == 0 || --until_failure != 0)
            return false;
        return failed = true;
    }
    void *add(void *block)
    {
        std::lock_guard lock(mutex);
        if (block)
            blocks.insert(block);
        return block;
    }
    void remove(void *block)
    {
        std::lock_guard lock(mutex);
        blocks.erase(block);
    }
};

// Never destroyed: memory is freed until the very end of the process.
Heap &heap()
{
    static Heap &only = *new Heap;
    return only;
}

} // namespace

void fail_at(size_t nth)
{
    std::lock_guard lock(heap().mutex);
    heap().until_failure = nth;
    heap().failed = false;
}

bool has_failed()
{
    std::lock_guard lock(heap().mutex);
    return heap().failed;
}

size_t outstanding()
{
    std::lock_guard lock(heap().mutex);
    return heap().blocks.size();
}

void *give(size_t size) { return heap().add(__real_malloc(size)); }

} // namespace test::memory

using test::memory::heap;

void *__wrap_malloc(size_t size)
{
    if (heap().fails())
        return nullptr;
    void *block = heap().add(__real_malloc(size));
    if (block)
        std::memset(block, 0xa5, size); // what is read before it is written shows
    return block;
}

void *__wrap_calloc(size_t count, size_t size)
{
    return heap().fails() ? nullptr : heap().add(__real_calloc(count, size));
}

void *__wrap_realloc(void *block, size_t size)
{
    if (heap().fails())
        return nullptr;
    void *moved = __real_realloc(block, size);
    if (moved) {
        heap().remove(block);
        heap().add(moved);
    }
    return moved;
}

void __wrap_free(void *block)
{
    heap().remove(block);
    __real_free(block);
}
