#ifndef KVX3D_OVERSET_DONOR_SEARCH_H
#define KVX3D_OVERSET_DONOR_SEARCH_H

class KVX_ART_KDtree;
class KVX_ART_OVERSET_GRID_DATA;

/// Internal to the overset folder: trees of possible donors, and the search for one donor.
namespace kvx3d::detail {

/// Inserts the centers of a grid's active cells into an empty tree. The ids are entries of the
/// grid data's table of cells, so that table must live as long as the tree.
/// @throws std::bad_alloc  no memory for the nodes
void InsertActiveCells(KVX_ART_KDtree& tree, const KVX_ART_OVERSET_GRID_DATA& data, int grid);

/// One search for a donor.
///
///     C --------- P --------- Q         C center of the cell that searches, P face center
///                 |  t = 1: Q is C mirrored through P; each retry moves Q by a tenth of P - C
///                 +--> N            accepted: a cell with its center on the side N points to
///
/// The donor is the nearest active cell to Q in the other grid, if it lies across the face;
/// otherwise the search goes on from the next Q.
///
/// Readable transcription: InnerDonor() and WallDonor() in plain/plain_overset.h.
class DonorSearch {
public:
    /// @param searchedFace  face number for the line printed if there is no tree to search
    DonorSearch(const KVX_ART_OVERSET_GRID_DATA& data, KVX_ART_KDtree* background,
                KVX_ART_KDtree* component, int searchedFace);
    DonorSearch(const DonorSearch&) = delete;
    DonorSearch& operator=(const DonorSearch&) = delete;
    ~DonorSearch();

    /// Sets P, the face center.
    void From(double x, double y, double z);
    /// Sets N, the direction that counts as across the face.
    void Across(double x, double y, double z);

    /// Searches from cell c. Returns only when a donor is found: the number of tries has no limit.
    /// @return cell id
    int Run(int c);

private:
    void SearchOtherGrid(int c, int*& found) const;
    bool LiesAcross(int d) const;

    const KVX_ART_OVERSET_GRID_DATA& gridData;
    KVX_ART_KDtree* backgroundTree;
    KVX_ART_KDtree* componentTree;
    int face;
    double* P = nullptr;  ///< 1-based as the next two, owned
    double* Q = nullptr;
    double* N = nullptr;
};

}  // namespace kvx3d::detail

#endif
