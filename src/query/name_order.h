// Lists of interfaces in the platform's order of their names.
#pragma once

#include <cstring>

#include "ofp/platform.h"
#include "ofp/query.h"
#include "query/list.h"

namespace ofp {

using NameBytes = char[sizeof OfpVerbIfRep::name];

// The name of an interface as it arrived: it may lack its end.
class Name {
public:
    explicit Name(const NameBytes &name) { std::memcpy(text_, name, sizeof name); }

    bool sorts_after(const Name &other) const { return IF_JudgeNameOrder(text_, other.text_) > 0; }

private:
    char text_[sizeof(NameBytes) + 1] = {};
};

inline const NameBytes &name_of(const OfpInterfaceElement &element)
{
    return element.interface.name;
}
inline const NameBytes &name_of(const OfpAcPortElement &element) { return element.port.name; }

template <ListElement T>
Name name_at(const OfpLink *link)
{
    return Name(name_of(*reinterpret_cast<const T *>(link)));
}

// Where an element goes: before the first of the list if that sorts after it, to the tail if it
// sorts after the last, else before the first one that stops(name there, its own name). Null when
// none does. Names that arrive in order are placed with two comparisons.
template <ListElement T, typename Stops>
OfpLink *place_by_name(const T &element, OfpLink *list, Stops stops)
{
    const Name name(name_of(element));
    if (is_empty(*list) || name_at<T>(list->next).sorts_after(name))
        return list->next;
    if (name.sorts_after(name_at<T>(list->previous)))
        return list;
    for (OfpLink *at = list->next; at != list; at = at->next)
        if (stops(name_at<T>(at), name))
            return at;
    return nullptr;
}

} // namespace ofp
