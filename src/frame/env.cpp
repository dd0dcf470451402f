/*
 * env.cpp - the environment: open, close, clones, the owned-object list,
 * handle checks, range checks and default names.
 */
#include <cstring>

#include "trv.h"

static const char trv_version_text[] = "7.1.0";

bool env_valid(TRVenv env) {
    return env != nullptr && env->cur[PAR_LP] != nullptr && env->self == env;
}

int env_own(TRVenv env, int kind, void *object) {
    if (!env->owning) return 0;
    own_node *n = static_cast<own_node *>(trv_malloc(sizeof *n));
    if (n == nullptr) return 1001;
    n->kind = kind;
    n->object = object;
    n->next = nullptr;
    own_node **pp = &env->ownedhead;
    while (*pp != nullptr) pp = &(*pp)->next;
    *pp = n;
    return 0;
}

void env_disown(TRVenv env, int kind, void *object) {
    for (own_node **pp = &env->ownedhead; *pp != nullptr; pp = &(*pp)->next) {
        own_node *n = *pp;
        if (n->kind == kind && n->object == object) {
            *pp = n->next;
            trv_free(&n);
            return;
        }
    }
}

/* Frees everything a (possibly half-built) environment holds. */
static void env_teardown(TRVenv env) {
    while (env->ownedhead != nullptr) {
        own_node *n = env->ownedhead;
        void *obj = n->object;
        switch (n->kind) {
        case OWN_PROBLEM: {
            TRVlp lp = static_cast<TRVlp>(obj);
            TRVfreeprob(env, &lp);
            break;
        }
        case OWN_CHANNEL: {
            TRVchannel c = static_cast<TRVchannel>(obj);
            TRVdelchannel(env, &c);
            break;
        }
        case OWN_CLONE: {
            TRVenv child = static_cast<TRVenv>(obj);
            TRVfreeparenv(env, &child);
            break;
        }
        default:
            break;
        }
        /* A free function that failed to unlink its node must not stall
         * the walk. */
        if (env->ownedhead == n) {
            env->ownedhead = n->next;
            trv_free(&n);
        }
    }
    for (int f = 0; f < PAR_NFAM; f++) {
        trv_free(&env->def[f]);
        trv_free(&env->min[f]);
        trv_free(&env->max[f]);
    }
    for (int k = 0; k < env->nparchild; k++) {
        TRVenv child = env->parchild[k];
        if (child == nullptr) continue;
        FILE *lf = child->cur[PAR_LP] ? child->cur[PAR_LP]->logfile : nullptr;
        if (lf != nullptr) {
            TRVsetlogfile(child, nullptr);
            std::fclose(lf);
        }
        TRVfreeparenv(env, &child);
    }
    trv_free(&env->parchild);
    env->nparchild = 0;
    /* The standard channels exist before the owned list starts, so they
     * are not on it. */
    env->owning = 0;
    TRVchannel *std4[4] = {&env->errchannel, &env->warnchannel,
                           &env->reschannel, &env->logchannel};
    for (TRVchannel *cp : std4) {
        if (*cp == nullptr) continue;
        TRVdisconnectchannel(env, *cp);
        trv_free(cp);
    }
    static const int order[PAR_NFAM] = {PAR_LP, PAR_MIP, PAR_NET, PAR_BAR, PAR_QP};
    for (int f : order) trv_free(&env->cur[f]);
    env->self = nullptr;
    trv_handle_free(env, sizeof *env);
}

/* Builds an environment by the steps of open; null with *status set. */
static TRVenv env_build(int *status) {
    TRVenv env = static_cast<TRVenv>(trv_handle_alloc(sizeof(trvenv_rec)));
    if (env == nullptr) {
        *status = 1001;
        return nullptr;
    }
    env->self = env;
    env->randseed = 1;
    env->version = trv_version_text;
    env->maxthreads = TRV_MAXTHREADS;
    static const int order[PAR_NFAM] = {PAR_LP, PAR_MIP, PAR_NET, PAR_BAR, PAR_QP};
    for (int f : order) env->cur[f] = trv_zalloc<par_block>(1);
    bool ok = true;
    for (int f = 0; f < PAR_NFAM; f++) ok = ok && env->cur[f] != nullptr;
    if (ok) {
        env->errchannel = TRVaddchannel(env);
        env->warnchannel = TRVaddchannel(env);
        env->reschannel = TRVaddchannel(env);
        env->logchannel = TRVaddchannel(env);
        ok = env->errchannel && env->warnchannel && env->reschannel &&
             env->logchannel;
    }
    for (int f = 0; ok && f < PAR_NFAM; f++) {
        env->def[f] = trv_zalloc<par_block>(1);
        env->min[f] = trv_zalloc<par_block>(1);
        env->max[f] = trv_zalloc<par_block>(1);
        ok = env->def[f] && env->min[f] && env->max[f];
    }
    if (!ok) {
        if (env->cur[PAR_LP] == nullptr) {
            /* not yet a valid handle: free by hand */
            for (int f = 0; f < PAR_NFAM; f++) trv_free(&env->cur[f]);
            trv_handle_free(env, sizeof *env);
        } else {
            env_teardown(env);
        }
        *status = 1001;
        return nullptr;
    }
    par_fill_tables(env);
    par_setdefaults(env);
    env->owning = 1;
    errhash_build(env->errhash);
    *status = 0;
    return env;
}

TRV_EXPORT TRVenv TRVopenTORVA(int *status_p) {
    int status = 0;
    TRVenv env = env_build(&status);
    if (status_p != nullptr) *status_p = status;
    return env;
}

TRV_EXPORT int TRVcloseTORVA(TRVenv *env_p) {
    if (env_p == nullptr || !env_valid(*env_p)) return 1002;
    TRVenv env = *env_p;
    if (env->parent != nullptr) {
        int status = 1021;
        env_report(env, &status);
        return status;
    }
    env_teardown(env);
    *env_p = nullptr;
    return 0;
}

TRV_EXPORT TRVenv TRVparenv(TRVenv env, int *status_p) {
    int status = 0;
    TRVenv child = nullptr;
    if (!env_valid(env)) {
        status = 1002;
    } else if (env->parent != nullptr) {
        status = 1019;
    } else if (env->nclones >= env->maxthreads) {
        status = 1020;
    } else {
        child = env_build(&status);
        if (child != nullptr) {
            child->maxthreads = env->maxthreads;
            status = env_own(env, OWN_CLONE, child);
            if (status != 0) {
                env_teardown(child);
                child = nullptr;
            } else {
                env->nclones++;
                child->parent = env;
                par_copy(child, env);
            }
        }
    }
    if (status != 0) env_report(env, &status);
    if (status_p != nullptr) *status_p = status;
    return child;
}

TRV_EXPORT int TRVfreeparenv(TRVenv env, TRVenv *child_p) {
    if (!env_valid(env)) return 1002;
    if (child_p == nullptr || *child_p == nullptr) return 0;
    TRVenv child = *child_p;
    int status = 0;
    if (!env_valid(child) || child->parent != env) {
        status = 1003;
        env_report(env, &status);
        return status;
    }
    env_disown(env, OWN_CLONE, child);
    env_teardown(child);
    env->nclones--;
    *child_p = nullptr;
    return 0;
}

TRV_EXPORT const char *TRVversion(TRVenv env) {
    return env_valid(env) ? env->version : nullptr;
}

TRV_EXPORT int TRVEgetThreadNumber(TRVenv env) {
    return env_valid(env) ? env->threadnum : 0;
}

TRV_EXPORT int TRVEsetnamefunctions(TRVenv env, void *handle, TRVnamefunc rowfn,
                                    TRVnamefunc colfn) {
    if (!env_valid(env)) return 1002;
    env->namefnhandle = handle;
    env->rownamefn = rowfn;
    env->colnamefn = colfn;
    return 0;
}

bool range_check(TRVenv env, const char *fname, int begin, int end, int low,
                 int count) {
    bool ok = true;
    if (begin < low) {
        env_error(env, 1205, fname, begin, low);
        ok = false;
    }
    if (end > count - 1) {
        env_error(env, 1206, fname, end, count - 1);
        ok = false;
    }
    return ok;
}

static const char *default_name(TRVenv env, TRVnamefunc fn, char *buf,
                                size_t bufsize, const char *fmt, char **names,
                                int count, int index) {
    if (index < 0 || index >= count) return "";
    if (names != nullptr) return names[index];
    if (fn != nullptr) {
        const char *s = fn(env->namefnhandle, index);
        if (s != nullptr) return s;
    }
    std::snprintf(buf, bufsize, fmt, index + 1);
    return buf;
}

const char *env_varname(TRVenv env, char **names, int count, int index) {
    return default_name(env, env->colnamefn, env->rownamebuf,
                        sizeof env->rownamebuf, "x%d", names, count, index);
}

const char *env_conname(TRVenv env, char **names, int count, int index) {
    return default_name(env, env->rownamefn, env->colnamebuf,
                        sizeof env->colnamebuf, "c%d", names, count, index);
}
