/* Reading speed of the model readers on the public test sets.
 *
 * Every model of netlib, miplib3, infeas and lp under the data folder
 * (TRV_DATA_DIR in the environment, else the build setting) is unpacked to
 * a scratch folder, and read from there a few times; the best time counts.
 * Megabytes are those of the uncompressed text. Where the clp program is
 * on the path, it reads the same MPS files in the same run as a peer: its
 * time is the wall time of "clp file -quit" less that of a bare "clp
 * -quit", and the ratio peer / ours is printed. The compressed files are
 * also read once through the gzip pipe. */
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

}  // namespace

int main(int argc, char **argv) {
    const char *e = std::getenv("TRV_DATA_DIR");
    std::string data = e != nullptr && *e ? e : TRV_DATA_DIR;
    if (argc > 1) data = argv[1];
    if (!fs::is_directory(data)) {
        std::printf("no data folder at %s\n", data.c_str());
        return 0;
    }
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
    std::printf("%-8s %6s %9s %9s %9s %10s %9s\n", "folder", "files", "MB", "MB/s", "gz MB/s",
                "peer MB/s", "ratio");
    double all_bytes = 0, all_time = 0;
    for (const char *folder : {"netlib", "miplib3", "infeas", "lp"}) {
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
    std::printf("%-8s %6s %9.2f %9.1f\n", "total", "", all_bytes / 1e6, all_bytes / 1e6 / all_time);
    fs::remove_all(scratch);
    TRVcloseTORVA(&env);
    return 0;
}
