#include "runtime.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "config.h"
#include "error.h"
#include "ofp/host.h"
#include "ofp/platform.h"
#include "system.h"

namespace host {

namespace {

/* directory + rest, or an error when that is longer than a socket address holds. */
int32_t join(Path &path, const char *directory, const char *rest)
{
    size_t first = strlen(directory);
    size_t second = strlen(rest);
    if (first + second >= sizeof path.text) {
        return fail(ENAMETOOLONG, "%s%s: longer than the %zu characters a socket path may have",
                    directory, rest, sizeof path.text - 1);
    }
    memcpy(path.text, directory, first);
    memcpy(path.text + first, rest, second + 1);
    return 0;
}

int32_t node_name(uint16_t node, char *name, size_t size)
{
    const HostConfig *config = HOST_GetConfig();
    if (config == nullptr) {
        return -1;
    }
    if (find_node(*config, node) == nullptr) {
        return fail(ENODEV, "node %u is not described%s%s", node, *config->path ? " in " : "",
                    config->path);
    }
    if (node == config->master) {
        strlcpy(name, "/agent.", size);
    } else {
        snprintf(name, size, "/agent-%u.", node);
    }
    return 0;
}

int32_t store(const Path &path, char *to, size_t size)
{
    if (strlcpy(to, path.text, size) >= size) {
        return fail(ENAMETOOLONG, "%s: does not fit the caller's %zu bytes", path.text, size);
    }
    return 0;
}

} // namespace

int32_t runtime_dir(Path &path)
{
    const char *own = environment("OFP_RUNTIME_DIR");
    if (own != nullptr) {
        return *own == '/' ? join(path, own, "")
                           : fail(EINVAL, "OFP_RUNTIME_DIR=%s: must be an absolute path", own);
    }
    const char *session = environment("XDG_RUNTIME_DIR");
    if (session != nullptr && *session == '/') {
        return join(path, session, "/ofp");
    }
    if (geteuid() == 0) {
        return join(path, "/run/ofp", "");
    }
    return fail(ENOENT, "no runtime directory: set OFP_RUNTIME_DIR or XDG_RUNTIME_DIR");
}

int32_t check_runtime_dir(const Path &path, bool create)
{
    struct stat info {};
    if (create && mkdir(path.text, 0700) != 0 && errno != EEXIST) {
        return fail(errno, "cannot create runtime directory %s: %s", path.text, strerror(errno));
    }
    if (stat(path.text, &info) != 0) {
        return errno == ENOENT
                   ? 0
                   : fail(errno, "runtime directory %s: %s", path.text, strerror(errno));
    }
    if (!S_ISDIR(info.st_mode)) {
        return fail(ENOTDIR, "runtime directory %s: not a directory", path.text);
    }
    if (info.st_uid != geteuid()) {
        return fail(EPERM, "runtime directory %s: belongs to user %u, not to you (%u)", path.text,
                    info.st_uid, geteuid());
    }
    if ((info.st_mode & 077) != 0) {
        return fail(EPERM, "runtime directory %s: open to others (mode %04o), wants chmod 700",
                    path.text, info.st_mode & 07777u);
    }
    return 0;
}

int32_t master_socket(sockaddr_un &address)
{
    Path directory;
    Path path;
    if (runtime_dir(directory) != 0 || join(path, directory.text, "/agent.sock") != 0) {
        return -1;
    }
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path.text, sizeof path.text);
    return 0;
}

int32_t node_file(uint16_t node, const char *suffix, Path &path)
{
    Path directory;
    char name[32];
    if (runtime_dir(directory) != 0 || node_name(node, name, sizeof name) != 0) {
        return -1;
    }
    strncat(name, suffix, sizeof name - strlen(name) - 1);
    return join(path, directory.text, name);
}

} // namespace host

using namespace host;

int32_t HOST_GetRuntimeDir(char *path, size_t size, int32_t create)
{
    Path directory;
    if (runtime_dir(directory) != 0 || check_runtime_dir(directory, create != 0) != 0) {
        return -1;
    }
    return store(directory, path, size);
}

int32_t HOST_GetSocketPath(uint16_t node, char *path, size_t size)
{
    Path file;
    return node_file(node, "sock", file) == 0 ? store(file, path, size) : -1;
}

int32_t HOST_GetLogPath(uint16_t node, char *path, size_t size)
{
    Path file;
    return node_file(node, "log", file) == 0 ? store(file, path, size) : -1;
}
