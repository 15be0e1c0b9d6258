// Standard output: lines of text, or with --json exactly one document, whatever happens.
#ifndef OFPCTL_FRAME_OUTPUT_H
#define OFPCTL_FRAME_OUTPUT_H

#include <chrono>
#include <string>
#include <string_view>

#include "frame/failure.h"
#include "frame/json_writer.h"

namespace ofpctl {

class Output {
public:
    explicit Output(bool json, int descriptor = 1) : json_(json), descriptor_(descriptor) {}
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    bool json() const { return json_; }

    // Text: a line, and text as it is. Throw a Failure once the output takes no more.
    void line(std::string_view text);
    void write(std::string_view text);

    // JSON: the members of the document; schema and outcome are written here.
    JsonWriter &document();
    // After many members: writes out what has gathered.
    void settle();

    // Ends what one round of several prints, and writes it out: with JSON, the document.
    void end_round();

    // Ends the document, with the failure if there is one, and writes everything out.
    void finish(const Failure *failure);

private:
    using Clock = std::chrono::steady_clock;

    void flush();
    void end_document(const Failure *failure);

    bool json_;
    int descriptor_;
    std::string buffer_;
    JsonWriter writer_{buffer_};
    bool broken_ = false;
    Clock::time_point flushed_ = Clock::now();
};

} // namespace ofpctl

#endif
