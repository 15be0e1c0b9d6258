#include "switch/rule.h"

#include <algorithm>
#include <new>

namespace agent {
namespace {

size_t size_of(size_t words, size_t match, size_t instructions)
{
    return sizeof(Rule) + words * sizeof(uint64_t) + match + instructions;
}

} // namespace

Rule *make_rule(const Rule &head, const uint64_t *values, std::span<const uint8_t> match,
                std::span<const uint8_t> instructions, std::pmr::memory_resource *memory)
{
    const size_t words = head.mask->words;
    void *block =
        memory->allocate(size_of(words, match.size(), instructions.size()), alignof(Rule));
    auto *rule = new (block) Rule(head);
    rule->match_size = static_cast<uint16_t>(match.size());
    rule->instructions_size = static_cast<uint16_t>(instructions.size());
    auto *to_values = reinterpret_cast<uint64_t *>(rule + 1);
    auto *to_bytes = reinterpret_cast<uint8_t *>(std::copy(values, values + words, to_values));
    to_bytes = std::copy(match.begin(), match.end(), to_bytes);
    std::copy(instructions.begin(), instructions.end(), to_bytes);
    return rule;
}

void free_rule(Rule *rule, std::pmr::memory_resource *memory) noexcept
{
    const size_t size = size_of(rule->mask->words, rule->match_size, rule->instructions_size);
    rule->~Rule();
    memory->deallocate(rule, size, alignof(Rule));
}

} // namespace agent
