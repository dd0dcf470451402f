/*
 * scale.h - the scaling of a model's data, applied when a solve starts and
 * undone whenever the caller's units are needed (a query, a clone, an
 * unload).
 */
#ifndef TRV_STORE_SCALE_H
#define TRV_STORE_SCALE_H

#include "store/lp.h"

/* Brings the model to the scaling of scheme want (-1 none): 0, or 1001
 * with the model left unscaled. */
int lp_scale(TRVenv env, TRVlp lp, int want);
/* Undoes the scaling of the data; the stored factors stay for the next
 * solve. */
int lp_unscale(TRVenv env, TRVlp lp);

#endif
