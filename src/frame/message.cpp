/*
 * message.cpp - message channels. A channel is a list of destinations, files
 * or functions, newest first; a message goes to each in list order. The
 * environment owns four standard channels and the log file, which is
 * attached to all four.
 */
#include <cstring>

#include "trv.h"

#define MSG_BUFSIZE 4096

int trv_vmsg(TRVchannel channel, const char *format, va_list ap) {
    char buf[MSG_BUFSIZE];
    int n = std::vsnprintf(buf, sizeof buf, format, ap);
    if (n < 0) return 0;
    if (n >= static_cast<int>(sizeof buf)) n = static_cast<int>(sizeof buf) - 1;
    if (channel == nullptr) return n;
    for (chan_dest *d = channel->head; d != nullptr; d = d->next) {
        switch (d->kind) {
        case 1:
            std::fputs(buf, d->file);
            break;
        case 2:
            if (d->fileslot != nullptr && *d->fileslot != nullptr)
                std::fputs(buf, *d->fileslot);
            break;
        case 3:
            d->function(d->handle, buf);
            break;
        default:
            break;
        }
    }
    return n;
}

int TRVmsg(TRVchannel channel, const char *format, ...) {
    va_list ap;
    va_start(ap, format);
    int n = trv_vmsg(channel, format, ap);
    va_end(ap);
    return n;
}

TRV_EXPORT int TRVmsgstr(TRVchannel channel, const char *text) {
    if (text == nullptr) return 0;
    return TRVmsg(channel, "%s", text);
}

bool channel_hasfile(TRVchannel channel, FILE *file) {
    if (channel == nullptr) return false;
    for (chan_dest *d = channel->head; d != nullptr; d = d->next)
        if (d->kind == 1 && d->file == file) return true;
    return false;
}

TRVchannel channel_new(void) {
    TRVchannel c = static_cast<TRVchannel>(trv_malloc(sizeof *c));
    if (c != nullptr) c->head = nullptr;
    return c;
}

void channel_clear(TRVchannel channel) {
    while (channel->head != nullptr) {
        chan_dest *d = channel->head;
        channel->head = d->next;
        if (d->kind == 1) std::fflush(d->file);
        if (d->kind == 2 && d->fileslot != nullptr && *d->fileslot != nullptr)
            std::fflush(*d->fileslot);
        trv_free(&d);
    }
}

void channel_flush(TRVchannel channel) {
    for (chan_dest *d = channel->head; d != nullptr; d = d->next) {
        if (d->kind == 1) std::fflush(d->file);
        if (d->kind == 2 && d->fileslot != nullptr && *d->fileslot != nullptr)
            std::fflush(*d->fileslot);
    }
}

/* A channel of env's: one of the four standard ones or one it added and
 * has not deleted. Anything else (a channel of another environment, a
 * deleted one, garbage) is not touched. */
static bool env_channel(TRVenv env, TRVchannel c) {
    if (c == nullptr) return false;
    if (c == env->errchannel || c == env->warnchannel || c == env->reschannel ||
        c == env->logchannel)
        return true;
    for (own_node *n = env->ownedhead; n != nullptr; n = n->next)
        if (n->kind == OWN_CHANNEL && n->object == c) return true;
    return false;
}

TRV_EXPORT TRVchannel TRVaddchannel(TRVenv env) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) return nullptr;
    TRVchannel c = channel_new();
    if (c == nullptr) status = 1001;
    if (status == 0) status = env_own(env, OWN_CHANNEL, c);
    if (status != 0) {
        trv_free(&c);
        call_leave(env, status);
    }
    return c;
}

TRV_EXPORT void TRVdelchannel(TRVenv env, TRVchannel *channel_p) {
    if (call_enter(&env, nullptr, 0) != 0 || channel_p == nullptr) return;
    TRVchannel c = *channel_p;
    bool owned = false;
    for (own_node *n = env->ownedhead; n != nullptr; n = n->next)
        if (n->kind == OWN_CHANNEL && n->object == c) owned = true;
    if (!owned) return; /* a standard channel, another's, or gone already */
    channel_clear(c);
    env_disown(env, OWN_CHANNEL, c);
    trv_free(&c);
    *channel_p = nullptr;
}

TRV_EXPORT void TRVdisconnectchannel(TRVenv env, TRVchannel channel) {
    if (call_enter(&env, nullptr, 0) != 0 || !env_channel(env, channel)) return;
    channel_clear(channel);
}

TRV_EXPORT void TRVflushchannel(TRVenv env, TRVchannel channel) {
    if (call_enter(&env, nullptr, 0) != 0 || !env_channel(env, channel)) return;
    channel_flush(channel);
}

TRV_EXPORT int TRVflushstdchannels(TRVenv env) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) return status;
    channel_flush(env->reschannel);
    channel_flush(env->logchannel);
    channel_flush(env->errchannel);
    channel_flush(env->warnchannel);
    return 0;
}

static int dest_push(TRVchannel channel, int kind, FILE *file, void *handle,
                     TRVmsgfunc fn) {
    chan_dest *d = static_cast<chan_dest *>(trv_calloc(1, sizeof *d));
    if (d == nullptr) return 1001;
    d->channel = channel;
    d->kind = kind;
    d->file = file;
    d->handle = handle;
    d->function = fn;
    d->next = channel->head;
    channel->head = d;
    return 0;
}

TRV_EXPORT int TRVaddfpdest(TRVenv env, TRVchannel channel, FILE *file) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0)
        ;
    else if (!env_channel(env, channel))
        status = 1051;
    else if (file == nullptr)
        status = 1052;
    else
        status = dest_push(channel, 1, file, nullptr, nullptr);
    return call_leave(env, status);
}

/* Unlinks the first file destination of file; false if there is none. */
static bool dest_remove_file(TRVchannel channel, FILE *file) {
    for (chan_dest **pp = &channel->head; *pp != nullptr; pp = &(*pp)->next) {
        chan_dest *d = *pp;
        if (d->kind == 1 && d->file == file) {
            *pp = d->next;
            trv_free(&d);
            return true;
        }
    }
    return false;
}

TRV_EXPORT int TRVdelfpdest(TRVenv env, TRVchannel channel, FILE *file) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0)
        ;
    else if (!env_channel(env, channel))
        status = 1051;
    else
        status = dest_remove_file(channel, file) ? 0 : 1052;
    return call_leave(env, status);
}

TRV_EXPORT int TRVaddfuncdest(TRVenv env, TRVchannel channel, void *handle,
                              TRVmsgfunc msgfunc) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0)
        ;
    else if (!env_channel(env, channel))
        status = 1051;
    else if (msgfunc == nullptr)
        status = 1053;
    else
        status = dest_push(channel, 3, nullptr, handle, msgfunc);
    return call_leave(env, status);
}

TRV_EXPORT int TRVdelfuncdest(TRVenv env, TRVchannel channel, void *handle,
                              TRVmsgfunc msgfunc) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) {
    } else if (!env_channel(env, channel)) {
        status = 1051;
    } else {
        status = 1053;
        for (chan_dest **pp = &channel->head; *pp != nullptr; pp = &(*pp)->next) {
            chan_dest *d = *pp;
            if (d->kind == 3 && d->handle == handle && d->function == msgfunc) {
                *pp = d->next;
                trv_free(&d);
                status = 0;
                break;
            }
        }
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVgetchannels(TRVenv env, TRVchannel *results_p,
                              TRVchannel *warning_p, TRVchannel *error_p,
                              TRVchannel *log_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    if (results_p != nullptr) *results_p = env->reschannel;
    if (warning_p != nullptr) *warning_p = env->warnchannel;
    if (error_p != nullptr) *error_p = env->errchannel;
    if (log_p != nullptr) *log_p = env->logchannel;
    return 0;
}

/* The log file goes on results, warning, error and log. Adding a null file
 * fails quietly on each channel, so a null file only detaches. */
TRV_EXPORT int TRVsetlogfile(TRVenv env, FILE *file) {
    int status = call_enter(&env, nullptr, 0);
    if (status == 0) status = channel_setlogfile(env, file);
    return call_leave(env, status);
}

int channel_setlogfile(TRVenv env, FILE *file) {
    TRVchannel chans[4] = {env->reschannel, env->warnchannel, env->errchannel,
                           env->logchannel};
    FILE *old = env->cur[PAR_LP]->logfile;
    if (old != nullptr) {
        for (TRVchannel c : chans)
            if (c != nullptr) dest_remove_file(c, old);
    }
    env->cur[PAR_LP]->logfile = nullptr;
    if (file != nullptr) {
        for (TRVchannel c : chans)
            if (c != nullptr && dest_push(c, 1, file, nullptr, nullptr) != 0) return 1001;
    }
    env->cur[PAR_LP]->logfile = file;
    return 0;
}

TRV_EXPORT int TRVgetlogfile(TRVenv env, FILE **file_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    if (file_p != nullptr) *file_p = env->cur[PAR_LP]->logfile;
    return 0;
}

/* Screen indicator: stdout on results, warning and error, never on log. */
void channel_screen(TRVenv env, int on) {
    TRVchannel chans[3] = {env->reschannel, env->warnchannel, env->errchannel};
    for (TRVchannel c : chans) {
        if (c == nullptr) continue;
        bool has = channel_hasfile(c, stdout);
        if (on && !has) dest_push(c, 1, stdout, nullptr, nullptr);
        if (!on && has) dest_remove_file(c, stdout);
    }
}
