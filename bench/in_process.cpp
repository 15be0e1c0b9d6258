#include "in_process.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace bench::in_process {
namespace {

const Bytes *next_reply = nullptr;
const Bytes *replies_end = nullptr;
uint32_t last_word = 0;

int64_t receive(void *buffer, size_t size)
{
    if (next_reply == replies_end) {
        errno = EAGAIN;
        return -1;
    }
    const size_t length = std::min(size, next_reply->size());
    std::memcpy(buffer, next_reply->data(), length);
    ++next_reply;
    return static_cast<int64_t>(length);
}

} // namespace

void answer_with(const std::vector<Bytes> &replies)
{
    next_reply = replies.data();
    replies_end = next_reply + replies.size();
}

uint32_t last_word_sent() { return last_word; }

} // namespace bench::in_process

using namespace bench::in_process;

// The library finds these before those of the host port.
int32_t SOCK_Socket(int32_t, int32_t, int32_t) { return 1000; }
int32_t SOCK_SetOption(int32_t, int32_t, int32_t, const void *, uint32_t) { return 0; }
int32_t SOCK_Connect(int32_t, const void *, uint32_t) { return 0; }
int32_t SOCK_Close(int32_t) { return 0; }
int64_t SOCK_Send(int32_t, const void *buffer, size_t length, int32_t)
{
    std::memcpy(&last_word, static_cast<const uint8_t *>(buffer) + length - sizeof last_word,
                sizeof last_word);
    return static_cast<int64_t>(length);
}
int64_t SOCK_Recv(int32_t, void *buffer, size_t size, int32_t) { return receive(buffer, size); }
int64_t SOCK_RecvFrom(int32_t, void *buffer, size_t size, int32_t) { return receive(buffer, size); }
uint32_t SERVICE_GetStatus(uint16_t, const char *, uint32_t, uint32_t *status)
{
    *status = 1;
    return 0;
}
