/* The runtime directory and the files in it. */
#ifndef OFP_PLATFORM_HOST_RUNTIME_H
#define OFP_PLATFORM_HOST_RUNTIME_H

#include <cstddef>
#include <cstdint>

#include <sys/un.h>

namespace host {

/* No file of the directory has a longer name than a socket address can hold. */
constexpr size_t path_size = sizeof(sockaddr_un::sun_path);

struct Path {
    char text[path_size];
};

/* The directory's path, unchecked. 0, or -1 with the error set. */
int32_t runtime_dir(Path &path);

/* 0 when the directory is there, the user's own and closed to others, or missing (then made when
 * asked). */
int32_t check_runtime_dir(const Path &path, bool create);

/* The system master's socket: what the service address stands for. */
int32_t master_socket(sockaddr_un &address);

/* File of a node: "sock", "lock", "start", "log". Fails for a node that is not described. */
int32_t node_file(uint16_t node, const char *suffix, Path &path);

} // namespace host

#endif
