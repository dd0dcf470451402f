/*
 * bas.h - BAS basis files: the reader against name tables, the writer of
 * a basis in TRVgetbase's statuses, and the recovery file of the simplex
 * drivers with its restart.
 *
 * Statuses are those of TRVgetbase: columns 0 at lower, 1 basic, 2 at
 * upper, 3 free; rows 1 basic, 0 nonbasic, 2 a ranged row at the upper end
 * of its range.
 *
 * XU and XL name the side of the row's logical, with an 'L' row's slack
 * at its lower bound when the row is tight and a ranged row's range
 * column at its upper bound at the upper end of the range; for a 'G' row
 * the two letters are exchanged in both directions.
 */
#ifndef TRV_FORMATS_BAS_H
#define TRV_FORMATS_BAS_H

#include "frame/trv.h"

/* What a BAS file is read against: names (a null array or entry stands
 * for the default name x<j+1> or c<i+1>) and, when known, the row senses
 * (null: no ranged rows are known, every nonbasic row reads as 0). */
struct bas_target {
    int ncols, nrows;
    char *const *colname;
    char *const *rowname;
    const char *sense;
};

/* Reads the file (suffix: tried when the name as given does not open)
 * and, only when it was read to its end without error, fills cstat and
 * rstat. A column in no line is 0, a row in no line 1. 0 or a negative
 * status (printed). */
int bas_read(TRVenv env, const char *filename, const char *suffix,
             const bas_target *t, int *cstat, int *rstat);

/* Reads the file against the problem's names and senses and makes it the
 * stored start of the next run (start_from_status); a column without a
 * finite lower bound that the file leaves at lower is set as TRVgetbase
 * would give it. The problem is untouched on failure. 0 or a status. */
int bas_readcopy(TRVenv env, TRVlp lp, const char *filename, const char *suffix);

/* Writes the basis of lp in TRVgetbase's statuses; itcnt < 0 leaves the
 * counts out of the NAME line; notices prints the default-name notices.
 * 0, or 1422 when the file does not open or the write fails (not
 * reported, so that a periodic write can make it a warning). */
int bas_write(TRVenv env, TRVlp lp, const char *filename, const int *cstat,
              const int *rstat, int itcnt, int notices);

/* The name of the recovery file of a problem: the stem of its name (see
 * trv_stem; "torva" for an empty one) with ".xxx"; null without memory. */
char *bas_recovername(TRVlp lp);


/* The recovery file of the problem as its stored start; 0 when loaded,
 * else a status (a missing file is 1423, not reported). */
int bas_recoverload(TRVenv env, TRVlp lp);

#endif
