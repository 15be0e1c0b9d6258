// The bits on which all rules of a set have the same value, as far as is known: rules only ever
// take from it.
#pragma once

#include <memory_resource>
#include <vector>

#include "switch/key.h"
#include "switch/mask.h"

namespace agent {

class Agreement {
public:
    Agreement(KeyView first, std::pmr::memory_resource *memory);

    // Another rule joins. Throws std::bad_alloc and has then changed nothing.
    void narrow(KeyView key, MaskSet &masks);

    const MaskRef &mask() const { return mask_; }
    KeyView view() const { return {mask_, values_.data()}; }

private:
    MaskRef mask_;
    std::pmr::vector<uint64_t> values_;
};

} // namespace agent
