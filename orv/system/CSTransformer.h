// CSTransformer.h: points from one coordinate system to another.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "orv/core/Export.h"
#include "orv/shared/Vec2d.h"

namespace orv {

class CSDef;
class DatumConverter;
class ORVDef;
class Projector;
class WarpTransformer;

/// Carries points from a source system to a destination system.
///
/// Set both systems, call Initialize, then Transform as often as you like.  The stages, each of which sees
/// the whole array: source projection backward, datum conversion, destination projection forward, destination
/// warp forward. Points are x, y; of geographic systems longitude, latitude in degrees.  A point that a stage
/// cannot place is marked (see shr::Vec2d) and the others go on.
///
/// The transformer owns copies of both systems.  Distinct transformers may work on distinct threads, as long
/// as nobody changes the known lists; one transformer serves one thread at a time, for Transform notes what
/// it met.
///
/// Failures carry the unit "CSTransformer".
class ORV_API CSTransformer {
 public:
  CSTransformer();
  /// The same, then SetSource and SetDest.
  CSTransformer(const CSDef* source, const CSDef* dest, bool sourceWarpEnabled, bool destWarpEnabled);
  CSTransformer(const CSTransformer& other);
  CSTransformer& operator=(const CSTransformer& other);
  ~CSTransformer();

  /// Drops the system held on that side and needs Initialize again; then checks and copies the argument when
  /// it is not null, which may be the system held itself.  One that does not pass Check raises 1032 with
  /// Check's own text; there is then no system on that side, and the warp flag keeps its old value.
  ///
  /// @param warpEnabled  whether the system's warp, if it has one, is applied.  A source's warp would have to
  ///                     be undone, which cannot be done: see Transform.
  void SetSource(const CSDef* source, bool warpEnabled);
  void SetDest(const CSDef* dest, bool warpEnabled);
  /// The copies held, or null.
  const CSDef* GetSource() const;
  const CSDef* GetDest() const;
  bool GetSourceWarpEnabled() const;
  bool GetDestWarpEnabled() const;

  /// Whether Initialize has succeeded since the last change.
  bool IsInitialized() const;
  /// Whether the last Transform met or made a point without a value.  Only the projection and datum stages
  /// look: with none of them (equal systems) marked points pass unnoticed.
  bool CheckUnplottableResult() const;

  /// Builds the stages.  A failure leaves the transformer not initialized, with the stages built so far.
  ///
  /// A projection of method 1 (plain longitude and latitude) is no stage, equal datums are none, and two
  /// local systems (UCSDef) have none but the destination's warp: their scales and origins take no part.
  /// Deliberate: equal projections of both systems (in the tolerant sense of
  /// ProjectionDef::CompareParameters, measured on the source) cancel each other even when the datums differ;
  /// the datum stage then works on projected numbers.  (orv::Conversion goes through longitude and latitude in that
  /// case.)
  ///
  /// Raised, in this order (each text begins with "Can't transform coordinates because "):
  /// - 1027 "no source coordinate system was specified."
  /// - 1027 "no target coordinate system was specified."
  /// - 1032, the whole text of the Check that failed, source first
  /// - 1037, the source's warp method is unknown
  /// - 1036, the systems' types differ
  /// - 1039, the source's projection method is unknown
  /// - 1043 and 1044, the method of the source's or the target's datum is unknown (both held, and not equal)
  /// - 1042 and 1041, only the source or only the target has a datum
  /// - 1040, the target's projection method is unknown
  /// - 1038, the target's warp method is unknown
  ///
  /// and what Projector, DatumConverter and WarpTransformer raise themselves.
  void Initialize();

  /// Transforms `count` points from `in` to `out`, which may be the same array or overlap.
  ///
  /// Before Initialize: 1027 "Transform not initialized.  API functions called in improper order.".  A null
  /// array with points to transform: 1032 "Bad parameter to function call.".  With a source warp in use: 1026
  /// "Inverse warp not supported." (deliberate: Initialize accepts it).  The first and the last are raised
  /// for 0 points too; else 0 points transform nothing.  When a stage raises, `out` is left partly
  /// transformed.
  void Transform(const shr::Vec2d* in, shr::Vec2d* out, size_t count) const;
  /// The same; `out` is made as long as `in`, which may be the same vector.
  void Transform(const std::vector<shr::Vec2d>& in, std::vector<shr::Vec2d>& out) const;

  /// No systems, no stages, all flags false.
  void Flush();
  /// Becomes a copy of the other one, initialized when that one is; the unplottable flag starts false.
  void Dup(const CSTransformer& other);

  void DebugDump(std::string& text, size_t indent) const;

 private:
  void DeleteStages();
  void BuildGeoreferencedStages(const ORVDef& source, const ORVDef& dest);
  void BuildDatumStage(const ORVDef& source, const ORVDef& dest);

  std::unique_ptr<CSDef> m_pSource;
  std::unique_ptr<CSDef> m_pDest;
  bool m_bSourceWarp = false;
  bool m_bDestWarp = false;
  bool m_bInitialized = false;

  // The stages, in the order in which they work; null when not needed.
  std::unique_ptr<WarpTransformer> m_pSourceWarp;
  std::unique_ptr<Projector> m_pSourceProjector;
  std::unique_ptr<DatumConverter> m_pDatumConverter;
  std::unique_ptr<Projector> m_pDestProjector;
  std::unique_ptr<WarpTransformer> m_pDestWarp;

  mutable bool m_bHadUnplottables = false;
};

}  // namespace orv
