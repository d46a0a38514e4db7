#ifndef KVX3D_LINEAR_ALGEBRA_CSR_ROWS_H
#define KVX3D_LINEAR_ALGEBRA_CSR_ROWS_H

#if defined(__GNUC__) && defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace KVX3DART {

/// Compressed rows as kernels read them, 1-based. Borrowed.
struct CsrRows {
    int n;             ///< rows
    const int* Ia;     ///< row starts, 1..n + 1
    const int* Ja;     ///< column numbers
    const double* Aa;  ///< values
};

/// Position of the first entry of Ja[begin .. end - 1] that equals `col`, or 0 if there is none.
///
/// Where a linear scan stops is what a processor guesses worst, and assembly is little else than
/// such scans. Eight columns are compared without a branch; the answer is that of the plain loop.
inline int PositionOf(int col, const int* Ja, int begin, int end) {
    int k = begin;
#if defined(__GNUC__) && defined(__SSE2__)
    const __m128i wanted = _mm_set1_epi32(col);
    for (; k + 8 <= end; k += 8) {
        const __m128i* four = reinterpret_cast<const __m128i*>(Ja + k);
        const __m128i low = _mm_cmpeq_epi32(_mm_loadu_si128(four), wanted);
        const __m128i high = _mm_cmpeq_epi32(_mm_loadu_si128(four + 1), wanted);
        const int equal = _mm_movemask_epi8(_mm_packs_epi32(low, high));  // two bits a column
        if (equal != 0) {
            return k + __builtin_ctz(static_cast<unsigned>(equal)) / 2;
        }
    }
#endif
    for (; k < end; ++k) {
        if (Ja[k] == col) {
            return k;
        }
    }
    return 0;
}

/// Row i times the 1-based vector x.
inline double RowProduct(const CsrRows& A, int i, const double* x) {
    const int end = A.Ia[i + 1];
    int k = A.Ia[i];
    // One sum, unrolled only in its bookkeeping: products are added in storage order, because
    // results are compared bit for bit.
    double sum = 0.0;
    for (; k + 3 < end; k += 4) {
        sum += x[A.Ja[k]] * A.Aa[k];
        sum += x[A.Ja[k + 1]] * A.Aa[k + 1];
        sum += x[A.Ja[k + 2]] * A.Aa[k + 2];
        sum += x[A.Ja[k + 3]] * A.Aa[k + 3];
    }
    for (; k < end; ++k) {
        sum += x[A.Ja[k]] * A.Aa[k];
    }
    return sum;
}

}  // namespace KVX3DART

#endif
