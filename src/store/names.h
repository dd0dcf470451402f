/*
 * names.h - name tables for the readers and the network record: the hash
 * index, the growing name set with an optional hash, and the sorted index
 * that serves lookups against a plain name store.
 */
#ifndef TRV_STORE_NAMES_H
#define TRV_STORE_NAMES_H

#include "frame/trv.h"

#define NAMES_MAXCAP 524999999
#define NAMES_MAXBYTES 2100000000L

/* ---- hash index ------------------------------------------------------------ */

struct name_entry {
    const char *key; /* the text; owned by whoever fills the index */
    int value;
    int next;      /* next entry of the bucket, -1 ends */
    unsigned hash; /* the key's full hash word: compared before the text */
};

struct namehash {
    unsigned (*hashfn)(const char *text, size_t len); /* the full hash word */
    bool (*eqfn)(const char *a, const char *b);
    int capacity; /* entries */
    int count;
    int nbuckets;
    int *bucket; /* first entry of a bucket, -1 for empty */
    name_entry *entry;
};

/* Table size for a capacity: 1023, times 7 while the capacity is at least
 * ten times the size and the product stays within the limit. */
int namehash_size(int capacity);
/* The hash word of a text, and the bucket of a terminated text. */
unsigned namehash_word(const char *text, size_t len);
unsigned namehash_fn(const char *text, int nbuckets);
namehash *namehash_new(int capacity, int *status_p);
void namehash_free(namehash **h);
/* Value stored for the key, or -1. */
int namehash_find(const namehash *h, const char *key);
/* Adds the key (not checked for presence); 0 or 1001. The entry count grows
 * past the capacity with a new table size. */
int namehash_add(namehash *h, const char *key, int value);
/* For the name set: lookup of a text of known length that also gives its
 * hash word, an add with a known hash word, removal of the newest entry,
 * and new key pointers after the texts moved (entry e takes keys[value]). */
int namehash_lookup_n(const namehash *h, const char *key, size_t len,
                      unsigned *hash_p);
int namehash_push_at(namehash *h, const char *key, int value, unsigned hash);
void namehash_drop_last(namehash *h);
void namehash_rekey(namehash *h, char *const *keys);

/* ---- name set --------------------------------------------------------------- */

struct nameset {
    namehash *index; /* null for a set without hash */
    char **names;
    char *store;
    int growmode;
    int growcount;
    long growbytes;
    int capacity;
    long storebytes;
    int count;
    long usedbytes;
    char defaultprefix;
};

nameset *nameset_new(int capacity, long storebytes, char prefix, int withhash,
                     int *status_p);
void nameset_free(nameset **set);
void nameset_setgrow(nameset *set, int count, long bytes);
int nameset_find(const nameset *set, const char *name);
/* Index of the name, added when absent (the new index is count - 1); -1
 * with *status_p set on failure. Hash sets only. */
int nameset_findadd(nameset *set, const char *name, int *status_p);
/* The same for a text of known length that need not be terminated. */
int nameset_findaddn(nameset *set, const char *name, int len, int *status_p);
int nameset_add(nameset *set, int n, const char *const *names);
const char *nameset_name(const nameset *set, int i);
int nameset_count(const nameset *set);
void nameset_trim(nameset *set, int n);

/* ---- sorted index of a plain store ---------------------------------------- */

void sorted_index(int n, char *const *names, int *order);
/* Binary search with a memory of the last hit in *state (start it at 0). */
int sorted_find(int *state, char *const *names, const char *key,
                const int *order, int n);
/* Sorts keys ascending, moving the values along (Shell sort). */
void sorted_pairs(int n, int *keys, double *values);

#endif
