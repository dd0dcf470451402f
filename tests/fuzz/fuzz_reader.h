/* Shared body of the reader fuzz targets: the input becomes a file, the
 * reader reads it into a fresh record, and the record is freed. A second
 * pass with an allocation failure injected checks the clean-up paths. */
#ifndef TRV_FUZZ_READER_H
#define TRV_FUZZ_READER_H

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "formats/rwutil.h"

inline void fuzz_quiet(TRVenv) {}

template <class Reader>
int fuzz_one(const unsigned char *data, size_t size, const char *suffix, Reader reader) {
    static TRVenv env = nullptr;
    static char path[256];
    if (env == nullptr) {
        int status;
        env = TRVopenTORVA(&status);
        std::snprintf(path, sizeof path, "/tmp/trvfuzz%d%s", static_cast<int>(getpid()), suffix);
    }
    FILE *f = std::fopen(path, "wb");
    if (f == nullptr) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);
    read_model m;
    std::memset(&m, 0, sizeof m);
    reader(env, path, RM_INTS | RM_QUAD, &m);
    rm_free(&m);
    /* the same input with the n-th allocation failing */
    if (size > 0) {
        trv_alloc_failat(1 + data[0] % 24);
        reader(env, path, RM_INTS | RM_QUAD, &m);
        trv_alloc_failat(0);
        rm_free(&m);
    }
    return 0;
}

#endif
