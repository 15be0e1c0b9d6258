/*
 * Stands in for ofp-agent: the same part in the start-up, then one answer per datagram. What
 * OFP_STAND_IN says makes it a bad one.
 */
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "ofp/host.h"
#include "ofp/platform.h"

namespace {

std::string behaviour;
std::string arguments;

void pause_for(int milliseconds) { poll(nullptr, 0, milliseconds); }

void report(int fd, const std::string &text)
{
    if (write(fd, text.data(), text.size()) < 0) {
        _exit(3);
    }
}

[[noreturn]] void leave(int fd, const std::string &why)
{
    report(fd, why);
    exit(1);
}

/* One line for every agent that got the lock. */
void note_start()
{
    char directory[128];
    if (HOST_GetRuntimeDir(directory, sizeof directory, 0) == 0) {
        std::string line = std::to_string(getpid()) + "\n";
        int fd = open((std::string(directory) + "/started").c_str(),
                      O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
        report(fd, line);
        close(fd);
    }
}

std::string open_descriptors()
{
    std::string result;
    for (int fd = 0; fd < 256; ++fd) {
        if (fcntl(fd, F_GETFD) >= 0) {
            result += std::to_string(fd) + " ";
        }
    }
    return result;
}

std::string blocked_signals()
{
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    struct sigaction hup {};
    sigaction(SIGHUP, nullptr, &hup);
    return sigismember(&blocked, SIGTERM) == 1 || hup.sa_handler != SIG_DFL ? "inherited" : "usual";
}

std::string answer(const std::string &request)
{
    char folder[4096];
    if (request.empty()) {
        return "empty datagram";
    }
    if (request == "pid") {
        return std::to_string(getpid());
    }
    if (request == "parent") {
        return std::to_string(getppid());
    }
    if (request == "session") {
        return std::to_string(getsid(0));
    }
    if (request == "folder") {
        return getcwd(folder, sizeof folder) != nullptr ? folder : "?";
    }
    if (request == "descriptors") {
        return open_descriptors();
    }
    if (request == "signals") {
        return blocked_signals();
    }
    if (request.starts_with("environment ")) {
        const char *value = getenv(request.c_str() + strlen("environment "));
        return value != nullptr ? value : "(unset)";
    }
    if (request == "arguments") {
        return arguments;
    }
    if (request == "die") {
        raise(SIGKILL);
    }
    return request;
}

/* False when the connection is over. */
bool serve(int client)
{
    char buffer[65536];
    int64_t length = HOST_Receive(client, buffer, sizeof buffer);
    if (length < 0) {
        return length == -1 && errno == EAGAIN;
    }
    std::string reply = answer(std::string(buffer, static_cast<size_t>(length)));
    return send(client, reply.data(), reply.size(), MSG_NOSIGNAL) >= 0;
}

void serve_all(int listener)
{
    std::vector<pollfd> polled{{listener, POLLIN, 0}};
    for (;;) {
        if (poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR) {
            return;
        }
        bool connected = polled[0].revents != 0;
        std::erase_if(polled, [&](const pollfd &each) {
            bool over = each.fd != listener && each.revents != 0 && !serve(each.fd);
            if (over) {
                close(each.fd);
            }
            return over;
        });
        int client = connected ? accept4(listener, nullptr, nullptr, SOCK_CLOEXEC) : -1;
        if (client >= 0) {
            polled.push_back({client, POLLIN, 0});
        }
    }
}

int run(uint16_t node, int ready)
{
    if (behaviour == "silent") {
        exit(1);
    }
    if (behaviour == "refuses") {
        leave(ready, "the database is locked\nsecond line");
    }
    if (behaviour == "hangs") {
        pause_for(60'000);
    }
    if (HOST_LockAgent(node) < 0) {
        leave(ready, HOST_LastError());
    }
    note_start();
    if (behaviour == "hangs with the lock") {
        pause_for(60'000);
    }
    if (behaviour == "is slow") {
        pause_for(300);
    }
    int listener = HOST_ListenAgent(node);
    if (listener < 0) {
        leave(ready, HOST_LastError());
    }
    if (behaviour == "is slow") {
        pause_for(200);
    }
    report(ready, "ready\n");
    if (ready > STDERR_FILENO) {
        close(ready);
    }
    serve_all(listener);
    return 1;
}

/* What a program of this library finds and does: the agent's program file, then a start. */
int start_agent()
{
    char program[4096];
    bool found = HOST_GetAgentProgram(program, sizeof program) == 0;
    printf("%s\n", found ? program : HOST_LastError());
    uint32_t code = SERVICE_Start(0, HOST_SERVICE, 0, 0);
    printf("%s\n", code == 0 ? "started" : HOST_LastError());
    return code == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const char *chosen = getenv("OFP_STAND_IN");
    behaviour = chosen != nullptr ? chosen : "";
    alarm(50); /* never outlives its test by long */
    if (argc == 2 && strcmp(argv[1], "--start") == 0) {
        return start_agent();
    }
    if (argc < 5 || strcmp(argv[1], "--node") != 0 || strcmp(argv[3], "--ready-fd") != 0) {
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        arguments += std::string(argv[i]) + "|";
    }
    return run(static_cast<uint16_t>(atoi(argv[2])), atoi(argv[4]));
}
