// orv latlon: angles from text to decimal degrees and back.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "orv/convert/internal/JsonText.h"
#include "orv/tables/LatLonText.h"
#include "tools/orv/Command.h"
#include "tools/orv/NumberText.h"

namespace orv::tool {

namespace {

const char* const kLatLonHelp =
    "An angle is a number, or degrees (d, D, the degree sign or --degree behind them), minutes (' or m) and seconds\n"
    "(\" or s), with a sign in front or a hemisphere letter behind: -9.5, 9d30mW, 52d31'12\"N.  S and W make it negative.\n"
    "Fields are not rounded into each other: 59.9999999 with --dms and two decimals is 59d59m60.00s.\n"
    "With --json: an array of objects with text (as it was given), degrees and written; the latter two are null for what\n"
    "is not an angle, which makes the exit status 1.";

// The bits of DegreesToLatLon.
enum Flag : int {
  FlagDecimal = 0x0010,
  FlagMinus = 0x0020,
  FlagPlus = 0x0040,
  FlagBlank = 0x0080,
  FlagMinutes = 0x0100,
  FlagSpaced = 0x0200,
  FlagLetter = 0x1000,
  FlagLatitude = 0x2000,
  FlagPadded = 0x4000
};

struct LatLonOptions {
  std::vector<std::string> values;
  bool seconds = false;
  bool minutes = false;
  int decimals = -1;
  std::string letter;
  std::string positive = "none";
  bool spaced = false;
  bool padded = false;
  std::string degree = "d", minute = "m", second = "s";
  std::string flags;
  bool json = false;
};

/// "0x1102" or "4354".
int FlagsOf(const std::string& text) {
  try {
    size_t used = 0;
    const int flags = std::stoi(text, &used, 0);
    if (used == text.size() && flags >= 0) return flags;
  } catch (const std::exception&) {
  }
  throw UsageError(fmt::format("--flags: '{}' is not a number such as 0x1102", Excerpt(text)));
}

int FlagsOf(const LatLonOptions& o) {
  if (!o.flags.empty()) return FlagsOf(o.flags);
  const bool decimal = !o.seconds && !o.minutes;
  int flags = o.decimals >= 0 ? o.decimals : decimal ? 9 : o.minutes ? 4 : 2;
  if (decimal) flags |= FlagDecimal;
  if (o.minutes) flags |= FlagMinutes;
  flags |= o.letter.empty() ? FlagMinus : FlagLetter;
  if (o.letter == "lat") flags |= FlagLatitude;
  if (o.positive == "plus") flags |= FlagPlus;
  if (o.positive == "blank") flags |= FlagBlank;
  if (o.spaced) flags |= FlagSpaced;
  if (o.padded) flags |= FlagPadded;
  return flags;
}

char SymbolOf(const char* option, const std::string& text) {
  if (text.size() != 1) throw UsageError(fmt::format("{}: '{}' is not one character", option, Excerpt(text)));
  return text[0];
}

int RunLatLon(const LatLonOptions& o) {
  const int flags = FlagsOf(o);
  const char degree = SymbolOf("--degree", o.degree);
  const char minute = SymbolOf("--minute", o.minute);
  const char second = SymbolOf("--second", o.second);
  int status = ExitAllDone;
  internal::JsonText json;
  json.BeginArray();
  for (const std::string& text : o.values) {
    double value = 0.0;
    if (!ParseAngle(text, value) && !LatLonToDegrees(text.c_str(), &value, degree)) {
      Report(fmt::format("'{}' is not an angle", Excerpt(text)));
      json.BeginObject().Key("text").Text(text).Key("degrees").Null().Key("written").Null().EndObject();
      if (!o.json) WriteOutput("\n");
      status = ExitSomeLost;
      continue;
    }
    std::array<char, 512> out{};
    if (!DegreesToLatLon(out.data(), value, flags, degree, minute, second)) {
      throw UsageError("the flags 0x40 (plus) and 0x80 (blank) exclude each other");
    }
    json.BeginObject().Key("text").Text(text).Key("degrees").Number(value);
    json.Key("written").Text(out.data()).EndObject();
    if (!o.json) WriteOutput(std::string(out.data()) + "\n");
  }
  if (o.json) WriteOutput(json.EndArray().Finish());
  return status;
}

}  // namespace

void AddLatLonCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("latlon", "Angles from text to decimal degrees and back, one on a line");
  const auto o = std::make_shared<LatLonOptions>();
  command->add_option("value", o->values, "Angles; behind -- when one begins with \"-.\"")
      ->type_name("VALUE...")
      ->required();
  auto* const seconds = command->add_flag("--dms", o->seconds, "Degrees, minutes and seconds");
  auto* const minutes =
      command->add_flag("--dm", o->minutes, "Degrees and decimal minutes")->excludes(seconds);
  auto* const decimals = command
                             ->add_option("--decimals,-p", o->decimals,
                                          "Decimals of the last field; 9, 4 with --dm, 2 with --dms")
                             ->check(CLI::Range(0, 15));
  auto* const letter = command->add_option("--letter", o->letter, "Hemisphere letter instead of a minus sign")
                           ->check(CLI::IsMember({"lat", "lon"}));
  auto* const positive =
      command->add_option("--positive", o->positive, "What stands before values of 0 and more")
          ->check(CLI::IsMember({"none", "plus", "blank"}))
          ->capture_default_str();
  auto* const spaced = command->add_flag("--spaced", o->spaced, "A blank between the fields");
  auto* const padded = command->add_flag("--padded", o->padded, "Zeros in front of minutes and seconds");
  command->add_option("--degree", o->degree, "Symbol behind the degrees, also read")->capture_default_str();
  command->add_option("--minute", o->minute, "Symbol behind the minutes")->capture_default_str();
  command->add_option("--second", o->second, "Symbol behind the seconds")->capture_default_str();
  auto* const flags =
      command
          ->add_option("--flags", o->flags, "The flags of DegreesToLatLon as a number, instead of all above")
          ->type_name("NUMBER");
  for (CLI::Option* const other : {seconds, minutes, decimals, letter, positive, spaced, padded})
    flags->excludes(other);
  command->add_flag("--json", o->json, "As JSON");
  command->footer(kLatLonHelp);
  command->callback([o, &status] { status = RunLatLon(*o); });
}

}  // namespace orv::tool
