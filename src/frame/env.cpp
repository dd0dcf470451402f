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

/* Frees everything a (possibly half-built) environment holds; its handle,
 * if it has one, is stale from here on. */
static void env_teardown(TRVenv env) {
    while (env->ownedhead != nullptr) {
        own_node *n = env->ownedhead;
        void *obj = n->object;
        switch (n->kind) {
        case OWN_PROBLEM: {
            TRVlp lp = static_cast<TRVlp>(obj);
            TRVfreeprob(env->handle, &lp);
            break;
        }
        case OWN_CHANNEL: {
            TRVchannel c = static_cast<TRVchannel>(obj);
            TRVdelchannel(env->handle, &c);
            break;
        }
        case OWN_CLONE: {
            TRVenv child = static_cast<TRVenv>(obj);
            TRVfreeparenv(env->handle, &child);
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
            channel_setlogfile(child, nullptr);
            std::fclose(lf);
        }
        TRVenv h = child->handle;
        TRVfreeparenv(env->handle, &h);
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
        channel_clear(*cp);
        trv_free(cp);
    }
    static const int order[PAR_NFAM] = {PAR_LP, PAR_MIP, PAR_NET, PAR_BAR, PAR_QP};
    for (int f : order) trv_free(&env->cur[f]);
    if (env->handle != nullptr) handle_drop(env->handle);
    env->self = nullptr;
    trv_free(&env);
}

/* Builds an environment by the steps of open; null with *status set. */
static TRVenv env_build(int *status) {
    TRVenv env = trv_zalloc<trvenv_rec>(1);
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
        env->errchannel = channel_new();
        env->warnchannel = channel_new();
        env->reschannel = channel_new();
        env->logchannel = channel_new();
        ok = env->errchannel && env->warnchannel && env->reschannel &&
             env->logchannel;
    }
    for (int f = 0; ok && f < PAR_NFAM; f++) {
        env->def[f] = trv_zalloc<par_block>(1);
        env->min[f] = trv_zalloc<par_block>(1);
        env->max[f] = trv_zalloc<par_block>(1);
        ok = env->def[f] && env->min[f] && env->max[f];
    }
    if (ok) {
        env->handle = static_cast<TRVenv>(handle_new(HANDLE_ENV, env, nullptr, nullptr));
        ok = env->handle != nullptr;
    }
    if (!ok) {
        env_teardown(env);
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
    return env != nullptr ? env->handle : nullptr;
}

TRV_EXPORT int TRVcloseTORVA(TRVenv *env_p) {
    if (env_p == nullptr) return 1002;
    TRVenv env = *env_p;
    int status = call_enter(&env, nullptr, 0);
    if (status == 0 && env->parent != nullptr) status = 1021;
    if (status != 0) return call_leave(env, status);
    env_teardown(env);
    *env_p = nullptr;
    return 0;
}

TRV_EXPORT TRVenv TRVparenv(TRVenv env, int *status_p) {
    TRVenv child = nullptr;
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) {
    } else if (env->parent != nullptr) {
        status = 1019;
    } else if (env->nclones >= env->maxthreads) {
        status = 1020;
    } else {
        child = env_build(&status);
        if (child != nullptr) {
            child->maxthreads = env->maxthreads;
            status = env_own(env, OWN_CLONE, child->handle);
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
    status = call_leave(env, status);
    if (status_p != nullptr) *status_p = status;
    return child != nullptr ? child->handle : nullptr;
}

TRV_EXPORT int TRVfreeparenv(TRVenv env, TRVenv *child_p) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) return status;
    if (child_p == nullptr || *child_p == nullptr) return 0;
    TRVenv handle = *child_p;
    TRVenv child = env_record(handle);
    if (child == nullptr || child->parent != env) return call_leave(env, 1003);
    env_disown(env, OWN_CLONE, handle);
    env_teardown(child);
    env->nclones--;
    *child_p = nullptr;
    return 0;
}

TRV_EXPORT const char *TRVversion(TRVenv env) {
    return call_enter(&env, nullptr, 0) == 0 ? env->version : nullptr;
}

TRV_EXPORT int TRVEgetThreadNumber(TRVenv env) {
    return call_enter(&env, nullptr, 0) == 0 ? env->threadnum : 0;
}

TRV_EXPORT int TRVEsetnamefunctions(TRVenv env, void *handle, TRVnamefunc rowfn,
                                    TRVnamefunc colfn) {
    int status = call_enter(&env, nullptr, 0);
    if (status == 0) {
        env->namefnhandle = handle;
        env->rownamefn = rowfn;
        env->colnamefn = colfn;
    }
    return call_leave(env, status);
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
