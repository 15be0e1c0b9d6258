/* The shared libraries export what the headers declare and nothing else. */
#include <cstdio>
#include <set>
#include <string>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "fixture.h"

using namespace host_test;

namespace {

using Names = std::set<std::string>;

Names exported(const std::string &library)
{
    Names names;
    std::string command = "nm -D --defined-only --format=posix " + library;
    FILE *pipe = popen(command.c_str(), "r");
    char line[512];
    while (pipe != nullptr && fgets(line, sizeof line, pipe) != nullptr) {
        names.insert(std::string(line).substr(0, std::string(line).find(' ')));
    }
    EXPECT_EQ(pclose(pipe), 0);
    return names;
}

/* Cuts every part that begins and ends with these out of the text. */
void cut(std::string &text, const std::string &begin, const std::string &end)
{
    for (size_t at = 0; (at = text.find(begin, at)) != std::string::npos;) {
        text.erase(at, text.find(end, at) + end.size() - at);
    }
}

/* Functions declared in a header: the names before a parenthesis. */
Names declared(const std::string &header)
{
    std::string text = read_file(std::string(PLATFORM_HEADERS "/") + header);
    cut(text, "/*", "*/");
    cut(text, "#", "\n");
    Names names;
    for (size_t at = 0; (at = text.find('(', at + 1)) != std::string::npos;) {
        size_t before = text.find_last_of(" *\n", at);
        names.insert(text.substr(before + 1, at - before - 1));
    }
    return names;
}

TEST(Exports, HostPortExportsWhatItsHeadersDeclare)
{
    Names wanted = declared("platform.h");
    EXPECT_EQ(wanted.size(), 41u);
    wanted.merge(declared("host.h"));
    EXPECT_EQ(exported(HOST_LIBRARY), wanted);
}

TEST(Exports, SwitchPortExportsTheSocketCalls)
{
    EXPECT_EQ(exported(SWITCH_LIBRARY),
              (Names{"SOCK_Close", "SOCK_Connect", "SOCK_Recv", "SOCK_RecvFrom", "SOCK_Send",
                     "SOCK_SetOption", "SOCK_Socket"}));
}

template <class Function>
Function *find(void *library, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(library, name));
}

TEST(SwitchPort, PassesNumbersUnchanged)
{
    void *library = dlopen(SWITCH_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    auto *make = find<decltype(SOCK_Socket)>(library, "SOCK_Socket");
    auto *set_option = find<decltype(SOCK_SetOption)>(library, "SOCK_SetOption");
    auto *connect_to = find<decltype(SOCK_Connect)>(library, "SOCK_Connect");
    auto *receive = find<decltype(SOCK_Recv)>(library, "SOCK_Recv");
    auto *receive_from = find<decltype(SOCK_RecvFrom)>(library, "SOCK_RecvFrom");
    auto *transmit = find<decltype(SOCK_Send)>(library, "SOCK_Send");
    auto *close_it = find<decltype(SOCK_Close)>(library, "SOCK_Close");

    int s = make(AF_UNIX, SOCK_DGRAM, 0);
    ASSERT_GE(s, 0);
    timeval value{.tv_sec = 3, .tv_usec = 0};
    socklen_t length = sizeof value;
    EXPECT_EQ(set_option(s, SOL_SOCKET, SO_RCVTIMEO, &value, sizeof value), 0);
    value = {};
    EXPECT_EQ(getsockopt(s, SOL_SOCKET, SO_RCVTIMEO, &value, &length), 0);
    EXPECT_EQ(value.tv_sec, 3);

    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, pair), 0);
    char buffer[8];
    EXPECT_EQ(transmit(pair[0], "datagram", 8, 0), 8);
    EXPECT_EQ(receive(pair[1], buffer, 4, MSG_TRUNC), 8);
    EXPECT_EQ(receive_from(pair[1], buffer, 8, 0x40), -1);
    EXPECT_EQ(errno, EAGAIN);
    sockaddr nobody{.sa_family = AF_UNSPEC, .sa_data = {}};
    EXPECT_EQ(connect_to(pair[0], &nobody, sizeof nobody), 0) << "AF_UNSPEC disconnects";
    EXPECT_EQ(close_it(s), 0);
    EXPECT_EQ(close_it(s), -1);
    EXPECT_EQ(close_it(pair[0]), 0);
    EXPECT_EQ(close_it(pair[1]), 0);

    int raw = socket(37, 2, 1);
    int raw_error = errno;
    int own = make(37, 2, 1);
    EXPECT_EQ(own < 0, raw < 0);
    EXPECT_EQ(own < 0 ? errno : 0, raw < 0 ? raw_error : 0);
    dlclose(library);
}

} // namespace
