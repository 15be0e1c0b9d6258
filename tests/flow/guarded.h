// A buffer that ends where the process may not write.
#pragma once

#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

#include "double/bytes.h"

namespace test {

class Guarded {
public:
    explicit Guarded(size_t most)
        : page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
          room_((most + page_ - 1) / page_ * page_),
          start_(static_cast<uint8_t *>(mmap(nullptr, room_ + page_, PROT_READ | PROT_WRITE,
                                             MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        mprotect(start_ + room_, page_, PROT_NONE);
    }
    ~Guarded() { munmap(start_, room_ + page_); }
    Guarded(const Guarded &) = delete;
    Guarded &operator=(const Guarded &) = delete;

    // The last size bytes before the guard.
    uint8_t *last(size_t size)
    {
        std::memset(start_, 0xee, room_);
        return start_ + room_ - size;
    }

private:
    size_t page_;
    size_t room_;
    uint8_t *start_;
};

} // namespace test
