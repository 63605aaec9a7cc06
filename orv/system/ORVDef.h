// ORVDef.h: a georeferenced coordinate system.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "orv/core/Export.h"
#include "orv/system/CSDef.h"

namespace orv {

class DatumDef;
class ProjectionDef;

namespace internal {
struct BlockAccess;
struct SharedParts;
struct SystemEntry;
}  // namespace internal

/// A georeferenced system: an optional datum, an optional projection (with its ellipsoid) and an optional
/// warp that is applied behind the projection.  A copyable value that owns copies of its parts.
///
/// Failures carry the unit "ORVDef".
class ORV_API ORVDef : public CSDef {
 public:
  /// No parts, empty texts, codes 0.
  ORVDef();
  /// The same, then SetDatum, SetProjection and SetWarp in this order; each may raise.
  ORVDef(const DatumDef* datum, const ProjectionDef* projection, const WarpDef* warp);
  ORVDef(const ORVDef& other);
  ORVDef& operator=(const ORVDef& other);
  ~ORVDef() override;

  /// Items: Token, Name, Comment (strings) and the blocks "Projection", "Datum" and "Georef", each of which
  /// makes its part when there is none and decodes into it.  Values are stored as they are; only Check judges
  /// them.
  ///
  /// Raised, all 1026: behind "Corrupt coordinate system data.  ": "Malformed or missing header.", "Expected
  /// BLOCKBEGIN.", "Expected ORVDef block.", "Expected end of block."; without it: "Unexpected end of encoded
  /// data." when the text ends inside the block, "Unexpected end of encoded coordinate system data." when an
  /// item in it has no readable header.  Values and parts that cannot be read raise their own failures.
  void DecodeFromText(const std::string& data, size_t* offset) override;
  ORVDef* Clone() const override;

  bool Check() const override;
  /// First the projection, then the datum, each with its own explanation, then the warp: "One or more
  /// warping/georeference parameters not valid.".
  bool Check(std::string& why) const override;

  /// Compares, in this order: whether both are projected (a method of 1 to 27, so plain longitude and
  /// latitude counts), whether both have a datum with a method, whether both have a warp, the projections,
  /// the datums, the warps.  The explanations:
  /// - "First system is projected and second system isn't."
  /// - "Second system is projected and first system isn't."
  /// - "First system has datum and second system doesn't."
  /// - "Second system has datum and first system doesn't."
  /// - "First system has warp and second system doesn't."
  /// - "Second system has warp and first system doesn't."
  /// - "Projection parameter differs (%s)." with the parameter's long name
  /// - "Datum parameters differ."
  /// - "Warp parameters differ."
  ///
  /// Not symmetric.  Projections are compared with the tolerance of this one's ellipsoid; a missing second
  /// one counts as an empty one.  A datum of method 0 on this side alone differs, on the other side alone it
  /// does not (deliberate).
  bool Compare(const CSDef& other, bool ignoreWarp, std::string* why) const override;

  /// Deletes the warp held; then checks and copies the argument when it is not null.  One that does not pass
  /// WarpDef::Validate (method 0 too) raises 1032 "Warp parameters not valid." and leaves none.
  void SetWarp(const WarpDef* warp) override;
  const WarpDef* GetWarp() const override;
  bool HasWarp() const override;

  /// The block "ORVDef": Token, Name, Comment (s, when not empty), and the blocks of projection, datum and
  /// warp that are held, also when their method is 0.  POSC and USGS codes and the legacy name are not
  /// encoded.
  void EncodeToText(std::string& out) const override;
  /// Raises 1035 "Previously serialized global coordinate system (ORV) data is corrupt or has an unrecognized
  /// version.".
  void Serialize(shr::ISerialize& archive) override;
  void DebugDump(std::string& text, size_t indent) const override;

  /// The part held, or null; valid until it is replaced.
  const DatumDef* GetDatum() const;
  const ProjectionDef* GetProjection() const;
  /// Deletes the part held; then checks and copies the argument when it is not null, which may be the part
  /// held itself.  A failure leaves no part.  Raised, 1032: "Datum parameters not valid." and "Projection
  /// parameters not valid (check failed on parameter '%s')." with the parameter's long name.
  void SetDatum(const DatumDef* datum);
  void SetProjection(const ProjectionDef* projection);

  /// Whether a datum is held; with `requireMethod`, one whose conversion method is not 0.
  bool HasDatum(bool requireMethod) const;
  /// Whether a projection is held; with `requireKnownMethod`, one whose method lies in 1 to 27; with
  /// `excludeGeographic`, one whose method is not 1.
  bool HasProjection(bool requireKnownMethod, bool excludeGeographic) const;

  /// POSC (EPSG) and USGS codes of the system, 0 for none.  Not checked.
  int GetPOSC() const;
  void SetPOSC(int posc);
  int GetUSGS() const;
  void SetUSGS(int usgs);

  /// The name under which older files know the system; null (not "") when there is none.
  const char* GetLegacyName() const;
  void SetLegacyName(const char* name);

  /// Deletes the parts, empties token, name and legacy name and zeroes the codes.  Deliberate: the comment
  /// stays.
  void Flush();
  /// Everything of the other system, parts and comment included; parts are copied as they are, valid or not.
  void CopyAll(const ORVDef& other);

 protected:
  void ReadConfigEntry(ConfigFileReader* reader) override;
  void WriteConfigEntry(ConfigFileWriter* writer) const override;

 private:
  friend struct internal::BlockAccess;
  friend struct internal::SharedParts;
  friend struct internal::SystemEntry;

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d);
  void DecodeBlock(const std::string& text, size_t* at);
  void TakeProjection(std::unique_ptr<ProjectionDef> projection);
  const char* FirstDifference(const ORVDef& other, bool ignoreWarp, std::string& room) const;

  std::unique_ptr<ProjectionDef> m_pProjection;
  std::shared_ptr<const DatumDef> m_pDatum;  // the known systems share those of the known datums
  std::unique_ptr<WarpDef> m_pWarp;
  std::string m_LegacyName;
  int m_POSC = 0;
  int m_USGS = 0;
};

}  // namespace orv
