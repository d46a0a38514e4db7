// Overset pair for the flow around a sphere: a box of hexahedra (background) and a spherical shell
// (component1) of hexahedra, prisms or tetrahedra. Lengths are in sphere diameters. The center of
// the sphere is the origin, and the stream runs along x.
//
//   gmsh -3 -format msh2 -setnumber n 7 -o sphere_n7.msh sphere_overset.geo
//
// n = background cells per diameter around the shell and in the wake
DefineConstant[
  n     = {7,    Name "Parameters/Background cells per diameter around the shell"},
  shell = {0,    Name "Parameters/Cells of the shell, 0 hexahedra, 1 prisms, 2 tetrahedra"},
  ro    = {1.25, Name "Parameters/Outer radius of the shell"},
  tb    = {0.1,  Name "Parameters/Thickness of the first layer, in 1 over n, not for shell 2"},
  to    = {1.0,  Name "Parameters/Thickness of the outermost layer, in 1 over n, not for shell 2"},
  eo    = {1.0,  Name "Parameters/Edge of the outermost cells, in 1 over n, not for shell 2"},
  sb    = {0.5,  Name "Parameters/Edge of the tetrahedra on the body, in 1 over n"},
  so    = {1.1,  Name "Parameters/Edge of the tetrahedra outside, in 1 over n"},
  up    = {12.0, Name "Parameters/Length of the box upstream"},
  dn    = {15.0, Name "Parameters/Length of the box downstream"},
  sd    = {12.0, Name "Parameters/Half width of the box"},
  slip  = {1,    Name "Parameters/Sides of the box, 1 symmetry planes, 0 walls that move along"},
  xw    = {2.0,  Name "Parameters/End of the uniform zone in the wake"},
  gr    = {1.4,  Name "Parameters/Growth from cell to cell outside the uniform zone"}
];
If (n < 1 || n > 60)
  Error("n must be 1 to 60, not %g", n);
  Abort;
EndIf
If (shell != 0 && shell != 1 && shell != 2)
  Error("shell must be 0, 1 or 2, not %g", shell);
  Abort;
EndIf
If (ro <= 0.5)
  Error("ro must be above the radius 0.5, not %g", ro);
  Abort;
EndIf
If (tb <= 0 || to <= 0 || eo <= 0)
  Error("tb, to and eo must be above 0, not %g, %g, %g", tb, to, eo);
  Abort;
EndIf
h = 1.0 / n;  ri = 0.5;
outer[] = {};  body[] = {};  cells[] = {};

If (shell == 2)
  // ---- shell of tetrahedra: the edges grow linearly with the radius
  SetFactory("OpenCASCADE");
  Sphere(1) = {0, 0, 0, ro};
  Sphere(2) = {0, 0, 0, ri};
  BooleanDifference(3) = { Volume{1}; Delete; }{ Volume{2}; Delete; };
  round[] = Abs(Boundary { Volume{3}; });
  For i In {0 : #round[] - 1}
    bb[] = BoundingBox Surface {round[i]};
    If (bb[3] - bb[0] > ri + ro)
      outer[] += {round[i]};
    Else
      body[] += {round[i]};
    EndIf
  EndFor
  Field[1] = MathEval;
  Field[1].F = Sprintf("%g + %g * (Sqrt(x*x + y*y + z*z) - %g)", sb * h,
                       (so - sb) * h / (ro - ri), ri);
  Background Field = 1;
  Mesh.CharacteristicLengthExtendFromBoundary = 0;
  Mesh.CharacteristicLengthFromPoints = 0;
  cells[] = {3};
Else
  // ---- shell of six blocks: the faces of a cube, projected onto both spheres. The layers are
  // concentric and grow in thickness by the same factor from each to the next.
  SetFactory("Built-in");
  nt = Round(0.5 * Pi * ro / (eo * h));     // cells along an edge of a block
  width = ro - ri;  first = tb * h;  last = to * h;
  If (first + last >= width)
    Error("tb and to leave no room for layers between 0.5 and ro = %g", ro);
    Abort;
  EndIf
  If (Abs(first - last) < 1e-9)
    nr = Round(width / first);
    growth = 1;
  Else
    nr = Round(1 + Log(last / first) / Log((width - first) / (width - last)));
    growth = (last / first) ^ (1 / (nr - 1));
  EndIf
  px[] = {-1, 1, 1, -1, -1, 1, 1, -1};      // corners of the cube
  py[] = {-1, -1, 1, 1, -1, -1, 1, 1};
  pz[] = {-1, -1, -1, -1, 1, 1, 1, 1};
  ea[] = {0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3};  // edges of the cube, from ea to eb
  eb[] = {1, 2, 3, 0, 5, 6, 7, 4, 4, 5, 6, 7};
  // Edges around each face of the cube, counted from 1; negative against their direction.
  fe[] = {1, 2, 3, 4, 5, 6, 7, 8, 1, 10, -5, -9, 2, 11, -6, -10, 3, 12, -7, -11, 4, 9, -8, -12};
  Point(1) = {0, 0, 0};
  For s In {0 : 1}                          // sphere of the body, outer sphere
    r = (s == 0 ? ri : ro) / Sqrt(3);
    o = 100 * (s + 1);
    For i In {0 : 7}
      Point(o + i) = {r * px[i], r * py[i], r * pz[i]};
    EndFor
    For i In {0 : 11}
      Circle(o + 1 + i) = {o + ea[i], 1, o + eb[i]};
      Transfinite Curve {o + 1 + i} = nt + 1;
    EndFor
    For f In {0 : 5}
      loop[] = {};
      For i In {4 * f : 4 * f + 3}
        loop[] += {fe[i] > 0 ? o + fe[i] : fe[i] - o};
      EndFor
      Curve Loop(o + f) = {loop[]};
      Surface(o + f) = {o + f} In Sphere {1};
      Transfinite Surface {o + f};
    EndFor
  EndFor
  body[] = {100 : 105};  outer[] = {200 : 205};
  For i In {0 : 7}
    Line(300 + i) = {100 + i, 200 + i};
    Transfinite Curve {300 + i} = nr + 1 Using Progression growth;
  EndFor
  For i In {0 : 11}
    Curve Loop(301 + i) = {101 + i, 300 + eb[i], -(201 + i), -(300 + ea[i])};
    Plane Surface(301 + i) = {301 + i};
    Transfinite Surface {301 + i};
    Recombine Surface {301 + i};
  EndFor
  If (shell == 0)
    Recombine Surface {body[], outer[]};
  EndIf
  For f In {0 : 5}
    around[] = {100 + f, 200 + f};
    For i In {4 * f : 4 * f + 3}
      around[] += {300 + Abs(fe[i])};
    EndFor
    Surface Loop(1 + f) = {around[]};
    Volume(1 + f) = {1 + f};
    Transfinite Volume {1 + f};
    cells[] += {1 + f};
  EndFor
EndIf

// ---- background: one block with cells of size h around the shell and in the wake, larger outside
core = ro + 2 * h;
// Computes the layers from lo to hi: uniform between a and b, growing by gr on both sides,
// beginning with a thickness of at most h * gr. Result: at[], the ends of the layers scaled to 0 .. 1.
Macro Layers1d
  one[] = {};  at[] = {};
  kl = Ceil(Log(1 + (a - lo) * (gr - 1) / (h * gr)) / Log(gr));
  first = (a - lo) * (gr - 1) / (gr ^ kl - 1);
  place = lo;
  For i In {1 : kl}
    place += first * gr ^ (kl - i);
    one[] += {1};  at[] += {(place - lo) / (hi - lo)};
  EndFor
  km = Round((b - a) * n);
  For i In {1 : km}
    place = a + i * (b - a) / km;
    one[] += {1};  at[] += {(place - lo) / (hi - lo)};
  EndFor
  kr = Ceil(Log(1 + (hi - b) * (gr - 1) / (h * gr)) / Log(gr));
  first = (hi - b) * (gr - 1) / (gr ^ kr - 1);
  For i In {1 : kr}
    place += first * gr ^ (i - 1);
    one[] += {1};  at[] += {(place - lo) / (hi - lo)};
  EndFor
  at[#at[] - 1] = 1;
Return

p = newp;  Point(p) = {-up, -sd, -sd};
lo = -sd;  hi = sd;  a = -core;  b = core;
Call Layers1d;
line[] = Extrude {0, 2 * sd, 0} { Point{p}; Layers{one[], at[]}; };
side[] = Extrude {0, 0, 2 * sd} { Curve{line[1]}; Layers{one[], at[]}; Recombine; };
lo = -up;  hi = dn;  a = -core;  b = xw;
Call Layers1d;
If (slip)
  // The outside of the domain is found from the nearest wall, so there must be one beside the
  // background. It is the first layer behind the inlet, which moves with the stream.
  thin = at[0] * (up + dn);
  front[] = Extrude {thin, 0, 0} { Surface{side[1]}; Layers{1}; Recombine; };
  later[] = {};
  For i In {1 : #at[] - 1}
    later[] += {(at[i] - at[0]) / (1 - at[0])};
  EndFor
  one[] = {};
  For i In {1 : #later[]}
    one[] += {1};
  EndFor
  later[#later[] - 1] = 1;
  box[] = Extrude {up + dn - thin, 0, 0} { Surface{front[0]}; Layers{one[], later[]}; Recombine; };
  background[] = {front[1], box[1]};
  walls[] = {front[2], front[3], front[4], front[5]};
  Physical Surface("symmetry", 14) = {box[2], box[3], box[4], box[5]};
Else
  box[] = Extrude {up + dn, 0, 0} { Surface{side[1]}; Layers{one[], at[]}; Recombine; };
  background[] = {box[1]};
  walls[] = {box[2], box[3], box[4], box[5]};
EndIf

Physical Volume("background", 1)  = {background[]};
Physical Volume("component1", 2)  = {cells[]};
Physical Surface("inlet", 11)     = {side[1]};
Physical Surface("outlet", 12)    = {box[0]};
Physical Surface("wall", 13)      = {walls[], body[]};
Physical Surface("overset1", 15)  = {outer[]};
