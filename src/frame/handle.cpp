/*
 * handle.cpp - the handles a caller holds. A caller never sees a record's
 * address: it gets a token that names a slot of this table and the serial
 * number of the record that slot was given to. Freeing a record bumps
 * nothing but the slot; the old token's serial no longer matches, so a
 * stale handle is refused however often the slot and the record's memory
 * are reused. Garbage that is not a token is refused without being read.
 *
 * The table lives while any handle does: it is released when the last one
 * goes (the last environment closes) and rebuilt by the next open. The
 * serial counter is never reset, so a token from before a release still
 * finds no match.
 */
#include <cstdint>
#include <cstdlib>
#include <mutex>

#include "trv.h"

namespace {

/* Token layout: the top bit set (never a user-space address), the serial
 * in bits 24..62, the slot in bits 0..23. */
constexpr int SLOT_BITS = 24;
constexpr uint64_t SLOT_MASK = (uint64_t{1} << SLOT_BITS) - 1;
constexpr uint64_t TOKEN_TAG = uint64_t{1} << 63;
constexpr uint64_t SERIAL_MASK = (uint64_t{1} << (63 - SLOT_BITS)) - 1;

struct handle_slot {
    void *rec;            /* the record, null when free */
    void *owner;          /* the environment record that owns it */
    handle_check_fn check;
    uint64_t serial;
    int kind;
    uint32_t next_free;   /* free list, slot + 1; 0 ends it */
};

struct handle_table {
    handle_slot *slot;
    uint32_t count, cap;
    uint32_t free_head;
    uint32_t live;
};

std::mutex table_lock;
handle_table table;
uint64_t next_serial = 1;

void table_release(void) {
    std::free(table.slot);
    table = handle_table{};
}

/* Releases the table when the library is unloaded with handles still
 * open (a host that never closed its environments). */
struct table_guard {
    ~table_guard() {
        std::lock_guard<std::mutex> g(table_lock);
        table_release();
    }
} guard;

uint64_t token_of(const void *h) { return reinterpret_cast<uintptr_t>(h); }

/* The slot a token names, or null; the lock is held. */
handle_slot *slot_of(const void *h, int kind) {
    uint64_t t = token_of(h);
    if ((t & TOKEN_TAG) == 0) return nullptr;
    uint64_t s = t & SLOT_MASK;
    if (s >= table.count) return nullptr;
    handle_slot *p = &table.slot[s];
    if (p->rec == nullptr || p->kind != kind) return nullptr;
    if (p->serial != ((t & ~TOKEN_TAG) >> SLOT_BITS)) return nullptr;
    return p;
}

}  // namespace

void *handle_new(int kind, void *rec, void *owner, handle_check_fn check) {
    std::lock_guard<std::mutex> g(table_lock);
    uint32_t s;
    if (table.free_head != 0) {
        s = table.free_head - 1;
        table.free_head = table.slot[s].next_free;
    } else {
        if (table.count == table.cap) {
            uint32_t cap = table.cap ? 2 * table.cap : 64;
            if (cap > SLOT_MASK + 1) return nullptr;
            void *p = std::realloc(table.slot, cap * sizeof(handle_slot));
            if (p == nullptr) return nullptr;
            table.slot = static_cast<handle_slot *>(p);
            table.cap = cap;
        }
        s = table.count++;
    }
    uint64_t serial = next_serial++ & SERIAL_MASK;
    table.slot[s] = handle_slot{rec, owner, check, serial, kind, 0};
    table.live++;
    return reinterpret_cast<void *>(TOKEN_TAG | (serial << SLOT_BITS) | s);
}

void handle_drop(const void *h) {
    std::lock_guard<std::mutex> g(table_lock);
    if (table.slot == nullptr) return;
    uint64_t t = token_of(h);
    if ((t & TOKEN_TAG) == 0 || (t & SLOT_MASK) >= table.count) return;
    uint32_t s = static_cast<uint32_t>(t & SLOT_MASK);
    handle_slot *p = &table.slot[s];
    if (p->rec == nullptr || p->serial != ((t & ~TOKEN_TAG) >> SLOT_BITS)) return;
    *p = handle_slot{};
    p->next_free = table.free_head;
    table.free_head = s + 1;
    if (--table.live == 0) table_release();
}

void *handle_find(const void *h, int kind, void **owner, handle_check_fn *check) {
    std::lock_guard<std::mutex> g(table_lock);
    handle_slot *p = slot_of(h, kind);
    if (p == nullptr) return nullptr;
    if (owner != nullptr) *owner = p->owner;
    if (check != nullptr) *check = p->check;
    return p->rec;
}

long handle_live(void) {
    std::lock_guard<std::mutex> g(table_lock);
    return table.live;
}
