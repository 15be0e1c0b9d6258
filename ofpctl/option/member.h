// Members of wire records as template arguments, and texts in them.
#ifndef OFPCTL_OPTION_MEMBER_H
#define OFPCTL_OPTION_MEMBER_H

#include <cstddef>
#include <string>

#include <string.h>

namespace ofpctl {

template <class Member>
struct MemberOf;
template <class Record, class Type>
struct MemberOf<Type Record::*> {
    using Owner = Record;
    using Number = Type;
};

// The record that a member belongs to, and the type of the member.
template <auto Member>
using OwnerOf = typename MemberOf<decltype(Member)>::Owner;
template <auto Member>
using NumberOf = typename MemberOf<decltype(Member)>::Number;

// The text of a record, which may fill its field.
template <std::size_t Room>
std::string field_text(const char (&field)[Room])
{
    return {field, strnlen(field, Room)};
}

} // namespace ofpctl

#endif
