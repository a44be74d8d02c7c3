// The options of commands on models.
#include "app/cli/command_line.h"
#include "app/cli/shared_options.h"

namespace tool {

void CommandLine::DeclareDraw() {
  CLI::App& command = *app_.add_subcommand("draw", "Draw models of triangles without their hidden lines, in one or several views");
  AddObjects(command, draw_.models, draw_.objects);
  AddModelFormat(command, draw_.modelFormat);
  AddOutputs(command, draw_.outputs,
             "File for the drawing, .svg, .pdf, .dxf or .json; may be repeated. Without it the table of --stats is printed");
  AddList(command, "--view", draw_.views,
          "One or several of front, back, left, right, top, bottom, iso and dimetric; by default iso. See 'zbr help views'",
          "VIEW,...");
  command.add_option("--look", draw_.look, "A view along this direction, beside those of --view")->type_name("X,Y,Z");
  command.add_option("--up", draw_.up, "With --look: the direction that is drawn upwards; by default that of --axes")
      ->type_name("X,Y,Z");
  command
      .add_option("--eye", draw_.eye,
                  "A perspective from this point beside the views of --view: to the middle of the model, or along --look")
      ->type_name("X,Y,Z");
  AddNumber(
      command, "--fov", kOpening, draw_.fov,
      "With --eye: cut the picture off at this angle, at most 170; by default all is drawn, and 60 if the eye is within the model");
  command
      .add_option("--section", draw_.sections,
                  "A section beside the other views: X=10, seen as the right view is; Y=5..20, what lies between two planes; or "
                  "1,0,1=7.5, a plane at that distance from the origin, seen from there. May be repeated")
      ->allow_extra_args(false)
      ->type_name("PLANE");
  AddAxes(command, draw_.axes);
  AddNumber(command, "--crease", kDegrees, draw_.crease, "Draw edges at which the surface bends by more than this; by default 30");
  AddWeld(command, draw_.weld);
  AddNumber(command, "--contact", kLength, draw_.contact,
            "Bodies at most this far apart stand face to face, and the edges that they share are drawn; by default four times what "
            "coordinates are rounded to, where they were rounded to single precision");
  AddChoice(command, "--intersections", draw_.intersections, {"on", "off"},
            "Draw the lines where bodies pass through each other, or a body through itself; on by default", "SWITCH");
  DeclareSheet(command);
  AddJobs(command, draw_.jobs);
  command.add_flag("--stats", draw_.stats, "Print triangles, edges, lines and the milliseconds of each stage");
  AddDxfVersion(command, draw_.dxf);
  AddChoice(command, "--format", draw_.format, {"svg", "pdf", "dxf", "json"},
            "Format of '-' and of outputs whose extension does not tell it: svg, pdf, dxf or json", "FORMAT");
}

// Options on how the views come to paper.
void CommandLine::DeclareSheet(CLI::App& command) {
  AddChoice(command, "--sheet", draw_.sheet, {"first", "third"},
            "Arrange the views in first- or third-angle projection on a sheet with frame and title; by default first for several "
            "views, and no sheet for one",
            "ANGLE");
  AddChoice(command, "--hidden", draw_.hidden, {"none", "dashed", "layer"},
            "Hidden lines: none, dashed or layer, on a layer that is not shown; by default dashed in views along an axis, none in "
            "others such as iso",
            "STYLE");
  AddChoice(
      command, "--tangent", draw_.tangent, {"none", "thin", "layer"},
      "Smooth edges at which fillets and other bent faces end: none (by default), thin, or layer, on a layer that is not shown",
      "STYLE");
  AddChoice(
      command, "--silhouettes", draw_.silhouettes, {"facets", "smooth"},
      "Where curved surfaces turn away: along edges of their facets, or on the smooth surface that they stand for; by default "
      "smooth for scans, whose creases are rough, else facets",
      "KIND");
  AddChoice(
      command, "--curves", draw_.curves, {"on", "off"},
      "Draw chains of edges that lie on a circle, and coarse roundings, as circles, ellipses and arcs (on, by default), or as "
      "they are",
      "WHETHER");
  command
      .add_option("--scale", draw_.scale,
                  "Such as 1:2, 5:1 or 0.1; by default the largest of 1, 2, 2.5, 5, 10, ... that fits, with fit the largest of any")
      ->type_name("SCALE");
  command
      .add_option("--paper", draw_.paper,
                  "A4 to A0, lying or standing as it suits, or WIDTHxHEIGHT in mm; by default A4 for one view and A3 for several")
      ->type_name("SIZE");
  command.add_flag("--centre-lines", draw_.centreLines, "Draw the centres and axes of circles and cylinders as chain lines");
  command.add_flag("--fill", draw_.fill,
                   "Fill what each object, and each body of 3MF and glTF files, covers and nearer ones leave visible: in SVG in a "
                   "light shade, in DXF as closed polylines on layers FILL-name, in JSON as polygons");
  AddUnit(command, draw_.unit);
  command.add_option("--title", draw_.title, "Title of the sheet; by default the name of the model")->type_name("TEXT");
  command.add_option("--number", draw_.number, "Number of the drawing, for the sheet")->type_name("TEXT");
  command.add_option("--author", draw_.author, "Who drew it, for the sheet")->type_name("TEXT");
  command.add_option("--date", draw_.date, "Its date, for the sheet, as it is to be written")->type_name("TEXT");
}

void CommandLine::DeclarePick() {
  CLI::App& command =
      *app_.add_subcommand("pick", "Tell which triangle of a model is seen at points of a drawing, and how high it is");
  command.add_option("model", pick_.file, "The model")->required()->type_name("MODEL");
  command
      .add_option("points", pick_.coordinates,
                  "Coordinates in the drawing, x and y in turn, in the unit of the model; without any, points are read from "
                  "standard input, one a line")
      ->type_name("X Y ...");
  AddModelFormat(command, pick_.modelFormat);
  AddView(command, pick_.view);
  AddWeld(command, pick_.weld);
}

void CommandLine::DeclareOutline() {
  CLI::App& command = *app_.add_subcommand(
      "outline", "Find what models cover in a view: their silhouettes as regions, loops with holes, in the unit of the model");
  AddObjects(command, outline_.models, outline_.objects);
  AddModelFormat(command, outline_.modelFormat);
  AddOutputs(command, outline_.outputs,
             "File for the outlines of all objects, the format by its extension; may be repeated. {object} in a name stands for "
             "one file for each object. Without it the table of --stats is printed. See 'zbr help outlines'");
  AddView(command, outline_.view);
  command.add_flag("--whole", outline_.whole, "Whole outlines, even where nearer objects cover them");
  AddWeld(command, outline_.weld);
  AddUnit(command, outline_.unit);
  AddJobs(command, outline_.jobs);
  command.add_flag("--stats", outline_.stats, "Print edges, loops, holes, areas and the milliseconds of each stage");
  AddDxfVersion(command, outline_.dxf);
  AddChoice(command, "--format", outline_.format, {"dxf", "geojson", "wkt", "text", "svg"},
            "Format of '-' and of outputs whose extension does not tell it: dxf, geojson, wkt, text or svg", "FORMAT");
}

}  // namespace tool
