#include "orv/datum/NadconUtility.h"

#include <algorithm>
#include <map>
#include <utility>

#include "orv/core/Platform.h"
#include "orv/core/internal/Text.h"
#include "orv/core/internal/Trace.h"
#include "orv/datum/ZipReader.h"
#include "orv/lanes/Dispatch.h"

namespace orv::internal {

namespace {

constexpr size_t kExtension = 4;  // characters of ".los"

bool IsLos(const std::string& name) {
  return name.size() >= kExtension && EqualIgnoringCase(name.substr(name.size() - kExtension), ".los");
}

struct NameLess {
  bool operator()(const std::string& a, const std::string& b) const {
    return CompareIgnoringCase(a.c_str(), b.c_str()) < 0;
  }
};

std::string LasOf(const std::string& losName) {
  return losName.substr(0, losName.size() - kExtension) + ".las";
}

/// Failures of an archive are no failures of the library: loose grids may follow.
void TraceTrouble(const std::string& name, const ZipReader& zip) {
  if (*zip.Trouble() != '\0') Trace("%s: %s\n", name.c_str(), zip.Trouble());
}

}  // namespace

bool NadconUtility::LoadGrids(const std::string& folder) {
  if (!m_Grids.empty()) return true;
  const std::vector<std::string> files = platform::ListFiles(folder);
  for (const std::string& name : files) {
    if (EqualIgnoringCase(name, "NADGRIDS.ZIP") && LoadZippedGrids(folder + platform::kSeparator + name)) {
      return true;
    }
  }
  LoadLooseGrids(folder, files);
  return !m_Grids.empty();
}

bool NadconUtility::LoadZippedGrids(const std::string& archive) {
  ZipReader zip;
  if (zip.Open(archive) != ZipDone) {
    TraceTrouble(archive, zip);
    return false;
  }
  std::map<std::string, int, NameLess> members;  // the first of each name
  for (int i = 0; i < zip.CountFiles(); ++i) members.emplace(zip.Name(i), i);
  std::vector<unsigned char> los, las;
  for (int i = 0; i < zip.CountFiles(); ++i) {
    if (!IsLos(zip.Name(i))) continue;
    const auto partner = members.find(LasOf(zip.Name(i)));
    if (partner == members.end()) continue;
    const int k = partner->second;
    if (zip.UncompressedSize(k) != zip.UncompressedSize(i)) continue;
    if (zip.ExtractToMemory(i, los) != ZipDone) {
      TraceTrouble(zip.Name(i), zip);
      continue;
    }
    if (zip.ExtractToMemory(k, las) != ZipDone) {
      TraceTrouble(zip.Name(k), zip);
      continue;
    }
    MemoryReader losReader(los.data(), los.size()), lasReader(las.data(), las.size());
    Append(losReader, lasReader, zip.Name(i));
  }
  return !m_Grids.empty();
}

void NadconUtility::LoadLooseGrids(const std::string& folder, const std::vector<std::string>& files) {
  for (const std::string& name : files) {
    if (!IsLos(name)) continue;
    // The files are in this order already.
    const std::string partner = LasOf(name);
    const auto other = std::lower_bound(files.begin(), files.end(), partner, NameLess());
    if (other == files.end() || !EqualIgnoringCase(*other, partner.c_str())) continue;
    FileReader los, las;
    if (los.Open(folder + platform::kSeparator + name) && las.Open(folder + platform::kSeparator + *other)) {
      Append(los, las, name);
    }
  }
}

bool NadconUtility::Append(GenericReader& los, GenericReader& las, const std::string& losName) {
  NadconGrid grid;
  if (!grid.Initialize(los, las)) return false;
  grid.SetName(losName.substr(0, losName.size() - kExtension));
  m_Grids.push_back(std::move(grid));
  m_Cells.clear();
  for (const NadconGrid& loaded : m_Grids) m_Cells.push_back(loaded.Cells());
  return true;
}

const NadconGrid* NadconUtility::GridFor(const shr::Vec2d& point) const {
  const NadconGrid* chosen = nullptr;
  for (const NadconGrid& grid : m_Grids) {
    if (!grid.Contains(point)) continue;
    if (!chosen || (grid.Dx() < chosen->Dx() && grid.Dy() < chosen->Dy())) chosen = &grid;
  }
  return chosen;
}

void NadconUtility::Transform(shr::Vec2d* points, size_t count, bool inverse) const {
  if (count == 0) return;
  const NadconSet set = {m_Cells.data(), m_Cells.size()};
  const lanes::GridKernels<NadconSet>& kernels = lanes::KernelsFor(count).nadcon;
  (inverse ? kernels.inverse : kernels.forward)(set, &points->x, count);
}

}  // namespace orv::internal
