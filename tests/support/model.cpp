#include "model.h"

static void capture(void *handle, const char *text) {
    static_cast<std::string *>(handle)->append(text);
}

TestEnv::TestEnv() {
    int status = 0;
    env = TRVopenTORVA(&status);
    if (env == nullptr) return;
    TRVchannel r, w, e, l;
    TRVgetchannels(env, &r, &w, &e, &l);
    TRVaddfuncdest(env, r, &res, capture);
    TRVaddfuncdest(env, w, &warn, capture);
    TRVaddfuncdest(env, e, &err, capture);
    TRVaddfuncdest(env, l, &log, capture);
}

TestEnv::~TestEnv() {
    if (env != nullptr) TRVcloseTORVA(&env);
}

void Model::col(double c, double l, double u,
                std::vector<std::pair<int, double>> entries,
                const std::string &nm) {
    obj.push_back(c);
    lb.push_back(l);
    ub.push_back(u);
    matbeg.push_back(static_cast<int>(matind.size()));
    matcnt.push_back(static_cast<int>(entries.size()));
    for (auto &e : entries) {
        matind.push_back(e.first);
        matval.push_back(e.second);
    }
    colnames.push_back(nm.empty() ? std::string("x").append(std::to_string(obj.size())) : nm);
}

void Model::row(char s, double r, double rng, const std::string &nm) {
    sense.push_back(s);
    rhs.push_back(r);
    rngval.push_back(rng);
    rownames.push_back(nm.empty() ? std::string("r").append(std::to_string(rhs.size())) : nm);
}

TRVlp Model::copy_into(TRVenv env, int *status) const {
    int st = 0;
    TRVlp lp = TRVcreateprob(env, &st, name.c_str());
    if (lp == nullptr) {
        if (status) *status = st;
        return nullptr;
    }
    std::vector<char *> cn, rn;
    for (auto &s : colnames) cn.push_back(const_cast<char *>(s.c_str()));
    for (auto &s : rownames) rn.push_back(const_cast<char *>(s.c_str()));
    /* a model without rows or columns still passes its arrays */
    static double dz = 0.0;
    static int iz = 0;
    static char cz = 'E';
    auto dp = [](const std::vector<double> &v) { return v.empty() ? &dz : v.data(); };
    auto ip = [](const std::vector<int> &v) { return v.empty() ? &iz : v.data(); };
    st = TRVcopylpwnames(env, lp, ncols(), nrows(), objsen, dp(obj), dp(rhs),
                         sense.empty() ? &cz : sense.data(), ip(matbeg), ip(matcnt),
                         ip(matind), dp(matval), dp(lb), dp(ub), dp(rngval),
                         cn.empty() ? nullptr : cn.data(), rn.empty() ? nullptr : rn.data());
    if (status) *status = st;
    if (st != 0) TRVfreeprob(env, &lp);
    return lp;
}

Model small_model() {
    Model m;
    m.name = "small";
    m.row('L', 10.0);
    m.row('G', 2.0);
    m.row('E', 4.0);
    m.row('R', 1.0, -3.0);
    m.col(1.0, 0.0, TRV_INFBOUND, {{0, 1.0}, {1, 1.0}, {3, 2.0}});
    m.col(-2.0, -1.0, 5.0, {{0, 3.0}, {2, 1.0}});
    m.col(0.5, 0.0, 1e18, {{1, -1.0}, {2, 1.0}, {3, 1.0}});
    return m;
}
