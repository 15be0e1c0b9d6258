// Writes a JSON document piece by piece, so that a million rules need no memory here.
#ifndef OFPCTL_FRAME_JSON_WRITER_H
#define OFPCTL_FRAME_JSON_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>

namespace ofpctl {

// The pieces go to the end of out, which its owner may empty between calls. In an object every
// value has a key, in an array none has.
class JsonWriter {
public:
    explicit JsonWriter(std::string &out) : out_(&out) {}

    void begin_object(std::string_view key = {}) { begin(key, '{', '}'); }
    void begin_array(std::string_view key = {}) { begin(key, '[', ']'); }
    void end();                                        // the innermost object or array
    void end_all();                                    // every one but the outermost
    std::size_t depth() const { return open_.size(); } // how many are open

    void text(std::string_view key, std::string_view value);
    void number(std::string_view key, int64_t value); // of at most 32 bits
    void wide(std::string_view key, uint64_t value);  // as a string: JSON numbers end at 53 bits
    void flag(std::string_view key, bool value);
    void null(std::string_view key);
    void raw(std::string_view key, std::string_view json); // one whole JSON value

private:
    void begin(std::string_view key, char open, char close);
    void place(std::string_view key);

    std::string *out_;
    std::string open_; // closing brackets, innermost last
    bool first_ = true;
};

} // namespace ofpctl

#endif
