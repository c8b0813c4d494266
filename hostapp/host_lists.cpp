/*
** hostapp/host_lists.cpp: the host's lists of pointers (HostList), which the plug-in
** declares and the host fills and grows.
*/
#include <algorithm>

#include "host/host.h"

extern "C" {

/* Appends item; the array grows from the host heap (capacity doubles). */
void addListMember(HostList *list, void *item)
{
    if (!list)
        return;
    if (list->count >= list->capacity || !list->items) {
        uint32_t capacity = std::max({8u, list->capacity * 2, list->count + 1});
        list->items = (void **)grealloc(list->items, sizeof(void *) * (uint64_t)capacity);
        list->capacity = capacity;
    }
    list->items[list->count++] = item;
}

/* Removes and returns the last item; null when the list is empty. */
void *removeLastMember(HostList *list)
{
    if (!list || list->count == 0 || !list->items)
        return nullptr;
    return list->items[--list->count];
}

}
