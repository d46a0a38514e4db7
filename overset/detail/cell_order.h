#ifndef KVX3D_OVERSET_DETAIL_CELL_ORDER_H
#define KVX3D_OVERSET_DETAIL_CELL_ORDER_H

#include <cstddef>
#include <vector>

class CKVX_ACMT_GV;

namespace kvx3d::detail {

/// Bricks of equal size that fill the box of some cell centers, row by row along x, then y, then z.
/// Their size is chosen such that a brick holds about `cellsPerBrick` cells of a uniform mesh.
class Bricks {
public:
    /// @param cells  numbers of the cells
    /// @param mesh   cell centers
    Bricks(const std::vector<int>& cells, const CKVX_ACMT_GV& mesh);

    int Count() const { return n[0] * n[1] * n[2]; }
    /// Number of the brick that holds a point, from 0; any brick for a point that is not finite.
    int At(double x, double y, double z) const;

    static constexpr std::size_t cellsPerBrick = 8;

private:
    int Along(int axis, double at) const;

    double min[3];
    double perLength[3];  ///< bricks per unit length
    int n[3] = {1, 1, 1};
};

/// Sorts cells by the bricks they lie in, so that consecutive cells are neighbors in space whatever
/// their numbers are. Keeps the order of the cells within a brick.
void SortByPlace(std::vector<int>& cells, const CKVX_ACMT_GV& mesh);

}  // namespace kvx3d::detail

#endif
