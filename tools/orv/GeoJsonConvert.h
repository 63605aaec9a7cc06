// GeoJsonConvert.h: the geometries of a GeoJSON text from one system to another.
#pragma once

#include <string>

#include "tools/orv/GeometryConvert.h"

namespace orv::tool {

/// Writes the text to standard output with its geometries converted: those of features, of collections, or a bare one.
/// All else stays byte for byte, but for the members "bbox" and "crs" of a feature, a collection or a bare geometry,
/// which would no longer be true and are left out.  The text and the largest geometry are held in memory.
///
/// Clipping (bClip, when the target has a projection): lines and polygons are brought to longitude and latitude on the
/// target's datum and clipped to what its projection shows; one of which nothing is cut off goes on as without clipping, what
/// is left of another is projected, as by orv clip, and has no heights, which is told.  Else each position is converted by itself
/// and keeps what it holds behind x and y, byte for byte.  A position that has no place is left out and told with the number
/// of its feature, from 1; a line, ring or geometry with too few left is left out as well, and a feature without any has the
/// geometry null.  An empty geometry stays one.
///
/// The tally counts each position as its own conversion would, cut off or not; what the target's projection does not show of a
/// geometry that was cut is no loss but cut off.
///
/// @param name  of the file, for messages.
/// Raised: UsageError when it is no GeoJSON.
void ConvertGeoJson(const std::string& text, const std::string& name, const CSDef& from, const CSDef& to,
                    const GeoJsonOptions& options, ConvertTally& tally, ClipTally& clipped);

}  // namespace orv::tool
