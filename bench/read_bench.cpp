/* Reading speed of the model readers on the public test sets.
 *
 * Every model of netlib, miplib3, infeas and lp under the data folder
 * (TRV_DATA_DIR in the environment, else the build setting) is unpacked to
 * a scratch folder, and read from there a few times; the best time counts.
 * Megabytes are those of the uncompressed text. Where the clp program is
 * on the path, it reads the same MPS files in the same run as a peer: its
 * time is the wall time of "clp file -quit" less that of a bare "clp
 * -quit", and the ratio peer / ours is printed. The compressed files are
 * also read once through the gzip pipe.
 *
 * Last, a model with generated names (rows R0000001, ..., columns C0000001,
 * ...; N of each, 1,500,000 unless "--names N" says otherwise, 0 skips it)
 * is written to the scratch folder as free MPS and as LP and read once in
 * each form: names that differ only in their last digits are what a weak
 * name hash crowds into few buckets. clp reads the MPS file and glpsol the
 * LP file as peers, where they are on the path. */
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>
#include <unistd.h>

#include "formats/rwutil.h"

namespace fs = std::filesystem;

namespace {

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

struct Model {
    std::string packed, plain;
    bool lp;
    double bytes;
};

double wall_of(const std::string &cmd) {
    double t = now();
    if (std::system(cmd.c_str()) != 0) return -1.0;
    return now() - t;
}

/* n rows and n columns: column j has 1 in the objective and in rows j and
 * j + 1 (the last one in row 1); every row is ">= 1". */
void write_generated(const std::string &mps, const std::string &lp, long n) {
    FILE *f = std::fopen(mps.c_str(), "w");
    std::fprintf(f, "NAME GENNAMES\nROWS\n N obj\n");
    for (long i = 1; i <= n; i++) std::fprintf(f, " G R%07ld\n", i);
    std::fprintf(f, "COLUMNS\n");
    for (long j = 1; j <= n; j++)
        std::fprintf(f, " C%07ld obj 1 R%07ld 1\n C%07ld R%07ld 1\n", j, j, j, j % n + 1);
    std::fprintf(f, "RHS\n");
    for (long i = 1; i <= n; i++) std::fprintf(f, " rhs R%07ld 1\n", i);
    std::fprintf(f, "ENDATA\n");
    std::fclose(f);
    f = std::fopen(lp.c_str(), "w");
    std::fprintf(f, "Minimize\n obj:");
    for (long j = 1; j <= n; j++) std::fprintf(f, j % 8 == 0 ? " + C%07ld\n" : " + C%07ld", j);
    std::fprintf(f, "\nSubject To\n");
    for (long i = 1; i <= n; i++)
        std::fprintf(f, " R%07ld: C%07ld + C%07ld >= 1\n", i, i, i == 1 ? n : i - 1);
    std::fprintf(f, "End\n");
    std::fclose(f);
}

double read_once(TRVenv env, const std::string &path, bool lp) {
    read_model rm;
    double t = now();
    int s = lp ? lp_read(env, path.c_str(), 0, &rm) : mps_read(env, path.c_str(), 0, &rm);
    t = now() - t;
    if (s != 0) std::printf("  %s: status %d\n", path.c_str(), s);
    rm_free(&rm);
    return t;
}

}  // namespace

int main(int argc, char **argv) {
    const char *e = std::getenv("TRV_DATA_DIR");
    std::string data = e != nullptr && *e ? e : TRV_DATA_DIR;
    long gen = 1500000;
    for (int a = 1; a < argc; a++) {
        if (std::strcmp(argv[a], "--names") == 0 && a + 1 < argc)
            gen = std::atol(argv[++a]);
        else
            data = argv[a];
    }
    if (!fs::is_directory(data)) std::printf("no data folder at %s\n", data.c_str());
    int status = 0;
    TRVenv env = TRVopenTORVA(&status);
    std::string scratch = (fs::temp_directory_path() / ("trvbench" + std::to_string(getpid()))).string();
    fs::create_directories(scratch);
    bool peer = std::system("clp -quit > /dev/null 2>&1") == 0;
    double peer_base = 0.0;
    if (peer) {
        peer_base = 1e9;
        for (int k = 0; k < 5; k++) {
            double t = wall_of("clp -quit > /dev/null 2>&1");
            if (t < peer_base) peer_base = t;
        }
    }
    if (fs::is_directory(data))
        std::printf("%-8s %6s %9s %9s %9s %10s %9s\n", "folder", "files", "MB", "MB/s",
                    "gz MB/s", "peer MB/s", "ratio");
    double all_bytes = 0, all_time = 0;
    for (const char *folder : {"netlib", "miplib3", "infeas", "lp"}) {
        if (!fs::is_directory(data)) break;
        std::string dir = data + "/" + folder;
        if (!fs::is_directory(dir)) continue;
        std::vector<Model> models;
        for (const auto &f : fs::directory_iterator(dir)) {
            std::string name = f.path().filename().string();
            bool lp = name.size() > 3 && name.find(".lp") != std::string::npos;
            if (!lp && name.find(".mps") == std::string::npos) continue;
            Model m{f.path().string(), scratch + "/" + name, lp, 0};
            if (trv_hasgz(name.c_str())) {
                m.plain = scratch + "/" + name.substr(0, name.size() - 3);
                std::string cmd = "gzip -cd '" + m.packed + "' > '" + m.plain + "'";
                if (std::system(cmd.c_str()) != 0) continue;
            } else {
                fs::copy_file(m.packed, m.plain, fs::copy_options::overwrite_existing);
            }
            m.bytes = static_cast<double>(fs::file_size(m.plain));
            models.push_back(m);
        }
        double bytes = 0, best = 1e30, gz = 0, peer_time = 0;
        for (const auto &m : models) bytes += m.bytes;
        for (int rep = 0; rep < 3; rep++) {
            double t = now();
            for (const auto &m : models) {
                read_model rm;
                int s = m.lp ? lp_read(env, m.plain.c_str(), RM_INTS | RM_QUAD, &rm)
                             : mps_read(env, m.plain.c_str(), RM_INTS | RM_QUAD, &rm);
                if (s != 0) std::printf("  %s: status %d\n", m.plain.c_str(), s);
                rm_free(&rm);
            }
            t = now() - t;
            if (t < best) best = t;
        }
        double t = now();
        for (const auto &m : models) {
            read_model rm;
            if (m.lp)
                lp_read(env, m.packed.c_str(), RM_INTS | RM_QUAD, &rm);
            else
                mps_read(env, m.packed.c_str(), RM_INTS | RM_QUAD, &rm);
            rm_free(&rm);
        }
        gz = now() - t;
        bool with_peer = peer && std::strcmp(folder, "lp") != 0;
        if (with_peer)
            for (const auto &m : models) {
                double w = wall_of("clp '" + m.plain + "' -quit > /dev/null 2>&1");
                peer_time += w > peer_base ? w - peer_base : 0.0;
            }
        double mb = bytes / 1e6;
        if (with_peer)
            std::printf("%-8s %6zu %9.2f %9.1f %9.1f %10.1f %9.2f\n", folder, models.size(), mb,
                        mb / best, mb / gz, mb / peer_time, peer_time / best);
        else
            std::printf("%-8s %6zu %9.2f %9.1f %9.1f %10s %9s\n", folder, models.size(), mb,
                        mb / best, mb / gz, "-", "-");
        all_bytes += bytes;
        all_time += best;
    }
    if (all_time > 0)
        std::printf("%-8s %6s %9.2f %9.1f\n", "total", "", all_bytes / 1e6,
                    all_bytes / 1e6 / all_time);
    if (gen > 0) {
        std::string mps = scratch + "/gennames.mps", lp = scratch + "/gennames.lp";
        write_generated(mps, lp, gen);
        double tm = read_once(env, mps, false), tl = read_once(env, lp, true);
        double pm = -1, pl = -1;
        if (peer) pm = wall_of("clp '" + mps + "' -quit > /dev/null 2>&1") - peer_base;
        if (std::system("glpsol --version > /dev/null 2>&1") == 0)
            pl = wall_of("glpsol --lp '" + lp + "' --check > /dev/null 2>&1");
        std::printf("\ngenerated names, %ld rows and %ld columns:\n", gen, gen);
        std::printf("%-8s %9s %9s %9s\n", "form", "MB", "seconds", "peer s");
        for (int k = 0; k < 2; k++) {
            const std::string &path = k == 0 ? mps : lp;
            double t = k == 0 ? tm : tl, p = k == 0 ? pm : pl;
            char ps[32] = "-";
            if (p >= 0) std::snprintf(ps, sizeof ps, "%.2f", p);
            std::printf("%-8s %9.1f %9.2f %9s\n", k == 0 ? "mps" : "lp",
                        static_cast<double>(fs::file_size(path)) / 1e6, t, ps);
        }
        std::printf("generated names: mps %.2f s, lp %.2f s\n", tm, tl);
    }
    fs::remove_all(scratch);
    TRVcloseTORVA(&env);
    return 0;
}
