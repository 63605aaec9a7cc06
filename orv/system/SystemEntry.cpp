// SystemEntry.cpp: the entries of the systems file.
//
// Keys may come in any order.  The parts that an entry describes are collected while it is read and set on
// the system at its closing brace, datum first, then projection, then warp, each only when one of its keys
// was met.
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "orv/core/internal/ConfigEntry.h"
#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/internal/ProjectionTables.h"
#include "orv/shared/Exception.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/system/internal/SharedParts.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LatLonText.h"
#include "orv/warp/WarpDef.h"

namespace orv::internal {

namespace {

constexpr const char* kShift = "%24.18f";       // numbers of a datum
constexpr const char* kParameter = "%.20f";     // numbers of a projection and of a local system
constexpr const char* kCoordinate = "%20.10f";  // coefficients and control points of a warp

constexpr const char* kUnknownEllipsoid = "%s(%d):  Unknown ellipsoid token '%s'\n";
constexpr const char* kUnknownProjection = "%s(%d):  Unrecognized projection '%s'\n";

/// Failures of an ORVDef's entry are the definition's own; so are those of a UCSDef's.
ErrorSite OrvSite(int line) { return {"ORVDef", line}; }

// ---- ellipsoids ------------------------------------------------------------------------------------------

/// The keys of an ellipsoid: one that names a known ellipsoid, and those of an inline one.
struct EllipsoidKeys {
  KeyName reference;
  KeyName token;
  KeyName name;
  KeyName radius;
  KeyName flat;
};
constexpr EllipsoidKeys kDatumEllipsoid = {"datum_ellipsoid", "datum_ellipsoid_token", "datum_ellipsoid_name",
                                           "datum_ellipsoid_radius", "datum_ellipsoid_flat"};
constexpr EllipsoidKeys kProjectionEllipsoid = {"ellipsoid", "ellipsoid_token", "ellipsoid_name",
                                                "ellipsoid_radius", "ellipsoid_flat"};

bool FindEllipsoid(EllipsoidDef& ellipsoid, std::string_view token) {
  return ORVKnownEllipsoidsList.FindByToken(std::string(token).c_str(), &ellipsoid) != 0;
}
/// Whether the token alone brings the dimensions back.
bool IsKnown(const EllipsoidDef& ellipsoid) {
  EllipsoidDef known;
  return FindEllipsoid(known, EmptyIfNull(ellipsoid.GetToken())) &&
         known.GetMajorRadius() == ellipsoid.GetMajorRadius() &&
         known.GetFlattening() == ellipsoid.GetFlattening();
}

double GetRadius(const EllipsoidDef& ellipsoid) { return ellipsoid.GetMajorRadius(); }
void SetRadius(EllipsoidDef& ellipsoid, double radius) { ellipsoid.SetMajorRadius(radius); }
double GetFlattening(const EllipsoidDef& ellipsoid) { return ellipsoid.GetFlattening(); }
void SetFlattening(EllipsoidDef& ellipsoid, double flattening) { ellipsoid.SetFlattening(flattening); }
bool SetToken(EllipsoidDef& ellipsoid, std::string_view token) {
  ellipsoid.SetToken(std::string(token).c_str());
  return true;
}
bool SetName(EllipsoidDef& ellipsoid, std::string_view name) {
  ellipsoid.SetName(std::string(name).c_str());
  return true;
}

/// An ellipsoid without radius is not written: the reader would refuse it.
template <class Walker>
void WalkEllipsoid(Walker& w, EllipsoidDef& ellipsoid, const EllipsoidKeys& keys, bool write) {
  write = kWriting<Walker> && write && ellipsoid.GetMajorRadius() > 0.0;
  const bool known = write && IsKnown(ellipsoid);
  const bool isInline = write && !known;
  const std::string token = write ? EmptyIfNull(ellipsoid.GetToken()) : "";
  const std::string name = write ? EmptyIfNull(ellipsoid.GetName()) : "";
  w.Reference(keys.reference, token, ellipsoid, &FindEllipsoid, kUnknownEllipsoid, known);
  w.Reference(keys.token, token, ellipsoid, &SetToken, "", isInline && !token.empty());
  w.Reference(keys.name, name, ellipsoid, &SetName, "", isInline && !name.empty());
  w.Derived(keys.radius, "%.4f", ellipsoid, &GetRadius, &SetRadius, isInline);
  w.Derived(keys.flat, "%.19f", ellipsoid, &GetFlattening, &SetFlattening, isInline);
}

// ---- datums ----------------------------------------------------------------------------------------------

using KnownDatum = std::shared_ptr<const DatumDef>;

/// A datum in pieces.
struct DatumDraft {
  DatumDraft() = default;
  explicit DatumDraft(const DatumDef& datum)
      : whole(datum),
        token(EmptyIfNull(datum.GetToken())),
        name(EmptyIfNull(datum.GetName())),
        special(datum.GetSpecial()) {
    datum.GetParameters(p);
  }
  DatumDef Make() {
    DatumDef datum(whole);
    datum.SetToken(token);
    datum.SetName(name);
    datum.SetSpecial(special);
    datum.SetParameters(&p);
    return datum;
  }

  DatumDef whole;  ///< what has no key of its own: comment and POSC number
  std::string token;
  std::string name;
  DatumTarget special = DatumTargetNone;
  DatumParameters p;
};

/// A known datum by its token, else by its name, else by one of three old short names.
bool FindDatum(KnownDatum& datum, std::string_view tokenOrName) {
  static constexpr const char* kOldNames[][2] = {
      {"NAD27", "North American Datum 1927"},
      {"NAD83", "North American Datum 1983"},
      {"WGS84", "World Geodetic System 1984"},
  };
  const std::string text(tokenOrName);
  const DatumList& list = ORVKnownDatumsList;
  int index = list.FindByToken(text.c_str(), nullptr);
  if (index == 0) index = list.FindByName(text.c_str(), nullptr);
  for (const auto& old : kOldNames) {
    if (index == 0 && EqualIgnoringCase(text, old[0])) index = list.FindByName(old[1], nullptr);
  }
  if (index != 0) datum = SharedParts::DatumAt(list, index);
  return index != 0;
}

/// Whether the token alone brings the datum back, apart from its comment.
bool IsKnown(const DatumDef& datum) {
  DatumDef known;
  if (ORVKnownDatumsList.FindByToken(EmptyIfNull(datum.GetToken()), &known) == 0) return false;
  DatumDef same(datum);
  for (DatumDef* const each : {&known, &same}) each->SetComment(nullptr);
  bool inverse = false, sameInverse = false;
  known.GetParameter(DatumParameterIDInverse, inverse);
  same.GetParameter(DatumParameterIDInverse, sameInverse);
  std::string text, sameText;
  known.EncodeToText(text);
  same.EncodeToText(sameText);
  return text == sameText && inverse == sameInverse;
}

// Deliberate: "Unknown" and "NONE" are no better than a name that no table has.
bool SetMethod(DatumDraft& d, std::string_view name) {
  d.p.method = DatumDef::NameToMethod(std::string(name).c_str());
  return d.p.method != DatumMethodUnknown;
}
bool SetTarget(DatumDraft& d, std::string_view name) {
  d.p.target = DatumDef::NameToTarget(std::string(name).c_str());
  return d.p.target != DatumTargetNone;
}
bool SetSpecial(DatumDraft& d, std::string_view name) {
  d.special = DatumDef::NameToTarget(std::string(name).c_str());
  return d.special != DatumTargetNone;
}
bool SetMREType(DatumDraft& d, std::string_view name) {
  d.p.mreType = DatumDef::NameToMREType(std::string(name).c_str());
  return d.p.mreType != DatumMRETypeNone;
}

/// @param token  written when the datum is a known one.
template <class Walker, class Datum>
void WalkDatumReference(Walker& w, const std::string& token, Datum& datum, bool known) {
  w.Reference("datum", token, datum, &FindDatum, "%s(%d):  Unknown datum '%s'\n", known);
}

/// @param known  written by reference alone.
template <class Walker>
void WalkDatum(Walker& w, DatumDraft& d, bool known) {
  DatumParameters& p = d.p;
  const auto uses = [&](DatumParameterID id) {
    return kWriting<Walker> && !known && DatumDef::UsesParameter(p.method, id);
  };
  // A name that is written must be one that can be read.
  const auto named = [known](int number, const char* name) { return !known && number != 0 && name; };
  const char* const method = kWriting<Walker> ? DatumDef::MethodToName(p.method) : nullptr;
  const char* const target = kWriting<Walker> ? DatumDef::TargetToName(p.target) : nullptr;
  const char* const mreType = kWriting<Walker> ? DatumDef::MRETypeToName(p.mreType) : nullptr;
  const char* const special = kWriting<Walker> ? DatumDef::TargetToName(d.special) : nullptr;

  w.Text("datum_token", d.token, !known && !d.token.empty());
  w.Text("datum_name", d.name, !known && !d.name.empty());
  w.Reference("datum_method", EmptyIfNull(method), d, &SetMethod, "%s(%d):  Unknown datum method '%s'\n",
              named(p.method, method));
  w.Reference("datum_target", EmptyIfNull(target), d, &SetTarget, "%s(%d):  Unknown target '%s'\n",
              named(p.target, target));
  WalkEllipsoid(w, p.ellipsoid, kDatumEllipsoid, !known);
  w.Number("datum_pmshift", kShift, p.pmShift, uses(DatumParameterIDPMShift));
  w.Number("datum_dx", kShift, p.dx, uses(DatumParameterIDdx));
  w.Number("datum_dy", kShift, p.dy, uses(DatumParameterIDdy));
  w.Number("datum_dz", kShift, p.dz, uses(DatumParameterIDdz));
  w.Number("datum_rx", kShift, p.rx, uses(DatumParameterIDrx));
  w.Number("datum_ry", kShift, p.ry, uses(DatumParameterIDry));
  w.Number("datum_rz", kShift, p.rz, uses(DatumParameterIDrz));
  w.Number("datum_k", kShift, p.k, uses(DatumParameterIDK));
  w.Flag("datum_prvi", p.nadconPrvi, uses(DatumParameterIDNadconPrvi));
  w.Reference("datum_mretype", EmptyIfNull(mreType), d, &SetMREType, "%s(%d):  Unknown MRE type code '%s'\n",
              uses(DatumParameterIDEquation) && named(p.mreType, mreType));
  w.Reference("datum_special", EmptyIfNull(special), d, &SetSpecial,
              "%s(%d):  Unknown special token for datum '%s'\n", named(d.special, special));
  w.Flag("datum_inverse", p.inverse, false);  // deliberate: read, never written
}

// ---- projections -----------------------------------------------------------------------------------------

bool SetProjectionMethod(ProjectionParameters& p, std::string_view name) {
  const auto* const row = RowNamed(kProjectionMethods, name);
  p.method = row ? row->number : ProjectionMethodUnknown;
  return p.method != ProjectionMethodUnknown;
}

/// Degrees, minutes and seconds; else the number that the text begins with.
void SetAngle(double& angle, std::string_view text) {
  if (!LatLonToDegrees(std::string(text).c_str(), &angle, 'd')) angle = ReadDecimal(text);
}

inline void Angle(KeyReader& w, KeyName key, double& angle, bool) { w.NumberOr(key, angle, &SetAngle); }
void Angle(KeyWriter& w, KeyName key, double angle, bool write) { w.Number(key, kParameter, angle, write); }

template <class Walker>
void WalkProjection(Walker& w, ProjectionParameters& p) {
  const bool known = kWriting<Walker> && !ProjectionDef(p).IsUnknown(false);
  const auto uses = [&](ProjectionParameterID id) {
    return kWriting<Walker> && ProjectionDef::UsesParameter(p.method, id);
  };
  w.Reference("projtype", known ? ProjectionDef::MethodToName(p.method) : "", p, &SetProjectionMethod,
              kUnknownProjection, known);
  w.Reference("projmethod", "", p, &SetProjectionMethod, kUnknownProjection, false);
  w.Reference("proj", "", p, &SetProjectionMethod, kUnknownProjection, false);
  WalkEllipsoid(w, p.ellipsoid, kProjectionEllipsoid, uses(ProjectionParameterIDEllipsoid));
  w.Number("scale", kParameter, p.Scale, uses(ProjectionParameterIDScale));
  w.Number("xorg", kParameter, p.xOrg, uses(ProjectionParameterIDXOrg));
  w.Number("yorg", kParameter, p.yOrg, uses(ProjectionParameterIDYOrg));
  Angle(w, "lon0", p.Lon0, uses(ProjectionParameterIDLon0));
  Angle(w, "lon1", p.Lon1, uses(ProjectionParameterIDLon1));
  Angle(w, "lon2", p.Lon2, uses(ProjectionParameterIDLon2));
  Angle(w, "lat0", p.Lat0, uses(ProjectionParameterIDLat0));
  Angle(w, "lat1", p.Lat1, uses(ProjectionParameterIDLat1));
  Angle(w, "lat2", p.Lat2, uses(ProjectionParameterIDLat2));
  w.Number("kscale", kParameter, p.K0, uses(ProjectionParameterIDK0));
  w.Flag("bsouth", p.bSouth, uses(ProjectionParameterIDSouth));
  w.Flag("busealpha", p.bUseAlpha, uses(ProjectionParameterIDUseAlpha));
  Angle(w, "alpha", p.Alpha, uses(ProjectionParameterIDAlpha));
  w.Flag("brotate", p.bRotate, uses(ProjectionParameterIDRotate));
  w.Flag("buoffset", p.bUOffset, uses(ProjectionParameterIDUOffset));
  w.Flag("bnowrap", p.bNoWrap, uses(ProjectionParameterIDNoWrap));  // no method uses it: read, never written
}

// ---- warps -----------------------------------------------------------------------------------------------

/// A warp in pieces: its keys have lists of numbers as values.
struct WarpDraft {
  WarpMethod method = WarpMethodUnknown;
  bool hasCoefficients = false;
  double coefficients[6] = {};
  std::vector<shr::Vec2d> sources;
  std::vector<shr::Vec2d> destinations;

  WarpDef Make() {
    WarpDef warp;
    if (hasCoefficients) warp.SetCoefficients(coefficients);  // makes it method 7
    if (method != WarpMethodUnknown) warp.SetMethod(method);
    for (const shr::Vec2d& point : sources) warp.AddSourcePoint(point);
    for (const shr::Vec2d& point : destinations) warp.AddDestinationPoint(point);
    return warp;
  }
};

bool SetWarpMethod(WarpDraft& d, std::string_view name) {
  d.method = WarpDef::NameToMethod(std::string(name).c_str());
  return d.method != WarpMethodUnknown;
}

/// `count` numbers, the first of which is the present token.
void ReadNumbers(ConfigFileReader& reader, double* numbers, int count) {
  for (int i = 0; i < count; ++i) {
    if (i > 0 && !reader.Next()) {
      ORV_FAIL_AT(OrvSite(__LINE__), ErrSyntax, kEntryTexts.unexpectedEnd, reader.FileName(), reader.Line());
      return;
    }
    numbers[i] = ReadDecimal(reader.Token());
  }
}

void ReadWarp(KeyReader& w, WarpDraft& d) {
  w.Reference("warp_method", "", d, &SetWarpMethod, "%s(%d):  Unknown warp method '%s'\n");
  w.Tokens("warp_coeff", [&d](ConfigFileReader& reader) {
    ReadNumbers(reader, d.coefficients, 6);
    d.hasCoefficients = true;
  });
  w.Tokens("warp_pt", [&d](ConfigFileReader& reader) {
    double xy[4] = {};
    ReadNumbers(reader, xy, 4);
    d.sources.emplace_back(xy[0], xy[1]);
    d.destinations.emplace_back(xy[2], xy[3]);
  });
}

void WriteNumbers(ConfigFileWriter& writer, const char* key, const std::vector<double>& numbers) {
  std::string line = std::string("   ") + key + '=';
  for (size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) line += ' ';  // wide numbers leave no blank of their own
    line += Format(kCoordinate, numbers[i]);
  }
  writer.Write(line + '\n');
}

void WriteWarp(KeyWriter& w, ConfigFileWriter& writer, const WarpDef& warp) {
  const char* const method = warp.MethodName();
  if (warp.GetMethod() == WarpMethodUnknown || !method) return;
  w.Text("warp_method", method);
  if (warp.GetMethod() == WarpMethodAffineWithCoefficients) {
    std::vector<double> c(6);
    warp.GetCoefficients(c.data());
    WriteNumbers(writer, "warp_coeff", c);
    return;
  }
  const size_t sources = warp.NumControlPoints(false), destinations = warp.NumControlPoints(true);
  for (size_t i = 0; i < sources && i < destinations; ++i) {
    const shr::Vec2d& from = *warp.EnumSourcePoint(i);
    const shr::Vec2d& to = *warp.EnumDestinationPoint(i);
    WriteNumbers(writer, "warp_pt", {from.x, from.y, to.x, to.y});
  }
}

/// Runs what may raise failures of parts, which come out as syntax errors of the file.
template <class Work>
void Guarded(const ConfigFileReader& reader, Work work) {
  try {
    work();
  } catch (const shr::Exception& e) {
    if (e.Code() == ErrSyntax) throw;
    ORV_FAIL_AT(OrvSite(__LINE__), ErrSyntax, "%s(%d):  %s\n", reader.FileName(), reader.Line(), e.Message());
  }
}

}  // namespace

/// Reaches the private halves of both definitions.
struct SystemEntry {
  // The texts stand before the parts, the others behind them.
  template <class Walker, class Self>
  static void WalkHead(Walker& w, Self& d) {
    w.Text("legacyname", d.m_LegacyName, !d.m_LegacyName.empty());
    w.Text("token", d.m_Token);
    w.Text("name", d.m_Name);
  }
  template <class Walker, class Self>
  static void WalkTail(Walker& w, Self& d) {
    w.Int("posc", d.m_POSC, d.m_POSC != 0);
    w.Int("usgs", d.m_USGS, d.m_USGS != 0);
    w.Text("comment", d.m_Comment, !d.m_Comment.empty());
  }

  static void Read(ORVDef& d, ConfigFileReader& reader) {
    KnownDatum knownDatum;              // when it is set, pieces do not count
    std::unique_ptr<DatumDraft> datum;  // few entries have one
    auto projection = std::make_unique<ProjectionDef>();
    WarpDraft warp;
    bool seenDatum = false, seenProjection = false, seenWarp = false;
    const ErrorSite site = OrvSite(__LINE__);
    const bool complete =
        ReadEntryBody(reader, kEntryTexts, site, [&](std::string_view key, std::string_view value) {
          KeyReader keys(key, value, reader, site);
          const auto takes = [&keys](auto walk) {
            const size_t before = keys.Taken();
            walk();
            return keys.Taken() > before;
          };
          WalkHead(keys, d);
          Guarded(reader, [&] {
            seenWarp |= takes([&] { ReadWarp(keys, warp); });
            seenDatum |= takes([&] {
              WalkDatumReference(keys, "", knownDatum, false);
              if (keys.BeginsWith("datum_")) {  // one of WalkDatum's
                if (knownDatum) datum = std::make_unique<DatumDraft>(*std::exchange(knownDatum, nullptr));
                if (!datum) datum = std::make_unique<DatumDraft>();
                WalkDatum(keys, *datum, false);
              }
            });
            seenProjection |= takes([&] { WalkProjection(keys, projection->m_Parameters); });
          });
          WalkTail(keys, d);
        });
    if (!complete) return;
    Guarded(reader, [&] {
      if (knownDatum) {
        SharedParts::SetDatum(d, std::move(knownDatum));
      } else if (seenDatum) {
        const DatumDef made = (datum ? *datum : DatumDraft()).Make();
        d.SetDatum(&made);
      }
      if (seenProjection) {
        projection->SetParameters(projection->GetParameters());  // for the rules of the setter
        SharedParts::SetProjection(d, std::move(projection));
      }
      if (seenWarp) {
        const WarpDef made = warp.Make();
        d.SetWarp(&made);
      }
    });
  }

  static void Write(const ORVDef& d, ConfigFileWriter& writer) {
    KeyWriter keys(writer);
    WalkHead(keys, d);
    if (d.m_pWarp) WriteWarp(keys, writer, *d.m_pWarp);
    if (d.m_pDatum) {
      DatumDraft datum(*d.m_pDatum);
      const bool known = IsKnown(*d.m_pDatum);
      WalkDatumReference(keys, datum.token, d.m_pDatum, known);
      WalkDatum(keys, datum, known);
    }
    if (d.m_pProjection) {
      ProjectionParameters projection = *d.m_pProjection->GetParameters();
      WalkProjection(keys, projection);
    }
    WalkTail(keys, d);
    writer.Write("}\n");
  }

  static double GetScale(const UCSDef& d) { return d.m_Scale; }
  static void SetScale(UCSDef& d, double scale) { d.SetScale(scale); }

  template <class Walker, class Self>
  static void WalkLocal(Walker& w, Self& d) {
    w.Text("token", d.m_Token);
    w.Text("name", d.m_Name);
    w.Derived("scale", kParameter, d, &GetScale, &SetScale);
    w.Number("xorg", kParameter, d.m_XOrg);
    w.Number("yorg", kParameter, d.m_YOrg);
  }

  static void Read(UCSDef& d, ConfigFileReader& reader) {
    const ErrorSite site = {"UCSDef", __LINE__};
    ReadEntryBody(reader, kEntryTexts, site, [&](std::string_view key, std::string_view value) {
      KeyReader keys(key, value, reader, site);
      // Deliberate: a negative scale raises the setter's own failure, without file and line.
      WalkLocal(keys, d);
    });
  }

  static void Write(const UCSDef& d, ConfigFileWriter& writer) {
    writer.Write("   type=UNREF\n");
    KeyWriter keys(writer);
    WalkLocal(keys, d);
    writer.Write("}\n");
  }
};

}  // namespace orv::internal

namespace orv {

void ORVDef::ReadConfigEntry(ConfigFileReader* reader) { internal::SystemEntry::Read(*this, *reader); }
void ORVDef::WriteConfigEntry(ConfigFileWriter* writer) const {
  internal::SystemEntry::Write(*this, *writer);
}
void UCSDef::ReadConfigEntry(ConfigFileReader* reader) { internal::SystemEntry::Read(*this, *reader); }
void UCSDef::WriteConfigEntry(ConfigFileWriter* writer) const {
  internal::SystemEntry::Write(*this, *writer);
}

}  // namespace orv
