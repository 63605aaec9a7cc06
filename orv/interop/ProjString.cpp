// "+proj=" strings, read and written.
#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"
#include "orv/interop/internal/KnownNames.h"
#include "orv/interop/internal/TextSystem.h"

ORV_UNIT("Interchange")

namespace orv::internal {

namespace {

constexpr size_t kLargestText = size_t{256} * 1024;
constexpr size_t kMostKeys = 200;

// Of the projections; which of them a projection has is in the table of methods.
constexpr const char* kKeys[] = {"lat_0",  "lon_0", "lonc", "lat_1", "lat_2", "lon_1", "lon_2",
                                 "lat_ts", "k",     "k_0",  "x_0",   "y_0",   "alpha", "gamma"};
// What changes no point of the plane.
constexpr const char* kIdle[] = {"no_defs", "type", "wktext", "title", "approx", "no_cut"};

class Reader {
 public:
  Reader(std::string_view text, Place at)
      : m_Text(text), m_At(at), m_IsInside(at.line != 1 || at.column != 1) {}

  TextSystem Read() {
    t.place = t.methodPlace = At(0);
    if (m_Text.size() > kLargestText) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected a text of at most %d bytes.", t.place.line,
               t.place.column, static_cast<int>(kLargestText));
    }
    Split();
    const Item& proj = Need("proj", "+proj=");
    t.methodPlace = proj.place;
    const bool isGeographic = proj.value == "longlat" || proj.value == "latlong" || proj.value == "lonlat" ||
                              proj.value == "latlon";
    t.isGeographic = isGeographic;
    t.name = "unknown";
    t.isNameRemark = true;
    if (const Item* const title = Find("title")) t.name = title->value;
    ReadMeridian();
    ReadFigure();
    ReadShift();
    if (!isGeographic) {
      ReadUnit();
      ReadMethod(proj);
    } else {
      ReadNothing();
    }
    for (const char* const idle : kIdle) m_Items.erase(idle);
    if (const Item* const axis = Take("axis")) {
      if (axis->value.substr(0, 2) != "en") Refuse(*axis, "x is the easting and y the northing here");
    }
    m_Items.erase("axis");
    if (!m_Items.empty()) {
      const auto& [key, item] = *m_Items.begin();
      ORV_FAIL(ErrBadParameter, "Line %d, column %d: the parameter '%s' cannot be expressed.",
               item.place.line, item.place.column, key.substr(0, 40).c_str());
    }
    return t;
  }

 private:
  struct Item {
    std::string value;
    Place place;
  };

  Place At(size_t offset) const { return m_IsInside ? m_At : PlaceOf(m_Text, offset); }

  void Split() {
    for (size_t at = m_Text.find_first_not_of(" \t\r\n"); at != std::string_view::npos;
         at = m_Text.find_first_not_of(" \t\r\n", at)) {
      const Place place = At(at);
      size_t end = m_Text.find_first_of(" \t\r\n", at);
      if (end == std::string_view::npos) end = m_Text.size();
      std::string_view word = m_Text.substr(at, end - at);
      at = end;
      if (word[0] == '+') word.remove_prefix(1);
      const size_t equals = word.find('=');
      const std::string key(word.substr(0, equals));
      const std::string value(equals == std::string_view::npos ? std::string_view()
                                                               : word.substr(equals + 1));
      if (key.empty()) {
        ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected '+key' or '+key=value'.", place.line,
                 place.column);
      }
      if (m_Items.size() >= kMostKeys) {
        ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected at most %d parameters.", place.line, place.column,
                 static_cast<int>(kMostKeys));
      }
      if (!m_Items.emplace(key, Item{value, place}).second) {
        ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected '%s' only once.", place.line, place.column,
                 key.substr(0, 40).c_str());
      }
    }
  }

  const Item* Find(const char* key) const {
    const auto found = m_Items.find(key);
    return found == m_Items.end() ? nullptr : &found->second;
  }
  /// The item, which counts as understood; null when it is not there.  Valid until the next one is taken.
  const Item* Take(const char* key) {
    const auto found = m_Items.find(key);
    if (found == m_Items.end()) return nullptr;
    m_Taken = found->second;
    m_Items.erase(found);
    return &m_Taken;
  }
  const Item& Need(const char* key, const char* what) {
    const auto found = m_Items.find(key);
    if (found == m_Items.end()) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected %s in a PROJ string.", t.place.line, t.place.column,
               what);
    }
    m_Proj = found->second;
    m_Items.erase(found);
    return m_Proj;
  }

  void Refuse(const Item& item, const char* reason) const {
    ORV_FAIL(ErrBadParameter, "Line %d, column %d: the system cannot be expressed: %s.", item.place.line,
             item.place.column, reason);
  }
  void RefuseProjection(const Item& proj, const char* reason) const {
    ORV_FAIL(ErrBadParameter, "Line %d, column %d: the projection '%s' cannot be expressed: %s.",
             proj.place.line, proj.place.column, proj.value.substr(0, 80).c_str(), reason);
  }

  static double NumberOf(const Item& item, std::string_view text) {
    size_t length = 0;
    const double value = ReadDecimal(text, &length);
    if (length == 0 || length != text.size() || !std::isfinite(value)) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected a decimal number, found '%s'.", item.place.line,
               item.place.column, std::string(text.substr(0, 40)).c_str());
    }
    return value;
  }
  static double NumberOf(const Item& item) { return NumberOf(item, item.value); }

  void ReadMeridian() {
    const Item* const item = Take("pm");
    if (!item) return;
    if (const ProjMeridian* const known = FindProjMeridian(item->value)) {
      t.meridian = known->longitude;
      t.meridianName = known->id;
    } else {
      t.meridian = NumberOf(*item);
      t.meridianName = "unnamed";
    }
    if (std::fabs(t.meridian) > 360.0) Refuse(*item, "its meridian is more than a turn away");
  }

  void ReadFigure() {
    t.datumName = "unknown";
    bool isWhole = false;  // radius and flattening are said: nothing else may say others
    if (const Item* const item = Take("datum")) {
      const ProjDatum* const datum = FindProjDatum(item->value);
      if (!datum) Refuse(*item, "PROJ's documentation lists no such datum");
      t.datumName = datum->name;
      t.datumCode = datum->code;
      t.hasShift = datum->hasShift;
      std::copy(datum->shift, datum->shift + 7, t.shift);
      t.isWgs84 = datum->code == 6326;
      TakeEllipsoid(*FindProjEllipsoid(datum->ellipsoid));
      isWhole = true;
    }
    if (const Item* const item = Take("ellps")) {
      const ProjEllipsoid* const known = FindProjEllipsoid(item->value);
      if (!known) Refuse(*item, "PROJ's documentation lists no such ellipsoid");
      if (isWhole) CheckFigure(*item, known->a, Flattening(*known));
      TakeEllipsoid(*known);
    }
    if (const Item* const item = Take("R")) {
      const double radius = NumberOf(*item);
      if (t.a != 0.0) CheckFigure(*item, radius, 0.0);
      t.a = radius;
      t.f = 0.0;
      t.ellipsoidName = "Sphere";
      isWhole = true;
    }
    if (const Item* const item = Take("a")) {
      const double radius = NumberOf(*item);
      if (isWhole) {
        CheckFigure(*item, radius, t.f);
      } else {
        t.a = radius;
        t.ellipsoidName.clear();
      }
    }
    for (const char* const shape : {"rf", "f", "b"}) {
      const Item* const item = Take(shape);
      if (!item) continue;
      const double flattening = FlatteningBy(shape, *item);
      if (isWhole) {
        CheckFigure(*item, t.a, flattening);
      } else {
        t.f = flattening;
        t.ellipsoidName.clear();
        isWhole = true;
      }
    }
    if (t.a == 0.0) {
      ORV_FAIL(ErrCorrupt,
               "Line %d, column %d: expected an ellipsoid (+ellps, +datum, +R or +a) in a PROJ string.",
               t.place.line, t.place.column);
    }
  }

  void TakeEllipsoid(const ProjEllipsoid& known) {
    t.a = known.a;
    t.f = Flattening(known);
    t.ellipsoidName = known.name;
  }
  /// That what is said once more of the ellipsoid is the same: to 1e-6 m and 1e-10.
  void CheckFigure(const Item& item, double a, double f) const {
    if (std::fabs(a - t.a) <= 1e-6 && std::fabs(f - t.f) <= 1e-10) return;
    Refuse(item, "its ellipsoid is given twice, and differently");
  }
  double FlatteningBy(const std::string& shape, const Item& item) const {
    const double value = NumberOf(item);
    if (shape == "f") return value;
    if (shape == "b") return t.a > 0.0 ? (t.a - value) / t.a : 0.0;
    if (!(value > 1.0)) Refuse(item, "its inverse flattening is not above 1");
    return 1.0 / value;
  }

  void ReadShift() {
    if (const Item* const item = Take("nadgrids")) {
      if (item->value != "@null") Refuse(*item, "its datum is converted by grids");
      t.isNullGrid = true;
    }
    const Item* const item = Take("towgs84");
    if (!item) return;
    std::string_view rest = item->value;
    int count = 0;
    for (double& value : t.shift) value = 0.0;
    while (true) {
      const size_t comma = rest.find(',');
      if (count == 7) break;
      t.shift[count++] = NumberOf(*item, rest.substr(0, comma));
      if (comma == std::string_view::npos) {
        rest = {};
        break;
      }
      rest.remove_prefix(comma + 1);
    }
    if (!rest.empty() || (count != 3 && count != 7)) {
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected three or seven numbers in +towgs84.",
               item->place.line, item->place.column);
    }
    t.hasShift = true;
    t.isWgs84 = false;
  }

  void ReadUnit() {
    double size = 1.0;
    const bool isNamed = Find("units") != nullptr;
    if (const Item* const item = Take("units")) {
      const ProjUnit* const unit = FindProjUnit(item->value);
      if (!unit) Refuse(*item, "PROJ's documentation lists no such unit");
      size = unit ? unit->metres : 1.0;
    }
    if (const Item* const item = Take("to_meter")) {
      const size_t slash = item->value.find('/');
      double own = NumberOf(*item, std::string_view(item->value).substr(0, slash));
      if (slash != std::string::npos) own /= NumberOf(*item, std::string_view(item->value).substr(slash + 1));
      if (!(own >= 1e-12) || !(own <= 1e12)) Refuse(*item, "its unit is not of 1e-12 to 1e12 metres");
      if (isNamed && std::fabs(own / size - 1.0) > 1e-12)
        Refuse(*item, "its unit is given twice, and differently");
      size = own;
    }
    t.length = LengthUnit(size, 1e-13);
    if (t.length.code == 0) t.length.size = size;
  }

  /// What a geographic system has and needs not: an origin of 0.
  void ReadNothing() {
    for (const char* const key : {"lon_0", "x_0", "y_0"}) {
      const Item* const item = Take(key);
      if (item && NumberOf(*item) != 0.0) Refuse(*item, "a geographic system has no origin here");
    }
    const Item* const k = Take("k");
    if (k && NumberOf(*k) != 1.0) Refuse(*k, "a geographic system has no scale factor");
    m_Items.erase("units");
  }

  void ReadMethod(const Item& proj) {
    if (const char* const reason = WhyNotProjMethod(proj.value)) RefuseProjection(proj, reason);
    t.method = FindProjMethod(proj.value == "etmerc" ? "tmerc" : proj.value);
    if (!t.method) RefuseProjection(proj, "the library has no such method");
    if (t.method->form == Form::Utm) {
      ReadZone(proj);
      return;
    }
    const std::string name = proj.value == "etmerc" ? "tmerc" : proj.value;
    t.hasDefaults = true;
    std::vector<std::pair<std::string, Item>> given;
    for (const char* const key : kKeys) {
      const Item* const item = Take(key);
      if (!item) continue;
      const double value = NumberOf(*item);
      const ParameterRow* const row = FindProjParameter(name, key);
      if (!row) {
        CheckIdle(key, *item);
        continue;
      }
      if (t.values.Has(row->par)) Refuse(*item, "one of its parameters is given under two names");
      t.values[row->par] = value;
      given.emplace_back(key, *item);
    }
    SettleForm(proj);
    // Of the forms of one name, the one that it is has not all of the keys.
    for (const auto& [key, item] : given) {
      const bool isMeant = t.values.Has(FindProjParameter(name, key)->par);
      if (isMeant && !FindProjParameter(*t.method, key)) CheckIdle(key, item);
    }
  }

  /// That a key which the projection has not changes nothing.
  void CheckIdle(const std::string& key, const Item& item) const {
    const bool isIdle = NumberOf(item) == (key == "k" || key == "k_0" ? 1.0 : 0.0);
    if (!isIdle) Refuse(item, "the projection has no such parameter");
  }

  /// Several forms share a name: the parameters tell which it is.
  void SettleForm(const Item& proj) {
    Values& v = t.values;
    const auto take = [this](Form form) { t.method = &RowOfForm(form); };
    const bool hasParallel = v.Has(Par::Lat1);
    if (proj.value == "lcc") {
      // Without a second parallel the first is the only one, and the latitude of origin when that is not given.
      if (!v.Has(Par::Lat2) && !v.Has(Par::Lat0)) v[Par::Lat0] = v.At(Par::Lat1);
    } else if (proj.value == "merc") {
      if (hasParallel && v.Or(Par::K, 1.0) != 1.0)
        RefuseProjection(proj, "it has both a standard parallel and a scale factor");
      take(hasParallel ? Form::MercatorB : Form::MercatorA);
    } else if (proj.value == "webmerc") {
      if (t.f != 0.0 && !t.hasShift) t.isWgs84 = t.isWgs84 || t.datumName == "unknown";
    } else if (proj.value == "stere") {
      const double lat0 = v.Or(Par::Lat0, 0.0);
      const bool isPolar = std::fabs(lat0) == 90.0;
      if (hasParallel && !isPolar)
        RefuseProjection(proj, "it has a standard parallel, and its origin is not a pole");
      const bool isParallel = hasParallel && v.At(Par::Lat1) != lat0;
      if (!isParallel) v[Par::Lat1] = NAN;  // the pole itself is none
      if (isParallel && v.Or(Par::K, 1.0) != 1.0)
        RefuseProjection(proj, "it has both a standard parallel and a scale factor");
      take(isParallel ? Form::PolarB : isPolar ? Form::PolarA : Form::Stereographic);
    } else if (proj.value == "omerc") {
      SettleHotine(proj);
    }
  }

  void SettleHotine(const Item& proj) {
    Values& v = t.values;
    const bool hasPoints = v.Has(Par::Lat2) || v.Has(Par::Lon1) || v.Has(Par::Lon2);
    const bool noUoff = Take("no_uoff") != nullptr, noOff = Take("no_off") != nullptr;
    t.isUnrotated = Take("no_rot") != nullptr;
    t.isFromNatural =
        noUoff || noOff || t.isUnrotated;  // PROJ counts u from the centre in the rotated map only
    if (hasPoints && (v.Has(Par::Azimuth) || v.Has(Par::Gamma)))
      RefuseProjection(proj, "its line is given both by two points and by an azimuth");
    if (!hasPoints && !v.Has(Par::Azimuth) && v.Has(Par::Gamma))
      RefuseProjection(proj, "its line is given by +gamma alone, which is no azimuth at the centre");
    if (hasPoints && t.isFromNatural && !t.isUnrotated)
      RefuseProjection(proj, "with a line by two points PROJ drops +no_uoff");
    t.method = &RowOfForm(hasPoints ? Form::HotinePoints : t.isFromNatural ? Form::HotineA : Form::HotineB);
  }

  void ReadZone(const Item& proj) {
    const Item* const item = Take("zone");
    const double zone = item ? NumberOf(*item) : 0.0;
    if (zone != std::floor(zone) || zone < 1.0 || zone > 60.0) {
      const Place place = item ? item->place : proj.place;
      ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected a +zone from 1 to 60.", place.line, place.column);
    }
    t.zone = static_cast<int>(zone);
    t.isSouth = Take("south") != nullptr;
    t.conversionName = Format("UTM zone %d%c", t.zone, t.isSouth ? 'S' : 'N');
    t.values[Par::Lat0] = 0.0;
    t.values[Par::Lon0] = 6.0 * zone - 183.0;
    t.values[Par::K] = 0.9996;
    t.values[Par::X] = 500000.0;
    t.values[Par::Y] = t.isSouth ? 10000000.0 : 0.0;
  }

  std::string_view m_Text;
  Place m_At;
  bool m_IsInside;
  std::map<std::string, Item> m_Items;
  Item m_Taken, m_Proj;
  TextSystem t;
};

// ---- writing ---------------------------------------------------------------------------------------------

class Writer {
 public:
  explicit Writer(const TextSystem& text) : t(text) {}

  std::string Text() {
    if (t.isGeographic) {
      if (t.angle.size != 1.0) {
        ORV_FAIL(ErrBadParameter,
                 "The system cannot be written as %s: its unit is the %s, and the string counts degrees.",
                 ORVTextDialectName(TextDialectProj), t.angle.name.c_str());
      }
      Add("proj", "longlat");
    } else {
      AddMethod();
    }
    AddFigure();
    AddShift();
    if (t.meridian != 0.0) Add("pm", NumberText(t.meridian));
    if (!t.isGeographic) AddUnit();
    Add("no_defs");
    Add("type", "crs");
    return m_Out;
  }

 private:
  void Add(const char* key) {
    if (!m_Out.empty()) m_Out += ' ';
    m_Out += '+';
    m_Out += key;
  }
  void Add(const char* key, const std::string& value) {
    Add(key);
    m_Out += '=' + value;
  }

  void AddMethod() {
    const Form form = t.method->form;
    if (t.zone != 0) {
      Add("proj", "utm");
      Add("zone", std::to_string(t.zone));
      if (t.isSouth) Add("south");
      return;
    }
    const bool isPseudo = form == Form::PseudoMercator;
    Add("proj", isPseudo ? "merc" : t.method->proj);
    for (const ParameterRow& row : *t.method) {
      const bool isSet = t.values.Has(row.par) || row.par == Par::K || IsLength(row.par);
      if (row.proj && isSet)
        Add(row.proj, NumberText(IsLength(row.par) ? Tidied(t.values.Or(row.par, 0.0))
                                                   : t.values.Or(row.par, row.par == Par::K ? 1.0 : 0.0)));
    }
    if (isPseudo) Add("k", "1");
    if (form == Form::HotineA || (form == Form::HotinePoints && t.isFromNatural)) Add("no_uoff");
    if (t.isUnrotated) Add("no_rot");
  }

  bool IsPseudo() const { return !t.isGeographic && t.method->form == Form::PseudoMercator; }

  void AddFigure() {
    if (IsPseudo()) {
      Add("a", NumberText(t.a));
      Add("b", NumberText(t.a));
    } else if (t.isPlainSphere || t.f == 0.0) {
      Add("R", NumberText(t.a));
    } else if (t.isWgs84) {
      Add("datum", "WGS84");
    } else if (const ProjEllipsoid* const known = FindProjEllipsoid(t.a, t.f)) {
      Add("ellps", known->id);
    } else {
      Add("a", NumberText(t.a));
      Add("rf", NumberText(Tidied(1.0 / t.f)));
    }
  }

  void AddShift() {
    if (t.isNullGrid || IsPseudo()) {
      if (IsPseudo() && t.hasShift) {
        for (const double value : t.shift) {
          if (value == 0.0) continue;
          ORV_FAIL(ErrBadParameter,
                   "The system cannot be written as %s: its datum has a shift on the ellipsoid, its "
                   "projection the sphere.",
                   ORVTextDialectName(TextDialectProj));
        }
      }
      if (!IsPseudo() || t.hasShift || t.isWgs84) Add("nadgrids", "@null");
      if (IsPseudo()) Add("wktext");
      return;
    }
    if (!t.hasShift) return;
    bool isTranslation = true;
    for (int i = 3; i < 7; ++i) isTranslation = isTranslation && t.shift[i] == 0.0;
    std::string shift;
    for (int i = 0; i < (isTranslation ? 3 : 7); ++i) shift += (i > 0 ? "," : "") + NumberText(t.shift[i]);
    Add("towgs84", shift);
  }

  void AddUnit() {
    if (const ProjUnit* const unit = FindProjUnit(t.length.size)) {
      Add("units", unit->id);
    } else {
      Add("to_meter", NumberText(Tidied(t.length.size)));
    }
  }

  const TextSystem& t;
  std::string m_Out;
};

}  // namespace

TextSystem ReadProjString(std::string_view text, Place at) { return Reader(text, at).Read(); }
std::string WriteProjString(const TextSystem& text) { return Writer(text).Text(); }

}  // namespace orv::internal
