// The functions that JavaScript calls (web/package/instance.js). Those of type int answer with a Status; what they give lies in the
// table. Regions are ZBR_REGION_VIEW records, texts the numbers of AddText calls.
#pragma once

#include <emscripten.h>
#include <zbr/region.h>

#include <cstddef>
#include <cstdint>

extern "C" {

// Exchange
EMSCRIPTEN_KEEPALIVE char* zbrwAddText(std::size_t size);  // null without memory; filled before the call that takes it
EMSCRIPTEN_KEEPALIVE const std::uintptr_t* zbrwTable();
EMSCRIPTEN_KEEPALIVE std::size_t zbrwTableSize();
EMSCRIPTEN_KEEPALIVE void zbrwLetGo();

// Options of regions, as numbers: tolerance, rules of A and B, whether sources, canonical order and progress are wanted.
EMSCRIPTEN_KEEPALIVE int zbrwCombine(const ZBR_REGION_VIEW* ab, const std::int32_t* ops, int count, const double* options);
EMSCRIPTEN_KEEPALIVE int zbrwCover(const ZBR_REGION_VIEW* regions, std::size_t count, int times, const double* options);
EMSCRIPTEN_KEEPALIVE int zbrwMakeValid(const ZBR_REGION_VIEW* rings, const double* options);
EMSCRIPTEN_KEEPALIVE int zbrwSimplify(const ZBR_REGION_VIEW* rings, double tolerance, const double* options);
EMSCRIPTEN_KEEPALIVE int zbrwTraceFaces(const ZBR_REGION_VIEW* lines, const double* options);
EMSCRIPTEN_KEEPALIVE int zbrwCheck(const ZBR_REGION_VIEW* rings, std::size_t most);
EMSCRIPTEN_KEEPALIVE int zbrwMeasure(const ZBR_REGION_VIEW* region);
EMSCRIPTEN_KEEPALIVE int zbrwLocate(const ZBR_REGION_VIEW* region, const double* points, std::size_t count, const double* options);
// Pair i is polygons parts[i] up to parts[i + 1] of each side; so are the results.
EMSCRIPTEN_KEEPALIVE int zbrwCombinePairs(const ZBR_REGION_VIEW* ab, const std::int32_t* partsA, const std::int32_t* partsB,
                                          std::size_t count, int op, const double* options);

// Drawings: text 0 the options, then the contents of the files.
EMSCRIPTEN_KEEPALIVE int zbrwCombineDrawings(std::size_t count);
EMSCRIPTEN_KEEPALIVE int zbrwWriteRegions(const ZBR_REGION_VIEW* regions);

// Models: text 0 the options, then contents of files. The first two give the number of the model.
EMSCRIPTEN_KEEPALIVE int zbrwReadModel(std::size_t beside);
EMSCRIPTEN_KEEPALIVE int zbrwMakeModel(const double* points, std::size_t pointCount, const std::uint32_t* faces,
                                       std::size_t faceCount, const std::uint32_t* shells, std::size_t shellCount);
EMSCRIPTEN_KEEPALIVE int zbrwModelInfo(std::uint32_t model);
EMSCRIPTEN_KEEPALIVE int zbrwModelMesh(std::uint32_t model);
EMSCRIPTEN_KEEPALIVE int zbrwDraw(std::uint32_t model);
EMSCRIPTEN_KEEPALIVE int zbrwWriteSheet(std::uint32_t model);
EMSCRIPTEN_KEEPALIVE int zbrwOutline(std::uint32_t model);
EMSCRIPTEN_KEEPALIVE int zbrwTraceOutline(std::uint32_t model);
EMSCRIPTEN_KEEPALIVE int zbrwPick(std::uint32_t model, const double* points, std::size_t count);
EMSCRIPTEN_KEEPALIVE void zbrwFreeModel(std::uint32_t model);
EMSCRIPTEN_KEEPALIVE std::size_t zbrwModelCount();
}
