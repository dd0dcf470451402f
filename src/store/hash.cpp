/*
 * hash.cpp - the hash index of names, the sorted index that the readers use
 * against a plain name store, and the name lookups of a loaded model.
 *
 * A name hashes by FNV-1a over its bytes, with a final mix that spreads
 * the last bytes over the whole word; the bucket is that word modulo the
 * table size. Generated names (C0000001, C0000002, ...) that differ only in
 * a few trailing digits thus fill the buckets evenly. Chains
 * are singly linked through the entries, newest first, so the entries added
 * last can be taken out again in reverse order (the readers' rollback).
 */
#include <cstdint>
#include <cstring>

#include "store/lp.h"
#include "store/names.h"

int namehash_size(int capacity) {
    long n = 1023;
    while (capacity >= 10 * n && n * 7 <= NAMES_MAXCAP) n *= 7;
    return static_cast<int>(n);
}

unsigned namehash_word(const char *text, size_t len) {
    std::uint32_t h = 2166136261u;
    for (size_t p = 0; p < len; p++) {
        h ^= static_cast<unsigned char>(text[p]);
        h *= 16777619u;
    }
    h ^= h >> 16;
    h *= 0x85ebca6bu;
    h ^= h >> 13;
    h *= 0xc2b2ae35u;
    h ^= h >> 16;
    return h;
}

unsigned namehash_fn(const char *text, int nbuckets) {
    return namehash_word(text, std::strlen(text)) % static_cast<unsigned>(nbuckets);
}

static bool name_eq(const char *a, const char *b) {
    return a[0] == b[0] && std::strcmp(a, b) == 0;
}

namehash *namehash_new(int capacity, int *status_p) {
    if (capacity < 1) capacity = 1;
    namehash *h = trv_zalloc<namehash>(1);
    if (h != nullptr) {
        h->hashfn = namehash_word;
        h->eqfn = name_eq;
        h->capacity = capacity;
        h->nbuckets = namehash_size(capacity);
        h->bucket = trv_alloc<int>(h->nbuckets);
        h->entry = trv_alloc<name_entry>(capacity);
        if (h->bucket == nullptr || h->entry == nullptr) namehash_free(&h);
    }
    if (h == nullptr) {
        if (status_p != nullptr) *status_p = 1001;
        return nullptr;
    }
    for (int b = 0; b < h->nbuckets; b++) h->bucket[b] = -1;
    return h;
}

void namehash_free(namehash **h) {
    if (*h == nullptr) return;
    trv_free(&(*h)->bucket);
    trv_free(&(*h)->entry);
    trv_free(h);
}

static unsigned bucket_of(const namehash *h, unsigned word) {
    return word % static_cast<unsigned>(h->nbuckets);
}

int namehash_find(const namehash *h, const char *key) {
    if (h == nullptr || key == nullptr) return -1;
    unsigned w = h->hashfn(key, std::strlen(key));
    for (int e = h->bucket[bucket_of(h, w)]; e != -1; e = h->entry[e].next)
        if (h->entry[e].hash == w && h->eqfn(h->entry[e].key, key)) return h->entry[e].value;
    return -1;
}

/* New table size for the capacity: every chain is built again from the
 * stored hash words. */
static int namehash_resize(namehash *h, int capacity) {
    if (trv_grow(&h->entry, capacity) != 0) return 1001;
    h->capacity = capacity;
    int nb = namehash_size(capacity);
    if (nb == h->nbuckets) return 0;
    int *bucket = trv_alloc<int>(nb);
    if (bucket == nullptr) return 1001;
    trv_free(&h->bucket);
    h->bucket = bucket;
    h->nbuckets = nb;
    for (int b = 0; b < nb; b++) bucket[b] = -1;
    for (int e = 0; e < h->count; e++) {
        unsigned b = bucket_of(h, h->entry[e].hash);
        h->entry[e].next = bucket[b];
        bucket[b] = e;
    }
    return 0;
}

static int namehash_push(namehash *h, const char *key, int value, unsigned word) {
    if (h->count >= h->capacity) {
        long cap = static_cast<long>(h->capacity) * 2;
        if (cap > NAMES_MAXCAP) cap = NAMES_MAXCAP;
        if (cap <= h->count) return 1012;
        int status = namehash_resize(h, static_cast<int>(cap));
        if (status != 0) return status;
    }
    unsigned b = bucket_of(h, word);
    name_entry *e = &h->entry[h->count];
    e->key = key;
    e->value = value;
    e->hash = word;
    e->next = h->bucket[b];
    h->bucket[b] = h->count++;
    return 0;
}

int namehash_add(namehash *h, const char *key, int value) {
    return namehash_push(h, key, value, h->hashfn(key, std::strlen(key)));
}

/* ---- the pieces the name set needs from the index ---------------------------- */

/* Looks up a text of known length; the stored keys are terminated. */
int namehash_lookup_n(const namehash *h, const char *key, size_t len, unsigned *hash_p) {
    unsigned w = h->hashfn(key, len);
    *hash_p = w;
    for (int e = h->bucket[bucket_of(h, w)]; e != -1; e = h->entry[e].next) {
        if (h->entry[e].hash != w) continue;
        const char *k = h->entry[e].key;
        if (std::memcmp(k, key, len) == 0 && k[len] == '\0') return h->entry[e].value;
    }
    return -1;
}

int namehash_push_at(namehash *h, const char *key, int value, unsigned hash) {
    return namehash_push(h, key, value, hash);
}

/* Removes the newest entry; it heads its chain. */
void namehash_drop_last(namehash *h) {
    if (h->count == 0) return;
    int e = h->count - 1;
    unsigned b = bucket_of(h, h->entry[e].hash);
    if (h->bucket[b] == e) h->bucket[b] = h->entry[e].next;
    h->count--;
}

void namehash_rekey(namehash *h, char *const *keys) {
    for (int e = 0; e < h->count; e++) h->entry[e].key = keys[h->entry[e].value];
}

/* ---- sorted index ---------------------------------------------------------- */

static int ucmp(const char *a, const char *b) {
    const unsigned char *p = reinterpret_cast<const unsigned char *>(a);
    const unsigned char *q = reinterpret_cast<const unsigned char *>(b);
    while (*p != 0 && *p == *q) p++, q++;
    return static_cast<int>(*p) - static_cast<int>(*q);
}

void sorted_index(int n, char *const *names, int *order) {
    for (int i = 0; i < n; i++) order[i] = i;
    for (int gap = n / 2; gap > 0; gap /= 2)
        for (int i = 0; i < n - gap; i++)
            for (int k = i; k >= 0 && ucmp(names[order[k]], names[order[k + gap]]) > 0;
                 k -= gap) {
                int t = order[k];
                order[k] = order[k + gap];
                order[k + gap] = t;
            }
}

int sorted_find(int *state, char *const *names, const char *key,
                const int *order, int n) {
    if (n <= 0 || key == nullptr) return -1;
    int p = *state;
    int low = 0, high = n - 1;
    if (p >= 0 && p < n) {
        int c = ucmp(key, names[order[p]]);
        if (c == 0) {
            *state = p + 1;
            return order[p];
        }
        if (c < 0)
            high = p - 1;
        else
            low = p + 1;
    }
    while (low <= high) {
        int mid = (low + high) / 2;
        int c = ucmp(key, names[order[mid]]);
        if (c == 0) {
            *state = mid + 1;
            return order[mid];
        }
        if (c < 0)
            high = mid - 1;
        else
            low = mid + 1;
    }
    return -1;
}

void sorted_pairs(int n, int *keys, double *values) {
    for (int gap = n / 2; gap > 0; gap /= 2)
        for (int i = 0; i < n - gap; i++)
            for (int k = i; k >= 0 && keys[k] > keys[k + gap]; k -= gap) {
                int t = keys[k];
                keys[k] = keys[k + gap];
                keys[k + gap] = t;
                double v = values[k];
                values[k] = values[k + gap];
                values[k + gap] = v;
            }
}

/* ---- name lookup in a loaded model ------------------------------------------ */

static int name_index(TRVenv env, TRVlp lp, const char *name, int *index_p,
                      bool rows) {
    int status = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE);
    if (status != 0) {
    } else if (name == nullptr || index_p == nullptr) {
        status = 1004;
    } else {
        lp_data *d = lp->lpdata;
        char **names = rows ? d->rowname : d->colname;
        int count = rows ? d->nrows : d->ncols;
        *index_p = -1;
        if (names == nullptr) {
            status = 1219;
        } else {
            for (int k = 0; k < count; k++)
                if (name_eq(names[k], name)) {
                    *index_p = k;
                    return 0;
                }
            return 1210; /* not found: a plain answer, not reported */
        }
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVgetrowindex(TRVenv env, TRVlp lp, const char *name,
                              int *index_p) {
    return name_index(env, lp, name, index_p, true);
}

TRV_EXPORT int TRVgetcolindex(TRVenv env, TRVlp lp, const char *name,
                              int *index_p) {
    return name_index(env, lp, name, index_p, false);
}
