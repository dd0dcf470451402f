/* Helpers of the reader tests: scratch files, the data folder, and reads
 * into the readers' record with the channels captured. */
#ifndef TRV_TEST_FMT_UTIL_H
#define TRV_TEST_FMT_UTIL_H

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "formats/rwutil.h"
#include "support/internal.h"
#include "support/model.h"

/* A scratch folder for the test binary, removed at exit. */
inline std::string scratch_dir() {
    static std::string dir = [] {
        std::string tmpl = (std::filesystem::temp_directory_path() / "trvfmtXXXXXX").string();
        char *d = mkdtemp(tmpl.data());
        std::string s = d != nullptr ? d : ".";
        static struct cleanup {
            std::string path;
            ~cleanup() {
                std::error_code ec;
                std::filesystem::remove_all(path, ec);
            }
        } c{s};
        return s;
    }();
    return dir;
}

inline std::string write_file(const std::string &name, const std::string &text) {
    std::string path = scratch_dir() + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

/* The data folder: the TRV_DATA_DIR environment variable, else the build
 * setting; empty when the folder is not there. */
inline std::string data_dir() {
    const char *e = std::getenv("TRV_DATA_DIR");
    std::string d = e != nullptr && *e ? e : TRV_DATA_DIR;
    return std::filesystem::is_directory(d) ? d : std::string();
}

/* One read of a text through a reader, with what it said. */
struct Read {
    TestEnv te;
    read_model m;
    int status = 0;
    Read() { std::memset(&m, 0, sizeof m); }
    ~Read() { rm_free(&m); }
    int mps(const std::string &text, int want = RM_INTS | RM_QUAD,
            const std::string &name = "t.mps") {
        rm_free(&m);
        te.clear();
        status = mps_read(env_of(te.env), write_file(name, text).c_str(), want, &m);
        return status;
    }
    int lp(const std::string &text, int want = RM_INTS | RM_QUAD,
           const std::string &name = "t.lp") {
        rm_free(&m);
        te.clear();
        status = lp_read(env_of(te.env), write_file(name, text).c_str(), want, &m);
        return status;
    }
    int col(const char *name) const {
        for (int j = 0; j < m.ncols; j++)
            if (std::strcmp(m.colname[j], name) == 0) return j;
        return -1;
    }
    int row(const char *name) const {
        for (int i = 0; i < m.nrows; i++)
            if (std::strcmp(m.rowname[i], name) == 0) return i;
        return -1;
    }
    /* Coefficient of row i in column j. */
    double coef(int i, int j) const {
        for (int k = m.matbeg[j]; k < m.matbeg[j] + m.matcnt[j]; k++)
            if (m.matind[k] == i) return m.matval[k];
        return 0.0;
    }
    bool said(const std::string &text) const {
        return (te.err + te.warn + te.res).find(text) != std::string::npos;
    }
};

#endif
