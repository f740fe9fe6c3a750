// The doubly linked circular list used for modules, listeners and clients.
#pragma once

struct list_head {
    list_head* next;
    list_head* prev;
};

inline void list_init(list_head* head) {
    head->next = head;
    head->prev = head;
}

inline bool list_empty(const list_head* head) { return head->next == head; }

inline void list_insert_between(list_head* item, list_head* prev, list_head* next) {
    next->prev = item;
    item->next = next;
    item->prev = prev;
    prev->next = item;
}

// At the head: the newest item is visited first.
inline void list_add(list_head* item, list_head* head) {
    list_insert_between(item, head, head->next);
}

inline void list_add_tail(list_head* item, list_head* head) {
    list_insert_between(item, head->prev, head);
}

// Unlinks item and leaves both of its links null.
inline void list_del(list_head* item) {
    item->prev->next = item->next;
    item->next->prev = item->prev;
    item->next = nullptr;
    item->prev = nullptr;
}
