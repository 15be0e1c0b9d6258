/* The described switch, read from TOML. What the file leaves out is as without a file. */
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>

/* The parser asserts what some malformed files break, and with NDEBUG assumes it: here that is an
 * error like others. */
namespace host {
struct MalformedToml {};
[[noreturn]] void refuse_toml() { throw MalformedToml{}; }
} // namespace host
#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(condition) ((condition) ? static_cast<void>(0) : ::host::refuse_toml())
#define TOML_HEADER_ONLY       1
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#include "config.h"
#include "ofp/platform.h"

namespace host {

namespace {

constexpr size_t most_nodes = 256;
constexpr uint32_t most_interfaces = 65536;

/* One table of the file. Each read notes the key, so that finish can name one that nobody reads. */
class Section {
public:
    Section(const std::string &file, const std::string &name, const toml::node &node)
        : file_(file), name_(name), node_(node), table_(node.as_table())
    {
        if (table_ == nullptr) {
            wrong(node, name, "expected a table");
        }
    }

    [[noreturn]] void wrong(const char *key, const std::string &text) const
    {
        const toml::node *at = table_->get(key);
        wrong(at != nullptr ? *at : node_, name_ + "." + key, text);
    }

    const toml::node *find(const char *key)
    {
        known_ += known_.empty() ? "" : ", ";
        known_ += key;
        keys_.push_back(key);
        return table_->get(key);
    }

    void require(const char *key) const
    {
        if (table_->get(key) == nullptr) {
            wrong(key, "missing");
        }
    }

    template <class T>
    void number(const char *key, T &to, uint64_t low, uint64_t high)
    {
        if (const toml::node *node = find(key)) {
            to = static_cast<T>(checked(key, *node, low, high));
        }
    }

    void boolean(const char *key, uint8_t &to)
    {
        if (const toml::node *node = find(key)) {
            if (!node->is_boolean()) {
                wrong(key, "expected true or false");
            }
            to = node->value_or(false) ? 1 : 0;
        }
    }

    /* Null when the key is absent. */
    const std::string *text(const char *key)
    {
        const toml::node *node = find(key);
        if (node != nullptr && !node->is_string()) {
            wrong(key, "expected a text in quotes");
        }
        return node != nullptr ? &node->as_string()->get() : nullptr;
    }

    std::vector<uint64_t> numbers(const char *key, const toml::node &node, uint64_t high) const
    {
        std::vector<uint64_t> values;
        if (!node.is_array()) {
            wrong(key, "expected a list of numbers");
        }
        for (const toml::node &each : *node.as_array()) {
            values.push_back(checked(key, each, 0, high));
        }
        return values;
    }

    void finish() const
    {
        for (const auto &[key, value] : *table_) {
            if (std::ranges::find(keys_, key.str()) == keys_.end()) {
                wrong(value, name_ + "." + std::string(key.str()),
                      "unknown key, known are " + known_);
            }
        }
    }

private:
    [[noreturn]] void wrong(const toml::node &at, const std::string &key,
                            const std::string &text) const
    {
        throw ConfigError(file_ + ":" + std::to_string(at.source().begin.line) + ": " + key + ": " +
                          text);
    }

    uint64_t checked(const char *key, const toml::node &node, uint64_t low, uint64_t high) const
    {
        const auto *integer = node.as_integer();
        int64_t value = integer != nullptr ? integer->get() : -1;
        if (value < 0 || static_cast<uint64_t>(value) < low ||
            static_cast<uint64_t>(value) > high) {
            wrong(key,
                  "expected a number from " + std::to_string(low) + " to " + std::to_string(high));
        }
        return static_cast<uint64_t>(value);
    }

    const std::string &file_;
    std::string name_;
    const toml::node &node_;
    const toml::table *table_;
    std::vector<std::string_view> keys_;
    std::string known_;
};

toml::table parse(const std::string &file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) {
        throw ConfigError(file + ": " + strerror(errno));
    }
    try {
        return toml::parse(text, std::string_view(file));
    } catch (const toml::parse_error &error) {
        throw ConfigError(file + ":" + std::to_string(error.source().begin.line) + ":" +
                          std::to_string(error.source().begin.column) + ": " +
                          std::string(error.description()));
    } catch (const MalformedToml &) {
        throw ConfigError(file + ": this is no TOML: a name or a value is malformed");
    }
}

/* Six pairs of hexadecimal digits with colons between them. */
bool parse_mac(std::string_view text, uint8_t (&mac)[6])
{
    if (text.size() != 17) {
        return false;
    }
    for (size_t i = 0; i < sizeof mac; ++i) {
        const char *pair = text.data() + i * 3;
        if (std::from_chars(pair, pair + 2, mac[i], 16).ptr != pair + 2 ||
            (i < 5 && pair[2] != ':')) {
            return false;
        }
    }
    return true;
}

void read_mac(Section &section, uint8_t (&mac)[6])
{
    constexpr const char *key = "bridge_mac";
    const std::string *text = section.text(key);
    if (text != nullptr && !parse_mac(*text, mac)) {
        section.wrong(key, "expected six pairs of hexadecimal digits, as 02:00:00:00:00:01");
    }
}

void read_acl_resource(Section &section, uint8_t (&resource)[6])
{
    constexpr const char *key = "acl_resource";
    if (const toml::node *node = section.find(key)) {
        std::vector<uint64_t> bytes = section.numbers(key, *node, 255);
        if (bytes.size() != sizeof resource) {
            section.wrong(key, "expected 6 bytes");
        }
        std::ranges::transform(bytes, resource, [](uint64_t b) { return static_cast<uint8_t>(b); });
    }
}

/* What has been read so far, in the order of reading: nodes, device, context, interfaces. */
struct Reader {
    std::string file;
    toml::table root;
    Description d;
    std::set<uint32_t> indexes;
    std::set<std::string> names;
};

void check_node(const Section &section, const Description &d, const char *key, uint16_t node)
{
    if (std::ranges::count(d.nodes, node, &HostNode::id) == 0) {
        section.wrong(key, "there is no node " + std::to_string(node));
    }
}

void read_node(Section section, Description &d)
{
    HostNode node{.id = 0, .up = 1, .controller = d.nodes.empty() ? uint8_t{1} : uint8_t{0}};
    section.require("id");
    section.number("id", node.id, 0, no_node - 1);
    section.boolean("up", node.up);
    section.boolean("controller", node.controller);
    section.finish();
    if (std::ranges::count(d.nodes, node.id, &HostNode::id) != 0) {
        section.wrong("id", "node " + std::to_string(node.id) + " is there twice");
    }
    if (d.nodes.size() == most_nodes) {
        section.wrong("id", "more than " + std::to_string(most_nodes) + " nodes");
    }
    d.nodes.push_back(node);
}

void read_device(Section section, Description &d)
{
    HostConfig &config = d.config;
    config.self = config.master = d.nodes.front().id;
    section.number("self", config.self, 0, no_node - 1);
    check_node(section, d, "self", config.self);
    section.number("master", config.master, 0, no_node - 1);
    check_node(section, d, "master", config.master);
    config.lip = config.self;
    section.number("lip", config.lip, 0, UINT16_MAX);
    section.boolean("phase4_over", config.phase4_over);
    read_mac(section, config.bridge_mac);
    read_acl_resource(section, config.acl_resource);
    section.finish();
}

void read_context(Section section, Description &d)
{
    section.number("zone", d.config.zone, 0, UINT32_MAX);
    section.number("container", d.config.container, 0, UINT32_MAX);
    if (const toml::node *node = section.find("containers")) {
        for (uint64_t zone : section.numbers("containers", *node, UINT32_MAX)) {
            d.containers.push_back(static_cast<uint32_t>(zone));
        }
    }
    section.finish();
}

void check_name(const Section &section, const std::string &name, uint32_t count)
{
    auto plain = [](char c) { return c > ' ' && c < 0x7f; };
    if (name.empty() || name.size() >= sizeof HostInterface::name ||
        !std::ranges::all_of(name, plain)) {
        section.wrong("name", "expected 1 to 47 printable characters without spaces");
    }
    size_t digits = name.size() - (name.find_last_not_of("0123456789") + 1);
    if (count > 1 && (digits == 0 || digits > 6 || name[name.size() - digits] == '0')) {
        section.wrong("name", "expected a name that ends in a number to count from, as GE1/0/1");
    }
}

/* Adds the ports that one table stands for. */
void add_checked(const Section &section, Reader &reader, const HostInterface &first, uint32_t count)
{
    size_t before = reader.d.interfaces.size();
    add_interfaces(reader.d, first, count);
    for (size_t i = before; i < reader.d.interfaces.size(); ++i) {
        const HostInterface &added = reader.d.interfaces[i];
        if (!reader.indexes.insert(added.index).second) {
            section.wrong("index", std::to_string(added.index) + " is there twice");
        }
        if (!reader.names.insert(added.name).second) {
            section.wrong("name", std::string(added.name) + " is there twice");
        }
    }
}

void read_interface(Section section, Reader &reader)
{
    HostInterface first{.index = 0, .type = usual_type, .node = reader.d.config.self};
    uint8_t up = 1;
    uint32_t count = 1;
    section.require("index");
    section.require("name");
    section.number("index", first.index, 1, INT32_MAX);
    section.number("count", count, 1, most_interfaces);
    section.number("type", first.type, 0, UINT32_MAX);
    section.number("node", first.node, 0, no_node - 1);
    section.boolean("up", up);
    const std::string name = *section.text("name");
    section.finish();
    if (count > most_interfaces - reader.d.interfaces.size()) {
        section.wrong("index", "more than " + std::to_string(most_interfaces) + " interfaces");
    }
    check_name(section, name, count);
    check_node(section, reader.d, "node", first.node);
    first.up = up;
    strlcpy(first.name, name.c_str(), sizeof first.name);
    add_checked(section, reader, first, count);
}

/* The tables of [[name]]; null when the file has none. */
const toml::array *tables(const Reader &reader, const char *name)
{
    const toml::node *list = reader.root.get(name);
    if (list != nullptr && !list->is_array()) {
        throw ConfigError(reader.file + ":" + std::to_string(list->source().begin.line) + ": " +
                          name + ": expected [[" + name + "]]");
    }
    return list != nullptr ? list->as_array() : nullptr;
}

/* A table that the file leaves out reads as an empty one. */
Section only(const Reader &reader, const char *name)
{
    static const toml::table empty;
    const toml::node *table = reader.root.get(name);
    return Section(reader.file, name, table != nullptr ? *table : empty);
}

void read_nodes(Reader &reader)
{
    const toml::array *list = tables(reader, "node");
    if (list == nullptr) {
        int64_t self = reader.root["device"]["self"].value_or(int64_t{0});
        reader.d.nodes.push_back({.id = static_cast<uint16_t>(self), .up = 1, .controller = 1});
        return;
    }
    for (const toml::node &each : *list) {
        read_node(Section(reader.file, "node", each), reader.d);
    }
    if (reader.d.nodes.empty()) {
        throw ConfigError(reader.file + ": node: at least one is needed");
    }
}

void read_interfaces(Reader &reader)
{
    const toml::array *list = tables(reader, "interface");
    if (list == nullptr) {
        add_usual_interfaces(reader.d);
        return;
    }
    for (const toml::node &each : *list) {
        read_interface(Section(reader.file, "interface", each), reader);
    }
}

void check_sections(const Reader &reader)
{
    constexpr std::string_view known[] = {"device", "context", "node", "interface"};
    for (const auto &[key, value] : reader.root) {
        if (std::ranges::find(known, key.str()) == std::end(known)) {
            throw ConfigError(reader.file + ":" + std::to_string(key.source().begin.line) + ": " +
                              std::string(key.str()) +
                              ": unknown, known are device, context, node, interface");
        }
    }
}

} // namespace

Description read_description(const char *path)
{
    Reader reader{.file = path, .root = parse(path), .d = {}, .indexes = {}, .names = {}};
    reader.d.path = path;
    reader.d.config = built_in().config;
    check_sections(reader);
    read_nodes(reader);
    read_device(only(reader, "device"), reader.d);
    read_context(only(reader, "context"), reader.d);
    read_interfaces(reader);
    return std::move(reader.d);
}

} // namespace host
