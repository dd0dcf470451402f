/*
 * kheap.cpp - the indexed heap behind the kept choices of the simplex: the
 * candidates of a choice (positions or variables) ordered by a key v/w,
 * compared as v*w' against v'*w without a division, ties to the smaller
 * index. An item's place is kept, so that an iteration puts back only the
 * items it changed; those are collected as dirty and settled before the
 * next choice.
 */
#include "simplex/core.h"

int kheap_alloc(key_heap *h, int cap) {
    int n = cap > 0 ? cap : 1;
    h->heap = trv_alloc<int>(n);
    h->at = trv_alloc<int>(n);
    h->kv = trv_alloc<double>(n);
    h->kw = trv_alloc<double>(n);
    h->dirty = trv_alloc<int>(n);
    h->dirty_in = trv_zalloc<char>(n);
    h->n = h->ndirty = 0;
    h->cap = cap;
    h->stale = 1;
    return h->heap && h->at && h->kv && h->kw && h->dirty && h->dirty_in ? 0 : 1001;
}

void kheap_free(key_heap *h) {
    trv_free(&h->heap);
    trv_free(&h->at);
    trv_free(&h->kv);
    trv_free(&h->kw);
    trv_free(&h->dirty);
    trv_free(&h->dirty_in);
}

static void up(key_heap *h, int k) {
    int *a = h->heap, i = a[k];
    while (k > 0) {
        int p = (k - 1) / 2;
        if (!kheap_better(h, i, a[p])) break;
        a[k] = a[p];
        h->at[a[k]] = k;
        k = p;
    }
    a[k] = i;
    h->at[i] = k;
}

static void down(key_heap *h, int k) {
    int *a = h->heap, n = h->n, i = a[k];
    for (;;) {
        int c = 2 * k + 1;
        if (c >= n) break;
        if (c + 1 < n && kheap_better(h, a[c + 1], a[c])) c++;
        if (!kheap_better(h, a[c], i)) break;
        a[k] = a[c];
        h->at[a[k]] = k;
        k = c;
    }
    a[k] = i;
    h->at[i] = k;
}

void kheap_begin(key_heap *h) {
    for (int i = 0; i < h->cap; i++) h->at[i] = -1;
    for (int k = 0; k < h->ndirty; k++) h->dirty_in[h->dirty[k]] = 0;
    h->n = h->ndirty = 0;
}

void kheap_append(key_heap *h, int i, double v, double w) {
    h->kv[i] = v;
    h->kw[i] = w;
    h->heap[h->n] = i;
    h->at[i] = h->n++;
}

void kheap_order(key_heap *h) {
    for (int k = h->n / 2 - 1; k >= 0; k--) down(h, k);
    h->stale = 0;
}

void kheap_set(key_heap *h, int i, double v, double w) {
    h->kv[i] = v;
    h->kw[i] = w;
    if (h->at[i] < 0) {
        h->heap[h->n] = i;
        h->at[i] = h->n++;
        up(h, h->at[i]);
    } else {
        up(h, h->at[i]);
        down(h, h->at[i]);
    }
}

void kheap_remove(key_heap *h, int i) {
    int k = h->at[i];
    if (k < 0) return;
    h->at[i] = -1;
    int last = h->heap[--h->n];
    if (k == h->n) return;
    h->heap[k] = last;
    h->at[last] = k;
    up(h, k);
    down(h, h->at[last]);
}

int kheap_best(const key_heap *h, const int *ban) {
    if (h->n == 0) return -1;
    int top = h->heap[0];
    if (ban[top] != BAN_ROUND) return top;
    int best = -1;
    for (int k = 0; k < h->n; k++) {
        int i = h->heap[k];
        if (ban[i] == BAN_ROUND) continue;
        if (best < 0 || kheap_better(h, i, best)) best = i;
    }
    return best;
}
