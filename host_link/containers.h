#ifndef KVX3D_HOST_LINK_CONTAINERS_H
#define KVX3D_HOST_LINK_CONTAINERS_H

#include <cstddef>
#include <ostream>

#include "host_link/export.h"

/// 1-based arrays: the form of nearly every array of the toolbox.
///
/// A one-dimensional array of n entries is one block of n + 1 elements from the array form of new,
/// zero-filled, with data in slots 1..n and n itself in slot 0 (as a double in double arrays).
///
/// A two-dimensional array is a table of rows + 1 row pointers. Slot 0 points to a block of one
/// element that holds the number of rows; slots 1..rows point to one-dimensional arrays of cols
/// entries, so a[i][j] is element (i, j), both indices 1-based, and a[i][0] is cols. Ragged int
/// tables have the same slot 0, and their owner fills the rows.
///
/// Each function that allocates first releases the array that the pointer held before. Sizes are
/// not checked. A failed allocation throws std::bad_alloc and leaves a pointer that may be passed
/// in again.

/// Replaces `a` by a one-dimensional array of n doubles.
KVX3D_API void newDouble1D(double*& a, int n);

/// Replaces `a` by a one-dimensional array of n ints.
KVX3D_API void newInt1D(int*& a, int n);

/// Replaces `a` by a two-dimensional array of rows by cols doubles.
KVX3D_API void newDouble2D(double**& a, int rows, int cols);

/// Releases rows 1..rows - 1, slot 0 and the table, each if not null, and sets `a` to null. The
/// last row is not released: its memory stays allocated.
KVX3D_API void freeDouble2D(double**& a);

/// Replaces `a` by a table of ragged int rows, all of them null.
KVX3D_API void newIntRows(int**& a, int rows);

/// Releases rows 1..rows - 1, slot 0 and the table, each if not null, and sets `a` to null. The
/// last row is not released: its memory stays allocated.
KVX3D_API void freeIntRows(int**& a);

namespace KVX3DART {

/// Base class of the containers for hosts: it holds the shape.
///
/// Copies share the pointers of their source: only one of a source and its copies may be
/// destroyed. Assignment overwrites the pointers of the target without releasing them.
class KVX3D_API Container {
public:
    /// Rank 0, no elements.
    Container();
    Container(const Container& other);
    Container& operator=(const Container& other);
    virtual ~Container();

    std::size_t* shape;  ///< [0] the rank, 1 for every Vector; [1] the element count; owned
    bool flag;           ///< false after construction; copied, otherwise unused
};

/// A one-dimensional 1-based array with its size; T is int or double.
template <typename T>
class KVX3D_API Vector : public virtual Container {
public:
    /// No elements, null data.
    Vector();
    /// n elements, all zero. Slot 0 of `data` holds n.
    Vector(std::size_t n);
    Vector(const Vector& other);
    Vector& operator=(const Vector& other);
    ~Vector() override;

    /// Number of elements.
    std::size_t size() const;

    /// Writes size() lines to `out`, each with element 1, in the number format of `out`.
    void print(std::ostream& out) const;

    T* data;  ///< elements 1..size(), slot 0 the size; owned, null in an empty vector
};

extern template class Vector<int>;
extern template class Vector<double>;

}  // namespace KVX3DART

#endif
