// Overset pair for the flow around a sphere: a box of hexahedra (background) and a spherical shell
// of tetrahedra (component1). Lengths are in sphere diameters. The center of the sphere is the
// origin, the stream runs along x, and the side walls of the box move with it.
//
//   gmsh -3 -format msh2 -setnumber n 7 -o sphere_n7.msh sphere_overset.geo
//
// n = background cells per diameter around the shell and in the wake
SetFactory("OpenCASCADE");
DefineConstant[
  n  = {7,    Name "Parameters/Background cells per diameter around the shell"},
  ro = {1.25, Name "Parameters/Outer radius of the shell"},
  sb = {0.5,  Name "Parameters/Edge of the tetrahedra on the body, in 1 over n"},
  so = {1.1,  Name "Parameters/Edge of the tetrahedra outside, in 1 over n"},
  up = {5.0,  Name "Parameters/Length of the box upstream"},
  dn = {10.0, Name "Parameters/Length of the box downstream"},
  sd = {5.0,  Name "Parameters/Half width of the box"},
  xw = {2.0,  Name "Parameters/End of the uniform zone in the wake"},
  gr = {1.3,  Name "Parameters/Growth from cell to cell outside the uniform zone"}
];
If (n < 1 || n > 60)
  Error("n must be 1 to 60, not %g", n);
  Abort;
EndIf
If (ro <= 0.5)
  Error("ro must be above the radius 0.5, not %g", ro);
  Abort;
EndIf
h = 1.0 / n;  ri = 0.5;

// ---- shell: the edges of the tetrahedra grow linearly with the radius
Sphere(1) = {0, 0, 0, ro};
Sphere(2) = {0, 0, 0, ri};
BooleanDifference(3) = { Volume{1}; Delete; }{ Volume{2}; Delete; };
shell[] = Abs(Boundary { Volume{3}; });
outer[] = {};  body[] = {};
For i In {0 : #shell[] - 1}
  bb[] = BoundingBox Surface {shell[i]};
  If (bb[3] - bb[0] > ri + ro)
    outer[] += {shell[i]};
  Else
    body[] += {shell[i]};
  EndIf
EndFor
Field[1] = MathEval;
Field[1].F = Sprintf("%g + %g * (Sqrt(x*x + y*y + z*z) - %g)", sb * h,
                     (so - sb) * h / (ro - ri), ri);
Background Field = 1;
Mesh.CharacteristicLengthExtendFromBoundary = 0;
Mesh.CharacteristicLengthFromPoints = 0;

// ---- background: one block with cells of size h around the shell and in the wake, larger outside
core = ro + 2 * h;
// Computes the layers from lo to hi: uniform between a and b, growing by gr on both sides, beginning
// with a thickness of at most h * gr. Result: at[], the ends of the layers scaled to 0 .. 1.
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
box[] = Extrude {up + dn, 0, 0} { Surface{side[1]}; Layers{one[], at[]}; Recombine; };

Physical Volume("background", 1)  = {box[1]};
Physical Volume("component1", 2)  = {3};
Physical Surface("inlet", 11)     = {side[1]};
Physical Surface("outlet", 12)    = {box[0]};
Physical Surface("wall", 13)      = {box[2], box[3], box[4], box[5], body[]};
Physical Surface("overset1", 15)  = {outer[]};
