// How an entry about a predicate is tried: call names it, and each row has what goes in and, behind '=', what comes out. Numbers at
// the end of what comes out may be left away; 7 stands where a function must not write.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>

#include "entries/entry.h"

namespace {

using Values = std::vector<double>;
using Call = std::function<Values(const Values&)>;

ZBR_PT P(const Values& v, std::size_t k) {
  return {v.at(2 * k), v.at(2 * k + 1)};
}
ZBR_PT3 Q(const Values& v, std::size_t k) {
  return {v.at(3 * k), v.at(3 * k + 1), v.at(3 * k + 2)};
}
Values Of(const ZBR_PT3& p) {
  return {p.x(), p.y(), p.z()};
}

Values Corner(const Values& v) {
  ZBR_3PT_INFO info;
  const int state = ZBR_PT::Get3PtInfo(P(v, 0), P(v, 1), P(v, 2), info);
  return {1.0 * state, info.isConvex ? 1.0 : 0.0, info.sinA, info.cosA, info.invLen2Prev, info.invLen2Next};
}

Values Wedge(const Values& v) {
  int sides[] = {7, 7};
  const int place = P(v, 0).CheckPos(P(v, 1), P(v, 2), P(v, 3), sides[0], sides[1]);
  return {1.0 * place, 1.0 * sides[0], 1.0 * sides[1]};
}

Values Crossing(const Values& v) {
  double t = 7, u = 7, det = 7;
  const bool crosses = zbrIsIntersect(P(v, 0), P(v, 1), P(v, 2), P(v, 3), &t, &u, &det);
  return {crosses ? 1.0 : 0.0, t, u, det};
}

Values OnSegment(const Values& v) {
  ZBR_PT foot(7, 7);
  double t = 7;
  const bool isOn = zbrIsOnSeg(P(v, 0), P(v, 1), P(v, 2), &foot, &t);
  EXPECT_EQ(zbrIsOnSeg(P(v, 0), P(v, 1), P(v, 2), nullptr, nullptr), isOn);
  return {isOn ? 1.0 : 0.0, t, foot.x(), foot.y()};
}

Values OnSegment3(const Values& v) {
  ZBR_PT3 foot(7, 7, 7);
  double t = 7;
  const bool isOn = zbrIsOnSeg(Q(v, 0), Q(v, 1), Q(v, 2), &foot, &t);
  EXPECT_EQ(zbrIsOnSeg(Q(v, 0), Q(v, 1), Q(v, 2), nullptr, nullptr), isOn);
  return {isOn ? 1.0 : 0.0, t, foot.x(), foot.y(), foot.z()};
}

Values Lines3(const Values& v) {
  ZBR_PT3 a(7, 7, 7), b(7, 7, 7);
  double t = 7, u = 7;
  const ZBR_LL_RELATION relation = zbrIsIntersect(Q(v, 0), Q(v, 1), Q(v, 2), Q(v, 3), &a, &b, &t, &u);
  EXPECT_EQ(zbrIsIntersect(Q(v, 0), Q(v, 1), Q(v, 2), Q(v, 3), nullptr, nullptr, nullptr, nullptr), relation);
  return {static_cast<double>(relation), t, u, a.x(), a.y(), a.z(), b.x(), b.y(), b.z()};
}

Values Strip(const Values& v) {  // from, to, points
  ZBR_POLYGON polygon;
  for (std::size_t k = 1; k < v.size() / 2; ++k) polygon.pt().push_back(P(v, k));
  return {polygon.get_area(v[0], v[1])};
}

const std::map<std::string, Call>& Calls() {
  static const std::map<std::string, Call> calls = {
      {"equal",
       [](auto& v) {
         return Values{P(v, 0) == P(v, 1) ? 1.0 : 0.0, P(v, 0) != P(v, 1) ? 1.0 : 0.0};
       }},
      {"equal3",
       [](auto& v) {
         return Values{Q(v, 0) == Q(v, 1) ? 1.0 : 0.0, Q(v, 0) != Q(v, 1) ? 1.0 : 0.0};
       }},
      {"zero3",
       [](auto& v) {
         return Values{1.0 * Q(v, 0).IsZero(), 1.0 * Q(v, 0).IsZero2(), 1.0 * Q(v, 0).IsZero4()};
       }},
      {"normalize",
       [](auto& v) {
         return Values{P(v, 0).Normalize().x(), P(v, 0).Normalize().y()};
       }},
      {"normalize3", [](auto& v) { return Of(Q(v, 0).Normalize()); }},
      {"unit3", [](auto& v) { return Of(Q(v, 0).Unit()); }},
      {"side", [](auto& v) { return Values{1.0 * P(v, 0).CheckPos(P(v, 1), P(v, 2))}; }},
      {"side-of-unit", [](auto& v) { return Values{1.0 * P(v, 0).CheckPos(P(v, 1), P(v, 2), 1.0)}; }},
      {"side3", [](auto& v) { return Values{1.0 * Q(v, 0).CheckPos(Q(v, 1), Q(v, 2))}; }},
      {"parameter", [](auto& v) { return Values{P(v, 0).LinFrom(P(v, 1), P(v, 2))}; }},
      {"corner", Corner},
      {"wedge", Wedge},
      {"wedge3", [](auto& v) { return Values{1.0 * Q(v, 0).insideXY(Q(v, 1), Q(v, 2), Q(v, 3))}; }},
      {"triangle3",
       [](auto& v) {
         return Values{1.0 * Q(v, 0).inTriangleXY(Q(v, 1), Q(v, 2), Q(v, 3)),
                       1.0 * Q(v, 0).inTriangleXY_CCL(Q(v, 1), Q(v, 2), Q(v, 3))};
       }},
      {"crossing", Crossing},
      {"on-segment", OnSegment},
      {"on-segment3", OnSegment3},
      {"lines3", Lines3},
      {"strip", Strip},
      {"cosine3", [](auto& v) { return Values{Q(v, 0).cos(Q(v, 1))}; }},
      {"cosine-of-corner", [](auto& v) { return Values{Q(v, 0).cosXY(Q(v, 1), Q(v, 2))}; }},
      {"pseudo-cosine", [](auto& v) { return Values{Q(v, 0).pseudo_cos(Q(v, 1), Q(v, 2), Q(v, 3))}; }},
      {"pseudo-cosine-of-corner", [](auto& v) { return Values{Q(v, 0).pseudo_cosXY(Q(v, 1), Q(v, 2))}; }},
      {"pseudo-cosine-of-arms", [](auto& v) { return Values{Q(v, 0).pseudo_cosXY(Q(v, 1))}; }},
      {"on-line3", [](auto& v) { return Of(zbrGetOnLinePt(Q(v, 0), Q(v, 1), Q(v, 2))); }},
      {"line-parameter3", [](auto& v) { return Values{zbrGetOnLineParameter(Q(v, 0), Q(v, 1), Q(v, 2))}; }},
      {"drop", [](auto& v) { return Values{static_cast<double>(zbrDropType(Q(v, 0)))}; }},
  };
  return calls;
}

}  // namespace

void RunPredicate(const Entry& entry) {
  const ZBR_TmpEps guard(std::stod(entry.Or("eps", "1e-5")));
  const Call& call = Calls().at(entry.At("call"));
  for (const std::string& row : entry.All("row")) {
    const std::size_t equals = row.find('=');
    const Values got = call(Numbers(row.substr(0, equals)));
    const Values expected = Numbers(row.substr(equals + 1));
    ASSERT_LE(expected.size(), got.size()) << row;
    for (std::size_t k = 0; k < expected.size(); ++k) {
      EXPECT_TRUE((std::isnan(got[k]) && std::isnan(expected[k])) || std::abs(got[k] - expected[k]) <= 1e-15)
          << row << ": " << got[k];
    }
  }
}
