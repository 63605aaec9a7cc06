// VectorConvert.h: layers of vector files from one system to another, by the module that links GDAL.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "orv/system/CSDef.h"
#include "tools/orv/GeometryConvert.h"

namespace orv::tool {

struct VectorOptions {
  std::string input;
  std::string inputFormat;       ///< GDAL's short name; "" for what GDAL finds
  std::string output;            ///< "" for GeoJSON to standard output
  std::string outputFormat;      ///< GDAL's short name; "" by the output's extension
  const CSDef* pFrom = nullptr;  ///< null: each layer's own system, which is told
  bool bClip = true;
  int decimals = -1;  ///< -1: twelve for geographic and eight for other targets
};

/// Whether a file is named like one that only GDAL reads: .shp, .gpkg ...
bool IsNamedLikeVectorFile(const std::string& name);

/// Converts all layers as ConvertGeoJson does, fields included, into a file that does not exist yet.
///
/// The module liborv_gdal is looked for in the folder that the variable ORV_MODULE_PATH names, or else in lib/orvcore beside the
/// folder of the program.
///
/// Raised: UsageError, among others when the module is missing, a layer has no system and pFrom is null, or GDAL fails.
void ConvertVectorFile(const VectorOptions& options, const CSDef& to, ConvertTally& tally,
                       ClipTally& clipped);

}  // namespace orv::tool
