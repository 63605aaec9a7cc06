#include "tools/orv/SystemArgument.h"

#include <string_view>

#include "orv/convert/SystemText.h"
#include "orv/core/Error.h"
#include "orv/shared/Exception.h"
#include "tools/orv/Catalogue.h"
#include "tools/orv/Command.h"

namespace orv::tool {

const char* const kSystemArgumentHelp =
    "A system is the token, name, short name or code of a known one (EPSG:32633, 32633, \"WGS 84 / UTM zone 33N\"), or\n"
    "encoded text (it begins with \"<\"), well-known text, a PROJ string (\"+proj=utm +zone=33 +datum=WGS84\"), parameters\n"
    "(they hold a \"=\"), or else the name of a file with any of these, such as a .prj file.  Parameters are:\n"
    "  key=value,key=value,...   (in a file also one on each line; a value with a comma stands in double quotes)\n"
    "Keys:\n"
    "  method                    projection method, long or short name; geographic when not given\n"
    "  Scale xOrg yOrg Lon0 Lon1 Lon2 Lat0 Lat1 Lat2 K0 bSouth bUseAlpha Alpha bRotate bUOffset\n"
    "                            what the method has of these; not given: 0, false, Scale 1, K0 1 (UTM: 0.9996)\n"
    "  ellipsoid, or a and f or rf   a known one, or radius and (inverse) flattening; not given: the datum's\n"
    "  datum                     a known datum, also by the name of a geographic system: WGS84, DHDN, EPSG:6314\n"
    "  datum.method datum.target datum.dx datum.dy datum.dz datum.rx datum.ry datum.rz datum.K datum.PMShift\n"
    "  datum.Equation datum.NadconPrvi datum.ellipsoid, or datum.a and datum.f or datum.rf\n"
    "                            a datum of your own; shifts in metres, rotations in arc-seconds, K in ppm\n"
    "  name token comment        texts of the system\n"
    "Ellipsoids and datums: token, name or EPSG:code.  Angles: degrees, also as 9d30mE.  Case does not matter.\n"
    "Example: \"method=Transverse Mercator,Lon0=9,xOrg=3500000,datum=DHDN\"";

std::unique_ptr<CSDef> ReadSystem(const std::string& text) {
  LoadCatalogue();
  try {
    return ORVReadSystem(text);
  } catch (const shr::Exception& e) {
    if (e.Code() != ErrBadParameter) throw;
    throw UsageError(e.Message());
  }
}

std::unique_ptr<CSDef> ReadSystem(const std::string& text, const std::string& name) {
  try {
    return ReadSystem(text);
  } catch (const UsageError& e) {
    const bool bUnknown = std::string_view(e.what()).starts_with("unknown system");
    throw UsageError(name + ": " + e.what() +
                     (bUnknown ? "; orv list systems --search WORDS finds others" : ""));
  }
}

const ORVDef* Projected(const CSDef& system) {
  const ORVDef* const def = system.Type() == CSTypeORV ? static_cast<const ORVDef*>(&system) : nullptr;
  return def && def->HasProjection(false, true) ? def : nullptr;
}

}  // namespace orv::tool
