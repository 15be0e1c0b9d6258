// ofp-agent: reads its command line, leaves the terminal unless told to stay, runs.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include "daemon/daemon.h"
#include "daemon/options.h"

namespace {

void write_all(int fd, const std::string &text)
{
    for (size_t done = 0; done < text.size();) {
        const ssize_t written = write(fd, text.data() + done, text.size() - done);
        if (written <= 0) {
            return; // nobody waits any more
        }
        done += static_cast<size_t>(written);
    }
}

// What the child says through the pipe is the answer of the command that was typed.
int await_child(int fd)
{
    std::string said;
    char piece[256];
    for (ssize_t got; (got = read(fd, piece, sizeof piece)) > 0;) {
        said.append(piece, static_cast<size_t>(got));
    }
    if (said == "ready\n") {
        return 0;
    }
    std::fprintf(stderr, "ofp-agent: %s",
                 said.empty() ? "ended before it was ready\n" : said.c_str());
    return 1;
}

void leave_terminal()
{
    setsid();
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (null >= 0) {
            dup2(null, fd);
        }
    }
    if (null > STDERR_FILENO) {
        close(null);
    }
    if (chdir("/") != 0) {
        std::abort(); // the root directory is always there
    }
}

// Goes on in a child with a pipe to say whether it is ready. Returns the exit status in the parent,
// -1 in the child.
int detach(agent::Options &options)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        std::perror("ofp-agent: pipe");
        return 1;
    }
    const pid_t child = fork();
    if (child < 0) {
        std::perror("ofp-agent: fork");
        return 1;
    }
    if (child > 0) {
        close(ends[1]);
        return await_child(ends[0]);
    }
    close(ends[0]);
    leave_terminal();
    options.ready_fd = ends[1];
    return -1;
}

// That the agent is ready, or why it is not: to whoever waits for word, else to the terminal.
void announce(agent::Options &options, const std::string &why_not)
{
    if (options.ready_fd >= 0) {
        write_all(options.ready_fd, why_not.empty() ? "ready\n" : why_not + '\n');
        close(options.ready_fd);
        options.ready_fd = -1;
    } else if (!why_not.empty()) {
        std::fprintf(stderr, "ofp-agent: %s\n", why_not.c_str());
    }
}

int start(int argc, char **argv)
{
    agent::Options options;
    const agent::Parsed parsed = agent::parse_options(argc, argv, options);
    if (!parsed.run) {
        if (!parsed.why_not.empty()) {
            announce(options, parsed.why_not);
        }
        return parsed.exit_code;
    }
    if (!options.foreground && options.ready_fd < 0) {
        const int status = detach(options);
        if (status >= 0) {
            return status;
        }
    }
    return agent::run(options,
                      [&options](const std::string &why_not) { announce(options, why_not); });
}

} // namespace

int main(int argc, char **argv)
{
    std::signal(SIGPIPE, SIG_IGN); // who waited for word may be gone
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error of its writer
    try {
        return start(argc, argv);
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "ofp-agent: %s\n", failure.what());
        return 1;
    }
}
