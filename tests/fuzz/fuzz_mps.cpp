/* libFuzzer target of the MPS reader. */
#include "fuzz_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size) {
    return fuzz_one(data, size, ".mps", mps_read);
}
