// UCSDef.h: a user's local coordinate system.
#pragma once

#include <cstddef>
#include <string>

#include "orv/core/Export.h"
#include "orv/shared/Vec2d.h"
#include "orv/system/CSDef.h"
#include "orv/warp/WarpDef.h"

namespace orv {

namespace internal {
struct BlockAccess;
struct SystemEntry;
}  // namespace internal

/// A local system, tied to nothing on the earth: a scale, an origin and a warp.  A copyable value.
///
/// Failures carry the unit "UCSDef".
class ORV_API UCSDef : public CSDef {
 public:
  /// Scale 1, origin (0, 0), no warp, empty texts.
  UCSDef();
  /// The same, then SetScale, SetOrigin and SetWarp.  A negative scale ends construction.
  UCSDef(double scale, double x, double y, const WarpDef* warp);
  UCSDef(double scale, shr::Vec2d& origin, const WarpDef* warp);
  UCSDef(const UCSDef& other);
  UCSDef& operator=(const UCSDef& other);
  ~UCSDef() override;

  /// Items: Token, Name, Comment (strings), Scale, XOrg, YOrg (one double each) and the block "Georef".
  /// Values are stored as they are; only Check judges them.  Every fault of the block raises 1026 "Corrupt
  /// data encountered in encoded coordinate system."; values and the warp raise their own failures.
  void DecodeFromText(const std::string& data, size_t* offset) override;
  UCSDef* Clone() const override;

  bool Check() const override;
  /// "Scale must not be negative." or "One or more warping parameters not valid.".
  bool Check(std::string& why) const override;

  /// Two local systems differ by their warps only; scale and origin are never compared (deliberate).  With
  /// `ignoreWarp` all are equal.  Explanations: "First system has warp and second system doesn't.", "Second
  /// system has warp and first system doesn't.", "Warp parameters are different.".
  bool Compare(const CSDef& other, bool ignoreWarp, std::string* why) const override;

  /// Copies the warp without checking it; null flushes the one held.
  void SetWarp(const WarpDef* warp) override;
  /// Never null; method 0 means that there is no warp.
  const WarpDef* GetWarp() const override;
  bool HasWarp() const override;

  /// The block "UCSDef": Token, Name, Comment (s, when not empty), Scale, XOrg, YOrg (f) and, if there is a
  /// warp, its block.
  void EncodeToText(std::string& out) const override;
  /// Raises 1035 "Previously serialized unreferenced coordinate system (UCS) data is corrupt or has an
  /// unrecognized version.".
  void Serialize(shr::ISerialize& archive) override;
  void DebugDump(std::string& text, size_t indent) const override;

  /// Factor from the system's units to the destination's.
  double GetScale() const;
  /// Raises 1032 "Scale parameter must not be negative." below 0 (NaN passes) and keeps the old scale.
  void SetScale(double scale);

  void GetOrigin(double& x, double& y) const;
  void GetOrigin(shr::Vec2d& origin) const;
  void SetOrigin(double x, double y);
  void SetOrigin(const shr::Vec2d& origin);

  /// Scale 1, origin (0, 0).  Deliberate: the texts and the warp stay.
  void Flush();
  void CopyAll(const UCSDef& other);

 protected:
  void ReadConfigEntry(ConfigFileReader* reader) override;
  void WriteConfigEntry(ConfigFileWriter* writer) const override;

 private:
  friend struct internal::BlockAccess;
  friend struct internal::SystemEntry;

  template <class Walker, class Self>
  static void Fields(Walker& w, Self& d);
  void DecodeBlock(const std::string& text, size_t* at);

  double m_Scale = 1.0;
  double m_XOrg = 0.0;
  double m_YOrg = 0.0;
  WarpDef m_Warp;
};

}  // namespace orv
