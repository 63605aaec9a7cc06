// Explanation.h: what a conversion does, told step by step.
#pragma once

#include <string>
#include <vector>

#include "orv/convert/Conversion.h"
#include "orv/convert/GridSearch.h"
#include "orv/core/Export.h"

namespace orv {

/// A parameter of a stage or step: a number, or a text.
struct ExplainedValue {
  std::string name;  ///< the short name: "dx", "Lon0"; units as in the definitions
  bool isNumber = true;
  double number = 0.0;  ///< flags are 0 or 1
  std::string text;
};

/// A system or datum by its names; "" for what it does not have.
struct ExplainedName {
  std::string token;
  std::string name;
};

/// What a datum's comment states, see docs/catalogue.md; "" for what it does not.
struct StatedQuality {
  std::string operation;  ///< "EPSG operation 1173: NAD27 to WGS 84 (4)"
  std::string area;
  std::string accuracy;  ///< "10 m"
};

/// One step of the datum stage.
struct ExplainedStep {
  std::string method;     ///< "Bursa-Wolf" ...
  std::string direction;  ///< "forward", "backward", or "none" where both sides count as one datum
  ExplainedName from;
  ExplainedName to;
  std::vector<ExplainedValue> parameters;
  StatedQuality stated;
  bool needsGrids = false;
  GridSource grids;  ///< of a step that needs some
};

struct ExplainedStage {
  ConversionStage stage = ConversionStageInput;
  std::string method;                      ///< of a projection or warp; "" for the datum stage
  std::vector<ExplainedValue> parameters;  ///< of a projection
  std::vector<ExplainedStep> steps;        ///< of the datum stage
};

/// Another way for one of the two datums that could be better, and why it was not taken.
struct RouteNotTaken {
  std::string side;  ///< "source" or "target"
  ExplainedName datum;
  std::string method;
  StatedQuality stated;
  std::string reason;
};

/// The plan of a Conversion, as Conversion::Explain gives it.
struct ORV_API Explanation {
  ExplainedName from;
  ExplainedName to;
  std::vector<ExplainedStage>
      stages;                      ///< in the order in which they work; none when the points stay as they are
  std::vector<std::string> notes;  ///< what is done otherwise than by a single CSTransformer
  /// Entries of the known datums for the same datum (by its POSC number) that use grids or regression equations, or
  /// whose stated accuracy is better: those with grids first, then by accuracy.  A definition says which way its datum
  /// goes and no file that happens to be there changes that, so none of them is ever taken by itself.
  std::vector<RouteNotTaken> notTaken;

  /// Whether all grids that the steps need are there.
  bool IsReady() const;

  /// Lines for people; ends in a line feed.
  std::string ToText() const;
  /// As docs/schema/explain.schema.json tells.
  std::string ToJson() const;
};

}  // namespace orv
