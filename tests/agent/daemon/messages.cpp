#include "agent/daemon/messages.h"

namespace agent::test {

Datagram client_head(uint16_t client, uint32_t smooth_id, uint32_t mode)
{
    return tlv(121, join({be32(mode), be32(0), be32(smooth_id), be16(0), be16(client)}));
}

Datagram smooth_start(uint16_t client, uint32_t smooth_id, uint32_t mode)
{
    return join({head(0x50000005), client_head(client, smooth_id, mode)});
}

Datagram smooth_end(uint16_t client, uint32_t smooth_id)
{
    return join({head(0x50000006), client_head(client, smooth_id)});
}

Datagram barrier(uint32_t xid) { return join({hex("04 14 0008"), be32(xid)}); }

Datagram barrier_reply(uint32_t xid) { return join({hex("04 15 0008"), be32(xid)}); }

Datagram flow_mod(uint32_t xid, const Rule &rule)
{
    return join({hex("04 0e 0048"), be32(xid),                         // version, type, length, xid
                 hex("0000000000000000 0000000000000000"),             // cookie, cookie mask
                 be8(rule.table), be8(rule.command), hex("0000 0000"), // timeouts
                 be16(rule.priority), hex("ffffffff ffffffff ffffffff"), // buffer, port, group
                 hex("001e 0000"),                                       // flags, pad
                 hex("0001 000c 8000 00 04"), be32(rule.in_port), hex("00000000"), // match, pad
                 hex("0003 0008 00000000")}); // write-actions without actions
}

Datagram entry(const Datagram &message) { return tlv(122, message); }

Datagram group_entry(const Datagram &message)
{
    return join({be16(122), be16(static_cast<uint16_t>(message.size() + 4)), message});
}

Datagram batch(const std::vector<Rule> &rules, const Datagram &client)
{
    Datagram datagram = join({head(0x50000001), client});
    uint32_t xid = 0;
    for (const Rule &rule : rules) {
        datagram = join({datagram, entry(flow_mod(xid, rule)), entry(barrier(xid))});
        ++xid;
    }
    return datagram;
}

Datagram group_mod(uint32_t group_id, uint16_t command)
{
    if (command == 2) {
        return join({hex("04 0f 0010 00000000"), be16(command), hex("00 00"), be32(group_id)});
    }
    return join({hex("04 0f 0030 00000000"), be16(command), hex("00 00"), be32(group_id),
                 hex("0020 0000 00000003 ffffffff 00000000"),   // bucket: length, weight, watch
                 hex("0000 0010 00000003 0000 000000000000")}); // output to port 3
}

Datagram group_request(uint32_t code, const Datagram &message, const Datagram &client)
{
    return join({head(code), client, group_entry(message), entry(barrier(0))});
}

Datagram error_reply(const Datagram &offender, uint16_t type, uint16_t code)
{
    const size_t kept = offender.size() < 64 ? offender.size() : 64;
    return join({hex("04 01"), be16(static_cast<uint16_t>(12 + kept)),
                 Datagram(offender.begin() + 4, offender.begin() + 8), be16(type), be16(code),
                 Datagram(offender.begin(), offender.begin() + static_cast<std::ptrdiff_t>(kept))});
}

std::vector<Datagram> ask(Model &model, const Datagram &request)
{
    Outbox out;
    answer_and_commit(request, out, model);
    std::vector<Datagram> answers;
    while (!out.empty()) {
        Bytes first[1];
        out.front(first);
        answers.emplace_back(first[0].begin(), first[0].end());
        out.drop(1);
    }
    return answers;
}

Datagram ask_one(Model &model, const Datagram &request)
{
    const std::vector<Datagram> answers = ask(model, request);
    return answers.size() == 1 ? answers.front() : Datagram{};
}

void open_period(Model &model, uint16_t client) { ask(model, smooth_start(client)); }

} // namespace agent::test
