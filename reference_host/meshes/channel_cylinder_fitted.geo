// One body-fitted grid for the laminar flow around a cylinder in a channel, benchmark 2D-1, to
// compare the overset pair of channel_cylinder_overset.geo with. Lengths are in cylinder diameters:
// the channel is 22 x 4.1, the cylinder with D = 1 at (2, 2). All cells are hexahedra; the mesh is
// one cell thick, and the thickness is 1 / n.
//
// Four blocks lie between the cylinder and a square around it, the other blocks fill the channel
// around the square. The cylinder is the group "body", the sides of the channel are the group "wall".
//
//   gmsh -3 -format msh2 -setnumber n 10 -o fitted_n10.msh channel_cylinder_fitted.geo
//
// n = cells per diameter in the channel; n = 5, 10, 20, 40 gives 1 274, 5 181, 20 449, 81 482 cells,
// as many as the overset pair has active ones, within 2 %
DefineConstant[
  n = {10, Name "Parameters/Cells per diameter"}
];
If (n < 2 || n > 400)
  Error("n must be 2 to 400, not %g", n);
  Abort;
EndIf
h = 1.0 / n;  s = 1.25;  ri = 0.5;  cx = 2.0;  cy = 2.0;  ly = 4.1;

// ---- corners of the blocks: point 10 i + j at the coordinates x[i], y[j]
x[] = {0, cx - s, cx + s, 4.0, 22.0};
y[] = {0, cy - s, cy + s, ly};
nx[] = {Round((cx - s) * n), Round(2.5 * n), Round((4.0 - cx - s) * n), Round(6.28 * n)};
ny[] = {Round((cy - s) * n), Round(2.5 * n), Round((ly - cy - s) * n)};
gx = Exp(Log(1.03) * 10.0 / n);  // growth per cell behind x = 4, as on the overset pair
For i In {0:4}
  For j In {0:3}
    Point(10 * i + j) = {x[i], y[j], 0};
  EndFor
EndFor
For i In {0:3}
  For j In {0:3}
    Line(100 + 10 * i + j) = {10 * i + j, 10 * (i + 1) + j};
    Transfinite Curve {100 + 10 * i + j} = nx[i] + 1 Using Progression (i == 3 ? gx : 1);
  EndFor
EndFor
For i In {0:4}
  For j In {0:2}
    Line(200 + 10 * i + j) = {10 * i + j, 10 * i + j + 1};
    Transfinite Curve {200 + 10 * i + j} = ny[j] + 1;
  EndFor
EndFor

// ---- between cylinder and square: block q has side q of the square, counter-clockwise from below
corner[] = {11, 21, 22, 12};
side[] = {111, 221, -112, -211};
Point(1000) = {cx, cy, 0};
For q In {0:3}
  a = (q + 2.5) * Pi / 2;
  Point(1001 + q) = {cx + ri * Cos(a), cy + ri * Sin(a), 0};
EndFor
For q In {0:3}
  r = (q + 1) % 4;
  Circle(1011 + q) = {1001 + q, 1000, 1001 + r};
  Transfinite Curve {1011 + q} = Round(2.5 * n) + 1;
  Line(1021 + q) = {1001 + q, corner[q]};
  Transfinite Curve {1021 + q} = Round(1.5 * n) + 1 Using Progression Exp(Log(1.12) * 10.0 / n);
EndFor
For q In {0:3}
  r = (q + 1) % 4;
  Curve Loop(1031 + q) = {1021 + q, side[q], -(1021 + r), -(1011 + q)};
  Plane Surface(1031 + q) = {1031 + q};
  Transfinite Surface {1031 + q} = {1001 + q, corner[q], corner[r], 1001 + r};
  Recombine Surface {1031 + q};
EndFor

// ---- the channel around the square
For i In {0:3}
  For j In {0:2}
    If (i != 1 || j != 1)
      k = 1100 + 10 * i + j;
      Curve Loop(k) = {100 + 10 * i + j, 210 + 10 * i + j, -(101 + 10 * i + j), -(200 + 10 * i + j)};
      Plane Surface(k) = {k};
      Transfinite Surface {k} = {10 * i + j, 10 * i + 10 + j, 10 * i + 11 + j, 10 * i + j + 1};
      Recombine Surface {k};
    EndIf
  EndFor
EndFor

// ---- volumes, after all numbers above are taken: Extrude numbers what it makes from the next one on
volumes[] = {};  symmetry[] = {};  inlet[] = {};  outlet[] = {};  wall[] = {};  body[] = {};
For q In {0:3}
  e[] = Extrude {0, 0, h} { Surface{1031 + q}; Layers{1}; Recombine; };
  volumes[] += {e[1]};  symmetry[] += {1031 + q, e[0]};  body[] += {e[5]};
EndFor
For i In {0:3}
  For j In {0:2}
    If (i != 1 || j != 1)
      e[] = Extrude {0, 0, h} { Surface{1100 + 10 * i + j}; Layers{1}; Recombine; };
      volumes[] += {e[1]};  symmetry[] += {1100 + 10 * i + j, e[0]};
      If (j == 0)
        wall[] += {e[2]};
      EndIf
      If (i == 3)
        outlet[] += {e[3]};
      EndIf
      If (j == 2)
        wall[] += {e[4]};
      EndIf
      If (i == 0)
        inlet[] += {e[5]};
      EndIf
    EndIf
  EndFor
EndFor

Physical Volume("background", 1) = {volumes[]};
Physical Surface("inlet", 11)    = {inlet[]};
Physical Surface("outlet", 12)   = {outlet[]};
Physical Surface("wall", 13)     = {wall[]};
Physical Surface("symmetry", 14) = {symmetry[]};
Physical Surface("body", 17)     = {body[]};
