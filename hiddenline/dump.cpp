// A readable description of one triangle on the debugger's output.
#include <cmath>
#include <sstream>

#include <zbr/hidden_line.h>

#include "hiddenline/occlusion.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <cstdio>
#endif

namespace {

// Labels in the output's encoding: debuggers on Windows show code page 932, terminals elsewhere UTF-8.
#if defined(_WIN32)
constexpr const char* kVerticalLabel = "  \x81\x9avertical";
constexpr const char* kNearlyVerticalLabel = "  \x81\x99\x8b^\x8e\x97vertical";
constexpr const char* kClockwiseLabel =
    "  \x81\xa1\x89"
    "E\x89\xf1\x82\xe8 ";
constexpr const char* kCounterClockwiseLabel = "  \x81\xa0\x8d\xb6\x89\xf1\x82\xe8 ";

void Emit(const std::string& text) {
  OutputDebugStringA(text.c_str());
}
#else
constexpr const char* kVerticalLabel = "  \u2605vertical";
constexpr const char* kNearlyVerticalLabel = "  \u2606\u7591\u4f3cvertical";
constexpr const char* kClockwiseLabel = "  \u25a0\u53f3\u56de\u308a ";
constexpr const char* kCounterClockwiseLabel = "  \u25a1\u5de6\u56de\u308a ";

void Emit(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}
#endif

// Of the normal's z; for the reader of the dump alone.
constexpr double kNearlyVertical = 0.01;

template <class T>
void WriteThree(std::ostream& out, const char* label, const T& a, const T& b, const T& c) {
  out << label << a << " , " << b << " , " << c << "\n";
}

void WriteHead(std::ostream& out, const ZBR_HL_TRI& t, int s, int e) {
  out << "idx : " << t.idx;
  if (s >= 0) out << " s(" << s << ")";
  if (e >= 0) out << " e(" << e << ")";
  out << ", shell : " << (t.shell != nullptr ? t.shell->index : t.shell_idx);
  const ZBR_PT3& n = t.normal.normal();
  if (t.IsTriVertical()) {
    out << kVerticalLabel;
  } else if (std::fabs(n.z()) < kNearlyVertical) {
    out << kNearlyVerticalLabel;
  }
  if (!n.IsZero()) out << (t.clockwise ? kClockwiseLabel : kCounterClockwiseLabel);
  out << "\n";
}

const char* StateLabel(int state) {
  switch (state) {
    case zbr::kGeneral:
      return "general , ";
    case zbr::kVertical:
      return "vertical , ";
    case zbr::kInvalid:
      return "invalid , ";
    default:
      return "";
  }
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes the title by value
void ZBR_HL_TRI::OutputInfo(std::string title, int s, int e) const {
  std::ostringstream out;
  out << "*************************\n" << title;
  WriteHead(out, *this, s, e);
  WriteThree(out, "adj : ", adj[0], adj[1], adj[2]);
  WriteThree(out, "profile : ", profile[0], profile[1], profile[2]);
  for (int k = 0; k < 3; ++k) {
    out << "pt[" << k;
    WriteThree(out, "] : ", pt[k].x(), pt[k].y(), pt[k].z());
  }
  WriteThree(out, "normal : ", normal.normal().x(), normal.normal().y(), normal.normal().z());
  WriteThree(out, "dispj : ", dispj[0], dispj[1], dispj[2]);
  for (const int state : edge_state) out << StateLabel(state);
  out << "\n";
  for (int k = 0; k < 3; ++k) {
    out << "intvl_v[" << k << "] ";
    for (const ZBR_HL_INTERVAL& v : intvl_v[k]) out << "[ " << v.s.t << " , " << v.e.t << " ] , ";
    out << "\n";
  }
  out << "********************\n\n";
  Emit(out.str());
}
