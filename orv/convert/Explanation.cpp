#include "orv/convert/Explanation.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "orv/convert/internal/CommentFields.h"
#include "orv/convert/internal/DatumSteps.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Exception.h"
#include "orv/system/ORVDef.h"
#include "orv/system/internal/Georeferenced.h"
#include "orv/warp/WarpDef.h"

namespace orv {

namespace {

using internal::EmptyIfNull;
using internal::Georeferenced;

ExplainedName NameOf(const CSDef& system) { return {system.GetToken(), system.GetName()}; }
ExplainedName NameOf(const DatumDef& datum) {
  return {EmptyIfNull(datum.GetToken()), EmptyIfNull(datum.GetName())};
}

ExplainedValue Number(const char* name, double number) { return {name, true, number, ""}; }
ExplainedValue Text(const char* name, const std::string& text) { return {name, false, 0.0, text}; }

std::string EllipsoidText(const EllipsoidDef& ellipsoid) {
  const char* const name = ellipsoid.GetName();
  return name && *name != '\0' ? name : EmptyIfNull(ellipsoid.GetToken());
}

/// The first field of a comment is the operation, others begin with their key.
StatedQuality StatedIn(const char* comment) {
  StatedQuality stated;
  bool first = true;
  for (const std::string_view field : internal::CommentFields(comment ? comment : "")) {
    constexpr std::string_view kArea = "area: ", kAccuracy = "accuracy: ";
    if (field.substr(0, kArea.size()) == kArea) {
      stated.area = field.substr(kArea.size());
    } else if (field.substr(0, kAccuracy.size()) == kAccuracy) {
      stated.accuracy = field.substr(kAccuracy.size());
    } else if (first) {
      stated.operation = field;
    }
    first = false;
  }
  return stated;
}

/// Metres; infinity when none is stated.
double AccuracyOf(const StatedQuality& stated) {
  size_t used = 0;
  const double metres = internal::ReadDecimal(stated.accuracy, &used);
  return used > 0 ? metres : std::numeric_limits<double>::infinity();
}

bool NeedsGrids(DatumMethod method) { return method == DatumMethodNADCON || method == DatumMethodNTV2; }

std::vector<ExplainedValue> ParametersOf(const DatumDef& datum) {
  std::vector<ExplainedValue> values;
  for (size_t i = 0; i < datum.NumParameters(); ++i) {
    const DatumParameterID id = datum.EnumParameter(i);
    const char* const name = DatumDef::ParameterShortName(id);
    if (id == DatumParameterIDMethod || id == DatumParameterIDTarget) continue;
    if (id == DatumParameterIDEllipsoid) {
      values.push_back(Text(name, EllipsoidText(*datum.GetEllipsoid())));
    } else if (id == DatumParameterIDEquation) {
      values.push_back(Text(name, EmptyIfNull(DatumDef::MRETypeToName(datum.GetParameters()->mreType))));
    } else {
      values.push_back(Number(name, datum.GetParameter(id)));
    }
  }
  return values;
}

std::vector<ExplainedValue> ParametersOf(const ProjectionDef& projection) {
  std::vector<ExplainedValue> values;
  for (size_t i = 0; i < projection.NumParameters(); ++i) {
    const ProjectionParameterID id = projection.EnumParameter(i);
    const char* const name = ProjectionDef::ParameterShortName(id);
    if (id == ProjectionParameterIDMethod) continue;
    if (id == ProjectionParameterIDEllipsoid) {
      values.push_back(Text(name, EllipsoidText(projection.GetParameters()->ellipsoid)));
    } else {
      values.push_back(Number(name, projection.GetParameter(id)));
    }
  }
  return values;
}

// ---- the datum stage -------------------------------------------------------------------------------------

class DatumStage {
 public:
  DatumStage(const DatumDef& from, const DatumDef& to) : m_From(from), m_To(to), m_Grids(ORVListGrids()) {}

  std::vector<ExplainedStep> Steps() const {
    std::vector<ExplainedStep> steps;
    for (const DatumStep& planned : internal::PlanDatumSteps(m_From, m_To)) {
      ExplainedStep step;
      if (planned.direction == DatumStep::Nothing) {
        step.direction = "none";
        steps.push_back(step);
        continue;
      }
      const bool forward = planned.direction == DatumStep::Forward;
      step.method = EmptyIfNull(DatumDef::MethodToName(planned.datum.GetMethod()));
      step.direction = forward ? "forward" : "backward";
      step.from = NameOf(forward ? planned.datum : planned.target);
      step.to = NameOf(forward ? planned.target : planned.datum);
      step.parameters = ParametersOf(planned.datum);
      step.stated = StatedIn(planned.datum.GetComment());
      step.needsGrids = NeedsGrids(planned.datum.GetMethod());
      if (step.needsGrids) step.grids = GridsOf(planned.datum.GetMethod());
      steps.push_back(step);
    }
    // Where nothing is done, a datum counts as the one that the next step begins with.
    for (size_t i = 0; i < steps.size(); ++i) {
      if (steps[i].direction != "none") continue;
      steps[i].from = i > 0 ? steps[i - 1].to : NameOf(m_From);
      steps[i].to = i + 1 < steps.size() ? steps[i + 1].from : NameOf(m_To);
    }
    return steps;
  }

  /// Appends what else there is for one of the datums.
  void AddNotTaken(bool source, std::vector<RouteNotTaken>& notTaken) const {
    const DatumDef& mine = source ? m_From : m_To;
    if (mine.GetPOSCNumber() == 0) return;
    const double accuracy = AccuracyOf(StatedIn(mine.GetComment()));
    const DatumList& known = ORVKnownDatumsList;
    std::vector<std::pair<double, RouteNotTaken>> found;  // by rank
    for (int index = known.First(); index <= known.Last(); ++index) {
      const DatumDef& other = *known.Enum(index);
      if (!IsWayOf(other, mine) || other.IsUnknown() || other.CompareParameters(&mine)) continue;
      RouteNotTaken route;
      route.side = source ? "source" : "target";
      route.datum = NameOf(other);
      route.method = EmptyIfNull(DatumDef::MethodToName(other.GetMethod()));
      route.stated = StatedIn(other.GetComment());
      const bool grids = NeedsGrids(other.GetMethod());
      const double its = AccuracyOf(route.stated);
      if (!grids && other.GetMethod() != DatumMethodMRE && !(its < accuracy)) continue;
      route.reason = ReasonFor(other, source);
      found.emplace_back(grids ? -1.0 : its, std::move(route));
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& [rank, route] : found) notTaken.push_back(std::move(route));
  }

 private:
  /// By its POSC number, or by the number at the end of its token, as in "ORV:NTV2-6267".
  static bool IsWayOf(const DatumDef& other, const DatumDef& mine) {
    if (other.GetPOSCNumber() != 0) return other.GetPOSCNumber() == mine.GetPOSCNumber();
    const std::string token = EmptyIfNull(other.GetToken());
    const size_t dash = token.rfind('-');
    return dash != std::string::npos && token.substr(dash + 1) == std::to_string(mine.GetPOSCNumber());
  }

  const GridSource& GridsOf(DatumMethod method) const {
    return *std::find_if(m_Grids.begin(), m_Grids.end(),
                         [&](const GridSource& row) { return row.method == method; });
  }

  std::string ReasonFor(const DatumDef& other, bool source) const {
    try {
      internal::PlanDatumSteps(source ? other : m_From, source ? m_To : other);
    } catch (const shr::Exception&) {
      const bool oneWay = other.GetMethod() == DatumMethodMRE || other.GetMethod() == DatumMethodNTV2;
      return oneWay && !source ? "no route leads to it: this method never runs backward"
                               : "no route leads there";
    }
    if (NeedsGrids(other.GetMethod())) {
      const GridSource& grids = GridsOf(other.GetMethod());
      if (!grids.problem.empty()) return grids.problem;
      if (!grids.Found()) {
        std::string folders;
        for (const std::string& folder : grids.folders) folders += (folders.empty() ? "" : "; ") + folder;
        return (grids.wanted.empty() ? "no file is set" : grids.wanted + ", not found in: " + folders);
      }
      return "the definition names another way; the grids are in " + grids.folder;
    }
    return "the definition names another way";
  }

  const DatumDef& m_From;
  const DatumDef& m_To;
  std::vector<GridSource> m_Grids;
};

/// Says of two datums that count as one that they do, and what is stated of them.
void NoteOneDatum(const DatumDef* from, const DatumDef* to, std::vector<std::string>& notes) {
  if (!from || !to) return;
  const auto told = [](const DatumDef& datum) {
    const ExplainedName name = NameOf(datum);
    const StatedQuality stated = StatedIn(datum.GetComment());
    std::string text = name.name.empty() ? "a datum without a name" : name.name;
    std::string more = name.token;
    for (const auto& [key, value] :
         {std::pair("", stated.operation), std::pair("accuracy: ", stated.accuracy)}) {
      if (!value.empty()) more += (more.empty() ? "" : "; ") + std::string(key) + value;
    }
    return more.empty() ? text : text + " (" + more + ")";
  };
  const std::string here = told(*from), there = told(*to);
  if (here == there) return;
  notes.push_back("The datums count as one, nothing is shifted between them: " + here + " and " + there +
                  ".");
}

}  // namespace

Explanation Conversion::Explain() const {
  Explanation result;
  const ORVDef* const source = Georeferenced(From());
  const ORVDef* const dest = Georeferenced(To());
  result.from = NameOf(From());
  result.to = NameOf(To());
  bool datum = false;
  for (const ConversionStage kind : Stages()) {
    ExplainedStage stage;
    stage.stage = kind;
    if (kind == ConversionStageSourceProjection || kind == ConversionStageDestProjection) {
      const ProjectionDef& projection =
          *(kind == ConversionStageSourceProjection ? source : dest)->GetProjection();
      stage.method = EmptyIfNull(ProjectionDef::MethodToName(projection.GetMethod()));
      stage.parameters = ParametersOf(projection);
    } else if (kind == ConversionStageDatum) {
      const DatumStage datums(*source->GetDatum(), *dest->GetDatum());
      stage.steps = datums.Steps();
      datums.AddNotTaken(true, result.notTaken);
      datums.AddNotTaken(false, result.notTaken);
      datum = true;
    } else if (kind == ConversionStageDestWarp) {
      stage.method = EmptyIfNull(To().GetWarp()->MethodName());
    }
    result.stages.push_back(std::move(stage));
  }
  if (source && dest && !datum) NoteOneDatum(source->GetDatum(), dest->GetDatum(), result.notes);
  const bool bothProjected =
      source && dest && source->HasProjection(false, true) && dest->HasProjection(false, true);
  if (bothProjected && source->GetProjection()->Compare(*dest->GetProjection(), nullptr)) {
    result.notes.push_back(
        datum
            ? "The projections are equal and the datums are not: points go through longitude and latitude, where a "
              "single transformer would shift projected numbers."
            : "The projections are equal and so are the datums: neither is computed.");
  }
  return result;
}

bool Explanation::IsReady() const {
  for (const ExplainedStage& stage : stages) {
    for (const ExplainedStep& step : stage.steps) {
      if (step.needsGrids && !step.grids.Found()) return false;
    }
  }
  return true;
}

}  // namespace orv
