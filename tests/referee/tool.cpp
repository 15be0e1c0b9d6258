#include "referee/tool.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "ofp.h"
#include "ofpctl/flow_record.h"

namespace referee {

Tool::Tool(std::string_view program, std::string_view package)
    : program_(program), package_(package)
{}

Tool::~Tool()
{
    if (!directory_.empty())
        std::filesystem::remove_all(directory_);
}

void Tool::SetUp()
{
    if (std::system((program_ + " --version >/dev/null 2>&1").c_str()) != 0)
        GTEST_SKIP() << program_ << " is not installed (Debian package " << package_ << ")";
    std::string name = std::filesystem::temp_directory_path() / "referee.XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr) << name;
    directory_ = name;
}

std::filesystem::path Tool::write(std::string_view name, std::string_view content)
{
    const std::filesystem::path path = directory_ / name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::vector<std::string> Tool::run(const std::string &command)
{
    FILE *pipe = popen(("timeout 60 " + command).c_str(), "r");
    std::string all;
    char buffer[4096];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe))
        all.append(buffer, count);
    EXPECT_EQ(pclose(pipe), 0) << command << "\n" << all.substr(0, 500);
    std::vector<std::string> lines;
    std::istringstream in(all);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

Flows::Flows(const std::vector<std::string> &lines)
{
    for (const std::string &line : lines) {
        ofpctl::FlowItemPtr item = flow_test::parsed(line);
        if (!item)
            continue; // told by parsed()
        EXPECT_EQ(OFP_encodeoxm_CheckMatch(&item->match), 0U) << line;
        items.push_back(*item);
        owners.push_back(std::move(item));
    }
}

} // namespace referee
