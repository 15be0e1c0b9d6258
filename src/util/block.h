// A malloc'ed array, freed with its scope.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace ofp {

template <typename T>
class Block {
public:
    explicit Block(T *elements) : elements_(elements) {}
    ~Block() { std::free(elements_); }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;

    // Zero-filled elements; none when memory is short.
    static Block zeroed(uint64_t count)
    {
        return Block(static_cast<T *>(std::calloc(count, sizeof(T))));
    }

    explicit operator bool() const { return elements_ != nullptr; }
    T *get() const { return elements_; }
    T &operator[](uint64_t at) const { return elements_[at]; }

private:
    T *elements_;
};

} // namespace ofp
