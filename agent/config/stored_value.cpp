#include "config/stored_value.h"

#include <charconv>
#include <string_view>

namespace agent {

namespace {

constexpr size_t LONGEST_TEXT = 255;

// Takes a VLAN id off text.
bool take_vlan(std::string_view &text, unsigned &vlan)
{
    const auto [end, error] = std::from_chars(text.begin(), text.end(), vlan);
    text.remove_prefix(static_cast<size_t>(end - text.begin()));
    return error == std::errc() && vlan >= FIRST_VLAN && vlan <= LAST_VLAN;
}

bool take(std::string_view &text, char expected)
{
    if (!text.starts_with(expected)) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

} // namespace

StoredValue to_stored(const VlanSet &vlans)
{
    std::string text;
    for (size_t first = FIRST_VLAN; first <= LAST_VLAN; ++first) {
        if (!vlans[first]) {
            continue;
        }
        size_t last = first;
        while (last < LAST_VLAN && vlans[last + 1]) {
            ++last;
        }
        text += (text.empty() ? "" : ",") + std::to_string(first);
        if (last > first) {
            text += '-' + std::to_string(last);
        }
        first = last;
    }
    return text;
}

bool from_stored(const StoredValue &value, std::string &text)
{
    const auto *const stored = std::get_if<std::string>(&value);
    if (!stored || stored->size() > LONGEST_TEXT) {
        return false;
    }
    text = *stored;
    return true;
}

bool from_stored(const StoredValue &value, VlanSet &vlans)
{
    const auto *const stored = std::get_if<std::string>(&value);
    if (!stored) {
        return false;
    }
    vlans.reset();
    std::string_view rest = *stored;
    while (!rest.empty()) {
        unsigned first = 0;
        if (!take_vlan(rest, first)) {
            return false;
        }
        unsigned last = first;
        if ((take(rest, '-') && !take_vlan(rest, last)) || last < first) {
            return false;
        }
        for (unsigned vlan = first; vlan <= last; ++vlan) {
            vlans.set(vlan);
        }
        if (!rest.empty() && (!take(rest, ',') || rest.empty())) {
            return false;
        }
    }
    return true;
}

} // namespace agent
