#include "orv/datum/DatumList.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "orv/core/internal/ConfigEntry.h"
#include "orv/core/internal/Dump.h"
#include "orv/core/internal/ListCore.h"
#include "orv/core/internal/ListKeys.h"
#include "orv/datum/internal/DatumNames.h"
#include "orv/tables/EllipsoidList.h"

ORV_UNIT("DatumList")

namespace orv {

namespace {

constexpr uint32_t kGeogcs = 1;  // flag: the datum has a geographic system of its own

/// A datum, which systems may share, with its flags.
class Entry {
 public:
  Entry(DatumDef def, unsigned long word)
      : flags(static_cast<uint32_t>(word)), m_pDef(std::make_shared<const DatumDef>(std::move(def))) {}

  const DatumDef& Def() const { return *m_pDef; }
  const std::shared_ptr<const DatumDef>& Shared() const { return m_pDef; }
  const char* GetName() const { return m_pDef->GetName(); }
  const char* GetToken() const { return m_pDef->GetToken(); }
  int GetPOSCNumber() const { return m_pDef->GetPOSCNumber(); }

  uint32_t flags;

 private:
  std::shared_ptr<const DatumDef> m_pDef;
};

using NameKey = internal::TextKey<Entry, &Entry::GetName>;
using POSCKey = internal::NumberKey<Entry, &Entry::GetPOSCNumber>;
using TokenKey = internal::TextKey<Entry, &Entry::GetToken>;

struct DatumTraits;
using Core = internal::ListCore<DatumTraits>;

struct DatumTraits {
  using Info = Entry;
  static constexpr int kFirst = 2, kNone = 0;
  static constexpr const char* kBadIndex = ORV_BAD_PARAMETER;
  using Keys = std::tuple<NameKey, TokenKey, POSCKey>;
  static const internal::UniqueRule<Core> kUnique[2];
};

const internal::UniqueRule<Core> DatumTraits::kUnique[2] = {
    {internal::TextTaken<Core, NameKey>, "Can't have two datums with the same name."},
    {internal::TextTaken<Core, TokenKey>, "Can't have two datums with the same ID token."},
};

constexpr internal::ListFile kFile = {
    "datum.ocf",
    "Can't find datum configuration file '%s'",
    "Failed opening datum configuration file '%s'",
    "Failed opening configuration file for writing '%s'",
    ";\n; Brevan horizontal geodetic datum configuration file.\n;\n\n",
    ";\n; End datum configuration file.\n;\n",
    true,
};

// Deliberate: unlike the other lists' these end in no line feed.
constexpr internal::EntryTexts kTexts = {
    "%s(%d): Expected '{', found '%s' at start of entry",
    "%s(%d):  Expected '=' between parameter and value.",
    "%s(%d):  Unexpected end of file.",
};

// A number in this format reads back within 1e-9.
constexpr const char* kNumber = "%24.18f";

}  // namespace

namespace internal {

// A datum's entry in the file.  Values are stored past the setters, so that the list's own complaints, which
// tell file and line, are the ones a caller gets.
struct DatumEntry {
  static bool SetEllipsoid(DatumDef& d, std::string_view token) {
    return ORVKnownEllipsoidsList.FindByToken(std::string(token).c_str(), &d.m_Parameters.ellipsoid) != 0;
  }

  /// Whether the ellipsoid's token alone brings back its dimensions.
  static bool IsKnown(const EllipsoidDef& ellipsoid) {
    EllipsoidDef known;
    return ORVKnownEllipsoidsList.FindByToken(ellipsoid.m_Token.c_str(), &known) != 0 &&
           known.m_Radius == ellipsoid.m_Radius && known.m_Flattening == ellipsoid.m_Flattening;
  }

  template <class Walker, class Self>
  static void Walk(Walker& w, Self& d, bool& geogcs) {
    auto& p = d.m_Parameters;
    const auto uses = [&d](DatumParameterID id) { return kWriting<Walker> && d.UsesParameter(id); };
    w.Text("token", d.m_Token);
    w.Text("name", d.m_Name);
    w.Text("comment", d.m_Comment, !d.m_Comment.empty());
    w.Int("posc", d.m_POSC);
    // A number without a name could not be read back.
    w.Named("special", d.m_Special, kTargetNames, "%s(%d):  Unknown special token for datum '%s'",
            d.m_Special != DatumTargetNone && DatumDef::TargetToName(d.m_Special));
    w.Named("method", p.method, kMethodNames, "%s(%d):  Unknown datum method '%s'");
    w.Named("target", p.target, kTargetNames, "%s(%d):  Unknown target '%s'",
            DatumDef::TargetToName(p.target) != nullptr);
    WalkEllipsoid(w, d);
    w.Number("pmshift", kNumber, p.pmShift, uses(DatumParameterIDPMShift));
    w.Number("dx", kNumber, p.dx, uses(DatumParameterIDdx));
    w.Number("dy", kNumber, p.dy, uses(DatumParameterIDdy));
    w.Number("dz", kNumber, p.dz, uses(DatumParameterIDdz));
    w.Number("rx", kNumber, p.rx, uses(DatumParameterIDrx));
    w.Number("ry", kNumber, p.ry, uses(DatumParameterIDry));
    w.Number("rz", kNumber, p.rz, uses(DatumParameterIDrz));
    w.Number("k", kNumber, p.k, uses(DatumParameterIDK));
    w.Named("mretype", p.mreType, kMRETypeNames, "%s(%d):  Unknown MRE type code '%s'",
            uses(DatumParameterIDEquation) && DatumDef::MRETypeToName(p.mreType));
    w.Flag("prvi", p.nadconPrvi, uses(DatumParameterIDNadconPrvi));
    w.Flag("inverse", p.inverse, false);  // deliberate: read, never written
    w.Flag("geogcs", geogcs);
  }

  // Written for every method: a datum's geographic system takes its ellipsoid whatever the method.
  template <class Walker, class Self>
  static void WalkEllipsoid(Walker& w, Self& d) {
    auto& ellipsoid = d.m_Parameters.ellipsoid;
    const bool any = ellipsoid.m_Radius != 0.0;
    const bool known = kWriting<Walker> && IsKnown(ellipsoid);
    w.Reference("ellipsoid", ellipsoid.m_Token, d, &SetEllipsoid, "%s(%d):  Unknown ellipsoid token '%s'",
                any && known);
    w.Text("ellipsoid_token", ellipsoid.m_Token, any && !known && !ellipsoid.m_Token.empty());
    w.Text("ellipsoid_name", ellipsoid.m_Name, any && !known && !ellipsoid.m_Name.empty());
    w.Number("ellipsoid_radius", "%.4f", ellipsoid.m_Radius, any && !known);
    w.Number("ellipsoid_flat", "%.19f", ellipsoid.m_Flattening, any && !known);
  }
};

}  // namespace internal

struct DatumList::Impl {
  Core core;

  /// Checks an entry that is to be added, or to replace the one at `except`; false after a report.
  bool Accepts(const Entry& entry, bool known, int except) const {
    if (entry.Def().CheckParameters() != DatumParameterIDNone) {
      return ORV_FAIL(ErrBadParameter, "Invalid datum parameters specified.");
    }
    const char* const clash = known ? core.Clash(entry, except) : nullptr;
    return !clash || ORV_FAIL(ErrBadParameter, "%s", clash);
  }

  int Add(const Entry& entry, bool known) {
    return Accepts(entry, known, Core::kNone) ? core.Append(entry) : Core::kNone;
  }

  /// Copies a found entry out.
  int Found(int index, DatumDef* out) const {
    if (out && index != Core::kNone) *out = core.At(index).Def();
    return index;
  }
};

DatumList::DatumList() : m_pImpl(std::make_unique<Impl>()) {}
DatumList::DatumList(const DatumList& other) : m_pImpl(std::make_unique<Impl>(*other.m_pImpl)) {}
DatumList& DatumList::operator=(const DatumList& other) {
  CopyAll(other);
  return *this;
}
DatumList::~DatumList() = default;
void DatumList::CopyAll(const DatumList& other) { *m_pImpl = *other.m_pImpl; }
void DatumList::Flush() { m_pImpl->core.Clear(); }

int DatumList::Count() const { return m_pImpl->core.Count(); }
int DatumList::First() const { return m_pImpl->core.First(); }
int DatumList::Last() const { return m_pImpl->core.Last(); }

const DatumDef* DatumList::Enum(int index) const {
  const Entry* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? &entry->Def() : nullptr;
}

std::shared_ptr<const DatumDef> DatumList::SharedAt(int index) const {
  return m_pImpl->core.At(index).Shared();
}

bool DatumList::Enum(int index, DatumDef& out) const {
  const Entry* const entry = m_pImpl->core.Get(index, ORV_SITE);
  if (entry) out = entry->Def();
  return entry != nullptr;
}

const char* DatumList::EnumName(int index) const {
  const Entry* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? internal::EmptyIfNull(entry->GetName()) : nullptr;
}

bool DatumList::EnumName(int index, std::string& out) const {
  const char* const name = EnumName(index);
  if (name) out = name;
  return name != nullptr;
}

const char* DatumList::EnumToken(int index) const {
  const Entry* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? internal::EmptyIfNull(entry->GetToken()) : nullptr;
}

bool DatumList::EnumToken(int index, std::string& out) const {
  const char* const token = EnumToken(index);
  if (token) out = token;
  return token != nullptr;
}

int DatumList::EnumPOSCNumber(int index) const {
  const Entry* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? entry->GetPOSCNumber() : 0;
}

unsigned long DatumList::EnumFlags(int index) const {
  const Entry* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? entry->flags : 0;
}

bool DatumList::EnumParameters(int index, DatumParameters& out) const {
  const Entry* const entry = m_pImpl->core.Get(index, ORV_SITE);
  if (entry) entry->Def().GetParameters(out);
  return entry != nullptr;
}

int DatumList::FindDatum(const DatumDef& def) const {
  return m_pImpl->core.Find([&def](const Entry& entry) { return entry.Def().CompareParameters(&def); });
}

int DatumList::FindSpecial(DatumTarget target, int start) const {
  return m_pImpl->core.Find([target](const Entry& entry) { return entry.Def().GetSpecial() == target; },
                            start);
}

int DatumList::FindByName(const char* name, DatumDef* out) const {
  return m_pImpl->Found(internal::FindText<NameKey>(m_pImpl->core, name), out);
}

int DatumList::FindByToken(const char* token, DatumDef* out) const {
  return m_pImpl->Found(internal::FindText<TokenKey>(m_pImpl->core, token), out);
}

int DatumList::FindByPOSCNumber(int posc, DatumDef* out, int start) const {
  if (posc < 1) return Core::kNone;
  if (start < 0) return m_pImpl->Found(m_pImpl->core.FindByKey<POSCKey>(posc), out);
  const auto matches = [posc](const Entry& entry) { return entry.GetPOSCNumber() == posc; };
  return m_pImpl->Found(m_pImpl->core.Find(matches, start), out);
}

int DatumList::FindByPOSCNumberAndMethod(int posc, DatumMethod method, DatumDef* out, int start) const {
  if (posc < 1) return Core::kNone;
  const auto matches = [posc, method](const Entry& entry) {
    return entry.GetPOSCNumber() == posc && entry.Def().GetMethod() == method;
  };
  if (start < 0) {
    const int any = m_pImpl->core.FindByKey<POSCKey>(posc);
    // Of several entries of that number the index may have met one of another method: then a scan decides.
    if (any == Core::kNone || matches(m_pImpl->core.At(any))) return m_pImpl->Found(any, out);
  }
  return m_pImpl->Found(m_pImpl->core.Find(matches, start), out);
}

int DatumList::Add(const DatumDef& def, unsigned long flags) {
  return m_pImpl->Add(Entry(def, flags), this == &ORVKnownDatumsList);
}

bool DatumList::Replace(int index, const DatumDef& def, unsigned long flags) {
  Entry entry(def, flags);
  const bool known = this == &ORVKnownDatumsList;
  if (!m_pImpl->core.Get(index, ORV_SITE) || !m_pImpl->Accepts(entry, known, index)) return false;
  m_pImpl->core.Replace(index, std::move(entry));
  return true;
}

bool DatumList::Remove(int index) {
  if (!m_pImpl->core.Holds(index)) {
    // Deliberate: a full stop here, and in this list only here.
    return ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
  }
  m_pImpl->core.Remove(index);
  return true;
}

bool DatumList::Load(const char* file, bool reportErrors) {
  // `file` may belong to an entry of this list.
  const std::string name = internal::EmptyIfNull(file);
  Flush();
  ConfigFileReader reader;
  if (!internal::OpenListFile(reader, kFile, file ? name.c_str() : nullptr, reportErrors, ORV_SITE)) {
    return false;
  }
  const Core::Batch batch(m_pImpl->core);
  DatumDef entry;
  bool geogcs = false;
  return internal::ReadEntries(
      reader, kTexts, ORV_SITE,
      [&] {
        entry.Flush();
        geogcs = false;
      },
      [&](std::string_view key, std::string_view value) {
        internal::KeyReader keys(key, value, reader, ORV_SITE);
        internal::DatumEntry::Walk(keys, entry, geogcs);
      },
      [&] {
        std::string why;
        if (!entry.GetName()) {
          ORV_FAIL(ErrSyntax, "%s(%d):  Datum has no NAME parameter.", reader.FileName(), reader.Line());
        }
        if (!entry.GetToken()) {
          ORV_FAIL(ErrSyntax, "%s(%d):  Datum has no TOKEN parameter.", reader.FileName(), reader.Line());
        }
        if (entry.CheckParameters(why) != DatumParameterIDNone) {
          ORV_FAIL(ErrSyntax, "%s(%d):  Datum fails validity check.\n%s", reader.FileName(), reader.Line(),
                   why.c_str());
        }
        m_pImpl->Add(Entry(std::move(entry), geogcs ? kGeogcs : 0), this == &ORVKnownDatumsList);
      });
}

bool DatumList::Save(const char* file) const {
  ConfigFileWriter writer;
  if (!internal::CreateListFile(writer, kFile, file, ORV_SITE)) return false;
  int number = 0;
  for (const Entry& entry : m_pImpl->core.Entries()) {
    internal::WriteEntry(writer, ++number, Count(), [&entry](internal::KeyWriter& keys) {
      bool geogcs = (entry.flags & kGeogcs) != 0;
      internal::DatumEntry::Walk(keys, entry.Def(), geogcs);
    });
  }
  writer.Write(kFile.trailer);
  writer.Close();
  return true;
}

void DatumList::DebugDump(std::string& text, size_t indent) const {
  internal::Dump dump(text, indent);
  dump.Line("DatumList this=%p:", static_cast<const void*>(this));
  for (int index = First(); index <= Last(); ++index) {
    dump.Line("ENTRY %d", index);
    m_pImpl->core.At(index).Def().DebugDump(text, indent);
  }
  internal::DumpTextIndex<NameKey>(dump, "IndexByName:", m_pImpl->core);
  internal::DumpTextIndex<TokenKey>(dump, "IndexByToken:", m_pImpl->core);
  internal::DumpNumberIndex<POSCKey>(dump, "IndexByPOSC:", m_pImpl->core);
}

}  // namespace orv
