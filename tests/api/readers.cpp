/* The exported readers as a caller meets them: arrays handed out for
 * TRVfree, optional arrays declined with null, and nothing handed out on
 * failure. */
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

#include "support/model.h"

namespace {

std::string temp_file(const std::string &name, const std::string &text) {
    std::string path = "/tmp/trvapi" + std::to_string(getpid()) + name;
    std::ofstream(path) << text;
    return path;
}

/* Everything TRVmpsmread hands out. */
struct MpsOut {
    int ncols = -1, nrows = -1, nrims = -1, objsen = 0;
    double *obj = nullptr, *rhs = nullptr, *matval = nullptr, *lb = nullptr, *ub = nullptr,
           *rngval = nullptr;
    char *sense = nullptr, *dataname = nullptr, *objname = nullptr, *rhsname = nullptr;
    int *matbeg = nullptr, *matcnt = nullptr, *matind = nullptr;
    char **colname = nullptr, *colstore = nullptr, **rowname = nullptr, *rowstore = nullptr;
    int colspace = 0, rowspace = 0, nzspace = 0, colnamespace = 0, rownamespace = 0;
    char *ctype = nullptr;
    int numsos = -1, numsosnz = -1;
    ~MpsOut() {
        for (void *p : {(void *)obj, (void *)rhs, (void *)matval, (void *)lb, (void *)ub,
                        (void *)rngval, (void *)sense, (void *)dataname, (void *)objname,
                        (void *)rhsname, (void *)matbeg, (void *)matcnt, (void *)matind,
                        (void *)colname, (void *)colstore, (void *)rowname, (void *)rowstore,
                        (void *)ctype})
            TRVfree(p);
    }
    int read(TRVenv env, const char *file, bool ints) {
        if (ints)
            return TRVmpsmread(env, file, &ncols, &nrows, &nrims, &objsen, &obj, &rhs, &sense,
                               &matbeg, &matcnt, &matind, &matval, &lb, &ub, &rngval, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr, &dataname, &objname,
                               &rhsname, nullptr, nullptr, &colname, &colstore, &rowname,
                               &rowstore, nullptr, nullptr, &colspace, &rowspace, &nzspace,
                               nullptr, nullptr, &colnamespace, &rownamespace, nullptr, &ctype,
                               &numsos, &numsosnz, nullptr, nullptr, nullptr, nullptr);
        return TRVmpsread(env, file, &ncols, &nrows, &nrims, &objsen, &obj, &rhs, &sense,
                          &matbeg, &matcnt, &matind, &matval, &lb, &ub, &rngval, nullptr,
                          nullptr, nullptr, nullptr, nullptr, nullptr, &dataname, &objname,
                          &rhsname, nullptr, nullptr, &colname, &colstore, &rowname, &rowstore,
                          nullptr, nullptr, &colspace, &rowspace, &nzspace, nullptr, nullptr,
                          &colnamespace, &rownamespace, nullptr);
    }
};

const char *MIP = "NAME MIP\nROWS\n N obj\n L c1\n E c2\nCOLUMNS\n    x obj 1 c1 1\n"
                  "    MARKER 'MARKER' 'INTORG'\n    y obj 2 c2 1\n    MARKER 'MARKER' 'INTEND'\n"
                  "RHS\n    RHS c1 4 c2 1\nRANGES\n    R c1 2\nBOUNDS\n UP B y 5\nENDATA\n";

}  // namespace

TEST(ExportedReaders, MpsArraysAreHandedOut) {
    TestEnv te;
    std::string f = temp_file("a.mps", MIP);
    MpsOut o;
    ASSERT_EQ(o.read(te.env, f.c_str(), true), 0) << te.err;
    EXPECT_EQ(o.ncols, 2);
    EXPECT_EQ(o.nrows, 2);
    EXPECT_EQ(o.nrims, 0);
    EXPECT_STREQ(o.dataname, "MIP");
    EXPECT_STREQ(o.objname, "obj");
    EXPECT_STREQ(o.colname[1], "y");
    EXPECT_STREQ(o.rowname[0], "c1");
    EXPECT_EQ(o.sense[0], 'R');
    EXPECT_EQ(o.rhs[0], 2.0);
    EXPECT_EQ(o.rngval[0], 2.0);
    EXPECT_EQ(o.ctype[0], 'C');
    EXPECT_EQ(o.ctype[1], 'I');
    EXPECT_EQ(o.ub[1], 5.0);
    EXPECT_EQ(o.numsos, 0);
    EXPECT_GE(o.colspace, 2);
    /* the arrays have the caller's room and load as they come */
    TRVlp lp = TRVloadlpwnames(te.env, "mip", o.ncols, o.nrows, o.objsen, o.obj, o.rhs, o.sense,
                               o.matbeg, o.matcnt, o.matind, o.matval, o.lb, o.ub, o.rngval,
                               o.colname, o.colstore, o.rowname, o.rowstore, o.colspace,
                               o.rowspace, o.nzspace, o.colnamespace, o.rownamespace);
    ASSERT_NE(lp, nullptr) << te.err;
    EXPECT_EQ(TRVgetnumcols(te.env, lp), 2);
    TRVunloadprob(te.env, &lp);
    std::remove(f.c_str());
}

TEST(ExportedReaders, LinearCallerIsToldOfIntegers) {
    TestEnv te;
    std::string f = temp_file("b.mps", MIP);
    MpsOut o;
    ASSERT_EQ(o.read(te.env, f.c_str(), false), 0);
    EXPECT_NE(te.warn.find("Problem " + f + " contains integer variable declarations, ignored.\n"),
              std::string::npos);
    EXPECT_EQ(o.ctype, nullptr);
    std::remove(f.c_str());
}

TEST(ExportedReaders, FailureHandsOutNothing) {
    TestEnv te;
    std::string f = temp_file("c.mps", "NAME\nROWS\n N obj\nCOLUMNS\n    x nosuch 1\nENDATA\n");
    MpsOut o;
    EXPECT_EQ(o.read(te.env, f.c_str(), true), 1448);
    EXPECT_EQ(te.err, "TORVA Error  1448: Line 5: 'nosuch' is not a row name.\n");
    EXPECT_EQ(o.obj, nullptr);
    EXPECT_EQ(o.colname, nullptr);
    EXPECT_EQ(o.ncols, 0);
    /* a required out-pointer missing */
    EXPECT_EQ(TRVmpsread(te.env, f.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr),
              1004);
    EXPECT_EQ(o.read(nullptr, f.c_str(), true), 1002);
    std::remove(f.c_str());
}

TEST(ExportedReaders, LpReadersKeepOrDropIntegersAndQuadratics) {
    TestEnv te;
    std::string f = temp_file("d.lp", "max: x + y + [ x^2 ]\nst\n r: x + y <= 3\nint\n y\nend\n");
    int ncols, nrows, objsen, colspace, rowspace, nzspace, cns, rns, qnz;
    double *obj, *rhs, *matval, *lb, *ub, *rngval, *qmatval;
    char *sense, *objname, *rhsname, *colstore, *rowstore, *ctype;
    char **colname, **rowname;
    int *matbeg, *matcnt, *matind, *qmatbeg, *qmatcnt, *qmatind;
    ASSERT_EQ(TRVlpqread(te.env, f.c_str(), &ncols, &nrows, &objsen, &obj, &rhs, &sense, &matbeg,
                         &matcnt, &matind, &matval, &lb, &ub, &rngval, &objname, &rhsname,
                         &colname, &colstore, &rowname, &rowstore, &colspace, &rowspace,
                         &nzspace, &cns, &rns, &ctype, &qmatbeg, &qmatcnt, &qmatind, &qmatval,
                         &qnz),
              0)
        << te.err;
    EXPECT_EQ(objsen, -1);
    EXPECT_EQ(ctype[1], 'B');
    EXPECT_EQ(ub[1], 1.0);
    EXPECT_EQ(qmatval[qmatbeg[0]], 2.0);
    EXPECT_STREQ(rowname[0], "r");
    EXPECT_STREQ(rhsname, "rhs");
    EXPECT_EQ(rngval, nullptr);
    for (void *p : {(void *)obj, (void *)rhs, (void *)sense, (void *)matbeg, (void *)matcnt,
                    (void *)matind, (void *)matval, (void *)lb, (void *)ub, (void *)objname,
                    (void *)rhsname, (void *)colname, (void *)colstore, (void *)rowname,
                    (void *)rowstore, (void *)ctype, (void *)qmatbeg, (void *)qmatcnt,
                    (void *)qmatind, (void *)qmatval})
        TRVfree(p);
    te.clear();
    ASSERT_EQ(TRVlpread(te.env, f.c_str(), &ncols, &nrows, &objsen, &obj, &rhs, &sense, &matbeg,
                        &matcnt, &matind, &matval, &lb, &ub, nullptr, nullptr, nullptr, nullptr,
                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              0);
    EXPECT_EQ(ub[1], 1e20); /* integers ignored: bounds as written */
    EXPECT_NE(te.warn.find("contains integer variable declarations, ignored.\n"), std::string::npos);
    EXPECT_NE(te.warn.find("contains quadratic objective coefficients, ignored.\n"), std::string::npos);
    for (void *p : {(void *)obj, (void *)rhs, (void *)sense, (void *)matbeg, (void *)matcnt,
                    (void *)matind, (void *)matval, (void *)lb, (void *)ub})
        TRVfree(p);
    std::remove(f.c_str());
}
