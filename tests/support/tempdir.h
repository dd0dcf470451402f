/* A temporary folder for a test's files, removed with them at the end. */
#ifndef TRV_TEST_TEMPDIR_H
#define TRV_TEST_TEMPDIR_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

struct TempDir {
    std::string path;
    TempDir() {
        std::string tmpl = (std::filesystem::temp_directory_path() / "trvtstXXXXXX").string();
        char *d = mkdtemp(tmpl.data());
        path = d != nullptr ? d : ".";
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    std::string file(const std::string &name) const { return path + "/" + name; }
    /* Writes a file of the folder and returns its path. */
    std::string put(const std::string &name, const std::string &text) const {
        std::ofstream(file(name), std::ios::binary) << text;
        return file(name);
    }
};

#endif
