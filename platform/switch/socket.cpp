/* The switch's kernel speaks family 37 itself: numbers, addresses and flags pass unchanged. */
#include <sys/socket.h>
#include <unistd.h>

#include "ofp/platform.h"

int32_t SOCK_Socket(int32_t family, int32_t type, int32_t protocol)
{
    return socket(family, type, protocol);
}

int32_t SOCK_SetOption(int32_t s, int32_t level, int32_t option, const void *value, uint32_t length)
{
    return setsockopt(s, level, option, value, length);
}

int32_t SOCK_Connect(int32_t s, const void *address, uint32_t length)
{
    return connect(s, static_cast<const sockaddr *>(address), length);
}

int64_t SOCK_Send(int32_t s, const void *buffer, size_t length, int32_t flags)
{
    return send(s, buffer, length, flags);
}

int64_t SOCK_Recv(int32_t s, void *buffer, size_t size, int32_t flags)
{
    return recv(s, buffer, size, flags);
}

int64_t SOCK_RecvFrom(int32_t s, void *buffer, size_t size, int32_t flags)
{
    return recvfrom(s, buffer, size, flags, nullptr, nullptr);
}

int32_t SOCK_Close(int32_t s) { return close(s); }
