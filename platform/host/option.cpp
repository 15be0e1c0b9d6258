#include <cstdlib>
#include <cstring>

#include "error.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace host {

namespace {

struct Kind {
    uint32_t size;
    uint32_t largest;
};

constexpr Kind kinds[] = {{sizeof(uint16_t), UINT16_MAX}, {sizeof(uint32_t), UINT32_MAX}};

struct Options {
    const OptEntry *table;
    uint32_t count;
};

/* One option of the command line: its entry and the text of its value. */
struct Given {
    const OptEntry *entry;
    const char *value;
    int arguments; /* taken from the command line */
};

const OptEntry *find_entry(const Options &options, const char *name, size_t length)
{
    for (uint32_t i = 0; i < options.count; ++i) {
        const char *known = options.table[i].name;
        if (strlen(known) == length && memcmp(known, name, length) == 0) {
            return &options.table[i];
        }
    }
    return nullptr;
}

/* Reads the option at argument; next is the argument after it, null at the end. */
bool parse_option(const Options &options, const char *argument, const char *next, Given &given)
{
    if (strncmp(argument, "--", 2) != 0 || argument[2] == '\0') {
        refuse(OFP_RC_INVALID, "%s: expected an option such as --Name=value", argument);
        return false;
    }
    const char *name = argument + 2;
    size_t length = strcspn(name, "=");
    given.entry = find_entry(options, name, length);
    if (given.entry == nullptr) {
        refuse(OFP_RC_INVALID, "--%.*s: unknown option", static_cast<int>(length), name);
        return false;
    }
    bool joined = name[length] == '=';
    given.value = joined ? name + length + 1 : next;
    given.arguments = joined ? 1 : 2;
    if (given.value == nullptr || *given.value == '\0' || strncmp(given.value, "--", 2) == 0) {
        refuse(OFP_RC_INVALID, "--%s: value missing", given.entry->name);
        return false;
    }
    return true;
}

/* Decimal, or hexadecimal after 0x; a leading zero does not mean octal. */
bool parse_number(const char *text, uint64_t &value)
{
    bool hexadecimal = text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char *first = hexadecimal ? text + 2 : text;
    const char *allowed = hexadecimal ? "0123456789abcdefABCDEF" : "0123456789";
    if (*first == '\0' || first[strspn(first, allowed)] != '\0') {
        return false;
    }
    value = strtoull(first, nullptr, hexadecimal ? 16 : 10);
    return true; /* what is too large came out as the largest */
}

bool parse_value(const Given &given, uint32_t &value)
{
    const OptEntry &entry = *given.entry;
    if (entry.kind >= sizeof kinds / sizeof *kinds || entry.size != kinds[entry.kind].size) {
        refuse(OFP_RC_INVALID, "--%s: kind %u of %u bytes is not known", entry.name, entry.kind,
               entry.size);
        return false;
    }
    uint64_t number = 0;
    if (!parse_number(given.value, number)) {
        refuse(OFP_RC_INVALID, "--%s: %s is not a number (decimal, or 0x and hexadecimal)",
               entry.name, given.value);
        return false;
    }
    if (number > kinds[entry.kind].largest) {
        refuse(OFP_RC_INVALID, "--%s: %s is out of range, at most %u", entry.name, given.value,
               kinds[entry.kind].largest);
        return false;
    }
    value = static_cast<uint32_t>(number);
    return true;
}

void store(const OptEntry &entry, uint32_t value)
{
    auto narrow = static_cast<uint16_t>(value);
    memcpy(entry.destination,
           entry.size == sizeof narrow ? static_cast<void *>(&narrow) : static_cast<void *>(&value),
           entry.size);
}

bool walk(const Options &options, int argc, char **argv, bool storing)
{
    for (int i = 1; i < argc;) {
        Given given{};
        uint32_t value = 0;
        if (!parse_option(options, argv[i], i + 1 < argc ? argv[i + 1] : nullptr, given) ||
            !parse_value(given, value)) {
            return false;
        }
        if (storing) {
            store(*given.entry, value);
        }
        i += given.arguments;
    }
    return true;
}

} // namespace

} // namespace host

uint32_t OPT_ParseEx(void *source1, void *source2, const OptEntry *table, uint32_t count)
{
    const auto *argc = static_cast<const int *>(source1);
    auto *argv = static_cast<char **>(source2);
    if (argc == nullptr || argv == nullptr || (table == nullptr && count != 0)) {
        return host::refuse(OFP_RC_INVALID, "options: no argument list");
    }
    /* Twice, so that a wrong option leaves every destination as it was. */
    host::Options options{table, count};
    bool right = host::walk(options, *argc, argv, false) && host::walk(options, *argc, argv, true);
    return right ? OFP_RC_OK : OFP_RC_INVALID;
}
