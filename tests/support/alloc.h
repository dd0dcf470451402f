/* The allocation-failure loop of the memory tests: every allocation of one
 * call is made to fail in turn. */
#ifndef TRV_TEST_ALLOC_H
#define TRV_TEST_ALLOC_H

#include <gtest/gtest.h>

#include "frame/trv.h"

/* prepare() builds the state the call starts from (its allocations are not
 * counted), call(state) makes the call and gives its status, and
 * after(state, status, n) checks the outcome of the run whose n-th
 * allocation failed (n = 0: the run that counted) and releases the state.
 * The allocations are counted on a run of the same call from the same kind
 * of state, so that the last of them fails in turn too. Every status must
 * be 0 or 1001; the count of 1001s comes back. */
template <class Prepare, class Call, class After>
int every_allocation_fails(Prepare prepare, Call call, After after) {
    auto state = prepare();
    long before = trv_alloc_count();
    int status = call(state);
    long used = trv_alloc_count() - before;
    after(state, status, 0L);
    EXPECT_GT(used, 0);
    int failures = 0;
    for (long n = 1; n <= used; n++) {
        auto s = prepare();
        trv_alloc_failat(n);
        status = call(s);
        trv_alloc_failat(0);
        EXPECT_TRUE(status == 0 || status == 1001)
            << "allocation " << n << " of " << used << ": " << status;
        failures += status == 1001;
        after(s, status, n);
    }
    return failures;
}

#endif
