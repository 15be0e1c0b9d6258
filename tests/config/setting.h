// A configuration call as its tests see it: what it sends and what it says of every failure.
#pragma once

#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "double/sweep.h"
#include "ofp/config.h"
#include "ofp/result.h"

namespace test {

struct Setting {
    std::string name;
    std::function<uint32_t()> call;
    Bytes datagram;                              // what it sends
    bool answered = true;                        // else its code is that of the sending
    std::optional<uint32_t> without_daemon = {}; // its code then; none: it starts the daemon
    Codes codes = {};                            // beyond those of every setter

    // A switch on which the call goes through, having started the daemon if it does that.
    void prepare() const;
    // The codes for every platform call that fails.
    Codes all_codes() const;
};

inline void PrintTo(const Setting &setting, std::ostream *out) { *out << setting.name; }
inline std::string name_of(const testing::TestParamInfo<Setting> &info) { return info.param.name; }

// Every rule below holds for every setting that a file instantiates it with.
class Setter : public PlatformTest, public testing::WithParamInterface<Setting> {};

// Calls with a record of the caller, which stays as it is.
template <typename Record, typename... More>
uint32_t with(uint32_t (*set)(const Record *, More...), std::type_identity_t<Record> record,
              std::type_identity_t<More>... more)
{
    const Bytes before = bytes_of(record);
    const uint32_t code = set(&record, more...);
    EXPECT_EQ(bytes_of(record), before) << "the caller's record was changed";
    return code;
}

// Text as a record holds it.
inline Bytes padded(std::string_view text, size_t size)
{
    Bytes bytes = bytes_of(text.data(), text.size());
    bytes.resize(size);
    return bytes;
}

} // namespace test
