// A record as the protocol describes it: which of its bytes are numbers.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "double/bytes.h"
#include "double/platform.h"
#include "ofp/wire.h"

namespace wire {

using Routine = void (*)(void *value);
constexpr Routine no_routine = nullptr; // none is exported
constexpr uint32_t no_type = 0;         // only the routine converts it

struct Record {
    uint32_t type;
    const char *name;
    const char *numbers; // "offset:uBITS" each, "offset:uBITSxN" for N of them in a row
    Routine routine;
};

struct Number {
    size_t offset;
    size_t width; // bytes
};

std::vector<Number> numbers(const Record &record);
size_t end_of_numbers(const Record &record);
test::Bytes converted(const Record &record, test::Bytes value); // what the protocol wants

inline void PrintTo(const Record &record, std::ostream *out) { *out << record.name; }
inline std::string name_of(const testing::TestParamInfo<Record> &info) { return info.param.name; }

class Conversion : public testing::TestWithParam<Record> {};

extern const std::vector<Record> control_records;
extern const std::vector<Record> flow_records;

} // namespace wire
