#include "orv/system/CSList.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "orv/core/internal/ConfigEntry.h"
#include "orv/core/internal/Dump.h"
#include "orv/core/internal/ListCore.h"
#include "orv/core/internal/ListKeys.h"
#include "orv/datum/DatumDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"

ORV_UNIT("CSList")

namespace orv {

namespace {

/// A system that the list owns.  Copies hold clones.
class Entry {
 public:
  explicit Entry(std::unique_ptr<CSDef> system)
      : nameHash(HashOf(system->GetName())),
        tokenHash(HashOf(system->GetToken())),
        m_pSystem(std::move(system)),
        m_ShortName(internal::ShortNameOf(m_pSystem->GetName())) {}
  Entry(const Entry& other) : Entry(std::unique_ptr<CSDef>(other.m_pSystem->Clone())) {}
  Entry(Entry&&) noexcept = default;
  Entry& operator=(const Entry& other) {
    *this = Entry(other);
    return *this;
  }
  Entry& operator=(Entry&&) noexcept = default;

  const CSDef& System() const { return *m_pSystem; }
  const char* GetName() const { return m_pSystem->GetName(); }
  const char* GetToken() const { return m_pSystem->GetToken(); }
  const char* GetShortName() const { return m_ShortName; }

  // What these texts are hashed to: each is looked for before the system is added.
  uint32_t nameHash;
  uint32_t tokenHash;

 private:
  static uint32_t HashOf(const char* text) { return static_cast<uint32_t>(internal::HashIgnoringCase(text)); }

  std::unique_ptr<CSDef> m_pSystem;
  const char* m_ShortName;  // within the system's name, which never changes in the list
};

struct NameKey : internal::TextKey<Entry, &Entry::GetName> {
  static uint64_t HashOf(const Entry& entry) { return entry.nameHash; }
};
struct TokenKey : internal::TextKey<Entry, &Entry::GetToken> {
  static uint64_t HashOf(const Entry& entry) { return entry.tokenHash; }
};
using ShortNameKey = internal::TextKey<Entry, &Entry::GetShortName>;

struct SystemTraits;
using Core = internal::ListCore<SystemTraits>;

struct SystemTraits {
  using Info = Entry;
  static constexpr int kFirst = 2, kNone = 0;
  static constexpr const char* kBadIndex = ORV_BAD_PARAMETER;
  using Keys = std::tuple<NameKey, TokenKey, ShortNameKey>;
  static const internal::UniqueRule<Core> kUnique[2];
};

const internal::UniqueRule<Core> SystemTraits::kUnique[2] = {
    {internal::TextTaken<Core, NameKey>, "Can't have two coordinate systems with the same name."},
    {internal::TextTaken<Core, TokenKey>, "Can't have two coordinate systems with the same ID token."},
};

constexpr internal::ListFile kFile = {
    "system.ocf",
    "Can't find coordinate systems configuration file '%s'",
    "Failed opening coordinate systems configuration file '%s'",
    "Failed opening coordinate systems configuration file for writing '%s'",
    ";\n; Brevan coordinate systems configuration file.\n;\n\n",
    ";\n; End coordinate systems configuration file.\n;\n",
    true,
};

// Tokens of the systems that start-up makes from datums.
constexpr char kMadeFromDatum[] = "GEOGCS_";

/// The datum of an ORVDef, or null.
const DatumDef* DatumOf(const CSDef& cs) {
  return cs.Type() == CSTypeORV ? static_cast<const ORVDef&>(cs).GetDatum() : nullptr;
}

/// How many texts of two equal systems agree.
int Score(const CSDef& cs, const CSDef& system) {
  int score = 0;
  if (internal::EqualIgnoringCase(system.GetName(), cs.GetName())) ++score;
  if (internal::EqualIgnoringCase(system.GetToken(), cs.GetToken())) ++score;
  const DatumDef* const asked = DatumOf(cs);
  const DatumDef* const held = DatumOf(system);
  if (asked && held) {
    if (internal::EqualIgnoringCase(held->GetName(), asked->GetName())) ++score;
    if (internal::EqualIgnoringCase(held->GetToken(), asked->GetToken())) ++score;
  }
  return score;
}

/// The kind that an entry begins with, as an empty system; null after a report.  The opening brace has been
/// read; what does not belong to the kind is given back.
std::unique_ptr<CSDef> ReadKind(ConfigFileReader& reader) {
  const char* const ahead = reader.Ahead();
  if (ahead && std::string_view(ahead, 6) == "token=") return std::make_unique<ORVDef>();  // nearly all
  const auto next = [&reader] {
    return reader.Next() ||
           ORV_FAIL(ErrSyntax, internal::kEntryTexts.unexpectedEnd, reader.FileName(), reader.Line());
  };
  if (!next()) return nullptr;
  bool local = false;
  if (internal::EqualIgnoringCase(reader.Token(), "type")) {
    if (!next()) return nullptr;
    if (reader.Token() != "=") {
      ORV_FAIL(ErrSyntax, "%s(%d):  Expected '=' between 'type' and coordinate system type.\n",
               reader.FileName(), reader.Line());
      return nullptr;
    }
    if (!next()) return nullptr;
    local = internal::EqualIgnoringCase(reader.Token(), "unref");
  } else {
    reader.GiveBack();
  }
  if (local) return std::make_unique<UCSDef>();
  return std::make_unique<ORVDef>();
}

}  // namespace

struct CSList::Impl {
  Core core;

  /// Checks a system that is to be added, or to replace the one at `except`; false after a report.
  ///
  /// @param checked  its Check has been passed.
  bool Accepts(const Entry& entry, bool known, int except, bool checked = false) const {
    if (const char* const clash = known ? core.Clash(entry, except) : nullptr) {
      return ORV_FAIL(ErrBadParameter, "%s", clash);
    }
    if (checked) return true;
    std::string why;
    return entry.System().Check(why) ||
           ORV_FAIL(ErrBadParameter, "Coordinate system fails validity check.  %s", why.c_str());
  }
  int Add(Entry&& entry, bool known, bool checked = false) {
    return Accepts(entry, known, Core::kNone, checked) ? core.Append(std::move(entry)) : Core::kNone;
  }
};

CSList::CSList() : m_pImpl(std::make_unique<Impl>()) {}
CSList::CSList(const CSList& other) : m_pImpl(std::make_unique<Impl>(*other.m_pImpl)) {}
CSList& CSList::operator=(const CSList& other) {
  CopyAll(other);
  return *this;
}
CSList::~CSList() = default;
void CSList::CopyAll(const CSList& other) { *m_pImpl = *other.m_pImpl; }
void CSList::Flush() { m_pImpl->core.Clear(); }

int CSList::Count() const { return m_pImpl->core.Count(); }
int CSList::First() const { return m_pImpl->core.First(); }
int CSList::Last() const { return m_pImpl->core.Last(); }

const CSDef* CSList::Enum(int pos) const {
  const Entry* const entry = m_pImpl->core.Get(pos, ORV_SITE);
  return entry ? &entry->System() : nullptr;
}

CSType CSList::EnumType(int pos) const {
  const CSDef* const system = Enum(pos);
  return system ? system->Type() : CSTypeNone;
}

const char* CSList::EnumToken(int pos) const {
  const CSDef* const system = Enum(pos);
  return system ? system->GetToken() : nullptr;
}

const char* CSList::EnumName(int pos) const {
  const CSDef* const system = Enum(pos);
  return system ? system->GetName() : nullptr;
}

int CSList::FindByToken(const char* token) const {
  return internal::FindText<TokenKey>(m_pImpl->core, token);
}

int CSList::FindByName(const char* name) const { return internal::FindText<NameKey>(m_pImpl->core, name); }

int CSList::FindByShortName(const char* name) const {
  return internal::FindText<ShortNameKey>(m_pImpl->core, name);
}

int CSList::FindSystem(const CSDef& cs, bool ignoreWarp, std::vector<int>& positions) const {
  positions.clear();
  for (int pos = First(); pos <= Last(); ++pos) {
    if (cs.Compare(m_pImpl->core.At(pos).System(), ignoreWarp, nullptr)) positions.push_back(pos);
  }
  return static_cast<int>(positions.size());
}

int CSList::FindSystem(const CSDef& cs, bool ignoreWarp, bool firstMatch) const {
  if (firstMatch) {
    return m_pImpl->core.Find(
        [&](const Entry& entry) { return cs.Compare(entry.System(), ignoreWarp, nullptr); });
  }
  std::vector<int> positions;
  FindSystem(cs, ignoreWarp, positions);
  int best = Core::kNone;
  int bestScore = -1;
  for (const int pos : positions) {
    const int score = Score(cs, m_pImpl->core.At(pos).System());
    if (score > bestScore) {
      best = pos;
      bestScore = score;
    }
  }
  return best;
}

int CSList::Add(const CSDef& cs) { return AddOwned(std::unique_ptr<CSDef>(cs.Clone())); }

int CSList::AddOwned(std::unique_ptr<CSDef> system) {
  return m_pImpl->Add(Entry(std::move(system)), this == &ORVKnownSystemsList);
}

bool CSList::Replace(int pos, const CSDef& cs) {
  if (!m_pImpl->core.Get(pos, ORV_SITE)) return false;
  Entry entry(std::unique_ptr<CSDef>(cs.Clone()));
  if (!m_pImpl->Accepts(entry, this == &ORVKnownSystemsList, pos)) return false;
  m_pImpl->core.Replace(pos, std::move(entry));
  return true;
}

bool CSList::Remove(int pos) {
  if (!m_pImpl->core.Get(pos, ORV_SITE)) return false;
  m_pImpl->core.Remove(pos);
  return true;
}

bool CSList::Load(const char* fileName, bool bThrowIfFileMissing) {
  // `fileName` may belong to an entry of this list.
  const std::string name = internal::EmptyIfNull(fileName);
  Flush();
  ConfigFileReader reader;
  if (!internal::OpenListFile(reader, kFile, fileName ? name.c_str() : nullptr, bThrowIfFileMissing,
                              ORV_SITE)) {
    return false;
  }
  const auto complain = [&reader](const char* message) {
    return ORV_FAIL(ErrSyntax, message, reader.FileName(), reader.Line());
  };
  const Core::Batch batch(m_pImpl->core);
  while (reader.Next()) {
    if (reader.Token() != "{") {
      return ORV_FAIL(ErrSyntax, internal::kEntryTexts.expectedBrace, reader.FileName(), reader.Line(),
                      std::string(reader.Token()).c_str());
    }
    std::unique_ptr<CSDef> system = ReadKind(reader);
    if (!system) return false;
    system->ReadConfigEntry(&reader);
    if (*system->GetToken() == '\0') return complain("%s(%d):  No token parameter specified.\n");
    if (*system->GetName() == '\0') return complain("%s(%d):  No name parameter specified.\n");
    // The parts that an entry of an ORVDef describes have been checked when they were set.
    const bool checked = system->Type() == CSTypeORV;
    const bool known = this == &ORVKnownSystemsList;
    if (m_pImpl->Add(Entry(std::move(system)), known, checked) == Core::kNone) return false;
  }
  return Count() > 0 || ORV_FAIL(ErrSyntax, "No coordinate systems in configuration file.");
}

bool CSList::Save(const char* fileName) const {
  ConfigFileWriter writer;
  if (!internal::CreateListFile(writer, kFile, fileName, ORV_SITE)) return false;
  const bool known = this == &ORVKnownSystemsList;
  int number = 0;
  for (const Entry& entry : m_pImpl->core.Entries()) {
    ++number;  // deliberate: counts those that are left out as well
    if (known && std::strncmp(entry.GetToken(), kMadeFromDatum, sizeof kMadeFromDatum - 1) == 0) continue;
    writer.Print("; Entry %d of %d\n", number, Count());
    writer.Write("{\n");
    entry.System().WriteConfigEntry(&writer);  // with its closing brace
  }
  writer.Write(kFile.trailer);
  writer.Close();
  return true;
}

void CSList::DebugDump(std::string& text, size_t indent) const {
  internal::Dump dump(text, indent);
  dump.Line("CSList this=%p:", static_cast<const void*>(this));
  for (int pos = First(); pos <= Last(); ++pos) {
    dump.Line("ENTRY %d", pos);
    m_pImpl->core.At(pos).System().DebugDump(text, indent);
  }
  internal::DumpTextIndex<NameKey>(dump, "IndexByName:", m_pImpl->core);
  internal::DumpTextIndex<TokenKey>(dump, "IndexByToken:", m_pImpl->core);
  internal::DumpTextIndex<ShortNameKey>(dump, "IndexByShortName:", m_pImpl->core);
}

}  // namespace orv
