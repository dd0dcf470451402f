/* libFuzzer target of the BAS reader: the input is read against a fixed
 * name table of columns x1..x4, "a b" (never matched) and rows c1 ('L'),
 * c2 ('G'), c3 ('E'), c4 ('R'). */
#include "formats/bas.h"
#include "fuzz_reader.h"

static int bas_fuzz_read(TRVenv env, const char *path, int, read_model *) {
    static char cn[][8] = {"x1", "x2", "x3", "x4", "a b"};
    static char rn[][8] = {"c1", "c2", "c3", "c4"};
    static char *cp[] = {cn[0], cn[1], cn[2], cn[3], cn[4]};
    static char *rp[] = {rn[0], rn[1], rn[2], rn[3]};
    int cstat[5], rstat[4];
    bas_target t = {5, 4, cp, rp, "LGER"};
    int status = bas_read(env, path, ".bas", &t, cstat, rstat);
    /* and once against default names without senses */
    bas_target d = {5, 4, nullptr, nullptr, nullptr};
    if (status == 0) status = bas_read(env, path, nullptr, &d, cstat, rstat);
    return status;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size) {
    return fuzz_one(data, size, ".bas", bas_fuzz_read);
}
