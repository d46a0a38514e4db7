// Meshes for the study of corners in an overset boundary: a box 4 x 4 (background) and a square
// turned about its center (component1), with or without a square body. All cells are hexahedra.
// One cell thick, with the background cell size as thickness; or three-dimensional, with a cube as
// component1 in a box 4 x 4 x 4.
//
//   gmsh -3 -format msh2 -setnumber n 10 -setnumber angle 30 -o square_n10.msh box_square_overset.geo
//
// n     = background cells per unit length
// ratio = component cells per background cell
// angle = degrees by which the component is turned about z
// tilt  = degrees by which the cube is then turned about x
// a     = half the side of the component
// b     = half the side of the body; 0: no body
// x, y  = center of the component
// cube  = 0  one cell thick
//         1  cube without a body
DefineConstant[
  n     = {10,     Name "Parameters/Cells per unit length"},
  ratio = {1,      Name "Parameters/Ratio of cell sizes"},
  angle = {30,     Name "Parameters/Angle"},
  tilt  = {0,      Name "Parameters/Tilt of the cube"},
  a     = {1,      Name "Parameters/Half side of the component"},
  b     = {0,      Name "Parameters/Half side of the body"},
  x     = {2.0137, Name "Parameters/Center x"},
  y     = {1.9929, Name "Parameters/Center y"},
  cube  = {0,      Name "Parameters/Cube"}
];
If (n < 1 || n > 400)
  Error("n must be 1 to 400, not %g", n);
  Abort;
EndIf
If (b < 0 || a <= b)
  Error("b must be 0 or more and less than a, not %g", b);
  Abort;
EndIf
If (cube != 0 && (cube != 1 || b > 0))
  Error("cube must be 0, or 1 without a body, not %g", cube);
  Abort;
EndIf
h = 1 / n;  hc = h / ratio;
depth = cube ? 4 : h;  nz = cube ? 4 * n : 1;

Point(1) = {0, 0, 0};  Point(2) = {4, 0, 0};  Point(3) = {4, 4, 0};  Point(4) = {0, 4, 0};
Line(1) = {1, 2};  Line(2) = {2, 3};  Line(3) = {3, 4};  Line(4) = {4, 1};
Curve Loop(1) = {1, 2, 3, 4};  Plane Surface(1) = {1};
Transfinite Curve {1:4} = 4 * n + 1;
Transfinite Surface {1};  Recombine Surface {1};
e[] = Extrude {0, 0, depth} { Surface{1}; Layers{nz}; Recombine; };
wl[] = {e[2], e[4]};  sy[] = {1, e[0]};
Physical Volume("background", 1) = {e[1]};
Physical Surface("inlet", 11)    = {e[5]};
Physical Surface("outlet", 12)   = {e[3]};

// The component is made of columns between the coordinates s[]; that of the body is left out.
If (b > 0)
  s[] = {-a, -b, b, a};  m = 3;
  cells[] = {Round((a - b) / hc), Round(2 * b / hc), Round((a - b) / hc)};
Else
  s[] = {-a, a};  m = 1;
  cells[] = {Round(2 * a / hc)};
EndIf
z0 = cube ? depth / 2 - a : 0;  height = cube ? 2 * a : h;  layers = cube ? cells[0] : 1;
co = Cos(angle * Pi / 180);  si = Sin(angle * Pi / 180);
ct = Cos(tilt * Pi / 180);   st = Sin(tilt * Pi / 180);
For j In {0:m}
  For i In {0:m}
    // The point turned about z, then about x around the center of the box's height.
    v = s[i] * si + s[j] * co;  w = cube ? -a : 0;
    Point(101 + i + (m + 1) * j) =
      {x + s[i] * co - s[j] * si, y + v * ct - w * st, (cube ? depth / 2 : 0) + v * st + w * ct};
  EndFor
EndFor
For j In {0:m}
  For i In {0:m - 1}
    Line(201 + i + m * j) = {101 + i + (m + 1) * j, 102 + i + (m + 1) * j};
    Transfinite Curve {201 + i + m * j} = cells[i] + 1;
    Line(301 + i + m * j) = {101 + j + (m + 1) * i, 101 + j + (m + 1) * (i + 1)};
    Transfinite Curve {301 + i + m * j} = cells[i] + 1;
  EndFor
EndFor
cv[] = {};  outer[] = {};
For j In {0:m - 1}
  For i In {0:m - 1}
    If (m == 1 || i != 1 || j != 1)
      k = 401 + i + m * j;
      Curve Loop(k) = {201 + i + m * j, 301 + j + m * (i + 1), -(201 + i + m * (j + 1)),
                       -(301 + j + m * i)};
      Plane Surface(k) = {k};
      Transfinite Surface {k};  Recombine Surface {k};
      e[] = Extrude {0, -height * (cube ? st : 0), height * (cube ? ct : 1)} {
        Surface{k}; Layers{layers}; Recombine;
      };
      cv[] += {e[1]};
      If (cube)
        outer[] += {k, e[0]};
      Else
        sy[] += {k, e[0]};
      EndIf
      If (j == 0)
        outer[] += {e[2]};
      EndIf
      If (i == m - 1)
        outer[] += {e[3]};
      EndIf
      If (j == m - 1)
        outer[] += {e[4]};
      EndIf
      If (i == 0)
        outer[] += {e[5]};
      EndIf
      If (m == 3 && i == 1)
        wl[] += {e[j == 0 ? 4 : 2]};
      EndIf
      If (m == 3 && j == 1)
        wl[] += {e[i == 0 ? 3 : 5]};
      EndIf
    EndIf
  EndFor
EndFor
Physical Volume("component1", 2) = {cv[]};
Physical Surface("overset1", 15) = {outer[]};
Physical Surface("wall", 13)     = {wl[]};
Physical Surface("symmetry", 14) = {sy[]};
