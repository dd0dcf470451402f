/*
 * util.cpp - the allocator, string and C-file helpers, the random generator
 * and the clock.
 *
 * Blocks are 16-byte aligned: the allocator asks for size + 16 bytes, rounds
 * the address down to a multiple of 16 and adds 16; the byte just below the
 * returned address holds the distance (1 to 16) back to the raw pointer.
 */
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "trv.h"

static std::atomic<long> alloc_failat{0};
static std::atomic<long> alloc_count{0};

void trv_alloc_failat(long n) { alloc_failat = n; }
long trv_alloc_count(void) { return alloc_count; }

/* True when the injected failure is due now. */
static bool alloc_should_fail(void) {
    alloc_count++;
    long n = alloc_failat.load();
    if (n <= 0) return false;
    if (n == 1) {
        alloc_failat = 0;
        return true;
    }
    alloc_failat = n - 1;
    return false;
}

static void *align_block(unsigned char *raw) {
    uintptr_t a = reinterpret_cast<uintptr_t>(raw);
    uintptr_t p = (a & ~static_cast<uintptr_t>(15)) + 16;
    unsigned char *user = reinterpret_cast<unsigned char *>(p);
    user[-1] = static_cast<unsigned char>(p - a);
    return user;
}

static unsigned char *raw_of(void *block) {
    unsigned char *user = static_cast<unsigned char *>(block);
    return user - user[-1];
}

void *trv_malloc(size_t size) {
    if (size == 0) size = 1;
    if (size > SIZE_MAX - 16 || alloc_should_fail()) return nullptr;
    unsigned char *raw = static_cast<unsigned char *>(std::malloc(size + 16));
    if (raw == nullptr) return nullptr;
    return align_block(raw);
}

void *trv_calloc(size_t count, size_t size) {
    if (count == 0) count = 1;
    if (size == 0) size = 1;
    if (count > (SIZE_MAX - 16) / size) return nullptr;
    void *p = trv_malloc(count * size);
    if (p != nullptr) std::memset(p, 0, count * size);
    return p;
}

void *trv_realloc(void *block, size_t size) {
    if (block == nullptr) return nullptr;
    if (size == 0) size = 1;
    if (size > SIZE_MAX - 16 || alloc_should_fail()) return nullptr;
    unsigned char *oldraw = raw_of(block);
    unsigned olddist = static_cast<unsigned char *>(block)[-1];
    unsigned char *raw =
        static_cast<unsigned char *>(std::realloc(oldraw, size + 16));
    if (raw == nullptr) return nullptr;
    uintptr_t a = reinterpret_cast<uintptr_t>(raw);
    unsigned newdist = static_cast<unsigned>(((a & ~static_cast<uintptr_t>(15)) + 16) - a);
    if (newdist != olddist) /* the data sits at the old distance: move it */
        std::memmove(raw + newdist, raw + olddist, size);
    return align_block(raw);
}

void trv_free_block(void *block) {
    if (block != nullptr) std::free(raw_of(block));
}

char *trv_strdup(const char *s) {
    if (s == nullptr) return nullptr;
    size_t n = std::strlen(s) + 1;
    char *p = static_cast<char *>(trv_malloc(n));
    if (p != nullptr) std::memcpy(p, s, n);
    return p;
}

TRV_EXPORT void *TRVmalloc(size_t size) { return trv_malloc(size); }
TRV_EXPORT void *TRVrealloc(void *block, size_t size) {
    return trv_realloc(block, size);
}
TRV_EXPORT void TRVfree(void *block) { trv_free_block(block); }

TRV_EXPORT void *TRVmemcpy(void *dest, const void *src, size_t count) {
    unsigned char *d = static_cast<unsigned char *>(dest);
    const unsigned char *s = static_cast<const unsigned char *>(src);
    for (size_t i = 0; i < count; i++) d[i] = s[i];
    return dest;
}

TRV_EXPORT size_t TRVstrlen(const char *s) {
    size_t n = 0;
    while (s[n] != '\0') n++;
    return n;
}

TRV_EXPORT char *TRVstrcpy(char *dest, const char *src) {
    size_t i = 0;
    do {
        dest[i] = src[i];
    } while (src[i++] != '\0');
    return dest;
}

TRV_EXPORT FILE *TRVfopen(const char *name, const char *mode) {
    if (name == nullptr || mode == nullptr) return nullptr;
    return std::fopen(name, mode);
}
TRV_EXPORT int TRVfclose(FILE *file) {
    return file == nullptr ? EOF : std::fclose(file);
}
TRV_EXPORT int TRVfputs(const char *s, FILE *file) {
    if (s == nullptr || file == nullptr) return EOF;
    return std::fputs(s, file);
}
TRV_EXPORT int TRVputenv(char *envsetting) {
    if (envsetting == nullptr) return -1;
    return putenv(envsetting);
}

TRV_EXPORT void TRVEpower_C_lock(int) {}
TRV_EXPORT void TRVEpower_C_unlock(int) {}

/* Linear congruential generator, 15 bits a draw. */
int env_random(TRVenv env) {
    env->randseed = env->randseed * 1103515245u + 12345u;
    return static_cast<int>((env->randseed >> 16) & 0x7fff);
}

double env_randomd(TRVenv env) { return env_random(env) * 3.0517578125e-05; }

int env_ncpu(int limit) {
    int n = static_cast<int>(std::thread::hardware_concurrency());
    if (n > limit) n = limit;
    if (n < 1) n = 1;
    return n;
}

/* Seconds since the first call in the process, from a monotonic clock. */
double env_time(TRVenv) {
    using clk = std::chrono::steady_clock;
    static const clk::time_point origin = clk::now();
    return std::chrono::duration<double>(clk::now() - origin).count();
}
