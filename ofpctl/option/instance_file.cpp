#include "option/instance_file.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "flow/number_text.h"
#include "frame/words.h"
#include "option/document.h"
#include "option/instance_option.h"
#include "option/port_name.h"
#include "option/record_option.h"

namespace ofpctl {

namespace {

using Kind = DocumentNode::Kind;

constexpr uint64_t last_controller = 63;

class Reader {
public:
    void read(const DocumentNode &root)
    {
        if (!has(root, "instance"))
            wrong(root, "instance is missing: the instance's id, as in instance = 1");
        std::vector<std::string> seen;
        for (const DocumentEntry &entry : root.entries) {
            if (is_first(seen, entry))
                read_entry(entry);
        }
    }

    InstancePlan plan;
    std::vector<FileError> errors;

private:
    static bool has(const DocumentNode &table, std::string_view name)
    {
        return std::any_of(table.entries.begin(), table.entries.end(),
                           [=](const DocumentEntry &entry) { return entry.name == name; });
    }

    void wrong(const DocumentNode &node, std::string what)
    {
        errors.push_back({node.line, node.column, std::move(what)});
    }

    // JSON lets a name stand twice.
    bool is_first(std::vector<std::string> &seen, const DocumentEntry &entry)
    {
        if (std::find(seen.begin(), seen.end(), entry.name) != seen.end()) {
            wrong(entry.node, fmt::format("{} is set twice", entry.name));
            return false;
        }
        seen.push_back(entry.name);
        return true;
    }

    void read_entry(const DocumentEntry &entry)
    {
        if (entry.name == "instance")
            plan.id = static_cast<uint16_t>(read_number(entry, 1, UINT16_MAX));
        else if (entry.name == "active")
            read_active(entry);
        else if (entry.name == "controller")
            read_controllers(entry);
        else if (entry.name == "ports")
            read_ports(entry);
        else if (const SettingRow *row = require_row(entry, settings_))
            read_setting(*row, entry, plan.options);
    }

    const SettingRow *require_row(const DocumentEntry &entry, const SettingRows &settings)
    {
        const SettingRow *row = find_setting(settings, entry.name);
        if (row == nullptr) {
            SettingRows known = settings;
            known.insert(known.end(), also_.begin(), also_.end());
            errors.push_back(
                {entry.line, entry.column,
                 fmt::format(
                     "{}: {}", entry.name,
                     unknown_setting(&settings == &settings_ ? known : settings, entry.name))});
        }
        return row;
    }

    uint64_t read_number(const DocumentEntry &entry, uint64_t least, uint64_t most)
    {
        uint64_t number = 0;
        if (entry.node.kind != Kind::scalar || !scan_number(entry.node.text, most, number) ||
            number < least)
            wrong(entry.node,
                  fmt::format("{}: a number from {} to {} is wanted", entry.name, least, most));
        return number;
    }

    void read_active(const DocumentEntry &entry)
    {
        const std::string &text = entry.node.text;
        if (entry.node.kind != Kind::scalar || (text != "on" && text != "off"))
            wrong(entry.node, "active: true or false is wanted");
        plan.active = text == "on";
    }

    // A list of scalars is the words with commas between.
    bool flatten(const DocumentEntry &entry, std::string &text)
    {
        if (entry.node.kind == Kind::scalar) {
            text = entry.node.text;
            return true;
        }
        if (entry.node.kind != Kind::list) {
            wrong(entry.node, fmt::format("{}: a value is wanted", entry.name));
            return false;
        }
        for (const DocumentEntry &element : entry.node.entries) {
            if (element.node.kind != Kind::scalar) {
                wrong(element.node,
                      fmt::format("{}: a list of plain values is wanted", entry.name));
                return false;
            }
            text += fmt::format("{}{}", text.empty() ? "" : ",", element.node.text);
        }
        if (text.empty())
            text = "none";
        return true;
    }

    void read_setting(const SettingRow &row, const DocumentEntry &entry,
                      std::vector<Assignment> &to)
    {
        std::string text;
        if (!flatten(entry, text))
            return;
        auto parsed = parse_value(row, text);
        if (const auto *bad = std::get_if<BadValue>(&parsed))
            wrong(entry.node, fmt::format("{}: {}", entry.name, bad->what));
        else
            to.push_back({&row, std::get<Value>(std::move(parsed))});
    }

    void read_controllers(const DocumentEntry &entry)
    {
        plan.controllers.emplace();
        if (entry.node.kind != Kind::list)
            return wrong(entry.node, "controller: a list of tables is wanted");
        for (const DocumentEntry &element : entry.node.entries)
            read_controller(element.node);
    }

    void read_controller(const DocumentNode &node)
    {
        if (node.kind != Kind::table)
            return wrong(node, "controller: a table is wanted");
        for (const std::string_view name : {"id", "address"}) {
            if (!has(node, name))
                wrong(node, fmt::format("controller: {} is missing", name));
        }
        PlannedController controller{};
        std::vector<std::string> seen;
        for (const DocumentEntry &entry : node.entries) {
            if (!is_first(seen, entry))
                continue;
            if (entry.name == "id")
                controller.id = static_cast<uint8_t>(read_number(entry, 0, last_controller));
            else if (const SettingRow *row = require_row(entry, controller_settings_))
                read_setting(*row, entry, controller.settings);
        }
        for (const PlannedController &earlier : *plan.controllers) {
            if (earlier.id == controller.id)
                wrong(node, fmt::format("controller {} is described twice", controller.id));
        }
        plan.controllers->push_back(std::move(controller));
    }

    void read_ports(const DocumentEntry &entry)
    {
        plan.ports.emplace();
        if (entry.node.kind != Kind::list)
            return wrong(entry.node, "ports: a list of names or indexes is wanted");
        for (const DocumentEntry &element : entry.node.entries)
            read_port(element.node);
    }

    void read_port(const DocumentNode &node)
    {
        if (node.kind != Kind::scalar)
            return wrong(node, "ports: a name or an index is wanted");
        const auto found = find_port(node.text);
        if (const auto *error = std::get_if<PortError>(&found))
            return wrong(node, fmt::format("ports: {}", error->what));
        const HostInterface *port = std::get<const HostInterface *>(found);
        for (const PlannedPort &earlier : *plan.ports) {
            if (earlier.if_index == port->index)
                return wrong(node, fmt::format("ports: {} is listed twice", port->name));
        }
        plan.ports->push_back({port->index, port->name});
    }

    // What else a file may say, for the nearest name.
    static constexpr SettingRow other_rows_[] = {
        {.name = "instance"}, {.name = "active"}, {.name = "controller"}, {.name = "ports"}};

    const SettingRows settings_ = instance_settings();
    const SettingRows controller_settings_ = controller_settings();
    const SettingRows also_{&other_rows_[0], &other_rows_[1], &other_rows_[2], &other_rows_[3]};
};

std::ptrdiff_t rank(const SettingRow &row)
{
    return &option_of(instance_options(), row) - instance_options().data();
}

} // namespace

std::variant<InstancePlan, std::vector<FileError>> read_instance_plan(std::string_view text)
{
    auto document = parse_document(text);
    if (auto *error = std::get_if<DocumentError>(&document))
        return std::vector<FileError>{{error->line, error->column, std::move(error->what)}};
    Reader reader;
    reader.read(std::get<DocumentNode>(document));
    if (reader.errors.empty()) {
        // In the order of the table: what resets another option comes before it.
        std::stable_sort(
            reader.plan.options.begin(), reader.plan.options.end(),
            [](const Assignment &a, const Assignment &b) { return rank(*a.row) < rank(*b.row); });
        return std::move(reader.plan);
    }
    std::stable_sort(reader.errors.begin(), reader.errors.end(),
                     [](const FileError &a, const FileError &b) {
                         return std::pair(a.line, a.column) < std::pair(b.line, b.column);
                     });
    return std::move(reader.errors);
}

} // namespace ofpctl
