#include <iostream>
#include <ostream>

#include "host_link/art_gv.h"
#include "host_link/detail/classic_format.h"

namespace {

/// Prints the heading, then entries 1..n, one a line.
void PrintInts(std::ostream& out, const char* heading, const int* values, int n) {
    out << heading << '\n';
    for (int i = 1; i <= n; ++i) {
        out << values[i] << '\n';
    }
}

/// Prints the heading, then the vectors 1..n, one a line with one blank between components.
void PrintVectors(std::ostream& out, const char* heading, const double* x, const double* y,
                  const double* z, int n) {
    out << heading << '\n';
    for (int i = 1; i <= n; ++i) {
        out << x[i] << ' ' << y[i] << ' ' << z[i] << '\n';
    }
}

}  // namespace

int CKVX_ACMT_GV::debugMode() {
    debugDataCheck();
    return 0;
}

void CKVX_ACMT_GV::debugDataCheck() {
    // A stream of our own on the same buffer: a host may have enabled exceptions on std::cout, and
    // no exception may leave this class.
    std::ostream out(std::cout.rdbuf());
    const kvx3d::detail::ClassicFormat format(out);

    out << "Nc = " << Nc << '\n'
        << "Ne = " << Ne << '\n'
        << "NInlet = " << NInlet << '\n'
        << "NOutlet = " << NOutlet << '\n'
        << "NWall = " << NWall << '\n'
        << "NSymm = " << NSymm << '\n';

    PrintInts(out, "CInlet23", CInlet23, NInlet);
    PrintInts(out, "COutlet23", COutlet23, NOutlet);
    PrintInts(out, "CWall23", CWall23, NWall);
    PrintInts(out, "CSymm23", CSymm23, NSymm);
    PrintInts(out, "idInlet", idInlet, NInlet);
    PrintInts(out, "idOutlet", idOutlet, NOutlet);
    PrintInts(out, "idWall", idWall, NWall);
    PrintInts(out, "idSymm", idSymm, NSymm);

    PrintVectors(out, "xc", xc, yc, zc, Nc);
    out << "volume\n";
    for (int cell = 1; cell <= Nc; ++cell) {
        out << volume[cell] << '\n';
    }
    PrintVectors(out, "xe", xe, ye, ze, Ne);
    PrintVectors(out, "ne", nxe, nye, nze, Ne);
    PrintVectors(out, "xInlet", xInlet, yInlet, zInlet, NInlet);
    PrintVectors(out, "nInlet", nxInlet, nyInlet, nzInlet, NInlet);
    PrintVectors(out, "xOutlet", xOutlet, yOutlet, zOutlet, NOutlet);
    PrintVectors(out, "nOutlet", nxOutlet, nyOutlet, nzOutlet, NOutlet);
    PrintVectors(out, "xWall", xWall, yWall, zWall, NWall);
    PrintVectors(out, "nWall", nxWall, nyWall, nzWall, NWall);
    PrintVectors(out, "xSymm", xSymm, ySymm, zSymm, NSymm);
    PrintVectors(out, "nSymm", nxSymm, nySymm, nzSymm, NSymm);
    out << "Ce23\n";
    for (int face = 1; face <= Ne; ++face) {
        out << Ce23[0][face] << ' ' << Ce23[1][face] << '\n';
    }

    if (NPart >= 1) {
        out << "NPart = " << NPart << '\n';
        PrintInts(out, "CPart23", CPart23, NPart);
        PrintInts(out, "idPart", idPart, NPart);
        PrintVectors(out, "xPart", xPart, yPart, zPart, NPart);
        PrintVectors(out, "nPart", nxPart, nyPart, nzPart, NPart);
    }
    out.flush();
}
