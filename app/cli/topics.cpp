// The prose of the manual.
#include "app/cli/command_line.h"

namespace tool {
namespace {

constexpr const char* kFormats =
    R"(The format of a file follows from its extension: .dxf, .geojson or .json, .wkt, .svg, .loops or .txt. For '-', standard input or output, and for names with other extensions --format tells it; without it,
standard output has the format of the first drawing.

DXF (text and binary, R12 to 2018): LWPOLYLINE and POLYLINE with bulges (with a width: their borders), CIRCLE, ARC,
ELLIPSE, LINE, SPLINE, SOLID, TRACE, MLINE, and INSERT with its block; what is open is joined end to end into loops.
Boundaries of HATCH are taken where nothing else is drawn. What is tilted is seen from above. The units ($INSUNITS) are
kept; other drawings in other units are converted to those of the first. Layers that are off or frozen are left
out, but for --all-layers. Arcs stay arcs; other formats get
chords (--deviation). All that is left out is noted; --strict makes it an error where it may bear
contours. Results are on a layer named after each operation, or with --layer-by source on those of the drawings; they are closed
polylines, or with --entities lines, arcs and so on; by default as AutoCAD 2000 has it (--dxf-version).

GeoJSON (read and written): Polygon and MultiPolygon, alone or in Feature, FeatureCollection and
GeometryCollection. Polygons of one file are united. Results are a FeatureCollection with one
MultiPolygon for each operation.

WKT (read and written): POLYGON, MULTIPOLYGON and GEOMETRYCOLLECTION, and with arcs CURVEPOLYGON and MULTISURFACE, any
number in one file. Polygons of one file are united. Results are one line for each operation, with arcs if --curves
says so.

text (read and written): one "x y" or "x y z" a line, a blank line between loops, '#' starts a comment:

  # a triangle with a hole
  0 0
  9 0
  0 9

  1 1
  3 1
  1 3

SVG, read: path, rect, circle, ellipse, line, polyline and polygon with all transforms, views and copies; y goes up, in
millimetres where the file has its size in a unit of length. What is filled closes, what is only stroked is joined like lines of DXF;
groups are layers, style sheets are not read. A ring in a ring is a hole, whatever is painted (--fill nonzero for others). Written: a
picture of the operands' outlines and the filled results.

Lines, which 'zbr clip' cuts, are every contour of a file, open or closed, each for itself. Beside the above they
are LineString and MultiLineString (GeoJSON, WKT), blocks of points that do not close (text), and LINE, open
polylines and polylines in space (DXF). Heights are kept: third numbers of points, elevations, z in DXF. With --both
layers and features are named after their sides; what is inside comes first.

Models (read): STL, OBJ, PLY, OFF, glTF 2 and 3MF, the latter two with all that they place in its place, 3MF in
millimetres. Other names, and '-', need --model-format.

In DXF and text a point belongs to the drawing when an odd number of loops is around it, whatever the loops'
directions, unless --fill names another rule; in GeoJSON and WKT the same holds for each polygon by itself. Numbers
are written with the fewest digits that read back as the same number. Any unit and size does, up to 1e150; what is
narrower than about 1e-12 of the larger side is left out of results.
)";

constexpr const char* kOutputs =
    R"(One operation: every -o names a file for its result.

Several operations: on two drawings they share one search for crossings. With as many outputs as operations each file holds one
result, in the order of --op. A name with {op} stands for one file for each operation:

  zbr bool --op union,a-b A.dxf B.dxf -o out-{op}.dxf

A name with {side} ('zbr clip --both') or {object} ('zbr outline') stands for one file for each of these.

Any other number of outputs: each file holds all results, as layers (DXF), features (GeoJSON), lines (WKT),
blocks under a comment (text) or panels of one picture (SVG).

Files appear when they are complete; after an error none is left behind.
)";

constexpr const char* kOutlines =
    R"(The outline of an object in a view bounds what its triangles cover, holes included. Triangles seen edge-on cover
nothing; whether surfaces are closed or face outwards does not matter. Coordinates are those of the view, in the
unit of the model: x to the right, y up, and the origin of the model is at the origin. In views along an axis the
vertices have the coordinates of the file to the last digit, so outlines can go on to 'zbr bool' and 'zbr clip'.
Each run is for one view.

Several models, and those of --object, are objects that hide one another, each a region of its own: a layer
(DXF), feature (GeoJSON), line (WKT), block under a comment (text) or colour (svg), named after its file. Nearer
objects take from those behind what they cover; --whole leaves it. Objects are compared two by two, in the order
given. The nearer of two is the one that is nearer at more of the places where their outlines cross, or along the
overlap where they do not. So of two objects that hide each other in part, or pass through each other, one counts
as nearer everywhere.

The place of an object, DX,DY,DZ, is added to its coordinates:

  zbr outline base.stl --object lid.stl,0,0,40 --view front -o front.dxf
)";

constexpr const char* kCheck =
    R"(A drawing bounds a region when its loops close, enclose some area and neither cross themselves or each other nor
run along each other; loops may touch. 'zbr check' prints one line 'file:line: finding at (x, y)' for each
breach, with the line where the loop starts in the file. The other commands note the first breach on standard
error and go on: open contours are left out, and where loops cross, what lies within an odd number of them is taken.
--fill takes another rule and tells of no crossings:

  evenodd    within an odd number of loops
  nonzero    where the turns of the loops around a point do not cancel
  positive   where they add up to counter-clockwise turns, as outer loops of most programs make them
  negative   where they add up to clockwise turns

With --fix and -o, 'zbr check' writes the region so found: simple loops, nested, that touch in single points at most.
)";

constexpr const char* kViews =
    R"(front is seen along the y axis of the model, right from positive x, top from positive z, with z drawn upwards;
with y up (--axes y, and glTF files), front is seen against z and top from positive y. iso shows front, top and
right side at equal scales; dimetric shows the front at nearly its true shape. --look X,Y,Z is the view along any
direction.

An edge of a triangle is drawn when it is a border (of one triangle), a crease (the surface bends by more than
--crease; round rims of flat faces are drawn whole), a junction (of three and more triangles), a silhouette (the surface
turns away there) or, with --tangent, tangent (a fillet or another bent face ends there); and lines are drawn where
surfaces pass through each other. Triangles that share edges, two at each, form a shell; any number of shells may hide
each other, and any may be open.

--eye X,Y,Z adds a perspective from that point to the middle of the model, or along --look. --centre-lines marks circles and
axes. Scans, whose creases end nowhere, show creases that can be followed for some way, and smooth silhouettes
(--silhouettes).

--section PLANE adds a section: X=10, Y=10 and Z=10 are seen as the views right, front and top are (with y up, Z from the
front, Y from above); 1,0,1=7.5 is the plane at the distance 7.5 from the origin in that direction, seen from there; X=5..20
leaves what lies between two planes. Cut faces are hatched; the first view that sees the plane edge-on shows where it is.

Each file and each --object is an object: its surfaces are joined with each other, not with those of other objects;
in 3MF and glTF files this holds for each mesh that they place.

Several views make a sheet. In first-angle projection the view from above stands below the front view and the view
from the left on its right; in third-angle projection it is the other way round. iso, dimetric and --look take a
corner. All views have the same scale; SVG, PDF and DXF are in millimetres on paper:

  SVG   a group for each view, within it for hidden and visible lines, for each class of edges
  PDF   one page, with layers FILL, HIDDEN, TANGENT, VISIBLE, FRAME, HATCHING and CENTER
  DXF   layers VISIBLE, OUTLINE (silhouettes), INTERSECTION, TANGENT, HIDDEN, FRAME and TITLE;
        SECTION and HATCHING with sections; CENTER for cutting planes and centre lines
  JSON  every line with its points, in the unit of the model, and the edges it is part of

Edges that are chords of one circle are drawn as what they stand for: circles, ellipses and arcs. A chord spans at
most 30 degrees, a circle or an arc has at least four, a rounding between its tangents two or three, and its points
lie on it within the rounding of coordinates or a fiftieth of the distance between chord and arc; polygons of up to
eleven sides stay polygons. --curves off draws edges as they are.

--fill adds what each object or body covers, as far as nearer ones leave it visible (see 'zbr help outlines'): a shade
below the lines in SVG, closed polylines on a layer FILL-name in DXF, "outlines" with polygons in JSON.

Triangles are numbered from 0 in the order of the files, polygons split; edge 0 runs from the first vertex to the
second; 3 stands for a line across the triangle, where the shell "other" passes through it. Shells are numbered from
0 in the order of their first triangles. 'zbr pick' uses the same numbers.
)";

constexpr const char* kExit =
    R"(0: done. 1: 'zbr check' found something. 2: an error; one line on standard error tells which, for malformed
files as 'file:line: cause'.
)";

constexpr const char* kExamples =
    R"(A picture of all five combinations of two drawings:

  zbr bool --op union,intersection,a-b,b-a,xor bracket.dxf gasket.dxf -o all.svg

The difference as DXF and as WKT, with sizes and times:

  zbr bool --op a-b --stats bracket.dxf gasket.dxf -o cut.dxf -o cut.wkt

Loops through a pipe:

  zbr bool --op xor a.txt b.txt -o - | zbr info - --format text

A plate without a drawing of a part that is turned and moved to its place:

  zbr bool --op a-b plate.dxf part.dxf --turn B=30 --move B=120,45 -o cut.dxf

Sizes for a program:

  zbr info plate.dxf --json

Which of the points are in the drawing:

  zbr inside bracket.dxf 10 20 -5 0

A sheet with three views and a pictorial one, and the same for a program to go on with:

  zbr draw housing.obj --view front,top,left,iso -o housing.svg -o housing.json

Two objects, filled, and what each covers in the view from above:

  zbr draw housing.obj --object housing.obj,40,130,0 --fill -o both.svg
  zbr outline housing.obj --object housing.obj,40,130,0 --view top -o both.dxf

The lines of a drawing within a region, and all of them on layers that tell inside from outside:

  zbr clip gasket.dxf bracket.dxf -o inside.dxf
  zbr clip gasket.dxf bracket.dxf --both -o both.dxf -o both.svg
)";

}  // namespace

const std::vector<Topic>& Topics() {
  static const std::vector<Topic> kTopics = {{"formats", kFormats},  {"outputs", kOutputs}, {"outlines", kOutlines},
                                             {"checks", kCheck},     {"views", kViews},     {"exit", kExit},
                                             {"examples", kExamples}};
  return kTopics;
}

}  // namespace tool
