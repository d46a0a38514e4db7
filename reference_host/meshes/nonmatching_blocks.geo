// Two blocks of hexahedra, each 2 x 2, that meet at x = 2, where their faces do not match.
// One cell thick, or with cells as fine in z as in x and y.
//
//   gmsh -3 -format msh2 -setnumber n 8 -setnumber m 12 -o blocks.msh nonmatching_blocks.geo
//
// n, m = cells per unit length of block0 (left) and block1 (right)
// lz   = thickness, with lz * n and lz * m cells in z; 0: one cell of thickness 1 / n
SetFactory("OpenCASCADE");  // volumes that touch do not share points or faces
DefineConstant[
  n  = {8,  Name "Parameters/Cells per unit length, block0"},
  m  = {12, Name "Parameters/Cells per unit length, block1"},
  lz = {0,  Name "Parameters/Thickness"}
];
If (n < 1 || n > 1000 || m < 1 || m > 1000)
  Error("n and m must be 1 to 1000, not %g and %g", n, m);
  Abort;
EndIf
If (lz < 0 || lz * n > 1000 || lz * m > 1000)
  Error("lz must be 0 to 1000 cells, not %g", lz);
  Abort;
EndIf
l = 2;
flat[] = {};  side[] = {};
For b In {0:1}
  c = n;
  If (b == 1)
    c = m;
  EndIf
  t = lz;  cz = Round(lz * c);
  If (lz == 0)
    t = 1 / n;  cz = 1;
  EndIf
  v = b + 1;
  Box(v) = {b * l, 0, 0, l, l, t};
  f[] = Abs(Boundary { Volume{v}; });  // x min, x max, y min, y max, z min, z max
  e[] = Unique(Abs(Boundary { Surface{f[]}; }));
  For i In {0 : #e[] - 1}
    bb[] = BoundingBox Curve {e[i]};
    If (bb[5] - bb[2] > 0.5 * t)
      Transfinite Curve {e[i]} = cz + 1;
    Else
      Transfinite Curve {e[i]} = Round(l * c) + 1;
    EndIf
  EndFor
  Transfinite Surface {f[]};
  Recombine Surface {f[]};
  Transfinite Volume {v};
  side[] += {f[2], f[3]};  flat[] += {f[4], f[5]};
  If (b == 0)
    Physical Volume("block0", 1)       = {v};
    Physical Surface("inlet", 11)      = {f[0]};
    Physical Surface("interface0", 17) = {f[1]};
  Else
    Physical Volume("block1", 2)       = {v};
    Physical Surface("interface1", 18) = {f[0]};
    Physical Surface("outlet", 12)     = {f[1]};
  EndIf
EndFor
Physical Surface("wall", 13)     = {side[]};
Physical Surface("symmetry", 14) = {flat[]};
