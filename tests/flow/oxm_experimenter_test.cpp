#include "flow/oxm_experimenter.h"

#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

using Encoder = uint64_t (*)(const uint8_t *data, uint16_t length, uint8_t *out);

struct Row {
    uint32_t type;
    Encoder encode;
    const char *data;    // in host order, as a caller has it
    const char *payload; // on the wire
};

const Row rows[] = {
    {37, OFP_encodeoxm_FlowFlag, "04030201", "01020304"},
    {43, OFP_encodeoxm_BssID, "010203040506", "010203040506"},
    {44, OFP_encodeoxm_Reserve, "04030201", "01020304"},
    {47, OFP_encodeoxm_InnerVlan, "0201", "0102"},
    {48, OFP_encodeoxm_EgressPort, "04030201", "01020304"},
    {49, OFP_encodeoxm_BssID, "010203040506", "010203040506"},
    {50, OFP_encodeoxm_Eapol, "0102", "0102"},
    {52, OFP_encodeoxm_Service, "04030201", "01020304"},
    {54, OFP_encodeoxm_L4PortRang, "02010403", "01020304"},
    {55, OFP_encodeoxm_L4PortRang, "02010403", "01020304"},
    {56, OFP_encodeoxm_L4PortRang, "02010403", "01020304"},
    {57, OFP_encodeoxm_L4PortRang, "02010403", "01020304"},
};

class OxmExperimenter : public ::testing::Test {
protected:
    // The list as it is written; its size is the one foretold.
    Bytes written()
    {
        Bytes out(4096, 0xee);
        const uint64_t size = ofp::put_experimenter_items(rule.item.match.exp_match, out.data());
        EXPECT_EQ(ofp::experimenter_items_size(rule.item.match.exp_match), size);
        out.resize(size);
        return out;
    }
    Rule rule;
};

Bytes item(uint8_t type, uint8_t length, const Bytes &payload)
{
    return hex("ffff") + Bytes{static_cast<uint8_t>(type << 1), length} + hex("00000fe2") + payload;
}

} // namespace

TEST_F(OxmExperimenter, EachTypeHasItsPayload)
{
    for (const Row &row : rows) {
        const Bytes data = hex(row.data), payload = hex(row.payload);
        Bytes out(16, 0xee);
        EXPECT_EQ(row.encode(data.data(), static_cast<uint16_t>(data.size()), out.data()),
                  payload.size());
        EXPECT_EQ(out, payload + Bytes(16 - payload.size(), 0xee)) << row.type;
    }
}

TEST_F(OxmExperimenter, ItemsFollowOneAnotherWithTheirHeaders)
{
    Bytes expected;
    for (const Row &row : rows) {
        rule.experimenter(row.type, hex(row.data));
        const Bytes payload = hex(row.payload);
        expected +=
            item(static_cast<uint8_t>(row.type), static_cast<uint8_t>(payload.size() + 4), payload);
    }
    EXPECT_EQ(written(), expected);
}

TEST_F(OxmExperimenter, ATypeWithoutEncoderIsAHeaderThatCountsItsLength)
{
    rule.experimenter(10, hex("0102030405"));
    EXPECT_EQ(written(), item(10, 9, {}));
}

TEST_F(OxmExperimenter, ATypeBeyondTheTableIsTreatedTheSame)
{
    rule.experimenter(64, hex("01")).experimenter(65, hex("01")).experimenter(0xffffffff, {});
    EXPECT_EQ(written(),
              hex("ffff 80 05 00000fe2") + hex("ffff 82 05 00000fe2") + hex("ffff fe 04 00000fe2"));
}

TEST_F(OxmExperimenter, TheHeaderKeepsTheLowEightBitsOfTheLength)
{
    rule.experimenter(0, Bytes(260));
    EXPECT_EQ(written(), item(0, 8, {}));
}

TEST_F(OxmExperimenter, AStringOfKind1TravelsWhole)
{
    rule.experimenter(38, hex("01000000 616263"));
    EXPECT_EQ(written(), item(38, 11, hex("00000001 616263")));
}

TEST_F(OxmExperimenter, AStringOfAnotherKindIsOverwrittenByTheNextItem)
{
    rule.experimenter(38, hex("02000000 616263")).experimenter(47, hex("0201"));
    EXPECT_EQ(written(), item(38, 11, {}) + item(47, 6, hex("0102")));
}

TEST_F(OxmExperimenter, AStringOfAnotherKindLeavesItsKindWord)
{
    const Bytes data = hex("02000000 616263");
    Bytes out(8, 0xee);
    EXPECT_EQ(OFP_encodeoxm_String(data.data(), 7, out.data()), 0u);
    EXPECT_EQ(out, hex("00000002 eeeeeeee"));
}

TEST_F(OxmExperimenter, AStringShorterThanItsKindIsEmpty)
{
    rule.experimenter(38, hex("010000"));
    EXPECT_EQ(written(), item(38, 7, {}));
}

TEST_F(OxmExperimenter, AnItemShorterThanItsPayloadIsFilledUpWithZeros)
{
    rule.experimenter(37, hex("0403")).experimenter(43, hex("01")).experimenter(54, {});
    EXPECT_EQ(written(), item(37, 6, hex("00000304")) + item(43, 5, hex("010000000000")) +
                             item(54, 4, hex("00000000")));
}

TEST_F(OxmExperimenter, ACountWithoutListIsNothing)
{
    rule.item.match.exp_match = {.count = 3, .items = nullptr};
    EXPECT_EQ(written(), Bytes());
}
