// GeometryConvert.h: geometries from one system to another, clipped on the way; what GeoJSON and other vector files share.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tools/orv/Conversion.h"
#include "tools/orv/ConvertTally.h"
#include "tools/orv/MapClip.h"

namespace orv::tool {

struct GeoJsonOptions {
  bool bClip = true;
  int decimals = 9;
};

/// Converts geometries, counts their positions, and tells those that are lost; see ConvertGeoJson.
class GeometryConverter {
 public:
  /// @param name  of the file, for messages.
  GeometryConverter(const std::string& name, const CSDef& from, const CSDef& to,
                    const GeoJsonOptions& options, ConvertTally& tally, ClipTally& clipped);
  ~GeometryConverter();
  GeometryConverter(const GeometryConverter&) = delete;
  GeometryConverter& operator=(const GeometryConverter&) = delete;

  /// From the GeoJSON text of a geometry to that of what comes of it; "null" when nothing is left.
  ///
  /// @param feature  its number, for the messages about what is left out.
  /// @param text  valid JSON, see CheckedJson.
  /// Raised: UsageError for what is no geometry.
  std::string Convert(std::string_view text, uint64_t feature);

 private:
  class Impl;
  std::unique_ptr<Impl> m_pImpl;
};

}  // namespace orv::tool
