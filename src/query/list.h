// Query lists: circular, doubly linked, elements that begin with their link.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

#include "ofp/query.h"

namespace ofp {

inline void clear_links(OfpLink *list) { *list = {list, list}; }

inline bool is_empty(const OfpLink &list) { return list.next == &list; }

// Links an element in before another one; before the head it becomes the last.
inline void insert_before(OfpLink *position, OfpLink *element)
{
    *element = {position->previous, position};
    position->previous->next = element;
    position->previous = element;
}

// An element that begins with its link.
template <typename T>
concept ListElement = std::is_trivially_copyable_v<T> && offsetof(T, link)
== 0 && std::is_same_v<decltype(T::link), OfpLink>;

// A new element, zero-filled; null when memory is short.
template <ListElement T>
[[nodiscard]] T *make_element()
{
    return static_cast<T *>(std::calloc(1, sizeof(T)));
}

// A new element, zero-filled, at the tail of the list; null when memory is short.
template <ListElement T>
[[nodiscard]] T *append(OfpLink *list)
{
    auto element = make_element<T>();
    if (element)
        insert_before(list, &element->link);
    return element;
}

// Frees every element and empties the list.
void free_elements(OfpLink *list);

// Appends a copy of a 128-byte record to the controller list of a verbose record. 0 or
// OFP_RC_NO_RESOURCE.
[[nodiscard]] uint32_t append_record(const uint8_t record[128], OfpLink *list);
template <typename T>
[[nodiscard]] uint32_t append_controller(const T &controller, OfpLink *list)
{
    static_assert(sizeof controller == sizeof OfpControllerElement::record);
    return append_record(reinterpret_cast<const uint8_t *>(&controller), list);
}

} // namespace ofp
