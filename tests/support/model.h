/* Test helpers: environments that capture their channels, and small models
 * built through the C interface. */
#ifndef TRV_TEST_MODEL_H
#define TRV_TEST_MODEL_H

#include <string>
#include <vector>

#include "trvlib.h"

/* An environment whose four standard channels are captured as text. */
struct TestEnv {
    TRVenv env = nullptr;
    std::string err, warn, res, log;
    TestEnv();
    ~TestEnv();
    TestEnv(const TestEnv &) = delete;
    TestEnv &operator=(const TestEnv &) = delete;
    void clear() { err.clear(), warn.clear(), res.clear(), log.clear(); }
};

/* A model in plain column form, the shape TRVcopylpwnames takes. */
struct Model {
    std::string name = "model";
    int objsen = 1;
    std::vector<double> obj, lb, ub;
    std::vector<double> rhs, rngval;
    std::vector<char> sense;
    std::vector<int> matbeg, matcnt, matind;
    std::vector<double> matval;
    std::vector<std::string> colnames, rownames;

    int ncols() const { return static_cast<int>(obj.size()); }
    int nrows() const { return static_cast<int>(rhs.size()); }
    /* Adds a column with its entries (row, value). */
    void col(double c, double l, double u,
             std::vector<std::pair<int, double>> entries,
             const std::string &nm = "");
    void row(char s, double r, double rng = 0.0, const std::string &nm = "");
    /* Copies the model into a new library-owned problem; null on failure. */
    TRVlp copy_into(TRVenv env, int *status = nullptr) const;
};

/* A small mixed model: 3 columns, rows 'L', 'G', 'E' and 'R'. */
Model small_model();

#endif
