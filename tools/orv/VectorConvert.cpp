#include "tools/orv/VectorConvert.h"

#include <dlfcn.h>
#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "orv/interop/Interchange.h"
#include "orv/shared/Exception.h"
#include "orv/system/ORVDef.h"
#include "tools/gdal/VectorModule.h"
#include "tools/orv/Command.h"

namespace orv::tool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kModuleName = "liborv_gdal.so";
constexpr std::string_view kExtensions[] = {".shp",    ".gpkg",     ".gml",      ".kml", ".kmz",
                                            ".fgb",    ".tab",      ".mif",      ".dxf", ".gpx",
                                            ".sqlite", ".geojsonl", ".geojsons", ".gdb"};

fs::path ModulePath() {
  if (const char* const folder = std::getenv("ORV_MODULE_PATH"); folder && *folder != '\0')
    return fs::path(folder) / kModuleName;
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  const fs::path installed = program / ORV_MODULE_FOLDER / kModuleName;
  // The build's folders.
  return fs::exists(installed, ignored) ? installed : program.parent_path() / "lib" / "orvcore" / kModuleName;
}

using Convert = int (*)(const OrvVectorJob*, char*, size_t);

Convert LoadModule() {
  const fs::path path = ModulePath();
  std::error_code ignored;
  if (!fs::exists(path, ignored)) {
    throw UsageError(fmt::format(
        "vector files need the module {}, which is not there: build with libgdal-dev installed and "
        "-DORV_GDAL=ON, or make the file GeoJSON first",
        path.string()));
  }
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module) {
    throw UsageError(fmt::format(
        "the module for vector files cannot be loaded: {}; it needs GDAL (Debian's libgdal32)", dlerror()));
  }
  const auto version = reinterpret_cast<int (*)()>(dlsym(module, "orv_vector_version"));
  const auto convert = reinterpret_cast<Convert>(dlsym(module, "orv_vector_convert"));
  if (!version || !convert) throw UsageError(fmt::format("{} is no module for vector files", path.string()));
  if (version() != ORV_VECTOR_VERSION) {
    throw UsageError(fmt::format("{} has version {} and this program needs {}: both must come from one build",
                                 path.string(), version(), ORV_VECTOR_VERSION));
  }
  return convert;
}

/// What the module asks.  No exception leaves a callback: it is kept, and thrown when the module has ended.
class Answers {
 public:
  Answers(const VectorOptions& options, const CSDef& to, ConvertTally& tally, ClipTally& clipped)
      : m_Options(options), m_To(to), m_Tally(tally), m_Clipped(clipped), m_TargetText(TextOf(to)) {}

  static const char* Layer(void* context, const char* name, const char* wkt) {
    auto& self = *static_cast<Answers*>(context);
    return self.Kept([&] {
      self.BeginLayer(name, wkt);
      return self.m_TargetText.c_str();
    });
  }

  static const char* Geometry(void* context, unsigned long long feature, const char* json) {
    auto& self = *static_cast<Answers*>(context);
    return self.Kept([&] {
      self.m_Answer = self.m_Converter->Convert(json, feature);
      return self.m_Answer.c_str();
    });
  }

  void Rethrow() const {
    if (m_Failure) std::rethrow_exception(m_Failure);
  }

 private:
  template <class Answer>
  const char* Kept(const Answer& answer) {
    try {
      return answer();
    } catch (...) {
      m_Failure = std::current_exception();
      return nullptr;
    }
  }

  /// "" for a system that well-known text cannot tell; that is told.
  static std::string TextOf(const CSDef& to) {
    try {
      if (to.Type() == CSTypeORV) return ORVWriteText(static_cast<const ORVDef&>(to), TextDialectWkt2);
      Note("the layers are written without their system: a local system has no well-known text");
    } catch (const shr::Exception& e) {
      std::string why = e.Message();
      if (why.ends_with('.')) why.pop_back();
      Note(fmt::format("the layers are written without their system: {}", why));
    }
    return "";
  }

  void BeginLayer(const std::string& name, const std::string& wkt) {
    if (!m_Options.pFrom) m_pOwn = OwnSystem(name, wkt);
    const CSDef& from = m_Options.pFrom ? *m_Options.pFrom : *m_pOwn;
    m_Converter.emplace(m_Options.input, from, m_To, GeoJsonOptions{m_Options.bClip, DecimalsFor(from)},
                        m_Tally, m_Clipped);
  }

  int DecimalsFor(const CSDef& from) const {
    if (m_Options.decimals >= 0) return m_Options.decimals;
    return Conversion(from, m_To).ToGeographic() ? 12 : 8;
  }

  std::unique_ptr<CSDef> OwnSystem(const std::string& name, const std::string& wkt) const {
    if (wkt.empty()) throw UsageError(fmt::format("layer '{}' does not say its system: give --from", name));
    try {
      std::unique_ptr<ORVDef> system = ORVReadText(wkt);
      const char* const called = system->GetToken() ? system->GetToken() : system->GetName();
      Note(fmt::format("layer '{}': from its own system, {}", name, called ? called : "which has no name"));
      return system;
    } catch (const shr::Exception& e) {
      throw UsageError(
          fmt::format("the system of layer '{}' cannot be used: {} Give --from", name, e.Message()));
    }
  }

  const VectorOptions& m_Options;
  const CSDef& m_To;
  ConvertTally& m_Tally;
  ClipTally& m_Clipped;
  std::string m_TargetText;
  std::unique_ptr<CSDef> m_pOwn;
  std::optional<GeometryConverter> m_Converter;
  std::string m_Answer;
  std::exception_ptr m_Failure;
};

const char* TextOrNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

}  // namespace

bool IsNamedLikeVectorFile(const std::string& name) {
  std::string extension = fs::path(name).extension().string();
  for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return std::find(std::begin(kExtensions), std::end(kExtensions), extension) != std::end(kExtensions);
}

void ConvertVectorFile(const VectorOptions& options, const CSDef& to, ConvertTally& tally,
                       ClipTally& clipped) {
  std::error_code ignored;
  if (!options.output.empty() && fs::exists(options.output, ignored))
    throw UsageError(fmt::format("--output: '{}' is there already", options.output));
  const Convert convert = LoadModule();
  Answers answers(options, to, tally, clipped);
  const bool bToStandard = options.output.empty();
  const std::string format = bToStandard && options.outputFormat.empty() ? "GeoJSON" : options.outputFormat;
  OrvVectorJob job{};
  job.input = options.input == "-" ? "/vsistdin/" : options.input.c_str();
  job.inputFormat = TextOrNull(options.inputFormat);
  job.output = bToStandard ? "/vsistdout/" : options.output.c_str();
  job.outputFormat = TextOrNull(format);
  job.otherTypes = options.bClip ? 1 : 0;
  job.context = &answers;
  job.layer = &Answers::Layer;
  job.geometry = &Answers::Geometry;
  std::array<char, 1024> error{};
  const int status = convert(&job, error.data(), error.size());
  answers.Rethrow();
  if (status != 0) throw UsageError(error.data());
}

}  // namespace orv::tool
