/* Tests of internal kernels call the library's own functions, which work on
 * records; the interface hands out handles. These give the record behind a
 * handle. */
#ifndef TRV_TEST_INTERNAL_H
#define TRV_TEST_INTERNAL_H

#include "store/lp.h"

inline TRVenv env_of(TRVenv handle) { return env_record(handle); }
inline TRVlp lp_of(TRVlp handle) {
    return static_cast<TRVlp>(handle_find(handle, HANDLE_LP, nullptr, nullptr));
}

#endif
