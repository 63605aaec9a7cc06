#include "orv/interop/internal/KnownNames.h"

#include <cmath>
#include <cstring>
#include <string_view>

#include "orv/core/internal/Text.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/CSList.h"
#include "orv/system/internal/Georeferenced.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"

namespace orv::internal {

namespace {

// clang-format off

// Units by which the lists can be empty.
const TextUnit kLengths[] = {
    {"metre",          9001, 1.0},
    {"foot",           9002, 0.3048},
    {"US survey foot", 9003, 12.0 / 39.37},
};
const TextUnit kAngles[] = {
    {"degree", 9122, 1.0},
    {"grad",   9105, 0.9},
    {"radian", 9101, 57.29577951308232},
};

// Names of ESRI that are not the data set's with underscores for blanks.
struct EsriRow { int code; const char* name; };
constexpr EsriRow kEsriDatums[] = {
    {6326, "WGS_1984"}, {6258, "ETRS_1989"}, {6269, "North_American_1983"}, {6267, "North_American_1927"},
    {6230, "European_1950"}, {6277, "OSGB_1936"}, {6275, "NTF"}, {6171, "RGF_1993"}, {6283, "GDA_1994"},
    {6322, "WGS_1972"}, {6202, "Australian_1966"}, {6203, "Australian_1984"}, {6618, "South_American_1969"},
    {6674, "SIRGAS_2000"}, {6167, "NZGD_2000"}, {6272, "New_Zealand_1949"}, {6152, "North_American_1983_HARN"},
    {6140, "North_American_1983_CSRS"}, {6313, "Belge_1972"}, {6265, "Monte_Mario"}, {1116, "NAD_1983_2011"},
    {6686, "MAGNA"}, {6179, "Pulkovo_1942_Adj_1958"}, {6178, "Pulkovo_1942_Adj_1983"},
    {6248, "Provisional_S_American_1956"}, {6170, "SIRGAS"}, {6608, "NAD_1927_Definition_1976"}, {6245, "Kertau"},
    {1042, "Mexican_Datum_of_1993"}, {6225, "Corrego_Alegre"}, {6218, "Bogota"}, {6154, "European_1950_ED77"},
    {6214, "Beijing_1954"}, {6901, "ATF"},
};

// The same of names that are read only: what is written for these is the data set's name.
constexpr EsriRow kEsriDatumsRead[] = {
    {1038, "Reseau_Geodesique_de_St_Pierre_et_Miquelon_2006"}, {1060, "Islands_Network_2004"},
    {1063, "Marco_Geodesico_Nacional"}, {1066, "SGNP_MARCARIO_SOLIS"}, {1111, "Nepal_Nagarkot"},
    {1114, "Israel_Geodetic_Datum_2005"}, {1144, "IG05(2012)_Intermediate_Datum"}, {1160, "Kyrgyz_Republic_2006"},
    {6126, "Lithuania_1994"}, {6134, "PDO_1993"}, {6141, "Israel"}, {6151, "Swiss_TRF_1995"}, {6215, "Belge_1950"},
    {6220, "Camacupa"}, {6236, "Hu_Tzu_Shan"}, {6285, "Qatar"}, {6316, "Dealul_Piscului_1933"},
    {6616, "Selvagem_Grande_1938"}, {6622, "Sainte_Anne"}, {6625, "Fort_Desaix"}, {6659, "Islands_Network_1993"},
    {6672, "Chatham_Island_1971"}, {6698, "Kerguelen_Island_1949"}, {6708, "Anna_1_1965"}, {6709, "Beacon_E_1945"},
    {6710, "DOS_71_4"}, {6711, "Astro_1952"}, {6713, "Ayabelle"}, {6714, "Bellevue_IGN"}, {6715, "Camp_Area"},
    {6716, "Canton_1966"}, {6722, "ISTS_061_1968"}, {6723, "Grand_Cayman_1959"}, {6724, "ISTS_073_1969"},
    {6726, "Little_Cayman_1961"}, {6728, "Pico_de_Las_Nieves"}, {6730, "Santo_DOS_1965"},
    {6732, "Wake_Eniwetok_1960"}, {6740, "Parametrop_Zemp_1990"}, {6743, "Karbala_1979_Polservice"},
    {6749, "Reseau_Geodesique_de_Nouvelle_Caledonie_1991-93"}, {6903, "Madrid_1870"},
};

// The ellipsoids, datums, units and meridians that the PROJ documentation lists.
constexpr ProjEllipsoid kEllipsoids[] = {
    {"WGS84",     6378137.0,    298.257223563,     0, "WGS 84"},
    {"GRS80",     6378137.0,    298.257222101,     0, "GRS 1980"},
    {"MERIT",     6378137.0,    298.257,           0, "MERIT 1983"},
    {"SGS85",     6378136.0,    298.257,           0, "Soviet Geodetic System 85"},
    {"IAU76",     6378140.0,    298.257,           0, "IAU 1976"},
    {"airy",      6377563.396,  299.3249646,       0, "Airy 1830"},
    {"APL4.9",    6378137.0,    298.25,            0, "Appl. Physics. 1965"},
    {"NWL9D",     6378145.0,    298.25,            0, "Naval Weapons Lab., 1965"},
    {"mod_airy",  6377340.189,  0, 6356034.446,       "Modified Airy"},
    {"andrae",    6377104.43,   300.0,             0, "Andrae 1876"},
    {"danish",    6377019.2563, 300.0,             0, "Andrae 1876 (Denmark, Iceland)"},
    {"aust_SA",   6378160.0,    298.25,            0, "Australian National Spheroid"},
    {"GRS67",     6378160.0,    298.2471674270,    0, "GRS 1967"},
    {"GSK2011",   6378136.5,    298.2564151,       0, "GSK-2011"},
    {"bessel",    6377397.155,  299.1528128,       0, "Bessel 1841"},
    {"bess_nam",  6377483.865,  299.1528128,       0, "Bessel Namibia"},
    {"clrk66",    6378206.4,    0, 6356583.8,         "Clarke 1866"},
    {"clrk80",    6378249.145,  293.4663,          0, "Clarke 1880 mod."},
    {"clrk80ign", 6378249.2,    293.4660212936269, 0, "Clarke 1880 (IGN)"},
    {"CPM",       6375738.7,    334.29,            0, "Comm. des Poids et Mesures 1799"},
    {"delmbr",    6376428.0,    311.5,             0, "Delambre 1810"},
    {"engelis",   6378136.05,   298.2566,          0, "Engelis 1985"},
    {"evrst30",   6377276.345,  300.8017,          0, "Everest 1830"},
    {"evrst48",   6377304.063,  300.8017,          0, "Everest 1948"},
    {"evrst56",   6377301.243,  300.8017,          0, "Everest 1956"},
    {"evrst69",   6377295.664,  300.8017,          0, "Everest 1969"},
    {"evrstSS",   6377298.556,  300.8017,          0, "Everest (Sabah & Sarawak)"},
    {"fschr60",   6378166.0,    298.3,             0, "Fischer (Mercury Datum) 1960"},
    {"fschr60m",  6378155.0,    298.3,             0, "Modified Fischer 1960"},
    {"fschr68",   6378150.0,    298.3,             0, "Fischer 1968"},
    {"helmert",   6378200.0,    298.3,             0, "Helmert 1906"},
    {"hough",     6378270.0,    297.0,             0, "Hough"},
    {"intl",      6378388.0,    297.0,             0, "International 1924"},
    {"krass",     6378245.0,    298.3,             0, "Krassowsky 1940"},
    {"kaula",     6378163.0,    298.24,            0, "Kaula 1961"},
    {"lerch",     6378139.0,    298.257,           0, "Lerch 1979"},
    {"mprts",     6397300.0,    191.0,             0, "Maupertius 1738"},
    {"new_intl",  6378157.5,    0, 6356772.2,         "New International 1967"},
    {"plessis",   6376523.0,    0, 6355863.0,         "Plessis 1817"},
    {"PZ90",      6378136.0,    298.25784,         0, "PZ-90"},
    {"SEasia",    6378155.0,    0, 6356773.3205,      "Southeast Asia"},
    {"walbeck",   6376896.0,    0, 6355834.8467,      "Walbeck"},
    {"WGS60",     6378165.0,    298.3,             0, "WGS 60"},
    {"WGS66",     6378145.0,    298.25,            0, "WGS 66"},
    {"WGS72",     6378135.0,    298.26,            0, "WGS 72"},
    {"sphere",    6370997.0,    0, 6370997.0,         "Normal Sphere"},
};

constexpr ProjDatum kDatums[] = {
    {"WGS84",         "WGS84",     "World Geodetic System 1984", 6326, false, {}},
    {"NAD83",         "GRS80",     "North American Datum 1983",  6269, false, {}},
    {"NAD27",         "clrk66",    "North American Datum 1927",  6267, false, {}},
    {"GGRS87",        "GRS80",     "Greek Geodetic Reference System 1987", 6121, true, {-199.87, 74.79, 246.62, 0, 0, 0, 0}},
    {"potsdam",       "bessel",    "Deutsches Hauptdreiecksnetz", 6314, true, {598.1, 73.7, 418.2, 0.202, 0.045, -2.455, 6.7}},
    {"carthage",      "clrk80ign", "Carthage",                   6223, true, {-263.0, 6.0, 431.0, 0, 0, 0, 0}},
    {"hermannskogel", "bessel",    "MGI",                        6312, true, {577.326, 90.129, 463.919, 5.137, 1.474, 5.297, 2.4232}},
    {"ire65",         "mod_airy",  "TM65",                       6299, true, {482.530, -130.596, 564.557, -1.042, -0.214, -0.631, 8.15}},
    {"nzgd49",        "intl",      "New Zealand Geodetic Datum 1949", 6272, true, {59.47, -5.04, 187.44, 0.47, -0.1, 1.024, -4.5993}},
    {"OSGB36",        "airy",      "Ordnance Survey of Great Britain 1936", 6277, true, {446.448, -125.157, 542.060, 0.1502, 0.2470, 0.8421, -20.4894}},
};

constexpr ProjUnit kUnits[] = {
    {"m", 1.0}, {"us-ft", 12.0 / 39.37}, {"ft", 0.3048}, {"km", 1000.0}, {"dm", 0.1}, {"cm", 0.01}, {"mm", 0.001}, {"kmi", 1852.0},
    {"in", 0.0254}, {"yd", 0.9144}, {"mi", 1609.344}, {"fath", 1.8288}, {"ch", 20.1168}, {"link", 0.201168},
    {"us-in", 1.0 / 39.37}, {"us-yd", 36.0 / 39.37}, {"us-ch", 792.0 / 39.37}, {"us-mi", 63360.0 / 39.37},
    {"ind-yd", 0.91439523}, {"ind-ft", 0.30479841}, {"ind-ch", 20.11669506},
};

constexpr ProjMeridian kMeridians[] = {
    {"greenwich", 0.0},          {"lisbon", -(9 + 7 / 60.0 + 54.862 / 3600)}, {"paris", 2.33722917},
    {"bogota", -(74 + 4 / 60.0 + 51.3 / 3600)}, {"madrid", -(3 + 41 / 60.0 + 16.58 / 3600)}, {"rome", 12 + 27 / 60.0 + 8.4 / 3600},
    {"bern", 7 + 26 / 60.0 + 22.5 / 3600}, {"jakarta", 106 + 48 / 60.0 + 27.79 / 3600}, {"ferro", -(17 + 40 / 60.0)},
    {"brussels", 4 + 22 / 60.0 + 4.71 / 3600}, {"stockholm", 18 + 3 / 60.0 + 29.8 / 3600}, {"athens", 23 + 42 / 60.0 + 58.815 / 3600},
    {"oslo", 10 + 43 / 60.0 + 22.5 / 3600}, {"copenhagen", 12 + 34 / 60.0 + 40.35 / 3600},
};

// clang-format on

/// A datum's name as far as texts agree on it: letters and digits, folded, without the
/// words "datum" and "ensemble", the century of a year of the twentieth left out.
std::string CommonName(const std::string& name) {
  std::string bare;
  for (const char c : WithoutEnsemble(name)) {
    const auto folded = static_cast<char>(FoldCase(c));
    const bool isPart = (folded >= '0' && folded <= '9') || (folded >= 'a' && folded <= 'z') ||
                        folded == '+' || static_cast<unsigned char>(folded) >= 0x80;
    if (isPart) bare += folded;
  }
  for (size_t at = bare.find("datum"); at != std::string::npos; at = bare.find("datum", at))
    bare.erase(at, 5);
  const auto isDigit = [&bare](size_t at) { return at < bare.size() && bare[at] >= '0' && bare[at] <= '9'; };
  for (size_t at = bare.find("19"); at != std::string::npos; at = bare.find("19", at + 1)) {
    const bool isYear =
        isDigit(at + 2) && isDigit(at + 3) && !isDigit(at + 4) && (at == 0 || !isDigit(at - 1));
    if (isYear) bare.erase(at, 2);
  }
  return bare;
}

/// Whether a datum's ellipsoid may be the text's.  Those of method None hold WGS 84's for the datum's own.
bool FitsEllipsoid(const DatumDef& datum, const TextSystem& text) {
  const EllipsoidDef& e = *datum.GetEllipsoid();
  if (datum.GetMethod() == DatumMethodNone || e.IsUnknown()) return true;
  if (datum.GetMethod() == DatumMethodUnknown && e.GetMajorRadius() == 0.0) return true;
  return std::fabs(e.GetMajorRadius() - text.a) < 0.01 && std::fabs(e.GetFlattening() - text.f) < 1e-9;
}

bool SameToken(const DatumDef* datum, const DatumDef& other) {
  return datum && datum->GetToken() && other.GetToken() &&
         EqualIgnoringCase(datum->GetToken(), other.GetToken());
}

}  // namespace

const ORVDef* KnownSystemAt(int pos) { return Georeferenced(*ORVKnownSystemsList.Enum(pos)); }

std::string WithoutEnsemble(const std::string& name) {
  constexpr std::string_view kEnsemble = " ensemble";
  const bool isEnsemble =
      name.size() > kEnsemble.size() &&
      EqualIgnoringCase(std::string_view(name).substr(name.size() - kEnsemble.size()), kEnsemble);
  return isEnsemble ? name.substr(0, name.size() - kEnsemble.size()) : name;
}

bool IsUnnamedDatum(const std::string& name) {
  const std::string common = CommonName(name);
  for (const char* const word : {"unknown", "unnamed", "notspecified"}) {
    if (common.compare(0, std::strlen(word), word) == 0) return true;
  }
  return common.empty();
}

const DatumDef* KnownDatumOf(const TextSystem& text) {
  const DatumList& known = ORVKnownDatumsList;
  if (text.datumCode > 0) {
    const int index = known.FindByPOSCNumber(text.datumCode, nullptr, known.First());
    if (index != 0 && FitsEllipsoid(*known.Enum(index), text)) return known.Enum(index);
  }
  const auto byEsri = [&](const EsriRow& row) -> const DatumDef* {
    if (!EqualBare(row.name, text.datumName.c_str())) return nullptr;
    const int index = known.FindByPOSCNumber(row.code, nullptr, known.First());
    return index != 0 && FitsEllipsoid(*known.Enum(index), text) ? known.Enum(index) : nullptr;
  };
  for (const EsriRow& row : kEsriDatums) {
    if (const DatumDef* const datum = byEsri(row)) return datum;
  }
  for (const EsriRow& row : kEsriDatumsRead) {
    if (const DatumDef* const datum = byEsri(row)) return datum;
  }
  const std::string asked = CommonName(text.datumName);
  if (IsUnnamedDatum(text.datumName)) return nullptr;
  for (int index = known.First(); index <= known.Last(); ++index) {
    if (CommonName(known.EnumName(index)) == asked && FitsEllipsoid(*known.Enum(index), text))
      return known.Enum(index);
  }
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    const ORVDef* const system = KnownSystemAt(pos);
    if (!system || !system->HasDatum(false) || system->HasProjection(false, true)) continue;
    if (CommonName(system->GetShortName()) == asked && FitsEllipsoid(*system->GetDatum(), text))
      return system->GetDatum();
  }
  return nullptr;
}

const DatumDef* KnownDatumLike(const DatumDef& wanted, const TextSystem& text) {
  const std::string asked = CommonName(text.datumName);
  for (int index = ORVKnownDatumsList.First(); index <= ORVKnownDatumsList.Last(); ++index) {
    const DatumDef& datum = *ORVKnownDatumsList.Enum(index);
    const bool isNamed = text.datumCode > 0
                             ? datum.GetPOSCNumber() == text.datumCode
                             : !asked.empty() && CommonName(EmptyIfNull(datum.GetName())) == asked;
    if (isNamed && datum.CompareParameters(&wanted)) return &datum;
  }
  return nullptr;
}

const ORVDef* KnownGeographicOn(const DatumDef& datum) {
  const ORVDef* sameCode = nullptr;
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    const ORVDef* const system = KnownSystemAt(pos);
    if (!system || !system->HasDatum(false) || system->HasProjection(false, true)) continue;
    if (SameToken(system->GetDatum(), datum)) return system;
    // Another way of the same datum: "EPSG:6230-1784".
    const int code = datum.GetPOSCNumber();
    if (!sameCode && code != 0 && system->GetDatum()->GetPOSCNumber() == code) sameCode = system;
  }
  return sameCode;
}

const EllipsoidDef* KnownEllipsoidOn(const DatumDef& datum) {
  for (int pos = ORVKnownSystemsList.First(); pos <= ORVKnownSystemsList.Last(); ++pos) {
    const ORVDef* const system = KnownSystemAt(pos);
    if (!system || !system->HasProjection(true, true) || !SameToken(system->GetDatum(), datum)) continue;
    const EllipsoidDef* const ellipsoid = system->GetProjection()->GetEllipsoid();
    if (ellipsoid->GetFlattening() != 0.0) return ellipsoid;
  }
  return nullptr;
}

std::string EsriName(const std::string& name, int datumCode) {
  for (const EsriRow& row : kEsriDatums) {
    if (row.code == datumCode) return row.name;
  }
  std::string esri;
  for (const char c : name) {
    const bool isPart = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                        c == '+' || c == '-' || static_cast<unsigned char>(c) >= 0x80;
    if (isPart) {
      esri += c;
    } else if (!esri.empty() && esri.back() != '_') {
      esri += '_';
    }
  }
  while (!esri.empty() && esri.back() == '_') esri.pop_back();
  return esri.empty() ? "unnamed" : esri;
}

TextUnit LengthUnit(double metres, double tolerance) {
  TextUnit best{"unnamed", 0, metres};
  double nearest = tolerance;
  const auto offer = [&](const TextUnit& unit) {
    const double away = std::fabs(unit.size / metres - 1.0);
    if (unit.code == 0 || !(away < nearest || (away == 0.0 && best.code == 0))) return;
    nearest = away;
    best = unit;
  };
  for (const TextUnit& unit : kLengths) offer(unit);
  if (best.code != 0 && nearest <= 1e-14) return best;
  for (int index = ORVKnownLinearUnitsList.First(); index <= ORVKnownLinearUnitsList.Last(); ++index) {
    LinearUnitInfo info;
    if (!ORVKnownLinearUnitsList.Enum(index, info)) continue;
    const double size = info.multiplier > 0.0 ? info.multiplier
                        : info.divider > 0.0  ? 1.0 / info.divider
                                              : 0.0;
    if (size > 0.0) offer({info.name, info.posc, size});
  }
  return best;
}

TextUnit AngleUnit(double degrees) {
  for (const TextUnit& unit : kAngles) {
    if (std::fabs(degrees / unit.size - 1.0) < 1e-9) return unit;
  }
  return {"unnamed", 0, degrees};
}

const ProjEllipsoid* FindProjEllipsoid(const std::string& id) {
  for (const ProjEllipsoid& row : kEllipsoids) {
    if (id == row.id) return &row;
  }
  return nullptr;
}
const ProjEllipsoid* FindProjEllipsoid(double a, double f) {
  for (const ProjEllipsoid& row : kEllipsoids) {
    if (std::fabs(row.a - a) < 1e-7 && std::fabs(Flattening(row) - f) < 1e-14) return &row;
  }
  return nullptr;
}
double Flattening(const ProjEllipsoid& e) { return e.rf > 0.0 ? 1.0 / e.rf : (e.a - e.b) / e.a; }

const ProjDatum* FindProjDatum(const std::string& id) {
  for (const ProjDatum& row : kDatums) {
    if (EqualIgnoringCase(id, row.id)) return &row;
  }
  return nullptr;
}
const ProjUnit* FindProjUnit(const std::string& id) {
  for (const ProjUnit& row : kUnits) {
    if (id == row.id) return &row;
  }
  return nullptr;
}
const ProjUnit* FindProjUnit(double metres) {
  for (const ProjUnit& row : kUnits) {
    if (std::fabs(row.metres / metres - 1.0) < 1e-15) return &row;
  }
  return nullptr;
}
const ProjMeridian* FindProjMeridian(const std::string& id) {
  for (const ProjMeridian& row : kMeridians) {
    if (EqualIgnoringCase(id, row.id)) return &row;
  }
  return nullptr;
}

}  // namespace orv::internal
