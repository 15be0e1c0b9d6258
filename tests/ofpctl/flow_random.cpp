#include <bit>
#include <iterator>

#include "flow_record.h"

namespace flow_test {
namespace {

class Maker {
public:
    Maker(Random &random, Record &record, Fields fields)
        : random_(random), record_(record), m_(record.item.match), k_(record.mask), v_(record.ipv6),
          all_(fields == Fields::all)
    {}

    void make();

private:
    uint64_t number(uint64_t most) { return random_() % (most + 1); }
    bool chance() { return (random_() & 1) != 0; }

    template <class T>
    void set(unsigned n, T &value, uint64_t most)
    {
        value = static_cast<T>(number(most));
        m_.fields |= bit(n);
    }
    template <class T>
    void maybe(unsigned n, T &value, uint64_t most)
    {
        if (chance())
            set(n, value, most);
    }
    // A mask now and then; most is also the full mask.
    template <class T>
    void maybe(unsigned n, T &value, T &mask, uint64_t most)
    {
        if (!chance())
            return;
        set(n, value, most == UINT64_MAX ? UINT64_MAX - 1 : most);
        if (!chance())
            return;
        mask = static_cast<T>(chance() ? prefix_mask(most) : 1 + number(most - 2));
        value = static_cast<T>(value & mask);
        k_.masked |= bit(n);
    }
    uint64_t prefix_mask(uint64_t most)
    {
        const auto width = static_cast<uint64_t>(std::bit_width(most));
        return most & most << (1 + number(width - 2));
    }
    template <std::size_t Size>
    void set(unsigned n, uint8_t (&value)[Size])
    {
        for (uint8_t &byte : value)
            byte = static_cast<uint8_t>(number(255));
        m_.fields |= bit(n);
    }
    template <std::size_t Size>
    void maybe(unsigned n, uint8_t (&value)[Size])
    {
        if (chance())
            set(n, value);
    }
    template <std::size_t Size>
    void maybe(unsigned n, uint8_t (&value)[Size], uint8_t (&mask)[Size])
    {
        if (!chance())
            return;
        set(n, value);
        if (!chance())
            return;
        // Open vSwitch reads 221::/... of a mask as a prefix length.
        const bool prefix = chance() || (!all_ && Size == 16);
        const uint64_t length = 1 + number(Size * 8 - 2);
        for (std::size_t i = 0; i < Size * 8; ++i) {
            if (prefix ? i < length : i == length || number(3) == 0)
                mask[i / 8] = static_cast<uint8_t>(mask[i / 8] | 0x80 >> i % 8);
        }
        for (std::size_t i = 0; i < Size; ++i)
            value[i] &= mask[i];
        k_.masked |= bit(n);
    }

    void make_vlan();
    void make_protocol();
    void make_ip();
    void make_ports();
    void make_icmp6();
    void make_arp();
    void make_mpls();
    void make_private();
    void make_experimenters();
    void make_actions();
    uint32_t port();

    Random &random_;
    Record &record_;
    OfpFRMatch &m_;
    OfpMatchMask &k_;
    OfpMatchIpv6 &v_;
    bool all_;
};

uint32_t Maker::port()
{
    constexpr uint32_t reserved[] = {0xfffffff8, 0xfffffffa, 0xfffffffb, 0xfffffffc, 0xfffffffe};
    return number(3) == 0 ? reserved[number(4)] : static_cast<uint32_t>(1 + number(65000));
}

void Maker::make_vlan()
{
    if (!chance())
        return;
    set(6, m_.vlan_vid, 0xfff);
    maybe(7, m_.vlan_pcp, 7);
    if (!chance() || (!all_ && (m_.fields & bit(7)) != 0))
        return;
    k_.vlan_vid = static_cast<uint16_t>(number(0xffe));
    m_.vlan_vid &= k_.vlan_vid;
    k_.masked |= bit(6);
}

void Maker::make_ip()
{
    if (m_.eth_type == 0x0800) {
        maybe(11, m_.ipv4_src, k_.ipv4_src, 0xffffffff);
        maybe(12, m_.ipv4_dst, k_.ipv4_dst, 0xffffffff);
    } else {
        maybe(26, v_.ipv6_src, k_.ipv6_src);
        maybe(27, v_.ipv6_dst, k_.ipv6_dst);
        maybe(28, v_.ipv6_flabel, k_.ipv6_flabel, 0xfffff);
        if (all_)
            maybe(39, v_.ipv6_exthdr, k_.ipv6_exthdr, 0x1ff);
    }
    maybe(8, m_.ip_dscp, 63);
    maybe(9, m_.ip_ecn, 3);
    maybe(10, m_.ip_proto, 255);
    make_ports();
}

void Maker::make_ports()
{
    constexpr uint8_t protos[] = {6, 17, 132, 1, 58};
    if (!chance())
        return;
    m_.ip_proto = protos[number(4)];
    m_.fields |= bit(10);
    switch (m_.ip_proto) {
    case 6:
        maybe(13, m_.tcp_src, k_.tcp_src, 0xffff);
        return maybe(14, m_.tcp_dst, k_.tcp_dst, 0xffff);
    case 17:
        maybe(15, m_.udp_src, k_.udp_src, 0xffff);
        return maybe(16, m_.udp_dst, k_.udp_dst, 0xffff);
    case 132:
        maybe(17, m_.sctp_src, k_.sctp_src, 0xffff);
        return maybe(18, m_.sctp_dst, k_.sctp_dst, 0xffff);
    case 1:
        if (m_.eth_type != 0x0800)
            return;
        maybe(19, m_.icmpv4_type, 255);
        return maybe(20, m_.icmpv4_code, 255);
    default:
        return m_.eth_type == 0x86dd ? make_icmp6() : void();
    }
}

void Maker::make_icmp6()
{
    maybe(30, v_.icmpv6_code, all_ ? 255 : 0);
    if (!chance())
        return maybe(29, v_.icmpv6_type, 134);
    v_.icmpv6_type = chance() ? 135 : 136;
    m_.fields |= bit(29);
    maybe(31, v_.ipv6_nd_target);
    if (v_.icmpv6_type == 135)
        maybe(32, v_.ipv6_nd_sll);
    else
        maybe(33, v_.ipv6_nd_tll);
}

void Maker::make_arp()
{
    maybe(21, m_.arp_op, all_ ? 0xffff : 0xff);
    maybe(22, m_.arp_spa, k_.arp_spa, 0xffffffff);
    maybe(23, m_.arp_tpa, k_.arp_tpa, 0xffffffff);
    maybe(24, m_.arp_sha, k_.arp_sha);
    maybe(25, m_.arp_tha, k_.arp_tha);
}

void Maker::make_mpls()
{
    maybe(34, m_.mpls_label, 0xfffff);
    maybe(35, m_.mpls_tc, 7);
    maybe(36, m_.mpls_bos, 1);
}

void Maker::make_protocol()
{
    constexpr uint16_t types[] = {0x0800, 0x86dd, 0x0806, 0x8035, 0x8847, 0x8848, 0x88e7};
    set(5, m_.eth_type, 0xffff);
    m_.eth_type = static_cast<uint16_t>(0x600 + m_.eth_type % 0x7000);
    if (number(9) == 0)
        return;
    m_.eth_type = types[number(6)];
    switch (m_.eth_type) {
    case 0x0800:
    case 0x86dd:
        return make_ip();
    case 0x0806:
    case 0x8035:
        return make_arp();
    case 0x88e7:
        return all_ ? maybe(37, m_.pbb_isid, k_.pbb_isid, 0xffffff) : void();
    default:
        return make_mpls();
    }
}

void Maker::make_private()
{
    if (chance()) {
        for (std::size_t i = number(19); i > 0; --i)
            m_.ip_range[i - 1] = static_cast<uint32_t>(chance() ? random_() : 0);
        m_.fields |= bit(58);
    }
    for (uint64_t i = number(1) * number(90); i > 0; --i)
        record_.add_interface(static_cast<uint32_t>(chance() ? i : number(0xffffffff)));
    maybe(60, m_.vrf, 0xffff);
    maybe(61, m_.fragment, 255);
    if (chance()) {
        m_.out_port = port();
        m_.fields |= bit(62);
    }
    if (!chance())
        return;
    set(63, m_.cvlan_vid, 0xfff);
    if (!chance())
        return;
    k_.cvlan_vid = static_cast<uint16_t>(number(0xffe));
    m_.cvlan_vid &= k_.cvlan_vid;
    k_.masked |= bit(63);
}

void Maker::make_experimenters()
{
    constexpr struct {
        uint32_t type;
        std::size_t size;
    } forms[] = {{37, 4}, {43, 6}, {44, 4}, {47, 2}, {48, 4}, {49, 6},
                 {50, 2}, {52, 4}, {0, 0},  {33, 0}, {64, 0}};
    for (uint64_t i = number(3); i > 0; --i) {
        std::string data;
        const auto &form = forms[number(std::size(forms) - 1)];
        while (data.size() < form.size)
            data += static_cast<char>(number(255));
        record_.add_experimenter(form.type, data);
    }
    if (chance()) {
        std::string text("\1\0\0\0", 4);
        for (uint64_t i = number(247); i > 0; --i)
            text += static_cast<char>(number(255));
        record_.add_experimenter(38, text);
    }
    if (chance()) {
        uint16_t range[] = {static_cast<uint16_t>(number(0x7fff)),
                            static_cast<uint16_t>(0x8000 + number(0x7fff))};
        record_.add_experimenter(static_cast<uint32_t>(54 + number(3)),
                                 {reinterpret_cast<const char *>(range), sizeof range});
    }
}

void Maker::make_actions()
{
    for (uint64_t i = number(4); i > 0; --i) {
        if (all_ && number(3) == 0)
            record_.add_experimenter_action(static_cast<uint32_t>(number(3)),
                                            static_cast<uint32_t>(random_()),
                                            static_cast<uint32_t>(random_()));
        else if (chance())
            record_.add_group(static_cast<uint32_t>(number(0xffffff00)));
        else
            record_.add_output(port());
    }
}

void Maker::make()
{
    record_.item.priority = static_cast<uint16_t>(1 + number(65534));
    if (chance()) {
        m_.in_port = static_cast<uint32_t>(chance() ? 0xfffffffe : 1 + number(65000));
        m_.fields |= bit(0);
        if (all_)
            maybe(1, m_.in_phy_port, 0xffffffff);
    }
    maybe(2, m_.metadata, k_.metadata, UINT64_MAX);
    maybe(38, m_.tunnel_id, k_.tunnel_id, UINT64_MAX);
    maybe(3, m_.eth_dst, k_.eth_dst);
    maybe(4, m_.eth_src, k_.eth_src);
    make_vlan();
    if (chance())
        make_protocol();
    if (all_) {
        make_private();
        make_experimenters();
    }
    make_actions();
}

} // namespace

std::unique_ptr<Record> random_record(Random &random, Fields fields)
{
    auto record = std::make_unique<Record>();
    Maker(random, *record, fields).make();
    return record;
}

} // namespace flow_test
