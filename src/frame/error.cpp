/*
 * error.cpp - the table of error texts, the table of solution status texts,
 * the hash index of the error table, and the reporter of the call frame.
 *
 * A message text carries no "TORVA Error" prefix and no final period: both
 * are added on output. A text may hold printf placeholders; such a message
 * is issued through env_error with its values.
 */
#include <cstring>

#include "trv.h"

namespace {

struct code_text {
    int code;
    const char *text;
};

const code_text err_table[] = {
    {1001, "Out of memory"},
    {1002, "No environment"},
    {1003, "Bad argument to Callable Library function"},
    {1004, "Null pointer for required data"},
    {1005, "Pointer mismatch prevents memory reallocation"},
    {1006, "Error during callback"},
    {1007, "Space allocated for a problem must be positive"},
    {1008, "Not valid for problem memory model"},
    {1009, "No problem exists"},
    {1012, "Problem size limits too large"},
    {1013, "Bad parameter number to TORVA parameter routine"},
    {1014, "Parameter value too small"},
    {1015, "Parameter value too big"},
    {1017, "Not available for mixed-integer programs"},
    {1018, "Not available for quadratic programs"},
    {1019, "Cannot clone a cloned environment"},
    {1020, "Thread limit exceeded"},
    {1021, "Cannot close a child environment"},
    {1022, "Unknown problem type.  Problem not changed"},
    {1023, "Not a single problem, relaxed or fixed"},
    {1024, "Not a MIP, relaxed MIP, or fixed MIP"},
    {1025, "Not a QP or zeroed QP"},
    {1026, "String parameter is too long"},
    {1027, "Decompression of unpresolved model failed"},
    {1051, "No channel pointer supplied to message routine"},
    {1052, "No file pointer found for message routine"},
    {1053, "No function pointer found for message routine"},
    {1100, "Bounds on '%.255s' contradictory"},
    {1101, "Presolve determines problem is infeasible or unbounded"},
    {1103, "No presolved problem created"},
    {1106, "Aborted during presolve"},
    {1107, "Not enough memory to build basis for original LP"},
    {1108, "Can't copy SOS info from original MIP"},
    {1109, "Can't copy priority order info from original MIP"},
    {1110, "Not enough memory to recover solution for original MIP"},
    {1111, "Not enough memory to compute solution to original QP"},
    {1112, "Not enough memory to build start for original LP"},
    {1114, "Could not load unpresolved basis for original LP"},
    {1115, "Failed to find basis in presolved LP"},
    {1116, "Can't copy MIP start info from original MIP"},
    {1117, "Presolve determines problem is infeasible"},
    {1118, "Presolve determines problem is unbounded"},
    {1119, "The feature is not available for solving dual formulation"},
    {1120, "Can't uncrush solution form"},
    {1121, "Can't crush solution form"},
    {1122, "Bad presolve parameter setting"},
    {1200, "Index is outside range of valid values"},
    {1201, "Column index %d out of range"},
    {1203, "Row index %d out of range"},
    {1205, "%s: 'begin' value %d is less than %d"},
    {1206, "%s: 'end' value %d is greater than %d"},
    {1207, "Insufficient array length"},
    {1208, "Array length too long"},
    {1209, "Unable to create default names"},
    {1210, "Name not found"},
    {1211, "'rhs' has no coefficient in 'obj'"},
    {1214, "Cannot reallocate problem with rim data"},
    {1215, "Illegal sense entry %d"},
    {1216, "No range values"},
    {1217, "No solution exists"},
    {1218, "No rim vectors"},
    {1219, "No names exist"},
    {1220, "Must have objective name"},
    {1221, "Only fixed variables are pivoted out"},
    {1222, "Duplicate entry"},
    {1223, "No barrier solution exists"},
    {1224, "Null pointer %d in name array"},
    {1225, "Numeric entry %d is not a double precison number (NAN)"},
    {1226, "Array entry %d not ascending"},
    {1227, "Count entry %d negative or larger than allowed"},
    {1228, "Count entry %d indicates overlapping entries"},
    {1229, "Illegal bound change indicator entry %d"},
    {1230, "Node index %d out of range"},
    {1231, "Arc index %d out of range"},
    {1251, "Index must correspond to a basic variable"},
    {1252, "Optimal solution required"},
    {1253, "Invalid status entry %d for basis specification"},
    {1254, "Unbounded solution required"},
    {1255, "Incompatible with superbasis"},
    {1256, "Basis singular"},
    {1257, "Incorrect usage of pricing indicator"},
    {1258, "No LU factorization exists"},
    {1260, "Sensitivity analysis not available for current status"},
    {1261, "No basic solution exists"},
    {1262, "No basis exists"},
    {1263, "Strong branching aborted"},
    {1264, "No norms available"},
    {1265, "Dual unbounded solution required"},
    {1266, "Time limit reached in strong branching"},
    {1267, "Illegal pivot"},
    {1268, "Time limit reached in computing condition number"},
    {1269, "Condition number computation aborted"},
    {1291, "Supplies and demands do not balance"},
    {1292, "Invalid choice of optimization method"},
    {1401, "Not enough space"},
    {1402, "Not enough space to add free rows"},
    {1403, "Not enough space for free row nonzeros"},
    {1404, "Not enough space for free row names"},
    {1406, "Names need space for %d characters, only %d available"},
    {1421, "File name not specified"},
    {1422, "Could not open file '%s' for writing"},
    {1423, "Could not open file '%s' for reading"},
    {1424, "Invalid filetype"},
    {1431, "Too many rows"},
    {1432, "Too many columns"},
    {1433, "Too many coefficients"},
    {1434, "Line %d: Couldn't convert '%s' to a number"},
    {1435, "Line %d: Exponent '%s' out of range"},
    {1436, "Max or Min missing"},
    {1441, "Line %d: No NAME section"},
    {1442, "Line %d: Unrecognized SOS type: %c%c"},
    {1443, "Column '%.255s' has repeated row '%.255s'"},
    {1444, "%s '%.255s' has repeated row '%.255s'"},
    {1445, "Row '%.255s' repeats"},
    {1446, "Column '%.255s' repeats"},
    {1447, "Line %d: %.255s '%.255s' repeats"},
    {1448, "Line %d: '%.255s' is not a row name"},
    {1449, "Line %d: '%.255s' is not a column name"},
    {1450, "Line %d: '%.255s' is not a RHS name"},
    {1451, "Line %d: '%s' is not a bound name"},
    {1452, "Line %d: '%.255s' is not a range name"},
    {1453, "Line %d: No row sense"},
    {1454, "Line %d: 'FX' bound type illegal when prior bound given"},
    {1455, "Line %d: 'FR' bound type illegal when prior bound given"},
    {1456, "Line %d: 'BV' bound type illegal when prior bound given"},
    {1457, "Line %d: Unrecognized bound type '%s'"},
    {1458, "Line %d: Repeated upper bound"},
    {1459, "Line %d: Repeated lower bound"},
    {1460, "Line %d: Bound type missing"},
    {1461, "Line %d: No QMATRIX section"},
    {1462, "Line %d: Unrecognized section indicator.\n      Expecting ENDATA"},
    {1463, "Line %d: Magnitude exceeds integer limit"},
    {1464, "Line %d: Identifier/name too long to process"},
    {1471, "Line %d: No ROWS section"},
    {1472, "Line %d: No COLUMNS section"},
    {1473, "Line %d: Unrecognized section indicator.\n      Expecting RANGES, BOUNDS, QMATRIX, or ENDATA"},
    {1474, "Line %d: 'RANGES' section out of order"},
    {1475, "Line %d: Unrecognized section indicator.\n      Expecting QMATRIX or ENDATA"},
    {1476, "Line %d: No objective row found"},
    {1477, "%d Row repeats messages not printed"},
    {1478, "%d Column repeats messages not printed"},
    {1479, "Line %d: %.255s %.255s repeats"},
    {1480, "Line %d: 'INTORG' found while reading integers"},
    {1481, "Line %d: 'INTEND' found while not reading integers"},
    {1482, "Line %d: 'SOSORG' found while reading a SOS"},
    {1483, "Line %d: 'SOSEND' found while not reading a SOS"},
    {1484, "Too many rim vectors"},
    {1485, "Too many rim nonzeros"},
    {1486, "Line %d: No row name"},
    {1487, "Line %d: Unrecognized objective sense '%s'"},
    {1501, "Line %d: Revision control indicator missing"},
    {1502, "Line %d: Repeated revision of '%.255s'"},
    {1503, "Line %d: Revision of objective row illegal"},
    {1504, "Line %d: Modification to or from sense 'N' illegal"},
    {1505, "Line %d: More than %d extra rim vectors"},
    {1506, "Rim names need space for %d characters, \n      only %d available"},
    {1507, "Line %d: Deletion of active RHS illegal"},
    {1508, "Line %d: More than %d new RHS coefficients"},
    {1509, "Line %d: Deletion of active range illegal"},
    {1510, "Line %d: More than %d range coefficients"},
    {1511, "No active ranges loaded.  Range revision illegal"},
    {1512, "Line %d: Deletion of active bound illegal"},
    {1513, "Line %d:  Non-one bound on binary variable"},
    {1514, "More than %d coefficients during \n      extra bound '%.255s' processing"},
    {1515, "Space for %d extra rim nonzeros needed, \n      only %d available"},
    {1516, "Line %d:  More than %d new rows"},
    {1517, "Line %d:  More than %d new columns"},
    {1518, "Line %d: More than %d new coefficients"},
    {1519, "Line %d: More than %d new extra rim vectors"},
    {1525, "Header missing"},
    {1526, "Not enough data in header"},
    {1527, "Found %d lines, expected %d"},
    {1528, "Line %d:  Not enough entries"},
    {1530, "Inconsistent network file"},
    {1531, "Not a min-cost flow problem"},
    {1532, "Incorrect row identifier"},
    {1533, "Demands not balanced"},
    {1537, "Bad character encountered near line %d - aborting read"},
    {1538, "Unexpected end of network file"},
    {1550, "Basis missing some basic values"},
    {1551, "Line %d: Unrecognized basis indicator '%.255s'"},
    {1552, "'ENDATA' missing"},
    {1553, "Line %d: Wrong number of entries"},
    {1554, "Superbases are not allowed"},
    {1555, "%d %.255s basic variable(s)"},
    {1556, "Vector solution does not exist"},
    {1560, "File '%s' is not a SAV file"},
    {1561, "Not enough data in SAV file"},
    {1562, "Unable to write SAV file to disk"},
    {1563, "File '%s' has an incompatible format"},
    {1602, "Lines %d,%d: Adjacent signs"},
    {1603, "Line %d: RHS sense in objective"},
    {1604, "Lines %d,%d: Adjacent sign and sense"},
    {1605, "Line %d: Quadratic term in constraint"},
    {1606, "Lines %d,%d: Adjacent sign and quadratic character"},
    {1607, "Line %d: Expected operator, found '%c'"},
    {1608, "Line %d: Expected '+','-' or sense, found '%c'"},
    {1609, "Line %d: Expected identifier first"},
    {1610, "Line %d: Expected RHS coefficient"},
    {1611, "Line %d: Expected number first"},
    {1612, "Line %d: Expected quadratic exponent"},
    {1613, "Line %d: Quadratic exponent must be 2"},
    {1614, "Line %d: Expected ^ or *"},
    {1615, "Line %d: Expected number, found '%c'"},
    {1616, "Line %d: Expected identifier, found '%c'"},
    {1617, "Line %d: '%.255s' not valid identifier"},
    {1618, "Line %d: Exponent '%s' not %s with number"},
    {1621, "Line %d: No bound sense"},
    {1622, "Line %d: Invalid bound sense"},
    {1623, "Line %d: Missing bound number"},
    {1624, "Line %d: More than %d constraints"},
    {1625, "Line %d: More than %d variables"},
    {1626, "Line %d: More than %d coefficients"},
    {1650, "Number not representable in exponential notation"},
    {1701, "No IIS information exists"},
    {1702, "No solution exists; infeasibility analysis not available"},
    {1703, "Problem is feasible; no IIS available"},
    {1704, "Problem may be feasible; no IIS available"},
    {1705, "Problem optimal with unscaled infeasibilities.\n      No IIS available"},
    {1706, "Unable to compute an IIS"},
    {1707, "Infeasibility Finder requires a basic solution"},
    {1708, "Infeasibility Finder requires a primal infeasible basis"},
    {1709, "Failed to load IIS subproblem"},
    {1710, "Objective limit reached on IIS subproblem"},
    {1711, "Iteration limit reached on IIS subproblem"},
    {1712, "Time limit reached on IIS subproblem"},
    {1713, "Unable to optimize IIS subproblem"},
    {1801, "Could not open temporary file"},
    {1802, "Failure on temporary file read"},
    {1803, "Failure on temporary file write"},
    {3001, "ctype array already loaded for lp"},
    {3002, "Binary variable '%s' has value outside [0,1]"},
    {3003, "Not a mixed-integer problem"},
    {3004, "Infeasible bounds for set number %d"},
    {3006, "Negative priority entry %d"},
    {3007, "Illegal direction entry %d"},
    {3009, "Illegal sostype entry %d"},
    {3010, "Set does not have unique weights"},
    {3011, "Non-integral %s bound value %g \n      for integer variable '%.255s'"},
    {3012, "Line %d: Unrecognized direction '%c%c'"},
    {3015, "No user-defined SOSs exist"},
    {3016, "No priority order exists"},
    {3017, "No integer feasible solution exists"},
    {3018, "Magnitude of variable %.255s: %g exceeds\n      integer limit"},
    {3019, "Failure to solve MIP subproblem"},
    {3020, "No MIP start exists"},
    {3021, "Illegal ctype entry %d"},
    {3022, "Illegal bds. on semi-continuous or semi-integer variable %d"},
    {3301, "Line %d: Missing SOS type"},
    {3401, "Not enough data in TRE file"},
    {3402, "Error on write to TRE file"},
    {3403, "Can't read TRE file written by TORVA %s\n      (Current version is %s)"},
    {3404, "Objective names in TRE file %s do not match current problem"},
    {3405, "Tree in file %s does not match the current problem.\n      Number of variables in TRE file:        %d\n      Number of variables in current problem: %d"},
    {3406, "Tree in file %s does not match the current problem.\n      Number of constraints in TRE file:        %d\n      Number of constraints in current problem: %d"},
    {3407, "Tree in file %s does not match the current problem.\n      Number of integer variables in TRE file:        %d\n      Number of integer variables in current problem: %d"},
    {3408, "Tree in file %s does not match the current problem.\n      Number of nonzeros in TRE file:        %d\n      Number of nonzeros in current problem: %d"},
    {3409, "Different type in TRE file %s for variable '%.255s'"},
    {3410, "Presolve setting for %s \n      in file %s does not match the current setting"},
    {3412, "Current problem has no tree"},
    {3413, "Tree memory limit exceeded"},
    {3414, "File '%s' has an incompatible format"},
    {3504, "No callback info on disk/compressed nodes"},
    {3601, "Could not initialize mutex"},
    {3602, "Could not set concurrency level"},
    {3603, "Could not create thread"},
    {4001, "Unrecoverable error in barrier algorithm"},
    {4003, "Not enough memory to do augmented Schur complements"},
    {4004, "Not enough memory for barrier solve"},
    {4005, "Bad permutation vector from external ordering algorithm"},
    {5001, "Invalid quadratic matrix.  Unequal off-diagonal components"},
    {5002, "Q is not positive semi-definite"},
    {5003, "Cannot change off-diagonal element of \n      quadratic matrix loaded as separable"},
    {5004, "Not a quadratic program"},
    {5006, "Separable objective is indefinite"},
    {5007, "Invalid barrier algorithm for quadratic programs"},
    {5009, "Insufficient space in QP matrix"},
    {5010, "Q has negative or zero value diagonal components\n      on %d quadratic variables"},
    {5011, "Duplicate entry for pair '%.255s' and '%.255s'"},
    {5012, "Q is not symmetric"},
    {0, nullptr},
};

const code_text stat_table[] = {
    {1, "optimal"},
    {2, "infeasible"},
    {3, "unbounded"},
    {4, "objective limit exceeded"},
    {5, "iteration limit exceeded, feasible"},
    {6, "iteration limit exceeded, infeasible"},
    {7, "time limit exceeded, feasible"},
    {8, "time limit exceeded, infeasible"},
    {9, "non-optimal, feasible"},
    {10, "non-optimal, infeasible"},
    {11, "optimal with unscaled infeasibilities"},
    {12, "aborted, feasible"},
    {13, "aborted, infeasible"},
    {14, "aborted, dual infeasible"},
    {15, "aborted, primal infeasible"},
    {16, "aborted, primal-dual infeasible"},
    {17, "aborted, primal and dual feasible"},
    {18, "aborted crossover"},
    {19, "unbounded or infeasible"},
    {20, "user pivot used"},
    {32, "primal infeasible"},
    {33, "dual infeasible"},
    {34, "primal-dual infeasible"},
    {35, "primal objective limit exceeded"},
    {36, "dual objective limit exceeded"},
    {37, "optimal face unbounded"},
    {38, "nonoptimal, feasible"},
    {39, "nonoptimal, primal infeasible"},
    {40, "nonoptimal, dual infeasible"},
    {41, "nonoptimal, primal-dual infeasible"},
    {42, "numerical errors encountered"},
    {43, "inconsistent constraints"},
    {101, "integer optimal solution"},
    {102, "integer optimal, tolerance"},
    {103, "integer infeasible"},
    {104, "solution limit exceeded, integer feasible"},
    {105, "node limit exceeded, integer feasible"},
    {106, "node limit exceeded, no integer solution"},
    {107, "time limit exceeded, integer feasible"},
    {108, "time limit exceeded, no integer solution"},
    {109, "error termination, integer feasible"},
    {110, "error termination, no integer solution"},
    {111, "memory limit exceeded, integer feasible"},
    {112, "memory limit exceeded, no integer solution"},
    {113, "aborted, integer feasible"},
    {114, "aborted, no integer solution"},
    {115, "integer optimal with unscaled infeasibilities"},
    {116, "error termination, integer feasible, no tree"},
    {117, "error termination, no integer solution, no tree"},
    {0, nullptr},
};

int h1(int c) { return ((c % ERRHASH_SIZE) + ERRHASH_SIZE) % ERRHASH_SIZE; }
int h2(int c) { return 477 - (((c % 477) + 477) % 477); }

/* Index of code in err_table, or -1. */
int err_find(TRVenv env, int code) {
    if (env == nullptr) {
        for (int k = 0; err_table[k].code != 0; k++)
            if (err_table[k].code == code) return k;
        return -1;
    }
    int i = h1(code), d = h2(code);
    for (int e = env->errhash[i]; e != -1; e = env->errhash[i]) {
        if (err_table[e].code == code) return e;
        i = (i + d) % ERRHASH_SIZE;
    }
    return -1;
}

}  // namespace

void errhash_build(int *hash) {
    for (int i = 0; i < ERRHASH_SIZE; i++) hash[i] = -1;
    for (int k = 0; err_table[k].code != 0; k++) {
        int c = err_table[k].code, i = h1(c);
        while (hash[i] != -1) i = (i + h2(c)) % ERRHASH_SIZE;
        hash[i] = k;
    }
}

/* The text of code in buffer; env (a record, or null for the plain scan)
 * lends its hash index. */
static char *err_string(TRVenv env, int code, char *buffer) {
    if (code < 1 || code > 99999 || buffer == nullptr) return nullptr;
    int k = err_find(env, code);
    const char *text = k < 0 ? "Unknown error code" : err_table[k].text;
    std::snprintf(buffer, TRV_MSGBUF, "TORVA Error %5d: %s.\n", code, text);
    return k < 0 ? nullptr : buffer;
}

TRV_EXPORT char *TRVgeterrorstring(TRVenv env, int code, char *buffer) {
    return err_string(env_record(env), code, buffer);
}

TRV_EXPORT char *TRVgetstatstring(TRVenv, int status, char *buffer) {
    if (buffer == nullptr) return nullptr;
    for (int k = 0; stat_table[k].code != 0; k++)
        if (stat_table[k].code == status)
            return std::strcpy(buffer, stat_table[k].text);
    std::strcpy(buffer, "Unknown status value");
    return nullptr;
}

const char *env_errfmt(TRVenv env, int code) {
    if (err_string(env, code, env->msgbuf) == nullptr) {
        std::snprintf(env->msgbuf, sizeof env->msgbuf,
                      "Unknown error code %d.\n", code);
        return nullptr;
    }
    return env->msgbuf;
}

int env_error(TRVenv env, int code, ...) {
    if (!env_valid(env)) return code;
    const char *fmt = env_errfmt(env, code);
    if (fmt == nullptr) {
        TRVmsg(env->errchannel, "%s", env->msgbuf);
        return -code;
    }
    /* The format is copied first: the arguments may themselves point into
     * scratch that a nested lookup would reuse. */
    char local[sizeof env->msgbuf];
    std::memcpy(local, fmt, sizeof local);
    va_list ap;
    va_start(ap, code);
    trv_vmsg(env->errchannel, local, ap);
    va_end(ap);
    return -code;
}

void env_report(TRVenv env, int *status) {
    int s = *status;
    if (s <= 0) {
        *status = -s;
        return;
    }
    if (!env_valid(env)) return;
    if ((s == 1101 || s == 1117 || s == 1118) && par_int(env, 1043) == 0)
        return;
    char buf[TRV_MSGBUF];
    if (err_string(env, s, buf) == nullptr)
        std::snprintf(buf, sizeof buf,
                      "TORVA Error %5d:  Unknown error code.\n", s);
    TRVmsg(env->errchannel, "%s", buf);
}
