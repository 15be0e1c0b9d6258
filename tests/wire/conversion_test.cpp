// Every record of the two catalogues, one test each.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "wire/record.h"

using test::Bytes;

namespace wire {

std::vector<Number> numbers(const Record &record)
{
    std::vector<Number> found;
    std::istringstream words(record.numbers);
    for (std::string word; words >> word;) {
        char *at = nullptr;
        size_t offset = std::strtoul(word.c_str(), &at, 10);
        size_t width = std::strtoul(at + 2, &at, 10) / 8;
        size_t count = *at == 'x' ? std::strtoul(at + 1, nullptr, 10) : 1;
        for (size_t i = 0; i < count; ++i)
            found.push_back({offset + i * width, width});
    }
    return found;
}

size_t end_of_numbers(const Record &record)
{
    size_t end = 0;
    for (const auto &number : numbers(record))
        end = std::max(end, number.offset + number.width);
    return end;
}

Bytes converted(const Record &record, Bytes value)
{
    for (const auto &number : numbers(record)) {
        auto first = value.begin() + static_cast<std::ptrdiff_t>(number.offset);
        std::reverse(first, first + static_cast<std::ptrdiff_t>(number.width));
    }
    return value;
}

namespace {

void convert(const Record &record, void *value)
{
    if (record.type == no_type)
        record.routine(value);
    else
        OFP_bswap_ByteSwap(record.type, value);
}

// Bytes of which no two within 256 of each other are alike.
Bytes distinct(size_t count) { return test::counting(count, 0x11); }

TEST_P(Conversion, TurnsItsNumbersAndNothingElseAtAnyAddress)
{
    const size_t size = end_of_numbers(GetParam()) + 64;
    for (size_t shift = 0; shift < 8; ++shift) {
        const Bytes value = distinct(size);
        alignas(8) uint8_t memory[2048];
        ASSERT_LE(shift + size, sizeof memory);
        std::copy(value.begin(), value.end(), memory + shift);
        convert(GetParam(), memory + shift);
        EXPECT_EQ(test::bytes_of(memory + shift, size), converted(GetParam(), value))
            << "at " << shift;
    }
}

TEST_P(Conversion, TwiceGivesTheOriginal)
{
    const Bytes value = distinct(end_of_numbers(GetParam()) + 64);
    Bytes record = value;
    convert(GetParam(), record.data());
    convert(GetParam(), record.data());
    EXPECT_EQ(record, value);
}

// A block of exactly that size: a sanitizer sees any access beyond it.
TEST_P(Conversion, NeedsNoMoreThanItsLastNumber)
{
    const Bytes value = distinct(end_of_numbers(GetParam()));
    auto block = std::make_unique<uint8_t[]>(value.size());
    std::copy(value.begin(), value.end(), block.get());
    convert(GetParam(), block.get());
    EXPECT_EQ(test::bytes_of(block.get(), value.size()), converted(GetParam(), value));
}

TEST_P(Conversion, TypeAndExportedRoutineAgree)
{
    if (GetParam().routine == no_routine)
        return; // none is exported
    const Bytes value = distinct(end_of_numbers(GetParam()) + 64);
    Bytes record = value;
    GetParam().routine(record.data());
    EXPECT_EQ(record, converted(GetParam(), value));
}

} // namespace
} // namespace wire
