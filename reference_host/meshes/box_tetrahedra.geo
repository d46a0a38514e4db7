// Single grid of tetrahedra for the order study with a manufactured flow: a box of length and width
// 2 between the symmetry planes z = 0 and z = lz. Fluid enters at x = 0 and leaves at x = 2.
//
//   gmsh -3 -format msh2 -setnumber n 5 -o box_n5.msh box_tetrahedra.geo
//
// n = cells per unit length; n = 5, 10, 20 gives about 4 000, 28 000, 203 000 tetrahedra
DefineConstant[
  n  = {5, Name "Parameters/Cells per unit length"},
  lz = {1, Name "Parameters/Thickness"}
];
If (n < 1 || n > 60)
  Error("n must be 1 to 60, not %g", n);
  Abort;
EndIf
If (lz <= 0)
  Error("lz must be above 0, not %g", lz);
  Abort;
EndIf
h = 1 / n;  l = 2;
Point(1) = {0, 0, 0};  Point(2) = {l, 0, 0};  Point(3) = {l, l, 0};  Point(4) = {0, l, 0};
Line(1) = {1, 2};  Line(2) = {2, 3};  Line(3) = {3, 4};  Line(4) = {4, 1};
Curve Loop(1) = {1, 2, 3, 4};  Plane Surface(1) = {1};
b[] = Extrude {0, 0, lz} { Surface{1}; };
Mesh.CharacteristicLengthMin = h;
Mesh.CharacteristicLengthMax = h;
Physical Volume("background", 1) = {b[1]};
Physical Surface("inlet", 11)    = {b[5]};
Physical Surface("outlet", 12)   = {b[3]};
Physical Surface("wall", 13)     = {b[2], b[4]};
Physical Surface("symmetry", 14) = {1, b[0]};
