#include "channel/conversation.h"

#include "channel/message_writer.h"
#include "channel/multipart.h"
#include "daemon/log.h"
#include "openflow/reply.h"

namespace agent {

namespace {

using namespace openflow;

constexpr uint16_t DEFAULT_MISS_SEND_LENGTH = 128;

constexpr uint16_t OFPET_ROLE_REQUEST_FAILED = 11;
enum RoleRequestFailedCode : uint16_t { OFPRRFC_STALE = 0, OFPRRFC_BAD_ROLE = 2 };

// For packet-in, port-status and flow-removed messages: first to master and equal, then to slaves.
constexpr std::array<uint32_t, 6> DEFAULT_EVENT_MASKS = {3, 0, 7, 7, 15, 0};

constexpr uint32_t OFPC_TABLE_STATS = 1u << 1;

constexpr uint64_t NO_GENERATION = UINT64_MAX;

const char *role_name(Role role)
{
    constexpr const char *NAMES[] = {"none", "equal", "master", "slave"};
    return NAMES[static_cast<size_t>(role)];
}

} // namespace

struct ControllerMessages {
    using Handler = Verdict(Conversation &, Bytes);

    static Verdict note_error(Conversation &with, Bytes message)
    {
        ++with.state().errors;
        const Error error = message.size() >= 12 ? Error{load16(&message[8]), load16(&message[10])}
                                                 : Error{UINT16_MAX, UINT16_MAX};
        log::refusal("instance {}: controller {} refused transaction {:#x}: {}", with.instance_,
                     with.controller_, load32(&message[4]), error_name(error));
        return {};
    }

    static Verdict features(Conversation &with, Bytes message)
    {
        const InstanceConfig *const instance = with.model_.instance(with.instance_);
        MessageWriter reply(OFPT_FEATURES_REPLY, load32(&message[4]));
        reply.be<uint64_t>(with.model_.configuration().datapath_id(with.instance_));
        reply.be<uint32_t>(0); // buffers: no packets pass
        reply.be(static_cast<uint8_t>(instance ? instance->tables.size() : 0));
        reply.be<uint8_t>(0).zeros(2); // the main connection
        reply.be<uint32_t>(OFPC_TABLE_STATS).be<uint32_t>(0);
        with.line_.send(reply.bytes());
        return {};
    }

    static Verdict get_config(Conversation &with, Bytes message)
    {
        MessageWriter reply(OFPT_GET_CONFIG_REPLY, load32(&message[4]));
        reply.be(with.config_flags_).be(with.miss_send_length_);
        with.line_.send(reply.bytes());
        return {};
    }

    static Verdict set_config(Conversation &with, Bytes message)
    {
        with.config_flags_ = load16(&message[8]);
        with.miss_send_length_ = load16(&message[10]);
        return {};
    }

    static Verdict flow_mod(Conversation &with, Bytes message)
    {
        ++with.model_.counters.messages;
        return apply_flow_mod(with.instance_, message, with.model_);
    }

    static Verdict group_mod(Conversation &with, Bytes message)
    {
        ++with.model_.counters.messages;
        return apply_group_mod(with.instance_, message, with.model_);
    }

    static Verdict multipart(Conversation &with, Bytes message)
    {
        return answer_multipart(message, with.instance_, with.model_,
                                [&with](Bytes reply) { with.line_.send(reply); });
    }

    static Verdict barrier(Conversation &with, Bytes message)
    {
        with.line_.send(encode_barrier_reply(load32(&message[4])));
        return {};
    }

    // A request that is older than the last one, which another controller made, is refused.
    static Verdict role(Conversation &with, Bytes message)
    {
        const uint32_t number = load32(&message[8]);
        if (number > static_cast<uint32_t>(Role::slave)) {
            return Error{OFPET_ROLE_REQUEST_FAILED, OFPRRFC_BAD_ROLE};
        }
        const Role wanted{number};
        InstanceChannels &channels = with.channels_;
        if (wanted == Role::master || wanted == Role::slave) {
            const uint64_t generation = load64(&message[16]);
            const auto newer = static_cast<int64_t>(generation - channels.generation);
            if (channels.has_generation && newer < 0) {
                return Error{OFPET_ROLE_REQUEST_FAILED, OFPRRFC_STALE};
            }
            channels.generation = generation;
            channels.has_generation = true;
        }
        take_role(with, wanted);
        MessageWriter reply(OFPT_ROLE_REPLY, load32(&message[4]));
        reply.be(static_cast<uint32_t>(with.state().role)).zeros(4);
        reply.be(channels.has_generation ? channels.generation : NO_GENERATION);
        with.line_.send(reply.bytes());
        return {};
    }

    // There is one master: the former one becomes a slave.
    static void take_role(Conversation &with, Role wanted)
    {
        if (wanted == Role::no_change || wanted == with.state().role) {
            return;
        }
        if (wanted == Role::master) {
            for (auto &[id, other] : with.channels_.controllers) {
                other.role = other.role == Role::master ? Role::slave : other.role;
            }
        }
        with.state().role = wanted;
        log::info("instance {}: controller {} has role {}", with.instance_, with.controller_,
                  role_name(wanted));
    }

    static Verdict get_async(Conversation &with, Bytes message)
    {
        MessageWriter reply(OFPT_GET_ASYNC_REPLY, load32(&message[4]));
        for (const uint32_t mask : with.event_masks_) {
            reply.be(mask);
        }
        with.line_.send(reply.bytes());
        return {};
    }

    static Verdict set_async(Conversation &with, Bytes message)
    {
        for (size_t i = 0; i < with.event_masks_.size(); ++i) {
            with.event_masks_[i] = load32(&message[HEADER_SIZE + 4 * i]);
        }
        return {};
    }

    static Verdict experimenter(Conversation &, Bytes)
    {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_EXPERIMENTER};
    }
};

namespace {

struct Kind {
    uint8_t type;
    ControllerMessages::Handler *handler;
    size_t least;          // bytes
    size_t most;           // bytes
    bool modifies = false; // denied to slaves
};

constexpr size_t ANY = UINT16_MAX;

constexpr Kind KINDS[] = {
    {OFPT_ERROR, ControllerMessages::note_error, 8, ANY},
    {OFPT_EXPERIMENTER, ControllerMessages::experimenter, 8, ANY},
    {OFPT_FEATURES_REQUEST, ControllerMessages::features, 8, 8},
    {OFPT_GET_CONFIG_REQUEST, ControllerMessages::get_config, 8, 8},
    {OFPT_SET_CONFIG, ControllerMessages::set_config, 12, 12, true},
    {OFPT_FLOW_MOD, ControllerMessages::flow_mod, 8, ANY, true},
    {OFPT_GROUP_MOD, ControllerMessages::group_mod, 8, ANY, true},
    {OFPT_MULTIPART_REQUEST, ControllerMessages::multipart, 16, ANY},
    {OFPT_BARRIER_REQUEST, ControllerMessages::barrier, 8, 8},
    {OFPT_ROLE_REQUEST, ControllerMessages::role, 24, 24},
    {OFPT_GET_ASYNC_REQUEST, ControllerMessages::get_async, 8, 8},
    {OFPT_SET_ASYNC, ControllerMessages::set_async, 32, 32},
};

const Kind *find_kind(uint8_t type)
{
    for (const Kind &kind : KINDS) {
        if (kind.type == type) {
            return &kind;
        }
    }
    return nullptr;
}

Verdict check(Bytes message, const Kind *kind, Role role)
{
    if (!kind) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_TYPE};
    }
    if (message.size() < kind->least || message.size() > kind->most) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_LEN};
    }
    if (kind->modifies && role == Role::slave) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_IS_SLAVE};
    }
    return {};
}

} // namespace

void Conversation::begin()
{
    config_flags_ = 0;
    miss_send_length_ = DEFAULT_MISS_SEND_LENGTH;
    event_masks_ = DEFAULT_EVENT_MASKS;
}

void Conversation::answer(Bytes message)
{
    const uint8_t type = message[1];
    const Kind *const kind = find_kind(type);
    Verdict error = check(message, kind, state().role);
    if (!error) {
        error = kind->handler(*this, message);
    }
    if (error && type != OFPT_ERROR) { // two that refuse each other's errors would never end
        ++model_.counters.errors;
        log::refusal("instance {}: {} of controller {} with transaction id {:#x} refused: {}",
                     instance_, openflow::message_name(type), controller_, load32(&message[4]),
                     error_name(*error));
        line_.send(encode_error(message, *error));
    }
}

} // namespace agent
