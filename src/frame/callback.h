/*
 * callback.h - the call point of the progress callbacks.
 */
#ifndef TRV_FRAME_CALLBACK_H
#define TRV_FRAME_CALLBACK_H

#include "frame/trv.h"

/* At a call point: calls the callback of family fam (PAR_LP, PAR_MIP,
 * PAR_NET) with cbdata and wherefrom, if one is set. Returns nonzero when
 * the callback asks for an abort; the optimiser then ends with the abort
 * code of its place. Nothing is printed. */
int cb_call(TRVenv env, int fam, void *cbdata, int wherefrom);

#endif
