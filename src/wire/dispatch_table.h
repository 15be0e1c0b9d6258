// Tables from a number to what handles it, checked while the library is compiled.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ofp {

template <typename Handler>
struct DispatchRow {
    uint32_t number;
    Handler handler;
};

template <typename Handler, uint32_t last>
struct DispatchTable {
    Handler slots[last + 1] = {};

    // Empty for a number without handler or beyond the table.
    constexpr Handler operator[](uint64_t number) const
    {
        return number <= last ? slots[number] : Handler{};
    }
};

// Never defined: a table that is not whole calls one of them, so that the compiler names it.
void dispatch_number_out_of_range();
void dispatch_number_listed_twice();
void dispatch_number_missing();

template <typename Handler, uint32_t last, size_t count>
constexpr DispatchTable<Handler, last> table_of(const DispatchRow<Handler> (&rows)[count],
                                                uint32_t first)
{
    DispatchTable<Handler, last> table;
    bool listed[last + 1] = {};
    for (const auto &row : rows) {
        if (row.number < first || row.number > last)
            dispatch_number_out_of_range();
        if (listed[row.number])
            dispatch_number_listed_twice();
        listed[row.number] = true;
        table.slots[row.number] = row.handler;
    }
    return table;
}

// A table that lists every number from 1 to last.
template <typename Handler, uint32_t last, size_t count>
consteval DispatchTable<Handler, last> by_type(const DispatchRow<Handler> (&rows)[count])
{
    const auto table = table_of<Handler, last>(rows, 1);
    if (count < last)
        dispatch_number_missing();
    return table;
}

// A table of numbers from 0 to last; those that are not listed have no handler.
template <typename Handler, uint32_t last, size_t count>
consteval DispatchTable<Handler, last> by_number(const DispatchRow<Handler> (&rows)[count])
{
    return table_of<Handler, last>(rows, 0);
}

} // namespace ofp
