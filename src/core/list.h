// The doubly linked circular list used for modules, listeners and clients.
#pragma once
#include <cstddef>

struct lynd_list {
    lynd_list* next;
    lynd_list* prev;
};

inline void lynd_list_init(lynd_list* head) {
    head->next = head;
    head->prev = head;
}

inline bool lynd_list_empty(const lynd_list* head) { return head->next == head; }

inline void lynd_list_insert_between(lynd_list* item, lynd_list* prev, lynd_list* next) {
    next->prev = item;
    item->next = next;
    item->prev = prev;
    prev->next = item;
}

// At the head: the newest item is visited first.
inline void lynd_list_add(lynd_list* item, lynd_list* head) {
    lynd_list_insert_between(item, head, head->next);
}

inline void lynd_list_add_tail(lynd_list* item, lynd_list* head) {
    lynd_list_insert_between(item, head->prev, head);
}

// Unlinks item and leaves both of its links null.
inline void lynd_list_del(lynd_list* item) {
    item->prev->next = item->next;
    item->next->prev = item->prev;
    item->next = nullptr;
    item->prev = nullptr;
}

// The record that holds member at offset (from offsetof).
inline void* lynd_container_of(void* member, size_t offset) { return static_cast<char*>(member) - offset; }
