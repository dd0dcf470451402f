/* The differential run of warm starts at scale: random sequences of model
 * changes on random models and on small netlib models, each re-solve in
 * place from the kept basis against a cold solve of a fresh copy, every
 * optimum checked for its optimality conditions, clones compared with the
 * test's own model (tests/support/warmdiff.h has the rules).
 *
 *   warm_diff [--sequences N] [--steps K] [--seed S] [--examples E] [--nonetlib]
 *             [--unscaled] [--noclone] [--display] [--detail]
 *
 * --unscaled runs with scaling off (parameter 1034 at -1); --noclone leaves
 * the clones out.
 * --seed S --sequences 1 repeats one sequence of an example; --display
 * shows the log of every solve on the screen.
 * Prints the count of sequences, how many agree, the first faults by kind,
 * a few examples, and a last line of figures. The netlib folder comes from
 * TRV_DATA_DIR (the environment) or the build's setting. */
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "support/peer.h"
#include "support/warmdiff.h"

#ifndef TRV_DATA_DIR
#define TRV_DATA_DIR "../shared/data"
#endif

/* The small netlib models of the run. */
static const char *const kNetlib[] = {"afiro", "sc50a", "sc50b", "kb2", "adlittle", "blend",
                                      "share2b", "sc105", "stocfor1", "recipe", "scagr7",
                                      "boeing2", "israel", "share1b", "vtpbase", "brandy"};

int main(int argc, char **argv) {
    int sequences = 3000, steps = 8, examples = 12;
    unsigned seed0 = 1;
    bool netlib = true, unscaled = false;
    int display = 0;
    for (int a = 1; a < argc; a++) {
        std::string s = argv[a];
        if (s == "--sequences" && a + 1 < argc) sequences = std::atoi(argv[++a]);
        else if (s == "--steps" && a + 1 < argc) steps = std::atoi(argv[++a]);
        else if (s == "--seed" && a + 1 < argc) seed0 = static_cast<unsigned>(std::atoi(argv[++a]));
        else if (s == "--examples" && a + 1 < argc) examples = std::atoi(argv[++a]);
        else if (s == "--nonetlib") netlib = false;
        else if (s == "--unscaled") unscaled = true;
        else if (s == "--noclone") warmdiff::no_clones = true;
        else if (s == "--display") display = 1;
        else if (s == "--detail") display = 2;
        else {
            std::fprintf(stderr, "usage: warm_diff [--sequences N] [--steps K] [--seed S] "
                                 "[--examples E] [--nonetlib] [--unscaled] [--noclone] [--display] "
                                 "[--detail]\n");
            return 2;
        }
    }
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    if (unscaled) TRVsetintparam(t.env, 1034, -1);
    if (display) {
        TRVsetintparam(t.env, 1019, display);
        TRVsetintparam(t.env, 1035, 1);
        warmdiff::trace = true;
    }
    warmdiff::Pool pool;
    if (netlib) {
        std::string dir = data_dir(TRV_DATA_DIR) + "/netlib/";
        for (const char *name : kNetlib) {
            Model md;
            if (warmdiff::read_model(t.env, dir + name + ".mps.gz", &md)) pool.netlib.push_back(md);
        }
    }
    std::printf("%d sequences of %d steps, %zu netlib models in the pool\n", sequences, steps,
                pool.netlib.size());
    warmdiff::Tally tally;
    auto t0 = std::chrono::steady_clock::now();
    for (int k = 0; k < sequences; k++) {
        unsigned seed = seed0 + static_cast<unsigned>(k);
        std::string fault = warmdiff::run_sequence(t.env, pool.pick(seed), seed, steps, &tally.solves);
        warmdiff::record(tally, fault, static_cast<size_t>(examples));
        if (display && !fault.empty()) std::printf("%s\n", fault.c_str());
        t.clear();
    }
    double secs = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    std::printf("\nfirst fault of a sequence, by kind:\n");
    for (auto &[kind, count] : tally.first_fault) std::printf("  %6d  %s\n", count, kind.c_str());
    std::printf("\nexamples:\n");
    for (auto &e : tally.examples) std::printf("  %s\n", e.c_str());
    std::printf("\nsequences %d  agree %d  disagree %d  solves %d  seconds %.1f\n", tally.sequences,
                tally.agree, tally.sequences - tally.agree, tally.solves, secs);
    return 0;
}
