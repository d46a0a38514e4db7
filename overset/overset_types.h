#ifndef KVX3D_OVERSET_OVERSET_TYPES_H
#define KVX3D_OVERSET_OVERSET_TYPES_H

/// The classifications that a host can query. Their numbers are fixed: hosts compare with them and
/// store them in tables of int.

/// State of a cell after hole cutting.
enum OversetCellType {
    OversetCell_Undefined = 0,  ///< the state table holds neither 1 nor 2
    OversetCell_NonActive = 1,  ///< cut: the cell is not part of the solution
    OversetCell_Active = 2      ///< the cell is solved
};

/// State of an inner face, from the states of its two cells.
enum OversetInnerFaceType {
    OversetInnerFace_Undefined = 0,  ///< a cell of the face has no valid state
    OversetInnerFace_NonActive = 1,  ///< both cells cut
    OversetInnerFace_Active = 2,     ///< both cells active
    OversetInnerFace_Overset = 3     ///< one cut, one active: on the hole boundary, needs a donor
};

/// Kind of a wall face.
enum OversetWallFaceType {
    OversetWallFace_Undefined = 0,  ///< negative group number
    OversetWallFace_Physical = 1,   ///< a physical wall: in no overset boundary group
    OversetWallFace_Overset = 2     ///< on the outer side of a component grid, needs a donor
};

/// Grid of a cell, from the cavity it lies in.
enum OversetGridType {
    OversetGrid_Undefined = 0,   ///< the cavity has no grid number
    OversetGrid_Background = 1,  ///< cavity beside inlet face 1
    OversetGrid_Component1 = 2,  ///< cavity beside the first face of overset boundary group 1
    OversetGrid_Component2 = 3   ///< cavity beside the first face of overset boundary group 2
};

#endif
