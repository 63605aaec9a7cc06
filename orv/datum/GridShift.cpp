#include "orv/datum/GridShift.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <utility>

#include "orv/core/Platform.h"
#include "orv/core/internal/Globals.h"
#include "orv/datum/NTv2Grid.h"
#include "orv/datum/NadconUtility.h"
#include "orv/shared/LocateFile.h"

namespace orv::internal {

namespace {

/// A set of grids that is made at its first use, by one thread while the others wait.
template <class Set>
class Once {
 public:
  /// Null until the set is there.
  const Set* Get() const { return m_Ready.load(std::memory_order_acquire); }

  /// @param load  fills the Set that it is given and returns a status; `done` is the one that makes it stay.
  ///              Not called when the set is there.
  template <class Status, class Load>
  Status Make(Status done, Load load) {
    if (Get()) return done;
    const std::lock_guard<std::mutex> lock(m_Mutex);
    if (Get()) return done;
    auto set = std::make_unique<Set>();
    const Status status = load(*set);
    if (status == done) {
      m_pSet = std::move(set);
      m_Ready.store(m_pSet.get(), std::memory_order_release);
    }
    return status;
  }

  void Release() {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_Ready.store(nullptr, std::memory_order_release);
    m_pSet.reset();
  }

 private:
  std::mutex m_Mutex;
  std::unique_ptr<const Set> m_pSet;
  std::atomic<const Set*> m_Ready{nullptr};
};

std::string FolderOf(const std::string& file) { return std::filesystem::path(file).parent_path().string(); }

bool LoadNadconGrids(NadconUtility& nadcon) {
  for (const std::string& folder : NadconFolders()) {
    if (nadcon.LoadGrids(folder)) return true;
  }
  return false;
}

class LibraryGrids : public GridShift {
 public:
  bool LoadNadcon() override { return m_Nadcon.Make(true, LoadNadconGrids); }
  void ShiftNadcon(shr::Vec2d* points, size_t count, bool inverse) override {
    if (const NadconUtility* const nadcon = m_Nadcon.Get()) nadcon->Transform(points, count, inverse);
  }
  NTv2Status LoadNTv2() override {
    return m_NTv2.Make(NTv2Done, [](NTv2Grid& grid) { return grid.Load(Globals().ntv2GridFile); });
  }
  NTv2Status ShiftNTv2(shr::Vec2d* points, size_t count, bool inverse) override {
    if (const NTv2Grid* const grid = m_NTv2.Get()) grid->Transform(points, count, inverse);
    return NTv2Done;  // what a loaded grid cannot shift it leaves
  }

  const NadconUtility* Nadcon() const { return m_Nadcon.Get(); }
  const NTv2Grid* NTv2() const { return m_NTv2.Get(); }
  void ReleaseNadcon() { m_Nadcon.Release(); }
  void ReleaseNTv2() { m_NTv2.Release(); }

 private:
  Once<NadconUtility> m_Nadcon;
  Once<NTv2Grid> m_NTv2;
};

LibraryGrids& TheGrids() {
  static LibraryGrids grids;
  return grids;
}

}  // namespace

GridShift& Grids() { return TheGrids(); }

const NadconUtility* LoadedNadcon() { return TheGrids().Nadcon(); }
const NTv2Grid* LoadedNTv2() { return TheGrids().NTv2(); }

std::vector<std::string> NadconFolders() {
  const ORVGlobals& globals = Globals();
  if (!globals.nadconGridPath.empty()) return {globals.nadconGridPath};
  std::vector<std::string> folders = {FolderOf(platform::ModulePath())};
  if (!globals.configPath.empty()) folders.push_back(globals.configPath);
  std::string catalogue;
  if (shr::LocateFile("datum.ocf", catalogue)) {
    folders.push_back(FolderOf(catalogue) + platform::kSeparator + "grids");
  }
  return folders;
}

void ReleaseNadconGrids() { TheGrids().ReleaseNadcon(); }
void ReleaseNTv2Grids() { TheGrids().ReleaseNTv2(); }
void ReleaseGrids() {
  ReleaseNadconGrids();
  ReleaseNTv2Grids();
}

}  // namespace orv::internal
