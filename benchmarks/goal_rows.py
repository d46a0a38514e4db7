"""What the benchmark programs measure, against which code and with which goals."""

from dataclasses import dataclass, field


@dataclass
class Row:
    """One kernel and its yardstick, the code it is compared with, at all sizes of a program."""

    what: str
    program: str
    ours: str  # name without the size, which follows after a slash
    yardstick: str
    peer: str  # the yardstick in words
    unit: str  # of the counter "size"
    goals: dict = field(default_factory=dict)  # text of the size -> largest allowed ratio


@dataclass
class Memory:
    """A counter that a program reports for one row and size."""

    what: str
    program: str
    row: str  # name with the size
    counter: str
    unit: str
    limit: float | None = None


ROWS = [
    Row("Overset set-up, cylinder", "overset_benchmark",
        "BM_Setup/Cylinder", "BM_SetupPlain/Cylinder", "plain", "cells",
        {"6": 0.5, "12": 0.17, "20": 0.05}),
    Row("Overset set-up, turned square", "overset_benchmark",
        "BM_Setup/Square", "BM_SetupPlain/Square", "plain", "cells", {"20": 0.07}),
    Row("Overset set-up, turned square around a body", "overset_benchmark",
        "BM_Setup/SquareRing", "BM_SetupPlain/SquareRing", "plain", "cells", {"20": 0.07}),
    Row("Overset set-up, sphere shell", "overset_benchmark",
        "BM_Setup/SphereShell", "BM_SetupPlain/SphereShell", "plain", "cells", {"20": 0.07}),
    Row("Overset set-up, turned square, cells numbered at random", "overset_benchmark",
        "BM_SetupShuffled/Square", "BM_Setup/Square", "mesh order", "cells", {"20": 1.5}),
    Row("First set-up of a process, cylinder", "overset_benchmark",
        "BM_FirstSetup/Cylinder", "BM_SetupPlain/Cylinder", "plain", "cells", {"20": 0.05}),
    Row("First set-up of a process, turned square", "overset_benchmark",
        "BM_FirstSetup/Square", "BM_SetupPlain/Square", "plain", "cells", {"20": 0.07}),
    Row("Set-up after a move, cylinder", "overset_benchmark",
        "BM_MovedSetup/Cylinder", "BM_FirstSetup/Cylinder", "first set-up", "cells", {"20": 1.05}),
    Row("Set-up after a move, turned square", "overset_benchmark",
        "BM_MovedSetup/Square", "BM_FirstSetup/Square", "first set-up", "cells", {"20": 1.05}),
    Row("Donor queries", "overset_benchmark", "BM_Donors", "BM_DonorsPlain", "plain", "faces",
        {"20": 0.5}),
    Row("32,768 searches among random points", "kd_tree_benchmark",
        "BM_Nearest/Uniform", "BM_NearestNanoflann/Uniform", "nanoflann", "points",
        {"1000000": 1.2}),
    Row("32,768 searches among lattice points", "kd_tree_benchmark",
        "BM_Nearest/Lattice", "BM_NearestNanoflann/Lattice", "nanoflann", "points"),
    Row("BiCGSTAB step, 7-point", "bicgstab_benchmark",
        "BM_Iteration/Box", "BM_IterationPlain/Box", "plain", "rows", {"64": 0.78, "100": 0.78}),
    Row("BiCGSTAB step, irregular", "bicgstab_benchmark",
        "BM_Iteration/Irregular", "BM_IterationPlain/Irregular", "plain", "rows", {"48": 0.85}),
    Row("BiCGSTAB step, irregular, rows shuffled", "bicgstab_benchmark",
        "BM_Iteration/Shuffled", "BM_IterationPlain/Shuffled", "plain", "rows", {"48": 0.60}),
    Row("Product with a vector, 7-point", "sparse_matrix_benchmark",
        "BM_Product", "BM_ProductEigen", "Eigen", "rows", {"100": 1.05}),
    Row("Pattern declared by face", "sparse_matrix_benchmark",
        "BM_Pattern", "BM_PatternPlain", "plain", "rows", {"100": 1.15}),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionBare", "known positions", "faces", {"70": 1.3}),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDBare", "known positions", "faces", {"70": 1.3}),
    Row("Step file", "vtk_benchmark",
        "BM_StepFile", "BM_StepFilePlain", "plain stream", "cells", {"58": 0.75}),
    Row("Solver library, Poisson", "matrix_solver_benchmark",
        "BM_Library/Poisson", "BM_LibraryToolbox/Poisson", "BiCGSTAB + DILU", "rows",
        {"100": 0.6}),

    Row("DILU factorization, 7-point", "bicgstab_benchmark",
        "BM_Factorization/Box", "BM_FactorizationPlain/Box", "plain", "rows"),
    Row("DILU factorization, irregular", "bicgstab_benchmark",
        "BM_Factorization/Irregular", "BM_FactorizationPlain/Irregular", "plain", "rows"),
    Row("BiCGSTAB + DILU, 7-point", "bicgstab_benchmark",
        "BM_Solve/Box", "BM_SolveEigenILUT/Box", "Eigen, ILUT", "rows"),
    Row("BiCGSTAB + DILU, irregular", "bicgstab_benchmark",
        "BM_Solve/Irregular", "BM_SolveEigenDiagonal/Irregular", "Eigen, diagonal", "rows"),
    Row("Tree of random points", "kd_tree_benchmark",
        "BM_Build/Uniform", "BM_BuildNanoflann/Uniform", "nanoflann", "points"),
    Row("Tree of lattice points", "kd_tree_benchmark",
        "BM_Build/Lattice", "BM_BuildNanoflann/Lattice", "nanoflann", "points"),
    Row("Tree of lattice points", "kd_tree_benchmark",
        "BM_Build/Lattice", "BM_BuildPlain/Lattice", "plain", "points"),
    Row("Tree and a search for every eight lattice points", "kd_tree_benchmark",
        "BM_FirstSearches/Lattice", "BM_FirstSearchesNanoflann/Lattice", "nanoflann", "points"),
    Row("Pattern declared by face", "sparse_matrix_benchmark",
        "BM_Pattern", "BM_PatternEigen", "Eigen, triplets", "rows"),
    Row("Assembly by coordinates", "sparse_matrix_benchmark",
        "BM_Assembly", "BM_AssemblyEigen", "Eigen, coeffRef", "rows"),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionPlain", "plain", "faces"),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDPlain", "plain", "faces"),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionRead", "only reading the records", "faces"),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionKnown", "finished values", "faces"),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDRead", "only reading the records", "faces"),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDKnown", "finished values", "faces"),
    Row("First-order upwind operator", "operators_benchmark",
        "BM_FU", "BM_FUBare", "known positions", "faces"),
    Row("QUICK operator", "operators_benchmark",
        "BM_QUICK", "BM_QUICKBare", "known positions", "faces"),
    Row("Step file", "vtk_benchmark",
        "BM_StepFile", "BM_StepFileLineWrites", "one write per line", "cells"),
    Row("Solver library through its matrix class, Poisson", "matrix_solver_benchmark",
        "BM_LibraryFront/Poisson", "BM_LibraryToolbox/Poisson", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, cell Peclet number 10", "matrix_solver_benchmark",
        "BM_Library/Convection", "BM_LibraryToolbox/Convection", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, cell Peclet number 10", "matrix_solver_benchmark",
        "BM_Library/Convection", "BM_LibraryEigen/Convection", "Eigen, ILUT", "rows"),
    Row("Solver library, 1:100 anisotropic", "matrix_solver_benchmark",
        "BM_Library/Anisotropic", "BM_LibraryToolbox/Anisotropic", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, 1:100 anisotropic", "matrix_solver_benchmark",
        "BM_Library/Anisotropic", "BM_LibraryEigen/Anisotropic", "Eigen, ILUT", "rows"),
    Row("Solver library, cell Peclet number 0.1", "matrix_solver_benchmark",
        "BM_Library/WeakConvection", "BM_LibraryToolbox/WeakConvection", "BiCGSTAB + DILU",
        "rows"),
    Row("Solver library, pressure of an overset pair", "matrix_solver_benchmark",
        "BM_Library/Pressure", "BM_LibraryToolbox/Pressure", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, momentum of an overset pair", "matrix_solver_benchmark",
        "BM_Library/Momentum", "BM_LibraryToolbox/Momentum", "BiCGSTAB + DILU", "rows"),
]

MEMORY = [
    Memory("Peak memory of the overset set-up beyond the mesh arrays, m = 20", "overset_benchmark",
           "BM_Setup/Cylinder/20", "above_mesh_MB", "MB", 150),
    Memory("Mesh arrays derived from those of the host", "overset_benchmark",
           "BM_Setup/Cylinder/20", "mesh_MB", "MB"),
    Memory("Peak memory of plain beyond the mesh arrays", "overset_benchmark",
           "BM_SetupPlain/Cylinder/20", "above_mesh_MB", "MB"),
    Memory("Pattern of 1 M rows x 7, per matrix entry", "sparse_matrix_benchmark",
           "BM_Pattern/100", "bytes_per_entry", "bytes"),
    Memory("Peak while it is declared, per matrix entry", "sparse_matrix_benchmark",
           "BM_Pattern/100", "peak_bytes_per_entry", "bytes"),
    Memory("Peak with plain ordered sets, per matrix entry", "sparse_matrix_benchmark",
           "BM_PatternPlain/100", "peak_bytes_per_entry", "bytes"),
]
