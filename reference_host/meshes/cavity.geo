// Lid-driven cavity: a square of side 4 with the corner (0, 0), one cell thick, on one grid or on an
// overset pair, empty or with a cylinder in its center. The side y = 4 is the lid. With the side 1,
// volumes of small cells would come near the absolute thresholds of the toolbox.
//
//   gmsh -3 -format msh2 -setnumber n 32 -setnumber kind 1 -o cavity_n32.msh cavity.geo
//
// n    = cells per side; the cell size is also the thickness
// kind = 0  one grid, hexahedra
//        1  overset pair, hexahedra: background and a round component in the center
//        2  one grid, prisms (triangles extruded)
// b    = radius of the cylinder in sides; 0: none. On one grid the cells then fit it (kind 0)
// a    = radius of the component in sides
//
// The toolbox recognizes the background of an overset pair by an inlet. A cavity has none, so the
// side y = 0 is the group "inlet" with the velocity zero, which makes it a wall at rest. One grid
// needs no inlet.
DefineConstant[
  n    = {32,   Name "Parameters/Cells per side"},
  kind = {0,    Name "Parameters/Kind"},
  b    = {0,    Name "Parameters/Radius of the cylinder"},
  a    = {0.25, Name "Parameters/Radius of the component"}
];
If (n < 4 || n > 1000)
  Error("n must be 4 to 1000, not %g", n);
  Abort;
EndIf
If (kind != 0 && kind != 1 && kind != 2)
  Error("kind must be 0, 1 or 2, not %g", kind);
  Abort;
EndIf
If (b < 0 || b >= a || a >= 0.5 || (b > 0 && kind == 2))
  Error("b must be 0, or between 0 and a with kind 0 or 1, and a less than 0.5");
  Abort;
EndIf
side = 4;  h = side / n;  rb = b * side;  ra = a * side;  c = side / 2;
fitted = (kind == 0 && b > 0);
volumes[] = {};  symmetry[] = {};  sides[] = {};

// ---- the square; its corners 1 to 4 and sides 1 to 4 from y = 0 counter-clockwise
Point(1) = {0, 0, 0, h};        Point(2) = {side, 0, 0, h};
Point(3) = {side, side, 0, h};  Point(4) = {0, side, 0, h};
Line(1) = {1, 2};  Line(2) = {2, 3};  Line(3) = {3, 4};  Line(4) = {4, 1};
Transfinite Curve {1:4} = n + 1;
If (!fitted)
  Curve Loop(1) = {1:4};  Plane Surface(1) = {1};
  If (kind != 2)
    Transfinite Surface {1};  Recombine Surface {1};
  EndIf
  // With "Recombine" the extrusion makes prisms of triangles and hexahedra of quadrilaterals.
  e[] = Extrude {0, 0, h} { Surface{1}; Layers{1}; Recombine; };
  volumes[] = {e[1]};  symmetry[] = {1, e[0]};  sides[] = {e[2], e[3], e[4], e[5]};
EndIf

// ---- around the cylinder or around a small square, four blocks reach to the component's boundary
// or to the sides of the cavity
component[] = {};  overset[] = {};  body[] = {};
If (kind == 1 || fitted)
  turn = fitted ? 0 : 0.1;  // the grids of a pair are not aligned
  inner = b > 0 ? rb : 0.5 * ra;
  Point(100) = {c, c, 0};
  For i In {0:3}
    t = (i + 2.5) * Pi / 2 + turn;
    Point(101 + i) = {c + inner * Cos(t), c + inner * Sin(t), 0};
    If (!fitted)
      Point(111 + i) = {c + ra * Cos(t), c + ra * Sin(t), 0};
    EndIf
  EndFor
  around = fitted ? n : Round(0.5 * Pi * a * n);
  across = Round(((fitted ? 0.6 * side : ra) - inner) / h);
  For i In {0:3}
    j = (i + 1) % 4;
    If (b > 0)
      Circle(101 + i) = {101 + i, 100, 101 + j};
    Else
      Line(101 + i) = {101 + i, 101 + j};
    EndIf
    If (fitted)
      Line(121 + i) = {101 + i, 1 + i};
    Else
      Circle(111 + i) = {111 + i, 100, 111 + j};
      Line(121 + i) = {101 + i, 111 + i};
      Transfinite Curve {111 + i} = around + 1;
    EndIf
    Transfinite Curve {101 + i} = around + 1;
    Transfinite Curve {121 + i} = across + 1 Using Progression (fitted ? Exp(Log(1.03) * 32 / n) : 1);
  EndFor
  For i In {0:3}
    j = (i + 1) % 4;
    outer = fitted ? 1 + i : 111 + i;
    Curve Loop(101 + i) = {121 + i, outer, -(121 + j), -(101 + i)};
    Plane Surface(101 + i) = {101 + i};
    Transfinite Surface {101 + i};  Recombine Surface {101 + i};
  EndFor
  If (b == 0)
    Curve Loop(105) = {101:104};  Plane Surface(105) = {105};
    Transfinite Surface {105};  Recombine Surface {105};
  EndIf
  For i In {0:(b > 0 ? 3 : 4)}
    e[] = Extrude {0, 0, h} { Surface{101 + i}; Layers{1}; Recombine; };
    component[] += {e[1]};  symmetry[] += {101 + i, e[0]};
    If (i < 4)
      overset[] += {e[3]};
      If (b > 0)
        body[] += {e[5]};
      EndIf
    EndIf
  EndFor
EndIf
If (fitted)
  volumes[] = component[];  sides[] = overset[];
EndIf

Physical Volume("background", 1) = {volumes[]};
If (kind == 1)
  Physical Volume("component1", 2) = {component[]};
  Physical Surface("overset1", 15) = {overset[]};
  Physical Surface("inlet", 11)    = {sides[0]};
  Physical Surface("wall", 13)     = {sides[1], sides[2], sides[3]};
Else
  Physical Surface("wall", 13) = {sides[]};
EndIf
If (b > 0)
  Physical Surface("body", 17) = {body[]};
EndIf
Physical Surface("symmetry", 14) = {symmetry[]};
