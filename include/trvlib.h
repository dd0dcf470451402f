/*
 * trvlib.h - the callable interface of the torva71 mathematical
 * programming library.
 *
 * Every function takes an environment (TRVenv) first, except the memory and
 * C-file helpers. Functions that return a status return 0 on success and a
 * positive error code otherwise; the message of the code has then been
 * printed once on the environment's error channel.
 *
 * Usable from C (C89/C99) and C++.
 */
#ifndef TRVLIB_H
#define TRVLIB_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(TRV_BUILDING_LIBRARY)
#define TRVAPI __attribute__((visibility("default")))
#else
#define TRVAPI
#endif

/* ---- handles ---------------------------------------------------------- */

typedef struct trvenv_rec *TRVenv;         /* environment */
typedef struct trvlp_rec *TRVlp;           /* problem */
typedef struct trvchannel_rec *TRVchannel; /* message channel */

/* A function destination of a channel: called with its handle, then the text. */
typedef void (*TRVmsgfunc)(void *handle, const char *text);

/* A progress callback: a non-zero return asks the optimiser to stop. */
typedef int (*TRVcallbackfunc)(TRVenv env, void *cbdata, int wherefrom,
                               void *handle);

/* A default-name function: gives the name of row or column index, or null. */
typedef const char *(*TRVnamefunc)(void *handle, int index);

/* ---- numbers with a fixed meaning -------------------------------------- */

#define TRV_INFBOUND 1.0e20       /* infinite bound as stored */
#define TRV_BIGINT   2100000000   /* "no limit" for counts */
#define TRV_VERSION  "7.1.0"

/* ---- parameters -------------------------------------------------------- */
/* Parameters go by number. The LP family owns 1001-1069, the MIP family
 * 2001-2058 and 1042, the barrier 3001-3021, QP 4001-4002, network
 * 5001-5005. */

#define TRV_PARAM_REDUCE    1057 /* presolve reduction kinds */
#define TRV_PARAM_PRELINEAR 1058 /* non-linear presolve reductions */

/* ---- callback places (wherefrom) ---------------------------------------- */

#define TRV_CALLBACK_PRIMAL     1
#define TRV_CALLBACK_DUAL       2
#define TRV_CALLBACK_NETWORK    3
#define TRV_CALLBACK_BARRIER    4
#define TRV_CALLBACK_BARRIER_X  5
#define TRV_CALLBACK_CROSSOVER  6
#define TRV_CALLBACK_PRESOLVE   7

/* ---- error codes -------------------------------------------------------- */

#define TRVERR_OUT_MEMORY                            1001
#define TRVERR_NO_ENVIRONMENT                        1002
#define TRVERR_BAD_ARGUMENT_CALLABLE_LIBRARY         1003
#define TRVERR_NULL_POINTER_REQUIRED_DATA            1004
#define TRVERR_POINTER_MISMATCH_MEMORY_REALLOCATION  1005
#define TRVERR_ERROR_DURING_CALLBACK                 1006
#define TRVERR_SPACE_ALLOCATED_PROBLEM_MUST          1007
#define TRVERR_NOT_VALID_PROBLEM_MEMORY              1008
#define TRVERR_NO_PROBLEM_EXISTS                     1009
#define TRVERR_PROBLEM_SIZE_LIMITS_TOO               1012
#define TRVERR_BAD_PARAMETER_NUMBER_TORVA            1013
#define TRVERR_PARAMETER_VALUE_TOO_SMALL             1014
#define TRVERR_PARAMETER_VALUE_TOO_BIG               1015
#define TRVERR_NOT_AVAILABLE_MIXED_INTEGER           1017
#define TRVERR_NOT_AVAILABLE_QUADRATIC_PROGRAMS      1018
#define TRVERR_CANNOT_CLONE_CLONED_ENVIRONMENT       1019
#define TRVERR_THREAD_LIMIT_EXCEEDED                 1020
#define TRVERR_CANNOT_CLOSE_CHILD_ENVIRONMENT        1021
#define TRVERR_UNKNOWN_PROBLEM_TYPE_PROBLEM          1022
#define TRVERR_NOT_SINGLE_PROBLEM_RELAXED            1023
#define TRVERR_NOT_MIP_RELAXED_MIP                   1024
#define TRVERR_NOT_QP_ZEROED_QP                      1025
#define TRVERR_STRING_PARAMETER_TOO_LONG             1026
#define TRVERR_DECOMPRESSION_UNPRESOLVED_MODEL_FAILED 1027
#define TRVERR_NO_CHANNEL_POINTER_SUPPLIED           1051
#define TRVERR_NO_FILE_POINTER_FOUND                 1052
#define TRVERR_NO_FUNCTION_POINTER_FOUND             1053
#define TRVERR_BOUNDS_CONTRADICTORY                  1100
#define TRVERR_PRESOLVE_DETERMINES_PROBLEM_INFEASIBLE 1101
#define TRVERR_NO_PRESOLVED_PROBLEM_CREATED          1103
#define TRVERR_ABORTED_DURING_PRESOLVE               1106
#define TRVERR_NOT_ENOUGH_MEMORY_BUILD               1107
#define TRVERR_CAN_COPY_SOS_INFO                     1108
#define TRVERR_CAN_COPY_PRIORITY_ORDER               1109
#define TRVERR_NOT_ENOUGH_MEMORY_RECOVER             1110
#define TRVERR_NOT_ENOUGH_MEMORY_COMPUTE             1111
#define TRVERR_NOT_ENOUGH_MEMORY_BUILD_1112          1112
#define TRVERR_COULD_NOT_LOAD_UNPRESOLVED            1114
#define TRVERR_FAILED_FIND_BASIS_PRESOLVED           1115
#define TRVERR_CAN_COPY_MIP_START                    1116
#define TRVERR_PRESOLVE_DETERMINES_PROBLEM_INFEASIBLE_1117 1117
#define TRVERR_PRESOLVE_DETERMINES_PROBLEM_UNBOUNDED 1118
#define TRVERR_FEATURE_NOT_AVAILABLE_SOLVING         1119
#define TRVERR_CAN_UNCRUSH_SOLUTION_FORM             1120
#define TRVERR_CAN_CRUSH_SOLUTION_FORM               1121
#define TRVERR_BAD_PRESOLVE_PARAMETER_SETTING        1122
#define TRVERR_INDEX_OUTSIDE_RANGE_VALID             1200
#define TRVERR_COLUMN_INDEX_OUT_RANGE                1201
#define TRVERR_ROW_INDEX_OUT_RANGE                   1203
#define TRVERR_BEGIN_VALUE_LESS_THAN                 1205
#define TRVERR_END_VALUE_GREATER_THAN                1206
#define TRVERR_INSUFFICIENT_ARRAY_LENGTH             1207
#define TRVERR_ARRAY_LENGTH_TOO_LONG                 1208
#define TRVERR_UNABLE_CREATE_DEFAULT_NAMES           1209
#define TRVERR_NAME_NOT_FOUND                        1210
#define TRVERR_RHS_NO_COEFFICIENT_OBJ                1211
#define TRVERR_CANNOT_REALLOCATE_PROBLEM_RIM         1214
#define TRVERR_ILLEGAL_SENSE_ENTRY                   1215
#define TRVERR_NO_RANGE_VALUES                       1216
#define TRVERR_NO_SOLUTION_EXISTS                    1217
#define TRVERR_NO_RIM_VECTORS                        1218
#define TRVERR_NO_NAMES_EXIST                        1219
#define TRVERR_MUST_HAVE_OBJECTIVE_NAME              1220
#define TRVERR_ONLY_FIXED_VARIABLES_ARE              1221
#define TRVERR_DUPLICATE_ENTRY                       1222
#define TRVERR_NO_BARRIER_SOLUTION_EXISTS            1223
#define TRVERR_NULL_POINTER_NAME_ARRAY               1224
#define TRVERR_NUMERIC_ENTRY_NOT_DOUBLE              1225
#define TRVERR_ARRAY_ENTRY_NOT_ASCENDING             1226
#define TRVERR_COUNT_ENTRY_NEGATIVE_LARGER           1227
#define TRVERR_COUNT_ENTRY_INDICATES_OVERLAPPING     1228
#define TRVERR_ILLEGAL_BOUND_CHANGE_INDICATOR        1229
#define TRVERR_NODE_INDEX_OUT_RANGE                  1230
#define TRVERR_ARC_INDEX_OUT_RANGE                   1231
#define TRVERR_INDEX_MUST_CORRESPOND_BASIC           1251
#define TRVERR_OPTIMAL_SOLUTION_REQUIRED             1252
#define TRVERR_INVALID_STATUS_ENTRY_BASIS            1253
#define TRVERR_UNBOUNDED_SOLUTION_REQUIRED           1254
#define TRVERR_INCOMPATIBLE_SUPERBASIS               1255
#define TRVERR_BASIS_SINGULAR                        1256
#define TRVERR_INCORRECT_USAGE_PRICING_INDICATOR     1257
#define TRVERR_NO_LU_FACTORIZATION_EXISTS            1258
#define TRVERR_SENSITIVITY_ANALYSIS_NOT_AVAILABLE    1260
#define TRVERR_NO_BASIC_SOLUTION_EXISTS              1261
#define TRVERR_NO_BASIS_EXISTS                       1262
#define TRVERR_STRONG_BRANCHING_ABORTED              1263
#define TRVERR_NO_NORMS_AVAILABLE                    1264
#define TRVERR_DUAL_UNBOUNDED_SOLUTION_REQUIRED      1265
#define TRVERR_TIME_LIMIT_REACHED_STRONG             1266
#define TRVERR_ILLEGAL_PIVOT                         1267
#define TRVERR_TIME_LIMIT_REACHED_COMPUTING          1268
#define TRVERR_CONDITION_NUMBER_COMPUTATION_ABORTED  1269
#define TRVERR_SUPPLIES_DEMANDS_DO_NOT               1291
#define TRVERR_INVALID_CHOICE_OPTIMIZATION_METHOD    1292
#define TRVERR_NOT_ENOUGH_SPACE                      1401
#define TRVERR_NOT_ENOUGH_SPACE_ADD                  1402
#define TRVERR_NOT_ENOUGH_SPACE_FREE                 1403
#define TRVERR_NOT_ENOUGH_SPACE_FREE_1404            1404
#define TRVERR_NAMES_NEED_SPACE_CHARACTERS           1406
#define TRVERR_FILE_NAME_NOT_SPECIFIED               1421
#define TRVERR_COULD_NOT_OPEN_FILE                   1422
#define TRVERR_COULD_NOT_OPEN_FILE_1423              1423
#define TRVERR_INVALID_FILETYPE                      1424
#define TRVERR_TOO_MANY_ROWS                         1431
#define TRVERR_TOO_MANY_COLUMNS                      1432
#define TRVERR_TOO_MANY_COEFFICIENTS                 1433
#define TRVERR_COULDN_CONVERT_NUMBER                 1434
#define TRVERR_EXPONENT_OUT_RANGE                    1435
#define TRVERR_MAX_MIN_MISSING                       1436
#define TRVERR_NO_NAME_SECTION                       1441
#define TRVERR_UNRECOGNIZED_SOS_TYPE                 1442
#define TRVERR_COLUMN_REPEATED_ROW                   1443
#define TRVERR_REPEATED_ROW                          1444
#define TRVERR_ROW_REPEATS                           1445
#define TRVERR_COLUMN_REPEATS                        1446
#define TRVERR_REPEATS                               1447
#define TRVERR_NOT_ROW_NAME                          1448
#define TRVERR_NOT_COLUMN_NAME                       1449
#define TRVERR_NOT_RHS_NAME                          1450
#define TRVERR_NOT_BOUND_NAME                        1451
#define TRVERR_NOT_RANGE_NAME                        1452
#define TRVERR_NO_ROW_SENSE                          1453
#define TRVERR_FX_BOUND_TYPE_ILLEGAL                 1454
#define TRVERR_FR_BOUND_TYPE_ILLEGAL                 1455
#define TRVERR_BV_BOUND_TYPE_ILLEGAL                 1456
#define TRVERR_UNRECOGNIZED_BOUND_TYPE               1457
#define TRVERR_REPEATED_UPPER_BOUND                  1458
#define TRVERR_REPEATED_LOWER_BOUND                  1459
#define TRVERR_BOUND_TYPE_MISSING                    1460
#define TRVERR_NO_QMATRIX_SECTION                    1461
#define TRVERR_UNRECOGNIZED_SECTION_INDICATOR_EXPECTING 1462
#define TRVERR_MAGNITUDE_EXCEEDS_INTEGER_LIMIT       1463
#define TRVERR_IDENTIFIER_NAME_TOO_LONG              1464
#define TRVERR_NO_ROWS_SECTION                       1471
#define TRVERR_NO_COLUMNS_SECTION                    1472
#define TRVERR_UNRECOGNIZED_SECTION_INDICATOR_EXPECTING_1473 1473
#define TRVERR_RANGES_SECTION_OUT_ORDER              1474
#define TRVERR_UNRECOGNIZED_SECTION_INDICATOR_EXPECTING_1475 1475
#define TRVERR_NO_OBJECTIVE_ROW_FOUND                1476
#define TRVERR_ROW_REPEATS_MESSAGES_NOT              1477
#define TRVERR_COLUMN_REPEATS_MESSAGES_NOT           1478
#define TRVERR_REPEATS_1479                          1479
#define TRVERR_INTORG_FOUND_READING_INTEGERS         1480
#define TRVERR_INTEND_FOUND_NOT_READING              1481
#define TRVERR_SOSORG_FOUND_READING_SOS              1482
#define TRVERR_SOSEND_FOUND_NOT_READING              1483
#define TRVERR_TOO_MANY_RIM_VECTORS                  1484
#define TRVERR_TOO_MANY_RIM_NONZEROS                 1485
#define TRVERR_NO_ROW_NAME                           1486
#define TRVERR_UNRECOGNIZED_OBJECTIVE_SENSE          1487
#define TRVERR_REVISION_CONTROL_INDICATOR_MISSING    1501
#define TRVERR_REPEATED_REVISION                     1502
#define TRVERR_REVISION_OBJECTIVE_ROW_ILLEGAL        1503
#define TRVERR_MODIFICATION_SENSE_N_ILLEGAL          1504
#define TRVERR_MORE_THAN_EXTRA_RIM                   1505
#define TRVERR_RIM_NAMES_NEED_SPACE                  1506
#define TRVERR_DELETION_ACTIVE_RHS_ILLEGAL           1507
#define TRVERR_MORE_THAN_NEW_RHS                     1508
#define TRVERR_DELETION_ACTIVE_RANGE_ILLEGAL         1509
#define TRVERR_MORE_THAN_RANGE_COEFFICIENTS          1510
#define TRVERR_NO_ACTIVE_RANGES_LOADED               1511
#define TRVERR_DELETION_ACTIVE_BOUND_ILLEGAL         1512
#define TRVERR_NON_ONE_BOUND_BINARY                  1513
#define TRVERR_MORE_THAN_COEFFICIENTS_DURING         1514
#define TRVERR_SPACE_EXTRA_RIM_NONZEROS              1515
#define TRVERR_MORE_THAN_NEW_ROWS                    1516
#define TRVERR_MORE_THAN_NEW_COLUMNS                 1517
#define TRVERR_MORE_THAN_NEW_COEFFICIENTS            1518
#define TRVERR_MORE_THAN_NEW_EXTRA                   1519
#define TRVERR_HEADER_MISSING                        1525
#define TRVERR_NOT_ENOUGH_DATA_HEADER                1526
#define TRVERR_FOUND_LINES_EXPECTED                  1527
#define TRVERR_NOT_ENOUGH_ENTRIES                    1528
#define TRVERR_INCONSISTENT_NETWORK_FILE             1530
#define TRVERR_NOT_MIN_COST_FLOW                     1531
#define TRVERR_INCORRECT_ROW_IDENTIFIER              1532
#define TRVERR_DEMANDS_NOT_BALANCED                  1533
#define TRVERR_BAD_CHARACTER_ENCOUNTERED_NEAR        1537
#define TRVERR_UNEXPECTED_END_NETWORK_FILE           1538
#define TRVERR_BASIS_MISSING_SOME_BASIC              1550
#define TRVERR_UNRECOGNIZED_BASIS_INDICATOR          1551
#define TRVERR_ENDATA_MISSING                        1552
#define TRVERR_WRONG_NUMBER_ENTRIES                  1553
#define TRVERR_SUPERBASES_ARE_NOT_ALLOWED            1554
#define TRVERR_BASIC_VARIABLE                        1555
#define TRVERR_VECTOR_SOLUTION_DOES_NOT              1556
#define TRVERR_FILE_NOT_SAV_FILE                     1560
#define TRVERR_NOT_ENOUGH_DATA_SAV                   1561
#define TRVERR_UNABLE_WRITE_SAV_FILE                 1562
#define TRVERR_FILE_INCOMPATIBLE_FORMAT              1563
#define TRVERR_LINES_ADJACENT_SIGNS                  1602
#define TRVERR_RHS_SENSE_OBJECTIVE                   1603
#define TRVERR_LINES_ADJACENT_SIGN_SENSE             1604
#define TRVERR_QUADRATIC_TERM_CONSTRAINT             1605
#define TRVERR_LINES_ADJACENT_SIGN_QUADRATIC         1606
#define TRVERR_EXPECTED_OPERATOR_FOUND               1607
#define TRVERR_EXPECTED_SENSE_FOUND                  1608
#define TRVERR_EXPECTED_IDENTIFIER_FIRST             1609
#define TRVERR_EXPECTED_RHS_COEFFICIENT              1610
#define TRVERR_EXPECTED_NUMBER_FIRST                 1611
#define TRVERR_EXPECTED_QUADRATIC_EXPONENT           1612
#define TRVERR_QUADRATIC_EXPONENT_MUST_2             1613
#define TRVERR_EXPECTED                              1614
#define TRVERR_EXPECTED_NUMBER_FOUND                 1615
#define TRVERR_EXPECTED_IDENTIFIER_FOUND             1616
#define TRVERR_NOT_VALID_IDENTIFIER                  1617
#define TRVERR_EXPONENT_NOT_NUMBER                   1618
#define TRVERR_NO_BOUND_SENSE                        1621
#define TRVERR_INVALID_BOUND_SENSE                   1622
#define TRVERR_MISSING_BOUND_NUMBER                  1623
#define TRVERR_MORE_THAN_CONSTRAINTS                 1624
#define TRVERR_MORE_THAN_VARIABLES                   1625
#define TRVERR_MORE_THAN_COEFFICIENTS                1626
#define TRVERR_NUMBER_NOT_REPRESENTABLE_EXPONENTIAL  1650
#define TRVERR_NO_IIS_INFORMATION_EXISTS             1701
#define TRVERR_NO_SOLUTION_EXISTS_INFEASIBILITY      1702
#define TRVERR_PROBLEM_FEASIBLE_NO_IIS               1703
#define TRVERR_PROBLEM_MAY_FEASIBLE_NO               1704
#define TRVERR_PROBLEM_OPTIMAL_UNSCALED_INFEASIBILITIES 1705
#define TRVERR_UNABLE_COMPUTE_IIS                    1706
#define TRVERR_INFEASIBILITY_FINDER_REQUIRES_BASIC   1707
#define TRVERR_INFEASIBILITY_FINDER_REQUIRES_PRIMAL  1708
#define TRVERR_FAILED_LOAD_IIS_SUBPROBLEM            1709
#define TRVERR_OBJECTIVE_LIMIT_REACHED_IIS           1710
#define TRVERR_ITERATION_LIMIT_REACHED_IIS           1711
#define TRVERR_TIME_LIMIT_REACHED_IIS                1712
#define TRVERR_UNABLE_OPTIMIZE_IIS_SUBPROBLEM        1713
#define TRVERR_COULD_NOT_OPEN_TEMPORARY              1801
#define TRVERR_FAILURE_TEMPORARY_FILE_READ           1802
#define TRVERR_FAILURE_TEMPORARY_FILE_WRITE          1803
#define TRVERR_CTYPE_ARRAY_ALREADY_LOADED            3001
#define TRVERR_BINARY_VARIABLE_VALUE_OUTSIDE         3002
#define TRVERR_NOT_MIXED_INTEGER_PROBLEM             3003
#define TRVERR_INFEASIBLE_BOUNDS_SET_NUMBER          3004
#define TRVERR_NEGATIVE_PRIORITY_ENTRY               3006
#define TRVERR_ILLEGAL_DIRECTION_ENTRY               3007
#define TRVERR_ILLEGAL_SOSTYPE_ENTRY                 3009
#define TRVERR_SET_DOES_NOT_HAVE                     3010
#define TRVERR_NON_INTEGRAL_BOUND_VALUE              3011
#define TRVERR_UNRECOGNIZED_DIRECTION                3012
#define TRVERR_NO_USER_DEFINED_SOSS                  3015
#define TRVERR_NO_PRIORITY_ORDER_EXISTS              3016
#define TRVERR_NO_INTEGER_FEASIBLE_SOLUTION          3017
#define TRVERR_MAGNITUDE_VARIABLE_EXCEEDS_INTEGER    3018
#define TRVERR_FAILURE_SOLVE_MIP_SUBPROBLEM          3019
#define TRVERR_NO_MIP_START_EXISTS                   3020
#define TRVERR_ILLEGAL_CTYPE_ENTRY                   3021
#define TRVERR_ILLEGAL_BDS_SEMI_CONTINUOUS           3022
#define TRVERR_MISSING_SOS_TYPE                      3301
#define TRVERR_NOT_ENOUGH_DATA_TRE                   3401
#define TRVERR_ERROR_WRITE_TRE_FILE                  3402
#define TRVERR_CAN_READ_TRE_FILE                     3403
#define TRVERR_OBJECTIVE_NAMES_TRE_FILE              3404
#define TRVERR_TREE_FILE_DOES_NOT                    3405
#define TRVERR_TREE_FILE_DOES_NOT_3406               3406
#define TRVERR_TREE_FILE_DOES_NOT_3407               3407
#define TRVERR_TREE_FILE_DOES_NOT_3408               3408
#define TRVERR_DIFFERENT_TYPE_TRE_FILE               3409
#define TRVERR_PRESOLVE_SETTING_FILE_DOES            3410
#define TRVERR_CURRENT_PROBLEM_NO_TREE               3412
#define TRVERR_TREE_MEMORY_LIMIT_EXCEEDED            3413
#define TRVERR_FILE_INCOMPATIBLE_FORMAT_3414         3414
#define TRVERR_NO_CALLBACK_INFO_DISK                 3504
#define TRVERR_COULD_NOT_INITIALIZE_MUTEX            3601
#define TRVERR_COULD_NOT_SET_CONCURRENCY             3602
#define TRVERR_COULD_NOT_CREATE_THREAD               3603
#define TRVERR_UNRECOVERABLE_ERROR_BARRIER_ALGORITHM 4001
#define TRVERR_NOT_ENOUGH_MEMORY_DO                  4003
#define TRVERR_NOT_ENOUGH_MEMORY_BARRIER             4004
#define TRVERR_BAD_PERMUTATION_VECTOR_EXTERNAL       4005
#define TRVERR_INVALID_QUADRATIC_MATRIX_UNEQUAL      5001
#define TRVERR_Q_NOT_POSITIVE_SEMI                   5002
#define TRVERR_CANNOT_CHANGE_OFF_DIAGONAL            5003
#define TRVERR_NOT_QUADRATIC_PROGRAM                 5004
#define TRVERR_SEPARABLE_OBJECTIVE_INDEFINITE        5006
#define TRVERR_INVALID_BARRIER_ALGORITHM_QUADRATIC   5007
#define TRVERR_INSUFFICIENT_SPACE_QP_MATRIX          5009
#define TRVERR_Q_NEGATIVE_ZERO_VALUE                 5010
#define TRVERR_DUPLICATE_ENTRY_PAIR                  5011
#define TRVERR_Q_NOT_SYMMETRIC                       5012

/* ---- solution status values (TRVgetstat) -------------------------------- */

#define TRV_STAT_OPTIMAL                             1
#define TRV_STAT_INFEASIBLE                          2
#define TRV_STAT_UNBOUNDED                           3
#define TRV_STAT_OBJECTIVE_LIMIT_EXCEEDED            4
#define TRV_STAT_ITERATION_LIMIT_EXCEEDED_FEASIBLE   5
#define TRV_STAT_ITERATION_LIMIT_EXCEEDED_INFEASIBLE 6
#define TRV_STAT_TIME_LIMIT_EXCEEDED_FEASIBLE        7
#define TRV_STAT_TIME_LIMIT_EXCEEDED_INFEASIBLE      8
#define TRV_STAT_NON_OPTIMAL_FEASIBLE                9
#define TRV_STAT_NON_OPTIMAL_INFEASIBLE              10
#define TRV_STAT_OPTIMAL_UNSCALED_INFEASIBILITIES    11
#define TRV_STAT_ABORTED_FEASIBLE                    12
#define TRV_STAT_ABORTED_INFEASIBLE                  13
#define TRV_STAT_ABORTED_DUAL_INFEASIBLE             14
#define TRV_STAT_ABORTED_PRIMAL_INFEASIBLE           15
#define TRV_STAT_ABORTED_PRIMAL_DUAL_INFEASIBLE      16
#define TRV_STAT_ABORTED_PRIMAL_DUAL_FEASIBLE        17
#define TRV_STAT_ABORTED_CROSSOVER                   18
#define TRV_STAT_UNBOUNDED_INFEASIBLE                19
#define TRV_STAT_USER_PIVOT_USED                     20
#define TRV_STAT_PRIMAL_INFEASIBLE                   32
#define TRV_STAT_DUAL_INFEASIBLE                     33
#define TRV_STAT_PRIMAL_DUAL_INFEASIBLE              34
#define TRV_STAT_PRIMAL_OBJECTIVE_LIMIT_EXCEEDED     35
#define TRV_STAT_DUAL_OBJECTIVE_LIMIT_EXCEEDED       36
#define TRV_STAT_OPTIMAL_FACE_UNBOUNDED              37
#define TRV_STAT_NONOPTIMAL_FEASIBLE                 38
#define TRV_STAT_NONOPTIMAL_PRIMAL_INFEASIBLE        39
#define TRV_STAT_NONOPTIMAL_DUAL_INFEASIBLE          40
#define TRV_STAT_NONOPTIMAL_PRIMAL_DUAL_INFEASIBLE   41
#define TRV_STAT_NUMERICAL_ERRORS_ENCOUNTERED        42
#define TRV_STAT_INCONSISTENT_CONSTRAINTS            43
#define TRV_STAT_INTEGER_OPTIMAL_SOLUTION            101
#define TRV_STAT_INTEGER_OPTIMAL_TOLERANCE           102
#define TRV_STAT_INTEGER_INFEASIBLE                  103
#define TRV_STAT_SOLUTION_LIMIT_EXCEEDED_INTEGER     104
#define TRV_STAT_NODE_LIMIT_EXCEEDED_INTEGER         105
#define TRV_STAT_NODE_LIMIT_EXCEEDED_NO              106
#define TRV_STAT_TIME_LIMIT_EXCEEDED_INTEGER         107
#define TRV_STAT_TIME_LIMIT_EXCEEDED_NO              108
#define TRV_STAT_ERROR_TERMINATION_INTEGER_FEASIBLE  109
#define TRV_STAT_ERROR_TERMINATION_NO_INTEGER        110
#define TRV_STAT_MEMORY_LIMIT_EXCEEDED_INTEGER       111
#define TRV_STAT_MEMORY_LIMIT_EXCEEDED_NO            112
#define TRV_STAT_ABORTED_INTEGER_FEASIBLE            113
#define TRV_STAT_ABORTED_NO_INTEGER_SOLUTION         114
#define TRV_STAT_INTEGER_OPTIMAL_UNSCALED_INFEASIBILITIES 115
#define TRV_STAT_ERROR_TERMINATION_INTEGER_FEASIBLE_116 116
#define TRV_STAT_ERROR_TERMINATION_NO_INTEGER_117    117

/* ---- environment, memory and C files ---------------------------------- */

TRVAPI TRVenv TRVopenTORVA(int *status_p);
TRVAPI int TRVcloseTORVA(TRVenv *env_p);
TRVAPI TRVenv TRVparenv(TRVenv env, int *status_p);
TRVAPI int TRVfreeparenv(TRVenv env, TRVenv *child_p);
TRVAPI const char *TRVversion(TRVenv env);
TRVAPI int TRVgetchannels(TRVenv env, TRVchannel *results_p,
                          TRVchannel *warning_p, TRVchannel *error_p,
                          TRVchannel *log_p);
TRVAPI int TRVflushstdchannels(TRVenv env);
TRVAPI int TRVputenv(char *envsetting);
TRVAPI int TRVEgetThreadNumber(TRVenv env);
TRVAPI int TRVEsetnamefunctions(TRVenv env, void *handle, TRVnamefunc rowfn,
                                TRVnamefunc colfn);
TRVAPI void TRVEpower_C_lock(int word);
TRVAPI void TRVEpower_C_unlock(int word);
TRVAPI void *TRVmalloc(size_t size);
TRVAPI void *TRVrealloc(void *block, size_t size);
TRVAPI void TRVfree(void *block);
TRVAPI void *TRVmemcpy(void *dest, const void *src, size_t count);
TRVAPI size_t TRVstrlen(const char *s);
TRVAPI char *TRVstrcpy(char *dest, const char *src);
TRVAPI FILE *TRVfopen(const char *name, const char *mode);
TRVAPI int TRVfclose(FILE *file);
TRVAPI int TRVfputs(const char *s, FILE *file);

/* ---- error and status texts -------------------------------------------- */

/* buffer: at least 1024 bytes (TRV_MSGBUF). env may be null. */
#define TRV_MSGBUF 1024
TRVAPI char *TRVgeterrorstring(TRVenv env, int code, char *buffer);
TRVAPI char *TRVgetstatstring(TRVenv env, int status, char *buffer);

/* ---- parameters --------------------------------------------------------- */

TRVAPI int TRVsetlogfile(TRVenv env, FILE *file);
TRVAPI int TRVgetlogfile(TRVenv env, FILE **file_p);
TRVAPI int TRVsetdefaults(TRVenv env);
TRVAPI int TRVsetintparam(TRVenv env, int whichparam, int newvalue);
TRVAPI int TRVsetdblparam(TRVenv env, int whichparam, double newvalue);
TRVAPI int TRVsetstrparam(TRVenv env, int whichparam, const char *newvalue);
TRVAPI int TRVgetintparam(TRVenv env, int whichparam, int *value_p);
TRVAPI int TRVgetdblparam(TRVenv env, int whichparam, double *value_p);
/* value: at least 512 bytes */
TRVAPI int TRVgetstrparam(TRVenv env, int whichparam, char *value);
TRVAPI int TRVinfointparam(TRVenv env, int whichparam, int *defvalue_p,
                           int *minvalue_p, int *maxvalue_p);
TRVAPI int TRVinfodblparam(TRVenv env, int whichparam, double *defvalue_p,
                           double *minvalue_p, double *maxvalue_p);
TRVAPI int TRVinfostrparam(TRVenv env, int whichparam, char *defvalue);

/* ---- message channels --------------------------------------------------- */

TRVAPI TRVchannel TRVaddchannel(TRVenv env);
TRVAPI void TRVdelchannel(TRVenv env, TRVchannel *channel_p);
TRVAPI void TRVdisconnectchannel(TRVenv env, TRVchannel channel);
TRVAPI void TRVflushchannel(TRVenv env, TRVchannel channel);
TRVAPI int TRVaddfpdest(TRVenv env, TRVchannel channel, FILE *file);
TRVAPI int TRVdelfpdest(TRVenv env, TRVchannel channel, FILE *file);
TRVAPI int TRVaddfuncdest(TRVenv env, TRVchannel channel, void *handle,
                          TRVmsgfunc msgfunc);
TRVAPI int TRVdelfuncdest(TRVenv env, TRVchannel channel, void *handle,
                          TRVmsgfunc msgfunc);
TRVAPI int TRVmsgstr(TRVchannel channel, const char *text);

/* ---- progress callbacks ------------------------------------------------- */

TRVAPI int TRVsetlpcallbackfunc(TRVenv env, TRVcallbackfunc func,
                                void *handle);
TRVAPI int TRVgetlpcallbackfunc(TRVenv env, TRVcallbackfunc *func_p,
                                void **handle_p);
TRVAPI int TRVsetmipcallbackfunc(TRVenv env, TRVcallbackfunc func,
                                 void *handle);
TRVAPI int TRVgetmipcallbackfunc(TRVenv env, TRVcallbackfunc *func_p,
                                 void **handle_p);
TRVAPI int TRVsetnetcallbackfunc(TRVenv env, TRVcallbackfunc func,
                                 void *handle);
TRVAPI int TRVgetnetcallbackfunc(TRVenv env, TRVcallbackfunc *func_p,
                                 void **handle_p);
/* Progress figures inside a callback: cbdata and wherefrom as the callback
 * received them; result_p points to an int or a double by whichinfo.
 * 1003 for a wherefrom outside 1-7 and 101-111 or a whichinfo unknown at
 * that place, 1006 outside a running optimiser. */
TRVAPI int TRVgetcallbackinfo(TRVenv env, void *cbdata, int wherefrom,
                              int whichinfo, void *result_p);

/* ---- problem creation and loading --------------------------------------- */

TRVAPI TRVlp TRVcreateprob(TRVenv env, int *status_p, const char *probname);
TRVAPI TRVlp TRVloadprob(TRVenv env, const char *probname, int numcols,
    int numrows, int numrims, int objsen, double *obj, double *rhs,
    char *sense, int *matbeg, int *matcnt, int *matind, double *matval,
    double *lb, double *ub, double *rngval, int *freerowind, int *rimtype,
    int *rimbeg, int *rimcnt, int *rimind, double *rimval, char *dataname,
    char *objname, char *rhsname, char *rngname, char *bndname,
    char **colname, char *colnamestore, char **rowname, char *rownamestore,
    char **rimname, char *rimnamestore, int colspace, int rowspace,
    int nzspace, int rimspace, int rimnzspace, int colnamespace,
    int rownamespace, int rimnamespace);
TRVAPI TRVlp TRVloadlp(TRVenv env, const char *probname, int numcols,
    int numrows, int objsen, double *obj, double *rhs, char *sense,
    int *matbeg, int *matcnt, int *matind, double *matval, double *lb,
    double *ub, double *rngval, int colspace, int rowspace, int nzspace);
TRVAPI TRVlp TRVloadlpwnames(TRVenv env, const char *probname, int numcols,
    int numrows, int objsen, double *obj, double *rhs, char *sense,
    int *matbeg, int *matcnt, int *matind, double *matval, double *lb,
    double *ub, double *rngval, char **colname, char *colnamestore,
    char **rowname, char *rownamestore, int colspace, int rowspace,
    int nzspace, int colnamespace, int rownamespace);
TRVAPI int TRVcopylp(TRVenv env, TRVlp lp, int numcols, int numrows,
    int objsen, const double *obj, const double *rhs, const char *sense,
    const int *matbeg, const int *matcnt, const int *matind,
    const double *matval, const double *lb, const double *ub,
    const double *rngval);
TRVAPI int TRVcopylpwnames(TRVenv env, TRVlp lp, int numcols, int numrows,
    int objsen, const double *obj, const double *rhs, const char *sense,
    const int *matbeg, const int *matcnt, const int *matind,
    const double *matval, const double *lb, const double *ub,
    const double *rngval, char **colname, char **rowname);
TRVAPI int TRVcopyobjname(TRVenv env, TRVlp lp, const char *objname);
TRVAPI TRVlp TRVcloneprob(TRVenv env, TRVlp lp, int *status_p);
TRVAPI int TRVfreeprob(TRVenv env, TRVlp *lp_p);
TRVAPI int TRVunloadprob(TRVenv env, TRVlp *lp_p);
TRVAPI int TRVreallocprob(TRVenv env, TRVlp lp, double **obj_p,
    double **rhs_p, char **sense_p, int **matbeg_p, int **matcnt_p,
    int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, char ***colname_p, char **colnamestore_p,
    char ***rowname_p, char **rownamestore_p, int colspace, int rowspace,
    int nzspace, int colnamespace, int rownamespace);
TRVAPI int TRVcompletelp(TRVenv env, TRVlp lp);

/* ---- model queries ------------------------------------------------------ */

TRVAPI int TRVgetnumcols(TRVenv env, TRVlp lp);
TRVAPI int TRVgetnumrows(TRVenv env, TRVlp lp);
TRVAPI int TRVgetnumnz(TRVenv env, TRVlp lp);
TRVAPI int TRVgetprobtype(TRVenv env, TRVlp lp);
TRVAPI int TRVgetstat(TRVenv env, TRVlp lp);
/* 0 with the index; 1210 (not reported) and index -1 when the name is not
 * there. */
TRVAPI int TRVgetrowindex(TRVenv env, TRVlp lp, const char *name,
                          int *index_p);
TRVAPI int TRVgetcolindex(TRVenv env, TRVlp lp, const char *name,
                          int *index_p);

/* ---- model files ---------------------------------------------------------- */

/* filetype: "LP", "MPS", "PAR", "SAV" (any case) or null for the suffix of
 * the name; names ending in .gz or .Z are read through gzip. */
TRVAPI int TRVreadcopyprob(TRVenv env, TRVlp lp, const char *filename,
                           const char *filetype);
TRVAPI int TRVwriteprob(TRVenv env, TRVlp lp, const char *filename,
                        const char *filetype);

/* Basis files (BAS), in the statuses of TRVgetbase. TRVmbasewrite writes
 * the kept basis (1262 without one); a problem without names gets the
 * default names x1.., c1... TRVmbaseread reads a file against the given
 * names (a null array stands for the default names) into cstat and rstat,
 * every nonbasic row as 0; TRVreadcopybase reads against the problem's
 * names and makes the basis the start of the next run, as TRVcopybase.
 * Both readers try the name with ".bas" added when the name as given
 * does not open, and change nothing unless the whole file was read.
 * Names ending in .gz or .Z go through gzip. */
TRVAPI int TRVmbasewrite(TRVenv env, TRVlp lp, const char *filename);
TRVAPI int TRVmbaseread(TRVenv env, const char *filename, int numcols,
                        int numrows, char **colname, char **rowname,
                        int *cstat, int *rstat);
TRVAPI int TRVreadcopybase(TRVenv env, TRVlp lp, const char *filename);

/* The readers hand out arrays that the caller frees with TRVfree. A null
 * out-pointer declines an optional array; the counts, objsen, the
 * objective, rhs, sense, matrix and bounds are required. The file name of
 * the LP readers may be null: the model is then typed on standard input. */
TRVAPI int TRVmpsread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *numrims_p, int *objsen_p, double **obj_p,
    double **rhs_p, char **sense_p, int **matbeg_p, int **matcnt_p,
    int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, int **freerowind_p, int **rimtype_p, int **rimbeg_p,
    int **rimcnt_p, int **rimind_p, double **rimval_p, char **dataname_p,
    char **objname_p, char **rhsname_p, char **rngname_p, char **bndname_p,
    char ***colname_p, char **colnamestore_p, char ***rowname_p,
    char **rownamestore_p, char ***rimname_p, char **rimnamestore_p,
    int *colspace_p, int *rowspace_p, int *nzspace_p, int *rimspace_p,
    int *rimnzspace_p, int *colnamespace_p, int *rownamespace_p,
    int *rimnamespace_p);
TRVAPI int TRVmpsmread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *numrims_p, int *objsen_p, double **obj_p,
    double **rhs_p, char **sense_p, int **matbeg_p, int **matcnt_p,
    int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, int **freerowind_p, int **rimtype_p, int **rimbeg_p,
    int **rimcnt_p, int **rimind_p, double **rimval_p, char **dataname_p,
    char **objname_p, char **rhsname_p, char **rngname_p, char **bndname_p,
    char ***colname_p, char **colnamestore_p, char ***rowname_p,
    char **rownamestore_p, char ***rimname_p, char **rimnamestore_p,
    int *colspace_p, int *rowspace_p, int *nzspace_p, int *rimspace_p,
    int *rimnzspace_p, int *colnamespace_p, int *rownamespace_p,
    int *rimnamespace_p, char **ctype_p, int *numsos_p, int *numsosnz_p,
    char **sostype_p, int **sosbeg_p, int **sosind_p, double **sosref_p);
TRVAPI int TRVmpsqread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *numrims_p, int *objsen_p, double **obj_p,
    double **rhs_p, char **sense_p, int **matbeg_p, int **matcnt_p,
    int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, int **freerowind_p, int **rimtype_p, int **rimbeg_p,
    int **rimcnt_p, int **rimind_p, double **rimval_p, char **dataname_p,
    char **objname_p, char **rhsname_p, char **rngname_p, char **bndname_p,
    char ***colname_p, char **colnamestore_p, char ***rowname_p,
    char **rownamestore_p, char ***rimname_p, char **rimnamestore_p,
    int *colspace_p, int *rowspace_p, int *nzspace_p, int *rimspace_p,
    int *rimnzspace_p, int *colnamespace_p, int *rownamespace_p,
    int *rimnamespace_p, char **ctype_p, int *numsos_p, int *numsosnz_p,
    char **sostype_p, int **sosbeg_p, int **sosind_p, double **sosref_p,
    int **qmatbeg_p, int **qmatcnt_p, int **qmatind_p, double **qmatval_p,
    int *qnzspace_p);
TRVAPI int TRVlpread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *objsen_p, double **obj_p, double **rhs_p,
    char **sense_p, int **matbeg_p, int **matcnt_p, int **matind_p,
    double **matval_p, double **lb_p, double **ub_p, double **rngval_p,
    char **objname_p, char **rhsname_p, char ***colname_p,
    char **colnamestore_p, char ***rowname_p, char **rownamestore_p,
    int *colspace_p, int *rowspace_p, int *nzspace_p, int *colnamespace_p,
    int *rownamespace_p);
TRVAPI int TRVlpmread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *objsen_p, double **obj_p, double **rhs_p,
    char **sense_p, int **matbeg_p, int **matcnt_p, int **matind_p,
    double **matval_p, double **lb_p, double **ub_p, double **rngval_p,
    char **objname_p, char **rhsname_p, char ***colname_p,
    char **colnamestore_p, char ***rowname_p, char **rownamestore_p,
    int *colspace_p, int *rowspace_p, int *nzspace_p, int *colnamespace_p,
    int *rownamespace_p, char **ctype_p);
TRVAPI int TRVlpqread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *objsen_p, double **obj_p, double **rhs_p,
    char **sense_p, int **matbeg_p, int **matcnt_p, int **matind_p,
    double **matval_p, double **lb_p, double **ub_p, double **rngval_p,
    char **objname_p, char **rhsname_p, char ***colname_p,
    char **colnamestore_p, char ***rowname_p, char **rownamestore_p,
    int *colspace_p, int *rowspace_p, int *nzspace_p, int *colnamespace_p,
    int *rownamespace_p, char **ctype_p, int **qmatbeg_p, int **qmatcnt_p,
    int **qmatind_p, double **qmatval_p, int *qnzspace_p);

TRVAPI int TRVgetnumrims(TRVenv env, TRVlp lp);
TRVAPI int TRVgetnumfreerows(TRVenv env, TRVlp lp);
TRVAPI int TRVgetnumfreerownz(TRVenv env, TRVlp lp);
TRVAPI int TRVgetnumrimnz(TRVenv env, TRVlp lp);
TRVAPI int TRVgetobjsen(TRVenv env, TRVlp lp);
TRVAPI int TRVgetcolspace(TRVenv env, TRVlp lp);
TRVAPI int TRVgetrowspace(TRVenv env, TRVlp lp);
TRVAPI int TRVgetnzspace(TRVenv env, TRVlp lp);
TRVAPI int TRVgetrimspace(TRVenv env, TRVlp lp);
TRVAPI int TRVgetrimnzspace(TRVenv env, TRVlp lp);
TRVAPI int TRVgetcolnamespace(TRVenv env, TRVlp lp);
TRVAPI int TRVgetrownamespace(TRVenv env, TRVlp lp);
TRVAPI int TRVgetrimnamespace(TRVenv env, TRVlp lp);

/* Range getters copy entries begin..end; begin > end copies nothing. */
TRVAPI int TRVgetobj(TRVenv env, TRVlp lp, double *obj, int begin, int end);
TRVAPI int TRVgetrhs(TRVenv env, TRVlp lp, double *rhs, int begin, int end);
TRVAPI int TRVgetsense(TRVenv env, TRVlp lp, char *sense, int begin, int end);
TRVAPI int TRVgetlb(TRVenv env, TRVlp lp, double *lb, int begin, int end);
TRVAPI int TRVgetub(TRVenv env, TRVlp lp, double *ub, int begin, int end);
TRVAPI int TRVgetrngval(TRVenv env, TRVlp lp, double *rngval, int begin,
                        int end);
TRVAPI int TRVgetfreerowind(TRVenv env, TRVlp lp, int *freerowind, int begin,
                            int end);
TRVAPI int TRVgetrimtype(TRVenv env, TRVlp lp, int *rimtype, int begin,
                         int end);
TRVAPI int TRVgetcoef(TRVenv env, TRVlp lp, int i, int j, double *coef_p);

/* Matrix and name getters: with space 0 and a surplus pointer they probe
 * the size silently (*surplus_p = -needed, result 1207); otherwise a
 * negative *surplus_p tells how much room was missing. */
TRVAPI int TRVgetcols(TRVenv env, TRVlp lp, int *nzcnt_p, int *cmatbeg,
                      int *cmatind, double *cmatval, int cmatspace,
                      int *surplus_p, int begin, int end);
TRVAPI int TRVgetrows(TRVenv env, TRVlp lp, int *nzcnt_p, int *rmatbeg,
                      int *rmatind, double *rmatval, int rmatspace,
                      int *surplus_p, int begin, int end);
/* Entries of free rows begin..end (0 to TRVgetnumfreerows - 1) and of the
 * other rim vectors (from TRVgetnumfreerows to TRVgetnumrims - 1); 1218
 * when the model has no rim vectors. */
TRVAPI int TRVgetfreerows(TRVenv env, TRVlp lp, int *nzcnt_p, int *fmatbeg,
                          int *fmatind, double *fmatval, int fmatspace,
                          int *surplus_p, int begin, int end);
TRVAPI int TRVgetrims(TRVenv env, TRVlp lp, int *nzcnt_p, int *rmatbeg,
                      int *rmatind, double *rmatval, int rmatspace,
                      int *surplus_p, int begin, int end);
TRVAPI int TRVgetcolname(TRVenv env, TRVlp lp, char **name, char *namestore,
                         int storespace, int *surplus_p, int begin, int end);
TRVAPI int TRVgetrowname(TRVenv env, TRVlp lp, char **name, char *namestore,
                         int storespace, int *surplus_p, int begin, int end);
TRVAPI int TRVgetrimname(TRVenv env, TRVlp lp, char **name, char *namestore,
                         int storespace, int *surplus_p, int begin, int end);
TRVAPI int TRVgetprobname(TRVenv env, TRVlp lp, char *buf, int bufspace,
                          int *surplus_p);
TRVAPI int TRVgetobjname(TRVenv env, TRVlp lp, char *buf, int bufspace,
                         int *surplus_p);
/* The names of the data set and of the RHS, RANGES and BOUNDS vectors read
 * from a file: *name_p points at the problem's own string (null when there
 * is none) and stays valid until the problem changes. */
TRVAPI int TRVgetdataname(TRVenv env, TRVlp lp, char **name_p);
TRVAPI int TRVgetrhsname(TRVenv env, TRVlp lp, char **name_p);
TRVAPI int TRVgetrngname(TRVenv env, TRVlp lp, char **name_p);
TRVAPI int TRVgetbndname(TRVenv env, TRVlp lp, char **name_p);

/* ---- model changes ----------------------------------------------------- */

/* Additions. Null arrays take defaults: objective 0, bounds 0 and
 * +infinity, right-hand side 0, sense 'E', range 0, names "x<j+1>" and
 * "c<i+1>" where the model has names. A library-owned problem collects
 * additions and merges them at the next query that hands out data;
 * TRVcompletelp merges at once. */
TRVAPI int TRVnewcols(TRVenv env, TRVlp lp, int ccnt, const double *obj,
                      const double *lb, const double *ub, const char *ctype,
                      char **colname);
TRVAPI int TRVnewrows(TRVenv env, TRVlp lp, int rcnt, const double *rhs,
                      const char *sense, const double *rngval, char **rowname);
/* ccnt new empty columns first, then rcnt rows whose entries (rmatbeg,
 * rmatind, rmatval) may refer to them. */
TRVAPI int TRVaddrows(TRVenv env, TRVlp lp, int ccnt, int rcnt, int nzcnt,
                      const double *rhs, const char *sense, const int *rmatbeg,
                      const int *rmatind, const double *rmatval, char **colname,
                      char **rowname);
TRVAPI int TRVaddcols(TRVenv env, TRVlp lp, int ccnt, int nzcnt,
                      const double *obj, const int *cmatbeg, const int *cmatind,
                      const double *cmatval, const double *lb, const double *ub,
                      char **colname);
/* Deletions. delstat has an entry per row (column); non-zero marks one for
 * deletion. On return it holds each one's new index, or -1. */
TRVAPI int TRVdelrows(TRVenv env, TRVlp lp, int begin, int end);
TRVAPI int TRVdelsetrows(TRVenv env, TRVlp lp, int *delstat);
TRVAPI int TRVdelcols(TRVenv env, TRVlp lp, int begin, int end);
TRVAPI int TRVdelsetcols(TRVenv env, TRVlp lp, int *delstat);
/* Entry (i, j) of the matrix; i = -1 is the objective, j = -1 the
 * right-hand side and j = -2 the range of row i. A zero removes an entry. */
TRVAPI int TRVchgcoef(TRVenv env, TRVlp lp, int i, int j, double newvalue);
TRVAPI int TRVchgcoeflist(TRVenv env, TRVlp lp, int numcoefs,
                          const int *rowlist, const int *collist,
                          const double *vallist);
/* lu: 'L' lower, 'U' upper, 'B' both. A bound at or beyond 1e17 in size is
 * infinite; an infinite bound on the wrong side is ignored with a
 * warning. TRVtightenbds changes the bounds in the simplex's working copy
 * too, so that its basis stays in use. */
TRVAPI int TRVchgbds(TRVenv env, TRVlp lp, int cnt, const int *indices,
                     const char *lu, const double *bd);
TRVAPI int TRVtightenbds(TRVenv env, TRVlp lp, int cnt, const int *indices,
                         const char *lu, const double *bd);
TRVAPI int TRVchgobj(TRVenv env, TRVlp lp, int cnt, const int *indices,
                     const double *values);
TRVAPI int TRVchgrhs(TRVenv env, TRVlp lp, int cnt, const int *indices,
                     const double *values);
TRVAPI int TRVchgrngval(TRVenv env, TRVlp lp, int cnt, const int *indices,
                        const double *values);
TRVAPI int TRVchgsense(TRVenv env, TRVlp lp, int cnt, const int *indices,
                       const char *sense);
/* maxormin: 1 minimise, -1 maximise. */
TRVAPI int TRVchgobjsen(TRVenv env, TRVlp lp, int maxormin);
TRVAPI int TRVchgprobname(TRVenv env, TRVlp lp, const char *probname);
/* key 'c' for column ij, 'r' for row ij. */
TRVAPI int TRVchgname(TRVenv env, TRVlp lp, int key, int ij,
                      const char *name);
TRVAPI int TRVchgcolname(TRVenv env, TRVlp lp, int cnt, const int *indices,
                         char **newname);
TRVAPI int TRVchgrowname(TRVenv env, TRVlp lp, int cnt, const int *indices,
                         char **newname);
/* Drops all row and column names. */
TRVAPI int TRVdelnames(TRVenv env, TRVlp lp);
/* Free rows: rows without a constraint, kept with their entries. A row made
 * free leaves the rows (the others renumber as after a deletion); freeind,
 * if given, receives the free-row index each one got. A free row made a
 * row again comes last among the rows. TRVchgfreecoef sets entries of free
 * rows; a zero removes one. */
TRVAPI int TRVchgtofreerow(TRVenv env, TRVlp lp, int cnt, const int *indices,
                           int *freeind);
TRVAPI int TRVchgfromfreerow(TRVenv env, TRVlp lp, int cnt,
                             const int *indices, const double *rhs,
                             const char *sense, const double *rngval);
TRVAPI int TRVchgfreecoef(TRVenv env, TRVlp lp, int cnt, const int *freeind,
                          const int *colind, const double *val);
/* Room left in the problem's arrays; null pointers are skipped. */
TRVAPI int TRVgetspace(TRVenv env, TRVlp lp, int *colfree_p, int *rowfree_p,
                       int *nzfree_p, int *colnamefree_p, int *rownamefree_p);

/* The cache of pending additions, for modelling layers: the record, and
 * appends to it that skip the checks of the data check switch. */
TRVAPI void *TRVEgetCache(TRVlp lp);
TRVAPI int TRVEcacheNewCols(TRVenv env, TRVlp lp, int ccnt, const double *obj,
                            const double *lb, const double *ub,
                            const char *ctype, char **colname);
TRVAPI int TRVEcacheNewRows(TRVenv env, TRVlp lp, int rcnt, const double *rhs,
                            const char *sense, const double *rngval,
                            char **rowname);
TRVAPI int TRVEcacheNewNZsByNZ(TRVenv env, TRVlp lp, int cnt,
                               const int *rowind, const int *colind,
                               const double *val);

/* ---- optimisation and solution access ---------------------------------- */

/* Solves the LP by the primal simplex; the outcome is TRVgetstat's. */
TRVAPI int TRVprimopt(TRVenv env, TRVlp lp);
/* Solves the LP by the dual simplex, from the basis of the last solve when
 * one is kept and parameter 1001 is set. */
TRVAPI int TRVdualopt(TRVenv env, TRVlp lp);
/* Solves the LP by the method of parameter 1062: 0 and 2 dual simplex,
 * 1 primal simplex; 3 and 4 answer 1292 in this build. */
TRVAPI int TRVlpopt(TRVenv env, TRVlp lp);
/* Takes the model back out of its internal scaling. */
TRVAPI int TRVunscaleprob(TRVenv env, TRVlp lp);
/* The whole solution; a null pointer skips its item. 1217 with none. */
TRVAPI int TRVsolution(TRVenv env, TRVlp lp, int *lpstat_p, double *objval_p,
                       double *x, double *pi, double *slack, double *dj);
TRVAPI int TRVgetobjval(TRVenv env, TRVlp lp, double *objval_p);
/* Ranges begin..end of the primal values, duals, slacks (rhs minus row
 * activity) and reduced costs. */
TRVAPI int TRVgetx(TRVenv env, TRVlp lp, double *x, int begin, int end);
TRVAPI int TRVgetpi(TRVenv env, TRVlp lp, double *pi, int begin, int end);
TRVAPI int TRVgetslack(TRVenv env, TRVlp lp, double *slack, int begin,
                       int end);
TRVAPI int TRVgetdj(TRVenv env, TRVlp lp, double *dj, int begin, int end);
/* Row activities A x of rows begin..end, ranged rows without their range. */
TRVAPI int TRVgetax(TRVenv env, TRVlp lp, double *ax, int begin, int end);
/* Iterations of the last run, in all and in phase 1; 0 with none. */
TRVAPI int TRVgetitcnt(TRVenv env, TRVlp lp);
TRVAPI int TRVgetphase1cnt(TRVenv env, TRVlp lp);
/* Counters of the barrier, crossover and sifting runs of the last solve;
 * 0 where the route did not run. */
TRVAPI int TRVgetbaritcnt(TRVenv env, TRVlp lp);
TRVAPI int TRVgetcrossppushcnt(TRVenv env, TRVlp lp);
TRVAPI int TRVgetcrosspexchcnt(TRVenv env, TRVlp lp);
TRVAPI int TRVgetcrossdpushcnt(TRVenv env, TRVlp lp);
TRVAPI int TRVgetcrossdexchcnt(TRVenv env, TRVlp lp);
TRVAPI int TRVgetpsbcnt(TRVenv env, TRVlp lp);
TRVAPI int TRVgetdsbcnt(TRVenv env, TRVlp lp);
/* The basis the last run left, for columns and rows; a null array is
 * skipped. Column status: 0 at lower bound, 1 basic, 2 at upper bound,
 * 3 free; row status: 1 basic slack, 0 otherwise, 2 for a ranged row at
 * the upper end of its range. 1262 when no basis is kept. */
TRVAPI int TRVgetbase(TRVenv env, TRVlp lp, int *cstat, int *rstat);
/* Sets the basis the next run starts from (with parameter 1001 on), in the
 * statuses of TRVgetbase; the solution of an earlier run is dropped.
 * 1253 for a status out of range. */
TRVAPI int TRVcopybase(TRVenv env, TRVlp lp, const int *cstat, const int *rstat);
/* 1 when TRVgetbase has a basis to give, else 0. */
TRVAPI int TRVcangetbase(TRVenv env, TRVlp lp);
/* Dual steepest-edge norms of the kept basis, 1264 without them: one per
 * basic variable, structural columns by index and then rows by index;
 * head[k] is the column j or -i-1 for row i, *len_p their count. */
TRVAPI int TRVgetdnorms(TRVenv env, TRVlp lp, double *norm, int *head,
                        int *len_p);
/* The basis as TRVgetbase and its norms in the order of TRVgetdnorms. */
TRVAPI int TRVgetbasednorms(TRVenv env, TRVlp lp, int *cstat, int *rstat,
                            double *dnorm);
/* B^-1 A_j for column j of the stored basis, in y (one entry per row);
 * head, when given, gets the basis header: the column basic in each
 * position, or -i-1 for the slack (or range) of row i, with the slack of a
 * row taken as rhs - A x. 1262 without a basis, 1256 when it is singular. */
TRVAPI int TRVgetgrad(TRVenv env, TRVlp lp, int j, int *head, double *y);
/* The row (*idiv_p) or column (*jdiv_p) that proved the last run
 * infeasible or unbounded; the other is -1, and both are -1 after any other
 * end. 1217 without a solution. */
TRVAPI int TRVgetijdiv(TRVenv env, TRVlp lp, int *idiv_p, int *jdiv_p);
/* Sets the dual norms of the kept basis (1262 without one), in the form of
 * TRVgetdnorms: len must be the number of rows (1207 short, 1208 long),
 * each head entry basic in the kept basis (1251), each norm positive and
 * finite (1003). A basic variable left out gets its norm computed at the
 * start of the next dual run. */
TRVAPI int TRVcopydnorms(TRVenv env, TRVlp lp, const double *norm,
                         const int *head, int len);
/* TRVcopybase, then the dual norms of its basic variables in the order of
 * TRVgetdnorms (positive and finite: 1003, checked before the basis). */
TRVAPI int TRVcopybasednorms(TRVenv env, TRVlp lp, const int *cstat,
                             const int *rstat, const double *dnorm);
/* Drops the dual norms of the kept basis; 1009 for a bad handle, silent. */
TRVAPI int TRVkilldnorms(TRVlp lp);
/* Primal steepest-edge weights of the kept basis, 1264 without them, as a
 * primal run with pricing 2 or 3 of parameter 1029 left them or
 * TRVcopypnorms set them: one per column in cnorm and one per row in rnorm
 * (the weight of the row's slack or range column, 1 for an equality row);
 * basic variables have 1. *len_p receives the number of columns. The
 * weights are those of the optimiser's working form, scaled when the model
 * is, as the dual norms are. */
TRVAPI int TRVgetpnorms(TRVenv env, TRVlp lp, double *cnorm, double *rnorm,
                        int *len_p);
/* Sets the primal weights of the kept basis (1262 without one), in the
 * form of TRVgetpnorms: len must be the number of columns (1207 short,
 * 1208 long), each value positive and finite (1003). */
TRVAPI int TRVcopypnorms(TRVenv env, TRVlp lp, const double *cnorm,
                         const double *rnorm, int len);
/* Drops the primal weights of the kept basis; 1009 for a bad handle,
 * silent. */
TRVAPI int TRVkillpnorms(TRVlp lp);
/* The method that produced the solution (1 primal simplex); 0 with none. */
TRVAPI int TRVgetmethod(TRVenv env, TRVlp lp);

#ifdef __cplusplus
}
#endif

#endif /* TRVLIB_H */
