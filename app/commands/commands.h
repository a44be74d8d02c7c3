// The sub-commands: what each is given and the function that runs it. All return the exit code and throw Failure for errors.
#pragma once

#include <zbr-drawing/contours.h>
#include <zbr-formats/types.h>

#include <string>
#include <vector>

#include "app/commands/placement.h"
#include "app/commands/view_options.h"
#include "app/libraries.h"

namespace tool {

inline constexpr int kExitFine = 0;
inline constexpr int kExitFound = 1;  // of check, and of --strict
inline constexpr int kExitError = 2;

// How results are written.
struct Writing {
  bool curves = false;     // WKT with arcs
  double deviation = 0.0;  // of the chords of its other curves; 0: 1/10000 of the larger side
  double simplify = -1.0;  // tolerance within which points are left out; negative: all stay
  DxfStyle dxf;
};

// Options of every command that reads drawings.
struct InputOptions {
  std::string format;                  // of files whose names do not tell
  std::vector<std::string> layers;     // empty: all
  std::string layersFrom = "--layer";  // the option that named them
  FlattenOptions flatten{-1.0, -1.0};
  std::string fill;             // the rule that tells what is inside; empty: even-odd
  Writing writing;              // of commands that write regions
  bool allLayers = false;       // those that are off or frozen, too
  bool strict = false;          // fail where anything that bears contours is left out
  bool leftOutIsFound = false;  // such things are told by the command itself
};

struct BoolOptions {
  InputOptions input;
  std::vector<std::string> operations;
  std::vector<std::string> files;             // A, B and so on
  std::vector<std::string> layersA, layersB;  // of the first two; empty: those of the input
  Placements placements;
  std::vector<std::string> outputs;
  bool stats = false;
};

struct NestOptions {
  InputOptions input;
  std::string file;
  std::vector<std::string> outputs;
};

struct InsideOptions {
  InputOptions input;
  std::string file;
  std::vector<std::string> coordinates;  // empty: points are read from standard input
};

struct TransformOptions {
  InputOptions input;
  std::string file;
  std::vector<std::string> outputs;
  Placement placement;
};

struct FileOptions {
  InputOptions input;
  std::string file;
  std::string modelFormat;  // set: the file is a model
  bool json = false;
};

struct CheckOptions {
  InputOptions input;
  std::string file;
  std::vector<std::string> outputs;
  bool fix = false;  // outputs get the region that the drawing is taken for
  bool json = false;
};

struct DrawOptions {
  std::vector<std::string> models;
  std::vector<std::string> objects;  // further ones, "FILE,DX,DY,DZ"
  std::vector<std::string> outputs;
  std::vector<std::string> views;     // names
  std::string look, up, axes;         // as in ViewOptions; a view beside the named ones
  std::string eye;                    // three numbers: a perspective from there, to the middle of the model or along `look`
  double fov = 0.0;                   // degrees of it; 0: everything
  std::vector<std::string> sections;  // planes, a view for each
  std::string modelFormat;            // of models whose names do not tell
  std::string sheet;                  // "first", "third" or empty: by the number of views
  std::string hidden;                 // empty: dashed, in views along an axis only
  std::string tangent = "none";
  std::string intersections = "on";
  std::string curves = "on";
  std::string scale, paper;  // empty: what fits
  std::string title;         // empty: the names of the models
  std::string number, author, date;
  std::string unit = "mm";
  std::string format;  // of outputs whose names do not tell
  double crease = 30.0;
  double weld = 0.0;
  double contact = -1.0;    // negative: from the coordinates
  unsigned jobs = 0;        // 0: as many as there are processors
  std::string silhouettes;  // "smooth" or "facets"; empty: by the model
  bool centreLines = false;
  bool fill = false;
  bool stats = false;
  DxfVersion dxf = DxfVersion::kR2000;  // of outputs
};

struct PickOptions {
  std::string file;
  std::string modelFormat;  // where the name does not tell
  ViewOptions view;
  double weld = 0.0;
  std::vector<std::string> coordinates;  // empty: points are read from standard input
};

struct OutlineOptions {
  std::vector<std::string> models;
  std::vector<std::string> objects;  // further ones, "FILE,DX,DY,DZ"
  std::vector<std::string> outputs;
  ViewOptions view;
  std::string unit = "mm";
  std::string modelFormat, format;  // of models and of outputs whose names do not tell
  double weld = 0.0;
  unsigned jobs = 0;   // 0: as many as there are processors
  bool whole = false;  // whatever nearer objects cover
  bool stats = false;
  DxfVersion dxf = DxfVersion::kR2000;  // of outputs
};

struct ClipOptions {
  InputOptions input;                     // its layers are those of the lines
  std::vector<std::string> regionLayers;  // empty: all
  std::string lines, region;
  std::vector<std::string> outputs;
  bool outside = false, both = false;
  std::string layerBy;  // "source": lines keep their colours and line types
  bool stats = false;
};

int RunBool(const BoolOptions& options);
int RunNest(const NestOptions& options);
int RunTransform(const TransformOptions& options);
int RunInside(const InsideOptions& options);
int RunInfo(const FileOptions& options);
int RunCheck(const CheckOptions& options);
int RunDraw(const DrawOptions& options);
int RunPick(const PickOptions& options);
int RunOutline(const OutlineOptions& options);
int RunClip(const ClipOptions& options);

}  // namespace tool
