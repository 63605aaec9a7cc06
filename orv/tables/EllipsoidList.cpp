#include "orv/tables/EllipsoidList.h"

#include <cmath>

#include "orv/core/internal/ConfigEntry.h"
#include "orv/core/internal/Dump.h"
#include "orv/core/internal/ListCore.h"
#include "orv/core/internal/ListKeys.h"

ORV_UNIT("EllipsoidList")

namespace orv {

namespace {

using NameKey = internal::TextKey<EllipsoidDef, &EllipsoidDef::GetName>;
using TokenKey = internal::TextKey<EllipsoidDef, &EllipsoidDef::GetToken>;
using POSCKey = internal::NumberKey<EllipsoidDef, &EllipsoidDef::GetPOSCNumber>;

struct EllipsoidTraits;
using Core = internal::ListCore<EllipsoidTraits>;

struct EllipsoidTraits {
  using Info = EllipsoidDef;
  static constexpr int kFirst = 2, kNone = 0;
  static constexpr const char* kBadIndex = ORV_BAD_PARAMETER_STOP;
  using Keys = std::tuple<NameKey, TokenKey, POSCKey>;
  static const internal::UniqueRule<Core> kUnique[3];
};

const internal::UniqueRule<Core> EllipsoidTraits::kUnique[3] = {
    {internal::NumberTaken<Core, POSCKey>, "Can't have two ellipsoids with the same POSC/EPSG number."},
    {internal::TextTaken<Core, TokenKey>, "Can't have two ellipsoids with the same token."},
    {internal::TextTaken<Core, NameKey>, "Can't have two ellipsoids with the same name."},
};

constexpr internal::ListFile kFile = {
    "ellipsoid.ocf",
    "Can't find ellipsoid configuration file '%s'",
    "Failed opening ellipsoid configuration file '%s'",
    "Failed opening configuration file for writing '%s'",
    ";\n; Brevan ellipsoid configuration file.\n;\n\n",
    ";\n; End ellipsoid configuration file.\n;\n",
    false,
};

// A flattening up to here, 2^-23, is written as it is; a larger one as its inverse.
constexpr double kFlatAsIs = 1.1920928955078125e-7;

}  // namespace

namespace internal {

// An ellipsoid's entry in the file.  Values are stored past the setters, so that the list's own complaints,
// which tell file and line, are the ones a caller gets.
struct EllipsoidEntry {
  static double InverseFlattening(const EllipsoidDef& d) { return 1.0 / d.m_Flattening; }
  static void SetInverseFlattening(EllipsoidDef& d, double value) { d.m_Flattening = 1.0 / value; }
  // Deliberate: the radius read so far is used, so "minrad" must follow "radius".
  static void SetMinorRadius(EllipsoidDef& d, double b) {
    d.m_Flattening = 1.0 / (d.m_Radius / (d.m_Radius - b));
  }

  template <class Walker, class Self>
  static void Walk(Walker& w, Self& d) {
    w.Text("token", d.m_Token);
    w.Text("name", d.m_Name);
    w.Number("radius", "%.4f", d.m_Radius);  // deliberate: tenths of a millimetre
    w.Number("flat", "%.19f", d.m_Flattening, d.m_Flattening <= kFlatAsIs);
    w.Derived("invflat", "%.19f", d, &InverseFlattening, &SetInverseFlattening, d.m_Flattening > kFlatAsIs);
    w.ReadOnly("minrad", d, &SetMinorRadius);
    w.Int("posc", d.m_POSC, d.m_POSC != 0);
    w.Text("comment", d.m_Comment, !d.m_Comment.empty());
  }
};

}  // namespace internal

struct EllipsoidList::Impl {
  Core core;

  /// Checks an entry that is to be added, or to replace the one at `except`; false after a report.
  bool Accepts(const EllipsoidDef& def, bool known, int except) const {
    if (!def.CheckParameters()) return ORV_FAIL(ErrBadParameter, "Invalid ellipsoid parameters specified.");
    const char* const clash = known ? core.Clash(def, except) : nullptr;
    return !clash || ORV_FAIL(ErrBadParameter, "%s", clash);
  }
};

EllipsoidList::EllipsoidList() : m_pImpl(std::make_unique<Impl>()) {}
EllipsoidList::EllipsoidList(const EllipsoidList& other) : m_pImpl(std::make_unique<Impl>(*other.m_pImpl)) {}
EllipsoidList& EllipsoidList::operator=(const EllipsoidList& other) {
  CopyAll(other);
  return *this;
}
EllipsoidList::~EllipsoidList() = default;

int EllipsoidList::First() const { return m_pImpl->core.First(); }
int EllipsoidList::Last() const { return m_pImpl->core.Last(); }
int EllipsoidList::Count() const { return m_pImpl->core.Count(); }

const EllipsoidDef* EllipsoidList::Enum(int index) const { return m_pImpl->core.Get(index, ORV_SITE); }

bool EllipsoidList::Enum(int index, EllipsoidDef& out) const {
  const EllipsoidDef* const entry = m_pImpl->core.Get(index, ORV_SITE);
  if (entry) out = *entry;
  return entry != nullptr;
}

const char* EllipsoidList::EnumToken(int index) const {
  const EllipsoidDef* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? internal::EmptyIfNull(entry->GetToken()) : nullptr;
}

bool EllipsoidList::EnumToken(int index, std::string& out) const {
  const char* const token = EnumToken(index);
  if (token) out = token;
  return token != nullptr;
}

const char* EllipsoidList::EnumName(int index) const {
  const EllipsoidDef* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? internal::EmptyIfNull(entry->GetName()) : nullptr;
}

bool EllipsoidList::EnumName(int index, std::string& out) const {
  const char* const name = EnumName(index);
  if (name) out = name;
  return name != nullptr;
}

double EllipsoidList::EnumRadius(int index) const {
  const EllipsoidDef* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? entry->GetMajorRadius() : 0.0;
}

double EllipsoidList::EnumFlattening(int index) const {
  const EllipsoidDef* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? entry->GetFlattening() : 0.0;
}

int EllipsoidList::EnumPOSCNumber(int index) const {
  const EllipsoidDef* const entry = m_pImpl->core.Get(index, ORV_SITE);
  return entry ? entry->GetPOSCNumber() : 0;
}

int EllipsoidList::FindByName(const char* name, EllipsoidDef* out) const {
  return internal::FindText<NameKey>(m_pImpl->core, name, out);
}

int EllipsoidList::FindByToken(const char* token, EllipsoidDef* out) const {
  return internal::FindText<TokenKey>(m_pImpl->core, token, out);
}

int EllipsoidList::FindByPOSCNumber(int posc) const {
  return posc < 1 ? Core::kNone : m_pImpl->core.FindByKey<POSCKey>(posc);
}

int EllipsoidList::FindEllipsoid(const EllipsoidDef& def) const {
  return m_pImpl->core.Find([&def](const EllipsoidDef& entry) {
    return entry.GetMajorRadius() == def.GetMajorRadius() && entry.GetFlattening() == def.GetFlattening();
  });
}

int EllipsoidList::FindByDimensions(double radius, double flattening) const {
  const int exact = m_pImpl->core.Find([=](const EllipsoidDef& entry) {
    return entry.GetMajorRadius() == radius && entry.GetFlattening() == flattening;
  });
  if (exact != Core::kNone) return exact;
  // Deliberate: relative to the value asked for.
  const auto near = [](double asked, double stored) {
    return asked == stored || std::fabs(asked) / 1e9 > std::fabs(asked - stored);
  };
  return m_pImpl->core.Find([&](const EllipsoidDef& entry) {
    return near(radius, entry.GetMajorRadius()) && near(flattening, entry.GetFlattening());
  });
}

int EllipsoidList::Add(const EllipsoidDef& def) {
  const bool known = this == &ORVKnownEllipsoidsList;
  return m_pImpl->Accepts(def, known, Core::kNone) ? m_pImpl->core.Append(def) : Core::kNone;
}

bool EllipsoidList::Replace(int index, const EllipsoidDef& def) {
  const bool known = this == &ORVKnownEllipsoidsList;
  if (!m_pImpl->core.Get(index, ORV_SITE) || !m_pImpl->Accepts(def, known, index)) return false;
  m_pImpl->core.Replace(index, def);
  return true;
}

bool EllipsoidList::Remove(int index) {
  if (!m_pImpl->core.Get(index, ORV_SITE)) return false;
  m_pImpl->core.Remove(index);
  return true;
}

void EllipsoidList::Flush() { m_pImpl->core.Clear(); }

void EllipsoidList::CopyAll(const EllipsoidList& other) { *m_pImpl = *other.m_pImpl; }

bool EllipsoidList::Load(const char* fileName, bool bThrowIfFileMissing) {
  const std::string name = internal::EmptyIfNull(fileName);  // may belong to an entry of this list
  Flush();
  ConfigFileReader reader;
  if (!internal::OpenListFile(reader, kFile, fileName ? name.c_str() : nullptr, bThrowIfFileMissing,
                              ORV_SITE)) {
    return false;
  }
  const bool known = this == &ORVKnownEllipsoidsList;
  const auto complain = [&reader](const char* message) {
    return ORV_FAIL(ErrSyntax, message, reader.FileName(), reader.Line());
  };
  const Core::Batch batch(m_pImpl->core);
  EllipsoidDef entry;
  return internal::ReadEntries(
      reader, internal::kEntryTexts, ORV_SITE, [&entry] { entry.Flush(); },
      [&](std::string_view key, std::string_view value) {
        internal::KeyReader keys(key, value, reader, ORV_SITE);
        internal::EllipsoidEntry::Walk(keys, entry);
      },
      [&] {
        if (entry.GetMajorRadius() <= 0.0) complain("%s(%d):  Radius value must be positive.\n");
        if (known && !entry.GetName()) complain("%s(%d):  No name parameter specified.\n");
        if (known && !entry.GetToken()) complain("%s(%d):  No token parameter specified.\n");
        Add(entry);
      });
}

bool EllipsoidList::Save(const char* fileName) const {
  ConfigFileWriter writer;
  if (!internal::CreateListFile(writer, kFile, fileName, ORV_SITE)) return false;
  int number = 0;
  for (const EllipsoidDef& entry : m_pImpl->core.Entries()) {
    internal::WriteEntry(writer, ++number, Count(), [&entry](internal::KeyWriter& keys) {
      internal::EllipsoidEntry::Walk(keys, entry);
    });
  }
  writer.Write(kFile.trailer);
  writer.Close();
  return true;
}

void EllipsoidList::DebugDump(std::string& out, size_t indent) const {
  internal::Dump dump(out, indent);
  dump.Line("EllipsoidList this=%p:", static_cast<const void*>(this));
  for (int index = First(); index <= Last(); ++index) {
    dump.Line("ENTRY %d", index);
    m_pImpl->core.At(index).DebugDump(out, indent);
  }
  internal::DumpTextIndex<NameKey>(dump, "IndexByName:", m_pImpl->core);
  internal::DumpTextIndex<TokenKey>(dump, "IndexByToken:", m_pImpl->core);
  internal::DumpNumberIndex<POSCKey>(dump, "IndexByPOSC:", m_pImpl->core);
}

}  // namespace orv
