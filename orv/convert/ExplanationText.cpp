// The explanation as text and as JSON.
#include "orv/convert/Explanation.h"
#include "orv/convert/internal/JsonText.h"
#include "orv/core/internal/Text.h"

namespace orv {

namespace {

using internal::Format;
using internal::JsonText;

// ---- text ------------------------------------------------------------------------------------------------

std::string TextOf(const ExplainedName& name) {
  if (name.token.empty() && name.name.empty()) return "(no name)";
  if (name.token.empty()) return name.name;
  return name.name.empty() ? name.token : name.name + " (" + name.token + ")";
}

std::string TextOf(const std::vector<ExplainedValue>& values) {
  std::string text;
  for (const ExplainedValue& value : values) {
    text += (text.empty() ? "" : ", ") + value.name + " ";
    text += value.isNumber ? Format("%.12g", value.number) : value.text;
  }
  return text;
}

std::string TextOf(const StatedQuality& stated) {
  std::string text = stated.operation;
  if (!stated.area.empty()) text += (text.empty() ? "area: " : "; area: ") + stated.area;
  if (!stated.accuracy.empty()) text += (text.empty() ? "accuracy: " : "; accuracy: ") + stated.accuracy;
  return text;
}

void AppendGrids(std::string& text, const GridSource& grids) {
  for (const GridFile& file : grids.files) {
    text += Format("     grid %s, %llu bytes, CRC-32 %08x\n", file.path.c_str(),
                   static_cast<unsigned long long>(file.size), static_cast<unsigned>(file.crc32));
  }
  if (grids.Found()) return;
  text += "     grids missing: ";
  if (!grids.problem.empty()) {
    text += grids.problem + "\n";
    return;
  }
  text += grids.wanted.empty() ? "no file is set\n" : grids.wanted + ", looked for in:\n";
  for (const std::string& folder : grids.folders) text += "       " + folder + "\n";
}

void AppendStep(std::string& text, const ExplainedStep& step) {
  if (step.method.empty()) {
    text += "   - nothing: both count as one datum\n";
    return;
  }
  text += "   - " + step.method + " " + step.direction + ", " + TextOf(step.from) + " to " + TextOf(step.to) +
          "\n";
  if (!step.parameters.empty()) text += "     " + TextOf(step.parameters) + "\n";
  const std::string stated = TextOf(step.stated);
  if (!stated.empty()) text += "     " + stated + "\n";
  if (step.needsGrids) AppendGrids(text, step.grids);
}

// ---- JSON ------------------------------------------------------------------------------------------------

void Add(JsonText& json, const ExplainedName& name) {
  json.BeginObject().Key("token").Text(name.token).Key("name").Text(name.name).EndObject();
}

void Add(JsonText& json, const std::vector<ExplainedValue>& values) {
  json.BeginObject();
  for (const ExplainedValue& value : values) {
    json.Key(value.name);
    value.isNumber ? json.Number(value.number) : json.Text(value.text);
  }
  json.EndObject();
}

/// As three members of the object that is open; null for what is not stated.
void Add(JsonText& json, const StatedQuality& stated) {
  const auto member = [&](const char* key, const std::string& text) {
    json.Key(key);
    text.empty() ? json.Null() : json.Text(text);
  };
  member("operation", stated.operation);
  member("area", stated.area);
  member("accuracy", stated.accuracy);
}

void Add(JsonText& json, const GridSource& grids) {
  json.BeginObject().Key("found").Bool(grids.Found()).Key("wanted").Text(grids.wanted);
  json.Key("folders").BeginArray();
  for (const std::string& folder : grids.folders) json.Text(folder);
  json.EndArray().Key("files").BeginArray();
  for (const GridFile& file : grids.files) {
    json.BeginObject().Key("path").Text(file.path).Key("size").Number(static_cast<size_t>(file.size));
    json.Key("crc32").Text(Format("%08x", static_cast<unsigned>(file.crc32))).EndObject();
  }
  json.EndArray().Key("problem");
  grids.problem.empty() ? json.Null() : json.Text(grids.problem);
  json.EndObject();
}

void Add(JsonText& json, const ExplainedStep& step) {
  json.BeginObject().Key("method").Text(step.method).Key("direction").Text(step.direction);
  json.Key("from");
  Add(json, step.from);
  json.Key("to");
  Add(json, step.to);
  json.Key("parameters");
  Add(json, step.parameters);
  Add(json, step.stated);
  if (step.needsGrids) {
    json.Key("grids");
    Add(json, step.grids);
  }
  json.EndObject();
}

}  // namespace

std::string Explanation::ToText() const {
  std::string text = "from " + TextOf(from) + "\nto   " + TextOf(to) + "\n";
  int number = 0;
  for (const ExplainedStage& stage : stages) {
    text += Format("%d. %s", ++number, ConversionReport::StageName(stage.stage));
    if (stage.stage == ConversionStageSourceProjection) text += " backward";
    if (stage.stage == ConversionStageDestProjection) text += " forward";
    if (!stage.method.empty()) text += ": " + stage.method;
    text += "\n";
    if (!stage.parameters.empty()) text += "   " + TextOf(stage.parameters) + "\n";
    for (const ExplainedStep& step : stage.steps) AppendStep(text, step);
  }
  if (stages.empty()) text += "Nothing is done: points stay as they are.\n";
  for (const std::string& note : notes) text += "Note: " + note + "\n";
  for (const RouteNotTaken& route : notTaken) {
    text += "Not taken: " + TextOf(route.datum) + " by " + route.method + ": " + route.reason + "\n";
    const std::string stated = TextOf(route.stated);
    if (!stated.empty()) text += "   " + stated + "\n";
  }
  return text;
}

std::string Explanation::ToJson() const {
  JsonText json;
  json.BeginObject().Key("from");
  Add(json, from);
  json.Key("to");
  Add(json, to);
  json.Key("ready").Bool(IsReady()).Key("stages").BeginArray();
  for (const ExplainedStage& stage : stages) {
    json.BeginObject().Key("stage").Text(ConversionReport::StageName(stage.stage));
    if (stage.stage == ConversionStageDatum) {
      json.Key("steps").BeginArray();
      for (const ExplainedStep& step : stage.steps) Add(json, step);
      json.EndArray();
    } else {
      json.Key("method").Text(stage.method).Key("parameters");
      Add(json, stage.parameters);
    }
    json.EndObject();
  }
  json.EndArray().Key("notes").BeginArray();
  for (const std::string& note : notes) json.Text(note);
  json.EndArray().Key("notTaken").BeginArray();
  for (const RouteNotTaken& route : notTaken) {
    json.BeginObject().Key("side").Text(route.side).Key("datum");
    Add(json, route.datum);
    json.Key("method").Text(route.method);
    Add(json, route.stated);
    json.Key("reason").Text(route.reason).EndObject();
  }
  return json.EndArray().EndObject().Finish();
}

}  // namespace orv
