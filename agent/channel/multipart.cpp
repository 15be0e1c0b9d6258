#include "channel/multipart.h"

#include <fmt/core.h>

#include "channel/message_writer.h"
#include "ofp/host.h"

namespace agent {

namespace {

using namespace openflow;

constexpr size_t MULTIPART_HEADER = 16;
constexpr size_t FLAGS = 10;               // where they stand
constexpr size_t REPLY_LENGTH_MAX = 32768; // a longer reply goes on in another message
constexpr uint16_t MORE = 1;               // flag of a request or reply that goes on

enum MultipartType : uint16_t {
    OFPMP_DESC = 0,
    OFPMP_TABLE = 3,
    OFPMP_PORT_DESC = 13,
};

using Send = std::function<void(Bytes)>;

// A reply that may be longer than one message.
class PagedReply {
public:
    PagedReply(MultipartType type, uint32_t xid, const Send &send)
        : type_(type), xid_(xid), send_(send), message_(begin())
    {}

    // Where the next entry, of so many bytes, is to be written.
    MessageWriter &entry(size_t size)
    {
        if (message_.size() + size > REPLY_LENGTH_MAX) {
            finish(MORE);
            message_ = begin();
        }
        return message_;
    }
    void end() { finish(0); }

private:
    MessageWriter begin() const
    {
        MessageWriter message(OFPT_MULTIPART_REPLY, xid_);
        message.be<uint16_t>(type_).zeros(6);
        return message;
    }
    void finish(uint16_t flags)
    {
        message_.store_at(FLAGS, flags);
        send_(message_.bytes());
    }

    MultipartType type_;
    uint32_t xid_;
    const Send &send_;
    MessageWriter message_;
};

void describe(PagedReply &reply, uint16_t instance, const Model &model)
{
    const InstanceConfig *const config = model.instance(instance);
    const std::string name = config && !config->description.empty()
                                 ? config->description
                                 : fmt::format("instance {}", instance);
    reply.entry(1056)
        .text("libofp", 256)
        .text("memory switch", 256)
        .text("ofp-agent " OFP_AGENT_VERSION, 256)
        .text("none", 32) // serial number
        .text(name, 256);
}

void list_tables(PagedReply &reply, uint16_t instance, const Model &model)
{
    const InstanceConfig *const config = model.instance(instance);
    if (!config) {
        return;
    }
    for (const OfpFlowTable &table : config->tables) {
        const TableView view = model.flow_switch().table(instance, table.table_id);
        reply.entry(24)
            .be(table.table_id)
            .zeros(3)
            .be(view.rules)
            .be(view.lookups)
            .be(view.matched);
    }
}

// The ports bound to the instance; all of the switch when none is.
void list_ports(PagedReply &reply, uint16_t instance, const Model &model)
{
    constexpr uint32_t LINK_DOWN = 1;
    const InstanceConfig *const config = model.instance(instance);
    const HostConfig *const host = HOST_GetConfig();
    if (!config || !host) {
        return;
    }
    for (uint32_t i = 0; i < host->interface_count; ++i) {
        const HostInterface &port = host->interfaces[i];
        if (port.index > OFPP_MAX ||
            (!config->bound_ports.empty() && !config->bound_ports.contains(port.index))) {
            continue;
        }
        reply.entry(64)
            .be(port.index)
            .zeros(4)
            .raw(host->bridge_mac)
            .zeros(2)
            .text(port.name, 16)
            .be<uint32_t>(0) // configuration
            .be<uint32_t>(port.up ? 0 : LINK_DOWN)
            .zeros(24); // features and speeds are not known
    }
}

struct Query {
    MultipartType type;
    void (*write)(PagedReply &, uint16_t instance, const Model &);
};

// Requests without a body.
constexpr Query QUERIES[] = {
    {OFPMP_DESC, describe},
    {OFPMP_TABLE, list_tables},
    {OFPMP_PORT_DESC, list_ports},
};

} // namespace

Verdict answer_multipart(Bytes message, uint16_t instance, const Model &model, const Send &send)
{
    const uint16_t type = load16(&message[8]);
    for (const Query &query : QUERIES) {
        if (query.type != type) {
            continue;
        }
        if ((load16(&message[FLAGS]) & MORE) != 0) {
            return Error{OFPET_BAD_REQUEST, OFPBRC_MULTIPART_BUFFER_OVERFLOW};
        }
        if (message.size() != MULTIPART_HEADER) {
            return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_LEN};
        }
        PagedReply reply(query.type, load32(&message[4]), send);
        query.write(reply, instance, model);
        reply.end();
        return {};
    }
    return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_MULTIPART};
}

} // namespace agent
