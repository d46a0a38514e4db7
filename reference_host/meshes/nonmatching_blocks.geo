// Two blocks of hexahedra, each 2 x 2, side by side at x = 2: their cells do not match there.
// One cell thick, or nz cells on the left and mz on the right over the same thickness.
//
//   gmsh -3 -format msh2 -setnumber n 8 -setnumber m 12 -o blocks.msh nonmatching_blocks.geo
//
// n, m   = cells per unit length of block0 (left) and block1 (right)
// nz, mz = cells in z
// dz     = thickness; 0 means 1 / n
DefineConstant[
  n     = {8,  Name "Parameters/Cells per unit length, block0"},
  m     = {12, Name "Parameters/Cells per unit length, block1"},
  nz    = {1,  Name "Parameters/Cells in z, block0"},
  mz    = {1,  Name "Parameters/Cells in z, block1"},
  dz    = {0,  Name "Parameters/Thickness"}
];
l = 2;
t = dz;
If (t == 0)
  t = 1 / n;
EndIf

// No point, curve or surface is shared: each block has its own face at x = l.
For b In {0:1}
  k = 100 * (b + 1);
  c = n;  cz = nz;
  If (b == 1)
    c = m;  cz = mz;
  EndIf
  x = b * l;
  Point(k + 1) = {x, 0, 0};      Point(k + 2) = {x + l, 0, 0};
  Point(k + 3) = {x + l, l, 0};  Point(k + 4) = {x, l, 0};
  Line(k + 1) = {k + 1, k + 2};  Line(k + 2) = {k + 2, k + 3};
  Line(k + 3) = {k + 3, k + 4};  Line(k + 4) = {k + 4, k + 1};
  Curve Loop(k + 1) = {k + 1, k + 2, k + 3, k + 4};
  Plane Surface(k + 1) = {k + 1};
  Transfinite Curve {k + 1 : k + 4} = Round(l * c) + 1;
  Transfinite Surface {k + 1};
  Recombine Surface {k + 1};
  e[] = Extrude {0, 0, t} { Surface{k + 1}; Layers{cz}; Recombine; };
  If (b == 0)
    side[] = {e[2], e[4]};  flat[] = {k + 1, e[0]};
    Physical Volume("block0", 1)      = {e[1]};
    Physical Surface("inlet", 11)     = {e[5]};
    Physical Surface("interface0", 17) = {e[3]};
  Else
    side[] += {e[2], e[4]};  flat[] += {k + 1, e[0]};
    Physical Volume("block1", 2)      = {e[1]};
    Physical Surface("outlet", 12)    = {e[3]};
    Physical Surface("interface1", 18) = {e[5]};
  EndIf
EndFor
Physical Surface("wall", 13)     = {side[]};
Physical Surface("symmetry", 14) = {flat[]};
