// Conversion.h: points from one system to another, planned safely, with an account of every point.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "orv/convert/ConversionReport.h"
#include "orv/core/Export.h"
#include "orv/shared/Vec2d.h"
#include "orv/system/CSDef.h"

namespace orv {

struct Explanation;

/// A conversion between two systems, ready to use.  A cheap copyable value: copies share what they hold.
///
/// It is a chain of CSTransformers with one stage each: source projection backward, datum, destination projection
/// forward, destination warp, of which only those that are needed are there.  Results are those of one CSTransformer
/// between the two systems, bit for bit, but for four cases in which that one would give numbers that are wrong:
///
/// - Equal projections on different datums.  A CSTransformer lets equal projections cancel each other even then, and
///   shifts projected numbers as if they were degrees; a Conversion goes through longitude and latitude.
/// - Points that are none.  Whatever the stages, a point with the marker, a NaN or an infinity in either coordinate
///   becomes the marker in both.
/// - Datums of which nothing is known.  A CSTransformer takes two datums of method Unknown for one, whichever they are;
///   here they are one only when their numbers agree or, without numbers, their names and ellipsoids, and Create raises
///   otherwise.
/// - Latitudes beyond 90 degrees of a geographic source.  A CSTransformer folds them back over the pole (100 is 80);
///   here the point is lost.
///
/// Points that the library places although the number means little stay placed and are noted in the report:
///
/// - outside all grids: a NADCON or NTv2 step leaves such a point unshifted;
/// - far from the meridian: Transverse Mercator and UTM on an ellipsoid are series, which go on giving numbers where
///   they have long ceased to mean anything.  Noted is a point whose longitude, brought into (-360, 360) as the
///   projector brings it and not into a turn around the meridian, is more than 10 degrees from Lon0: there the
///   forward series is off by up to 0.4 m and the inverse by up to 1.7 m, at 15 degrees by 7 and 31 m, at 30 degrees
///   by kilometres.  Backward the distance is measured from x and y on the sphere of the major radius, since the
///   longitude that the series gives there proves nothing.
///
/// The known lists must not change while a Conversion is made.  It keeps copies of both systems and of its route.
/// Grids are read when a conversion first needs them; one that is missing fails there, see Convert.
///
/// Failures carry the unit "Conversion".
class ORV_API Conversion {
 public:
  class Worker;

  /// Plans a conversion and checks what can be checked without points.
  ///
  /// Raised: what CSTransformer::Initialize raises, with its code, and a text that says which side is concerned, what
  /// was looked for and what would help: "source system 'EPSG:4806' (Monte Mario (Rome)): ...".  A source with a warp
  /// raises 1026 "source system ...: its warp cannot be undone ...".
  static Conversion Create(const CSDef& from, const CSDef& to);
  /// The same of two texts, see ORVReadSystem.  One that cannot be read raises 1032: "source system: unknown system
  /// 'EPSG:3263'; nearest: ...", or "target system: ...".
  static Conversion Create(std::string_view from, std::string_view to);

  Conversion(const Conversion&);
  Conversion(Conversion&&) noexcept;
  Conversion& operator=(const Conversion&);
  Conversion& operator=(Conversion&&) noexcept;
  ~Conversion();

  /// Converts in place.  A lost point becomes the marker (1.7976931348623157e308) in both coordinates.
  ///
  /// Any number of threads may call this on one object at once: each call takes a worker from a pool, which grows to
  /// the largest number of calls at a time.
  ///
  /// Raised: 1032 "Bad parameter to function call." for null points with a count.  Missing grids: 1034, the converter's text
  /// with the places that were searched, before any point is touched.  What else a stage raises leaves the points as far as
  /// they got.
  void Convert(shr::Vec2d* points, size_t count) const;
  /// The same, and adds the points to the report: their first one has the index report.Points().  After a failure the
  /// report holds the points of the blocks that were done.
  void Convert(shr::Vec2d* points, size_t count, ConversionReport& report) const;

  /// A worker of the caller's own, for a thread that converts often: the pool is asked once.
  Worker MakeWorker() const;

  /// The plan, told; see Explanation.h.  Reads grid files for their size and checksum; the known lists must be those that
  /// the conversion was made with.
  Explanation Explain() const;

  /// The stages that points go through, in order; none when they stay as they are.  Never ConversionStageInput.
  std::vector<ConversionStage> Stages() const;

  /// The systems as they were given.
  const CSDef& From() const;
  const CSDef& To() const;
  /// Whether the points of that side are longitudes and latitudes, in whatever unit and from whatever meridian.
  bool FromGeographic() const { return FromAngleUnit() != 0.0; }
  bool ToGeographic() const { return ToAngleUnit() != 0.0; }
  /// Degrees in one unit of that side's longitudes and latitudes: 1, 0.9 for grads, 57.3 for radians; 0 when its points are
  /// none.
  double FromAngleUnit() const;
  double ToAngleUnit() const;

 private:
  struct Shared;
  explicit Conversion(std::shared_ptr<const Shared> shared);

  std::shared_ptr<const Shared> m_pShared;
};

/// The transformers of one thread.  Serves one thread at a time; movable.
class ORV_API Conversion::Worker {
 public:
  Worker(Worker&&) noexcept;
  Worker& operator=(Worker&&) noexcept;
  ~Worker();

  /// As those of Conversion.
  void Convert(shr::Vec2d* points, size_t count);
  void Convert(shr::Vec2d* points, size_t count, ConversionReport& report);

 private:
  friend class Conversion;
  struct Chain;
  Worker(std::shared_ptr<const Shared> shared, std::unique_ptr<Chain> chain);

  std::shared_ptr<const Shared> m_pShared;
  std::unique_ptr<Chain> m_pChain;
};

/// How far points come back from where they went, see ORVRoundTrip.
struct RoundTrip {
  double largest = 0.0;  ///< the largest distance, in the unit of the points; of geographic ones metres
  size_t worst = 0;      ///< index of that point; of no meaning when none came back
  size_t returned = 0;   ///< points that came back at all; the others were lost on the way
};

/// Converts copies of the points there and back and compares, for tests of a definition.
///
/// Distances are plain ones in the plane.  Where the points are geographic they are metres on the sphere of radius
/// 6371000 m, so that a turn of longitude counts as none.
///
/// Raised: what Convert raises.
ORV_API RoundTrip ORVRoundTrip(const Conversion& there, const Conversion& back, const shr::Vec2d* points,
                               size_t count);

}  // namespace orv
