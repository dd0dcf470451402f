/* The public test models and the peer solver: where the data folder is, the
 * reference table of a folder, and a run of clp on a model file with its
 * objective, iteration count and wall time. */
#ifndef TRV_TEST_PEER_H
#define TRV_TEST_PEER_H

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

/* The data folder: the environment variable TRV_DATA_DIR, else the given
 * default (the build's setting). */
inline std::string data_dir(const char *fallback) {
    const char *e = std::getenv("TRV_DATA_DIR");
    return e != nullptr && *e ? std::string(e) : std::string(fallback ? fallback : "");
}

inline bool path_exists(const std::string &p) {
    struct stat sb;
    return stat(p.c_str(), &sb) == 0;
}

struct RefEntry {
    std::string name, status;
    int rows = 0, cols = 0;
    double objective = 0.0, peer_seconds = 0.0;
};

inline std::vector<RefEntry> read_reference(const std::string &folder) {
    std::vector<RefEntry> out;
    std::ifstream in(folder + "/REFERENCE.tsv");
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream ls(line);
        RefEntry e;
        std::string obj, secs;
        std::getline(ls, e.name, '\t');
        ls >> e.rows >> e.cols >> e.status >> obj >> secs;
        e.objective = std::strtod(obj.c_str(), nullptr);
        e.peer_seconds = std::strtod(secs.c_str(), nullptr);
        out.push_back(e);
    }
    return out;
}

struct PeerRun {
    bool ran = false, optimal = false;
    double objective = 0.0, seconds = 0.0;
    long iterations = 0;
};

inline const char *peer_program() { return "/usr/bin/clp"; }

/* clp on a model file with the given method ("-primalsimplex" or
 * "-dualsimplex"); solve_seconds, when given, gets the time clp reports
 * for its optimisation alone (after reading the file). */
inline PeerRun run_clp(const std::string &file, const char *method = "-primalsimplex",
                       double *solve_seconds = nullptr) {
    PeerRun r;
    if (solve_seconds) *solve_seconds = 0.0;
    if (!path_exists(peer_program())) return r;
    std::string cmd = std::string(peer_program()) + " '" + file + "' " + method + " 2>&1";
    auto t0 = std::chrono::steady_clock::now();
    FILE *p = popen(cmd.c_str(), "r");
    if (p == nullptr) return r;
    char buf[4096];
    std::string out;
    while (std::fgets(buf, sizeof buf, p) != nullptr) out += buf;
    pclose(p);
    r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    r.ran = true;
    size_t k = out.find("Optimal objective ");
    if (k != std::string::npos) {
        r.optimal = true;
        char *end = nullptr;
        r.objective = std::strtod(out.c_str() + k + 18, &end);
        const char *dash = std::strstr(end, "- ");
        if (dash != nullptr) r.iterations = std::strtol(dash + 2, nullptr, 10);
        const char *tm = std::strstr(end, "time ");
        if (tm != nullptr && solve_seconds) *solve_seconds = std::strtod(tm + 5, nullptr);
    }
    return r;
}

#endif
