/*
 * nameset.cpp - a growing table of names: a pointer array into one packed
 * text store, with an optional hash index. The readers keep their row and
 * column names in one; so does the network record.
 *
 * The store grows by its step or by its own size, whichever is more, so a
 * reader that adds names one at a time pays a linear cost overall. When the
 * store moves, the pointers and the hash keys move with it.
 */
#include <cstring>

#include "store/names.h"

nameset *nameset_new(int capacity, long storebytes, char prefix, int withhash,
                     int *status_p) {
    int status = 0;
    if (capacity < 1) capacity = 1;
    if (storebytes < 6) storebytes = 6;
    if (capacity > NAMES_MAXCAP || storebytes >= NAMES_MAXBYTES) status = 1012;
    nameset *set = nullptr;
    if (status == 0) {
        set = trv_zalloc<nameset>(1);
        if (set == nullptr) status = 1001;
    }
    if (status == 0) {
        set->growmode = 1;
        set->growcount = 1000;
        set->growbytes = 6000;
        set->capacity = capacity;
        set->storebytes = storebytes;
        set->defaultprefix = prefix;
        set->names = trv_alloc<char *>(capacity);
        set->store = trv_alloc<char>(storebytes);
        if (set->names == nullptr || set->store == nullptr) status = 1001;
        if (status == 0 && withhash) set->index = namehash_new(capacity, &status);
    }
    if (status != 0) {
        nameset_free(&set);
        if (status_p != nullptr) *status_p = status;
        return nullptr;
    }
    if (status_p != nullptr) *status_p = 0;
    return set;
}

void nameset_free(nameset **set) {
    if (*set == nullptr) return;
    namehash_free(&(*set)->index);
    trv_free(&(*set)->names);
    trv_free(&(*set)->store);
    trv_free(set);
}

void nameset_setgrow(nameset *set, int count, long bytes) {
    if (count > 0) set->growcount = count;
    if (bytes > 0) set->growbytes = bytes;
}

int nameset_count(const nameset *set) { return set == nullptr ? 0 : set->count; }

const char *nameset_name(const nameset *set, int i) {
    if (set == nullptr || i < 0 || i >= set->count) return nullptr;
    return set->names[i];
}

int nameset_find(const nameset *set, const char *name) {
    if (set == nullptr || name == nullptr) return -1;
    if (set->index != nullptr) {
        unsigned w;
        return namehash_lookup_n(set->index, name, std::strlen(name), &w);
    }
    for (int k = set->count - 1; k >= 0; k--)
        if (std::strcmp(set->names[k], name) == 0) return k;
    return -1;
}

/* Room for one more name of len characters. */
static int nameset_room(nameset *set, long len) {
    if (set->count >= set->capacity) {
        long cap = set->capacity + (set->growcount > set->capacity ? set->growcount
                                                                   : set->capacity);
        if (cap > NAMES_MAXCAP) cap = NAMES_MAXCAP;
        if (cap <= set->count) return 1012;
        if (trv_grow(&set->names, cap) != 0) return 1001;
        set->capacity = static_cast<int>(cap);
    }
    if (set->usedbytes + len + 1 > set->storebytes) {
        long bytes = set->storebytes +
                     (set->growbytes > set->storebytes ? set->growbytes : set->storebytes);
        if (bytes < set->usedbytes + len + 1) bytes = set->usedbytes + len + 1;
        if (bytes >= NAMES_MAXBYTES) return 1012;
        /* a new block, so that the pointers are moved while the old one
         * still stands */
        char *fresh = trv_alloc<char>(bytes);
        if (fresh == nullptr) return 1001;
        if (set->usedbytes > 0) std::memcpy(fresh, set->store, set->usedbytes);
        for (int k = 0; k < set->count; k++) set->names[k] = fresh + (set->names[k] - set->store);
        trv_free(&set->store);
        set->store = fresh;
        set->storebytes = bytes;
        if (set->index != nullptr) namehash_rekey(set->index, set->names);
    }
    return 0;
}

/* Appends a name without looking for it; w is its hash word if hashed. */
static int nameset_append(nameset *set, const char *name, long len, unsigned w,
                          bool hashed) {
    int status = nameset_room(set, len);
    if (status != 0) return status;
    char *p = set->store + set->usedbytes;
    std::memcpy(p, name, len);
    p[len] = '\0';
    if (set->index != nullptr) {
        if (!hashed) w = set->index->hashfn(p, static_cast<size_t>(len));
        status = namehash_push_at(set->index, p, set->count, w);
        if (status != 0) return status;
    }
    set->names[set->count++] = p;
    set->usedbytes += len + 1;
    return 0;
}

int nameset_findaddn(nameset *set, const char *name, int len, int *status_p) {
    if (set == nullptr || set->index == nullptr || name == nullptr) {
        if (status_p != nullptr) *status_p = 1004;
        return -1;
    }
    unsigned w;
    int k = namehash_lookup_n(set->index, name, static_cast<size_t>(len), &w);
    if (k >= 0) return k;
    int status = nameset_append(set, name, len, w, true);
    if (status != 0) {
        if (status_p != nullptr) *status_p = status;
        return -1;
    }
    return set->count - 1;
}

int nameset_findadd(nameset *set, const char *name, int *status_p) {
    if (name == nullptr) {
        if (status_p != nullptr) *status_p = 1004;
        return -1;
    }
    return nameset_findaddn(set, name, static_cast<int>(std::strlen(name)), status_p);
}

int nameset_add(nameset *set, int n, const char *const *names) {
    if (set == nullptr) return 1004;
    if (n < 0) return 1200;
    char buf[32];
    for (int k = 0; k < n; k++) {
        const char *name = names == nullptr ? nullptr : names[k];
        long len;
        if (name == nullptr || name[0] == '\0') {
            len = std::snprintf(buf, sizeof buf, "%c%ld", set->defaultprefix,
                                static_cast<long>(set->count) + 1);
            name = buf;
        } else {
            len = static_cast<long>(std::strlen(name));
        }
        int status = nameset_append(set, name, len, 0, false);
        if (status != 0) return status;
    }
    return 0;
}

void nameset_trim(nameset *set, int n) {
    if (set == nullptr || n < 0) return;
    while (set->count > n) {
        set->count--;
        if (set->index != nullptr) namehash_drop_last(set->index);
        set->usedbytes = set->names[set->count] - set->store;
    }
}
