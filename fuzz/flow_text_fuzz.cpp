// Flow text: whatever parses is printed as text that parses to the same.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

#include "flow/flow_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string_view line(reinterpret_cast<const char *>(data), size);
    auto parsed = ofpctl::parse_flow(line, ofpctl::ParseMode::program);
    const auto *flow = std::get_if<ofpctl::Flow>(&parsed);
    if (flow == nullptr) {
        return 0;
    }
    const std::string text = ofpctl::format_flow(*flow->item);
    auto again = ofpctl::parse_flow(text, ofpctl::ParseMode::program);
    const auto *same = std::get_if<ofpctl::Flow>(&again);
    if (same == nullptr || ofpctl::format_flow(*same->item) != text) {
        std::abort();
    }
    return 0;
}
