// How long a conversion routine takes, as a multiple of exchanging the bytes of the same members in
// place: for the record of which most is converted, a set-field action with its match, and for the
// largest record, a packet context.
#include <benchmark/benchmark.h>

#include "demand.h"
#include "ofp.h"

namespace {

void swap(uint16_t &value) { value = __builtin_bswap16(value); }
void swap(uint32_t &value) { value = __builtin_bswap32(value); }
void swap(uint64_t &value) { value = __builtin_bswap64(value); }

// As a caller would write it for a record in its proper place.
[[gnu::noinline]] void swap_set_field(OfpSetFieldAct &action)
{
    OfpMatchField &field = action.field;
    swap(action.header.type);
    swap(action.header.size);
    swap(field.fields);
    swap(field.in_port);
    swap(field.in_phy_port);
    swap(field.metadata);
    swap(field.tunnel_id);
    swap(field.eth_type);
    swap(field.vlan_vid);
    swap(field.ipv4_src);
    swap(field.ipv4_dst);
    swap(field.tcp_src);
    swap(field.tcp_dst);
    swap(field.udp_src);
    swap(field.udp_dst);
    swap(field.sctp_src);
    swap(field.sctp_dst);
    swap(field.arp_op);
    swap(field.arp_spa);
    swap(field.arp_tpa);
    swap(field.ipv6_flabel);
    swap(field.mpls_label);
    swap(field.pbb_isid);
    swap(field.ipv6_exthdr);
    swap(field.out_port);
    swap(field.cvlan_vid);
    swap(field.vrf);
    swap(field.value_u32_256);
    swap(field.value_u32_260);
    swap(field.value_u32_264);
    swap(field.value_u32_268);
    swap(action.value_u64_280);
    swap(action.value_u32_288);
}

[[gnu::noinline]] void swap_packet_context(OfpPktContext &context)
{
    swap(context.value_u32_4);
    swap(context.value_u32_72);
    swap(context.value_u32_208);
    swap(context.value_u16_212);
    swap(context.value_u32_220);
    swap(context.value_u32_1248);
    swap(context.value_u32_1252);
}

template <class Record, class Convert>
void run(benchmark::State &state, Convert convert)
{
    Record record = {};
    for (auto _ : state) {
        convert(record);
        benchmark::DoNotOptimize(record);
    }
}

void add(const char *name, void (*bench)(benchmark::State &))
{
    benchmark::RegisterBenchmark(name, bench);
}

} // namespace

int main(int argc, char **argv)
{
    add("convert/set_field", [](benchmark::State &state) {
        run<OfpSetFieldAct>(state, [](OfpSetFieldAct &record) { OFP_bswap_SetFieldAct(&record); });
    });
    add("swap/set_field",
        [](benchmark::State &state) { run<OfpSetFieldAct>(state, swap_set_field); });
    add("convert/packet_context", [](benchmark::State &state) {
        run<OfpPktContext>(state, [](OfpPktContext &record) { OFP_bswap_PktContext(&record); });
    });
    add("swap/packet_context",
        [](benchmark::State &state) { run<OfpPktContext>(state, swap_packet_context); });
    using enum bench::Sense;
    return bench::run(argc, argv,
                      {{"converting a set-field action to swapping its members",
                        {"convert/set_field", bench::Figure::processor},
                        {"swap/set_field", bench::Figure::processor},
                        at_most,
                        2},
                       {"converting a packet context to swapping its members",
                        {"convert/packet_context", bench::Figure::processor},
                        {"swap/packet_context", bench::Figure::processor},
                        at_most,
                        2}});
}
