#ifndef KVX3D_LINEAR_ALGEBRA_DETAIL_CSR_ROWS_H
#define KVX3D_LINEAR_ALGEBRA_DETAIL_CSR_ROWS_H

#if defined(__GNUC__) && defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cstdint>

namespace KVX3DART {

/// Asks for the cache line that is `bytes` behind `address`. Nothing is read: it need not exist.
inline void Fetch(const void* address, std::uintptr_t bytes = 0) {
#if defined(__GNUC__)
    __builtin_prefetch(
        reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(address) + bytes));
    // GCC 12 takes a function that does nothing but prefetch for one without effect, and drops the
    // calls to it.
    asm volatile("");
#else
    static_cast<void>(address);
    static_cast<void>(bytes);
#endif
}

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
    const int begin = A.Ia[i];
    int left = A.Ia[i + 1] - begin;
    if (left <= 0) {
        return 0.0;  // Ja and Aa may be null
    }
    // Pointers that move: constant offsets in the loop take fewer instructions than an index.
    const int* col = A.Ja + begin;
    const double* value = A.Aa + begin;
    // One sum, unrolled only in its bookkeeping: products are added in storage order, because
    // results are compared bit for bit.
    double sum = 0.0;
    for (; left >= 4; left -= 4, col += 4, value += 4) {
        sum += x[col[0]] * value[0];
        sum += x[col[1]] * value[1];
        sum += x[col[2]] * value[2];
        sum += x[col[3]] * value[3];
    }
    for (; left > 0; --left, ++col, ++value) {
        sum += x[*col] * *value;
    }
    return sum;
}

}  // namespace KVX3DART

#endif
