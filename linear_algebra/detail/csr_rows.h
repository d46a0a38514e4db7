#ifndef KVX3D_LINEAR_ALGEBRA_DETAIL_CSR_ROWS_H
#define KVX3D_LINEAR_ALGEBRA_DETAIL_CSR_ROWS_H

#if defined(__GNUC__) && defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cstdint>

// Kernels on compressed sparse rows. Everything is 1-based; slot 0 of each array is a dummy:
//
//     Ia   [0] | Ia[1] = 1 | Ia[2] | ... | Ia[n] | Ia[n + 1]      row starts, positions in Ja, Aa
//     Ja   [0] | row 1 ... | row 2 ... | ... | row n ... |        column numbers
//     Aa   [0] | row 1 ... | row 2 ... | ... | row n ... |        values, beside their columns
//
// Row i occupies positions Ia[i] .. Ia[i + 1] - 1; its columns may stand in any order.
//
// The plain form of the search is the loop of CKVX_ART_SparseMatrix::FindIndexAddValueCSR(), that
// of the product is RowTimes() in plain/plain_bicgstab.h.

namespace kvx3d::detail {

/// Prefetches the cache line that lies `bytes` after `address`. Nothing is read, so the address
/// need not be valid.
inline void Prefetch(const void* address, std::uintptr_t bytes = 0) {
#if defined(__GNUC__)
    __builtin_prefetch(
        reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(address) + bytes));
    // GCC 12 regards a function that only prefetches as one without effect and removes calls to
    // it; the empty assembler statement prevents that.
    asm volatile("");
#else
    static_cast<void>(address);
    static_cast<void>(bytes);
#endif
}

/// Compressed rows as the kernels read them. All arrays are borrowed.
struct CsrRows {
    int n;             ///< number of rows
    const int* Ia;     ///< row starts, 1..n + 1
    const int* Ja;     ///< column numbers
    const double* Aa;  ///< values
};

/// Position of the first entry of Ja[begin .. end - 1] that equals `col`, or 0 if there is none.
///
/// The end of a linear scan is hard to predict for a processor, and assembly consists mostly of
/// such scans. Eight columns are compared without a branch; the result is that of the plain loop.
inline int PositionOf(int col, const int* Ja, int begin, int end) {
    int k = begin;
#if defined(__GNUC__) && defined(__SSE2__)
    const __m128i wanted = _mm_set1_epi32(col);
    for (; k + 8 <= end; k += 8) {
        const __m128i* four = reinterpret_cast<const __m128i*>(Ja + k);
        const __m128i low = _mm_cmpeq_epi32(_mm_loadu_si128(four), wanted);
        const __m128i high = _mm_cmpeq_epi32(_mm_loadu_si128(four + 1), wanted);
        const int equal = _mm_movemask_epi8(_mm_packs_epi32(low, high));  // two bits per column
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

/// Row i times the 1-based vector x; 0.0 for an empty row.
inline double RowProduct(const CsrRows& A, int i, const double* x) {
    const int begin = A.Ia[i];
    int left = A.Ia[i + 1] - begin;
    if (left <= 0) {
        return 0.0;  // Ja and Aa may be null
    }
    // Moving pointers: constant offsets in the loop take fewer instructions than an index.
    const int* col = A.Ja + begin;
    const double* value = A.Aa + begin;
    // One sum, although the loop is unrolled: the products are added in storage order, because
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

}  // namespace kvx3d::detail

#endif
