// A program that is asked what it makes of our messages.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "flow/flow_text.h"

namespace referee {

// Tests with a scratch directory, skipped where the program is not installed.
class Tool : public testing::Test {
protected:
    // The program, and the Debian package that has it.
    Tool(std::string_view program, std::string_view package);
    ~Tool() override;

    void SetUp() override;

    // A file of the scratch directory.
    std::filesystem::path write(std::string_view name, std::string_view content);
    // What the command prints, line by line. It has to end well, and within a minute.
    std::vector<std::string> run(const std::string &command);

private:
    std::string program_;
    std::string package_;
    std::filesystem::path directory_;
};

// Flow text as items; what they point at lives as long.
struct Flows {
    explicit Flows(const std::vector<std::string> &lines);

    std::vector<ofpctl::FlowItemPtr> owners;
    std::vector<OfpFlowItem> items;
};

} // namespace referee
