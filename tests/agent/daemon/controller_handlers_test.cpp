#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"
#include "daemon/records.h"

namespace agent::test {
namespace {

const Datagram UNTERMINATED = Datagram(32, 'x');

class Controllers : public testing::Test {
protected:
    Controllers() { send(1, instance_filter(INSTANCE)); }
    Datagram send(uint32_t code, const Datagram &tlvs)
    {
        return ask_one(model, join({head(code), tlvs}));
    }
    Datagram set(const ControllerCfg &controller) { return send(5, controller_cfg(controller)); }
    Datagram set_auxiliary(const AuxiliaryCfg &auxiliary)
    {
        return send(30, auxiliary_cfg(auxiliary));
    }
    const std::map<uint8_t, Controller> &controllers()
    {
        return model.instance(INSTANCE)->controllers;
    }

    Model model;
};

Datagram tls_policy(uint8_t controller, const Datagram &name, uint16_t instance = INSTANCE)
{
    Datagram value(36);
    std::memcpy(value.data(), &instance, sizeof instance); // as it lies
    value[2] = controller;
    std::copy(name.begin(), name.end(), value.begin() + 4);
    return tlv(219, value);
}

TEST_F(Controllers, AreKeptWithAddressPortRoleVrfAndTlsPolicy)
{
    EXPECT_EQ(set({}), result(0));
    ASSERT_TRUE(controllers().contains(3));
    const Controller &controller = controllers().at(3);
    EXPECT_EQ(controller.address.type, ADDRESS_IPV4);
    EXPECT_EQ(controller.address.bytes, (std::array<uint8_t, 16>{192, 0, 2, 1}));
    EXPECT_EQ(controller.port, 6653);
    EXPECT_EQ(controller.role, 2u);
    EXPECT_EQ(controller.vrf, "mgmt");
    EXPECT_EQ(controller.tls_policy, "strict");
}

TEST_F(Controllers, TravelBackAsTheyCame)
{
    set({});
    OfpCtrlCfg record = controller_record(INSTANCE, 3, controllers().at(3));
    OFP_msg_ByteSwapData(OFP_TLV_CtrlCfg, &record);
    const auto *const bytes = reinterpret_cast<const uint8_t *>(&record);
    EXPECT_EQ(tlv(7, Datagram(bytes, bytes + sizeof record)), controller_cfg({}));

    set_auxiliary({});
    OfpAuxCfg auxiliary = auxiliary_record(INSTANCE, 3, 1, controllers().at(3).auxiliaries.at(1));
    OFP_msg_ByteSwapData(OFP_TLV_AuxCfg, &auxiliary);
    const auto *const content = reinterpret_cast<const uint8_t *>(&auxiliary);
    EXPECT_EQ(tlv(135, Datagram(content, content + sizeof auxiliary)), auxiliary_cfg({}));
}

TEST_F(Controllers, OfIpv4HaveFourBytesOfAddress)
{
    set({.address = hex("c0000201 ffffffffffffffffffffffff")});
    EXPECT_EQ(controllers().at(3).address.bytes, (std::array<uint8_t, 16>{192, 0, 2, 1}));
    EXPECT_EQ(set({.address_type = 10, .address = hex("20010db8000000000000000000000001")}),
              result(0));
    EXPECT_EQ(controllers().at(3).address.bytes[15], 1);
}

TEST_F(Controllers, WithAddressesOfNoHostAreRefused)
{
    for (const uint16_t type : std::initializer_list<uint16_t>{0, 1, 3, 11, 0xffff}) {
        EXPECT_EQ(set({.address_type = type}), result(BAD_ADDRESS)) << type;
    }
    for (const char *address : {"00000000", "00000001", "e0000001", "ffffffff"}) {
        EXPECT_EQ(set({.address = join({hex(address), Datagram(12)})}), result(BAD_ADDRESS))
            << address;
    }
    EXPECT_EQ(set({.address_type = 10, .address = Datagram(16)}), result(BAD_ADDRESS));
    EXPECT_EQ(set({.address_type = 10, .address = join({hex("ff02"), Datagram(14)})}),
              result(BAD_ADDRESS));
    EXPECT_TRUE(controllers().empty());
}

TEST_F(Controllers, WithOtherValuesThatCannotBeAreRefused)
{
    EXPECT_EQ(set({.port = 0}), result(BAD_VALUE));
    EXPECT_EQ(set({.role = 4}), result(BAD_VALUE));
    EXPECT_EQ(set({.id = 64}), result(BAD_CONTROLLER_ID));
    EXPECT_EQ(set({.id = 255}), result(BAD_CONTROLLER_ID));
    EXPECT_EQ(set({.vrf = UNTERMINATED}), result(BAD_TEXT));
    EXPECT_EQ(set({.tls_policy = UNTERMINATED}), result(BAD_TEXT));
    EXPECT_EQ(set({.instance = 6}), result(NO_INSTANCE));
    EXPECT_TRUE(controllers().empty());
}

TEST_F(Controllers, RefusedKeepWhatWasSetBefore)
{
    set({});
    EXPECT_EQ(set({.port = 7, .vrf = UNTERMINATED}), result(BAD_TEXT));
    EXPECT_EQ(controllers().at(3).port, 6653);
}

TEST_F(Controllers, AreSixtyFourAtMostAndRemovedOneByOneOrTogether)
{
    for (uint8_t id = 0; id < 64; ++id) {
        EXPECT_EQ(set({.id = id}), result(0));
    }
    EXPECT_EQ(controllers().size(), 64u);
    EXPECT_EQ(send(4, controller_cfg({.id = 0})), result(0));
    EXPECT_EQ(send(4, controller_cfg({.id = 0})), result(NO_CONTROLLER));
    EXPECT_EQ(send(4, controller_cfg({.id = 65})), result(BAD_CONTROLLER_ID));
    EXPECT_EQ(controllers().size(), 63u);
    EXPECT_EQ(send(4, controller_cfg({.id = 64})), result(0));
    EXPECT_TRUE(controllers().empty());
}

TEST_F(Controllers, KeepTheirAuxiliaryConnectionsWhenSetAgainAndLoseThemWhenRemoved)
{
    set({});
    EXPECT_EQ(set_auxiliary({}), result(0));
    EXPECT_EQ(set({.port = 6633}), result(0));
    EXPECT_EQ(controllers().at(3).auxiliaries.size(), 1u);
    send(4, controller_cfg({}));
    set({});
    EXPECT_TRUE(controllers().at(3).auxiliaries.empty());
}

TEST_F(Controllers, HaveAuxiliaryConnectionsWithIdsFromOne)
{
    EXPECT_EQ(set_auxiliary({}), result(NO_CONTROLLER));
    set({});
    EXPECT_EQ(set_auxiliary({.id = 0}), result(BAD_AUXILIARY_ID));
    EXPECT_EQ(set_auxiliary({.id = 255}), result(0));
    EXPECT_EQ(set_auxiliary({.address_type = 7}), result(BAD_ADDRESS));
    EXPECT_EQ(set_auxiliary({.address_type = 2}), result(BAD_ADDRESS)); // 0.0.0.0
    EXPECT_EQ(set_auxiliary({.controller = 4}), result(NO_CONTROLLER));
    EXPECT_EQ(set_auxiliary({.instance = 6}), result(NO_INSTANCE));
    const Auxiliary &auxiliary = controllers().at(3).auxiliaries.at(255);
    EXPECT_EQ(auxiliary.vrf, "aux");
    EXPECT_EQ(auxiliary.value_u32_20, 1u);
    EXPECT_EQ(auxiliary.value_u32_24, 2u);
    EXPECT_EQ(send(29, auxiliary_cfg({.id = 1})), result(NO_AUXILIARY));
    EXPECT_EQ(send(29, auxiliary_cfg({.id = 255})), result(0));
    EXPECT_EQ(send(29, auxiliary_cfg({.id = 255})), result(NO_AUXILIARY));
}

TEST_F(Controllers, TakeATlsPolicyByItself)
{
    EXPECT_EQ(send(55, tls_policy(3, text("new", 32))), result(NO_CONTROLLER));
    set({});
    EXPECT_EQ(send(55, tls_policy(3, UNTERMINATED)), result(BAD_TEXT));
    EXPECT_EQ(send(55, tls_policy(3, text("new", 32), 6)), result(NO_INSTANCE));
    EXPECT_EQ(controllers().at(3).tls_policy, "strict");
    EXPECT_EQ(send(55, tls_policy(3, text("new", 32))), result(0));
    EXPECT_EQ(controllers().at(3).tls_policy, "new");
    EXPECT_EQ(send(54, tls_policy(3, text("", 32))), result(0));
    EXPECT_EQ(controllers().at(3).tls_policy, "");
}

TEST_F(Controllers, ThatAreExcludedAreBits)
{
    EXPECT_EQ(send(48, tlv(188, hex("0005 0000 00000007 8000000000000001"))), result(0));
    EXPECT_EQ(model.instance(INSTANCE)->excluded.controllers, 0x8000000000000001u);
    EXPECT_EQ(model.instance(INSTANCE)->excluded.value_u32_4, 7u);
}

struct ResetRecorder : ConfigurationObserver {
    void counters_reset(uint16_t instance, uint8_t controller) noexcept override
    {
        last = instance * 1000 + controller;
        ++count;
    }
    int last = 0;
    int count = 0;
};

TEST_F(Controllers, HaveTheirCountersResetWithoutAnAnswer)
{
    ResetRecorder recorder;
    model.configuration().add_observer(recorder);
    set({});
    const auto reset = [this](const char *key) {
        return ask(model, join({head(22), tlv(120, hex(key))}));
    };
    EXPECT_TRUE(reset("0005 03 00").empty());
    EXPECT_EQ(recorder.last, 5003);
    EXPECT_TRUE(reset("0005 40 00").empty());
    EXPECT_EQ(recorder.last, 5064);
    EXPECT_EQ(reset("0005 04 00"), std::vector<Datagram>{result(NO_CONTROLLER)});
    EXPECT_EQ(reset("0005 41 00"), std::vector<Datagram>{result(BAD_CONTROLLER_ID)});
    EXPECT_EQ(reset("0006 03 00"), std::vector<Datagram>{result(NO_INSTANCE)});
    EXPECT_EQ(recorder.count, 2);
    model.configuration().remove_observer(recorder);
}

} // namespace
} // namespace agent::test
