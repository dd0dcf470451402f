* The mill of mill.lp in fixed MPS form. MPS minimises, so the objective
* is the negated contribution.
NAME          MILL
ROWS
 N  profit
 L  machine
 L  labour
 G  steel
 E  mix
COLUMNS
    x_a       profit         -30.0   machine          2.0
    x_a       labour           3.0   steel            1.0
    x_a       mix              1.0
    x_b       profit         -40.0   machine          3.0
    x_b       labour           2.0   steel            1.0
    x_b       mix             -1.0
    x_c       profit         -50.0   machine          4.0
    x_c       labour           2.0   steel            1.5
    x_c       mix              1.0
RHS
    RHS       machine        180.0   labour         150.0
    RHS       steel           20.0
BOUNDS
 UP BND       x_c             25.0
ENDATA
