// The public interface, name by name and shape by shape: it must compile as C++17 and link against the installed
// module.  A call that a host has written stays valid.
#include <type_traits>

#include "orv/ORVCore.h"

using namespace orv;  // NOLINT: the types below read as a host writes them

static_assert(std::is_constructible_v<shr::Vec2d>);
static_assert(std::is_constructible_v<shr::Vec2d, double, double>);
static_assert(std::is_constructible_v<shr::Exception, const char*, const char*, int, int, const char*>);
static_assert(std::is_constructible_v<orv::LinearUnitInfo>);
static_assert(std::is_constructible_v<orv::AngularUnitInfo>);
static_assert(std::is_constructible_v<orv::LinearUnitList>);
static_assert(std::is_constructible_v<orv::AngularUnitList>);
static_assert(std::is_constructible_v<orv::MeridianInfo>);
static_assert(std::is_constructible_v<orv::MeridianList>);
static_assert(std::is_constructible_v<orv::EllipsoidDef>);
static_assert(
    std::is_constructible_v<orv::EllipsoidDef, double, double, const char*, const char*, const char*, int>);
static_assert(std::is_constructible_v<orv::EllipsoidList>);
static_assert(std::is_constructible_v<orv::EllipsoidList, const EllipsoidList&>);
static_assert(std::is_constructible_v<orv::DatumParameters>);
static_assert(std::is_constructible_v<orv::DatumDef>);
static_assert(std::is_constructible_v<orv::DatumDef, const DatumParameters*, int>);
static_assert(std::is_constructible_v<orv::DatumList>);
static_assert(std::is_constructible_v<orv::DatumList, const DatumList&>);
static_assert(std::is_constructible_v<orv::DatumConverter>);
static_assert(std::is_constructible_v<orv::DatumConverter, const DatumDef*, const DatumDef*>);
static_assert(std::is_constructible_v<orv::DatumConverter, const DatumConverter&>);
static_assert(std::is_constructible_v<orv::ProjectionParameters>);
static_assert(std::is_constructible_v<orv::ProjectionDef>);
static_assert(std::is_constructible_v<orv::ProjectionDef, ProjectionMethod>);
static_assert(std::is_constructible_v<orv::ProjectionDef, ProjectionParameters&>);
static_assert(std::is_constructible_v<orv::ProjectionDef, const ProjectionDef&>);
static_assert(std::is_constructible_v<orv::Projector>);
static_assert(std::is_constructible_v<orv::Projector, const ProjectionDef&>);
static_assert(std::is_constructible_v<orv::Projector, const Projector&>);
static_assert(std::is_constructible_v<orv::CSList>);
static_assert(std::is_constructible_v<orv::CSList, const CSList&>);
static_assert(std::is_constructible_v<orv::WarpDef>);
static_assert(std::is_constructible_v<orv::WarpTransformer>);
static_assert(std::is_constructible_v<orv::WarpTransformer, const WarpDef&>);
static_assert(std::is_constructible_v<orv::ORVDef>);
static_assert(std::is_constructible_v<orv::ORVDef, const DatumDef*, const ProjectionDef*, const WarpDef*>);
static_assert(std::is_constructible_v<orv::ORVDef, const ORVDef&>);
static_assert(std::is_constructible_v<orv::UCSDef>);
static_assert(std::is_constructible_v<orv::UCSDef, double, double, double, const WarpDef*>);
static_assert(std::is_constructible_v<orv::UCSDef, double, shr::Vec2d&, const WarpDef*>);
static_assert(std::is_constructible_v<orv::UCSDef, const UCSDef&>);
static_assert(std::is_constructible_v<orv::CSTransformer>);
static_assert(std::is_constructible_v<orv::CSTransformer, const CSDef*, const CSDef*, bool, bool>);
static_assert(std::is_constructible_v<orv::CSTransformer, const CSTransformer&>);

namespace {
int g_Used = 0;
template <class F>
void Use(F function) {
  if (function) ++g_Used;
}
}  // namespace

int UsePublicInterface() {
  Use(static_cast<const char* (shr::Exception::*)() const>(&shr::Exception::Module));
  Use(static_cast<const char* (shr::Exception::*)() const>(&shr::Exception::File));
  Use(static_cast<int (shr::Exception::*)() const>(&shr::Exception::Line));
  Use(static_cast<int (shr::Exception::*)() const>(&shr::Exception::Code));
  Use(static_cast<const char* (shr::Exception::*)() const>(&shr::Exception::Message));
  Use(static_cast<const char* (shr::Exception::*)() const>(&shr::Exception::what));
  Use(static_cast<bool (shr::ISerialize::*)() const>(&shr::ISerialize::IsStoring));
  Use(static_cast<void (shr::ISerialize::*)(void*, size_t)>(&shr::ISerialize::Read));
  Use(static_cast<void (shr::ISerialize::*)(const void*, size_t)>(&shr::ISerialize::Write));
  Use(static_cast<bool (*)(const char*, std::string&)>(&shr::LocateFile));
  Use(static_cast<void (*)(const char*)>(&orv::ORVSetConfigPath));
  Use(static_cast<const char* (*)()>(&orv::ORVGetConfigPath));
  Use(static_cast<bool (*)(const char*, std::string&)>(&orv::ORVFindConfigFile));
  Use(static_cast<void (*)(const char*, bool)>(&orv::ORVInitialize));
  Use(static_cast<void (*)()>(&orv::ORVShutdown));
  Use(static_cast<unsigned int (*)()>(&orv::ORVReferenceCount));
  Use(static_cast<bool (*)()>(&orv::ORVActive));
  Use(static_cast<bool (*)(bool)>(&orv::ORVLoadAllConfigs));
  Use(static_cast<void (*)(std::string&)>(&orv::ORVDumpBenchmarks));
  Use(static_cast<void (*)(bool, bool)>(&orv::ORVEnableCSMIFace));
  Use(static_cast<void (*)(ORVTraceCallback, void*)>(&orv::ORVSetTraceCallback));
  Use(static_cast<std::vector<KnownEntry> (*)(KnownList)>(&orv::ORVKnownEntries));
  Use(static_cast<int (*)(KnownList, std::string_view)>(&orv::ORVFindKnown));
  Use(static_cast<std::string (*)(const ORVDef&, TextDialect, bool)>(&orv::ORVWriteText));
  Use(static_cast<std::unique_ptr<ORVDef> (*)(std::string_view)>(&orv::ORVReadText));
  Use(static_cast<bool (*)(std::string_view)>(&orv::ORVLooksLikeWkt));
  Use(static_cast<bool (*)(std::string_view)>(&orv::ORVLooksLikeProjString));
  Use(static_cast<const char* (*)(TextDialect)>(&orv::ORVTextDialectName));
  Use(static_cast<std::vector<KnownEntry> (*)(KnownList, std::string_view, size_t)>(&orv::ORVSearchKnown));
  Use(static_cast<std::vector<KnownEntry> (*)(KnownList, std::string_view, size_t)>(&orv::ORVNearestKnown));
  Use(static_cast<std::vector<DatumStep> (*)(const DatumDef&, const DatumDef&)>(&orv::ORVPlanDatumRoute));
  Use(static_cast<int (orv::CSList::*)() const>(&orv::CSList::Count));
  Use(static_cast<int (orv::CSList::*)() const>(&orv::CSList::First));
  Use(static_cast<int (orv::CSList::*)() const>(&orv::CSList::Last));
  Use(static_cast<const CSDef* (orv::CSList::*)(int) const>(&orv::CSList::Enum));
  Use(static_cast<CSType (orv::CSList::*)(int) const>(&orv::CSList::EnumType));
  Use(static_cast<const char* (orv::CSList::*)(int) const>(&orv::CSList::EnumToken));
  Use(static_cast<const char* (orv::CSList::*)(int) const>(&orv::CSList::EnumName));
  Use(static_cast<int (orv::CSList::*)(const char*) const>(&orv::CSList::FindByToken));
  Use(static_cast<int (orv::CSList::*)(const char*) const>(&orv::CSList::FindByName));
  Use(static_cast<int (orv::CSList::*)(const char*) const>(&orv::CSList::FindByShortName));
  Use(static_cast<int (orv::CSList::*)(const CSDef&, bool, std::vector<int>&) const>(
      &orv::CSList::FindSystem));
  Use(static_cast<int (orv::CSList::*)(const CSDef&, bool, bool) const>(&orv::CSList::FindSystem));
  Use(static_cast<int (orv::CSList::*)(const CSDef&)>(&orv::CSList::Add));
  Use(static_cast<bool (orv::CSList::*)(int, const CSDef&)>(&orv::CSList::Replace));
  Use(static_cast<bool (orv::CSList::*)(int)>(&orv::CSList::Remove));
  Use(static_cast<bool (orv::CSList::*)(const char*, bool)>(&orv::CSList::Load));
  Use(static_cast<bool (orv::CSList::*)(const char*) const>(&orv::CSList::Save));
  Use(static_cast<void (orv::CSList::*)()>(&orv::CSList::Flush));
  Use(static_cast<void (orv::CSList::*)(const CSList&)>(&orv::CSList::CopyAll));
  Use(static_cast<void (orv::CSList::*)(std::string&, size_t) const>(&orv::CSList::DebugDump));
  Use(static_cast<void (*)(const char*)>(&orv::ORVSetNadconGridPath));
  Use(static_cast<const char* (*)()>(&orv::ORVGetNadconGridPath));
  Use(static_cast<void (*)(const char*)>(&orv::ORVSetNTv2GridFile));
  Use(static_cast<const char* (*)()>(&orv::ORVGetNTv2GridFile));
  Use(static_cast<const char* (*)()>(&orv::ORVGetErrorText));
  Use(static_cast<const char* (*)()>(&orv::ORVGetErrorFile));
  Use(static_cast<int (*)()>(&orv::ORVGetErrorLine));
  Use(static_cast<int (*)()>(&orv::ORVGetErrorCode));
  Use(static_cast<int (orv::LinearUnitList::*)() const>(&orv::LinearUnitList::First));
  Use(static_cast<int (orv::LinearUnitList::*)() const>(&orv::LinearUnitList::Last));
  Use(static_cast<int (orv::LinearUnitList::*)() const>(&orv::LinearUnitList::Count));
  Use(static_cast<bool (orv::LinearUnitList::*)(int, LinearUnitInfo&) const>(&orv::LinearUnitList::Enum));
  Use(static_cast<const char* (orv::LinearUnitList::*)(int) const>(&orv::LinearUnitList::EnumToken));
  Use(static_cast<const char* (orv::LinearUnitList::*)(int) const>(&orv::LinearUnitList::EnumName));
  Use(static_cast<const char* (orv::LinearUnitList::*)(int) const>(&orv::LinearUnitList::EnumNamePlural));
  Use(static_cast<double (orv::LinearUnitList::*)(int) const>(&orv::LinearUnitList::EnumMultiplier));
  Use(static_cast<double (orv::LinearUnitList::*)(int) const>(&orv::LinearUnitList::EnumDivider));
  Use(static_cast<int (orv::LinearUnitList::*)(int) const>(&orv::LinearUnitList::EnumPOSC));
  Use(static_cast<int (orv::LinearUnitList::*)(const char*) const>(&orv::LinearUnitList::FindByToken));
  Use(static_cast<int (orv::LinearUnitList::*)(const char*) const>(&orv::LinearUnitList::FindByName));
  Use(static_cast<int (orv::LinearUnitList::*)(int) const>(&orv::LinearUnitList::FindByPOSCNumber));
  Use(static_cast<int (orv::LinearUnitList::*)(double) const>(&orv::LinearUnitList::FindByMultiplier));
  Use(static_cast<int (orv::LinearUnitList::*)(double) const>(&orv::LinearUnitList::FindByDivider));
  Use(static_cast<int (orv::LinearUnitList::*)(const LinearUnitInfo&)>(&orv::LinearUnitList::Add));
  Use(static_cast<bool (orv::LinearUnitList::*)(int, const LinearUnitInfo&)>(&orv::LinearUnitList::Replace));
  Use(static_cast<bool (orv::LinearUnitList::*)(int)>(&orv::LinearUnitList::Remove));
  Use(static_cast<void (orv::LinearUnitList::*)()>(&orv::LinearUnitList::Flush));
  Use(static_cast<bool (orv::LinearUnitList::*)(const char*, bool)>(&orv::LinearUnitList::Load));
  Use(static_cast<bool (orv::LinearUnitList::*)(const char*) const>(&orv::LinearUnitList::Save));
  Use(static_cast<int (orv::AngularUnitList::*)() const>(&orv::AngularUnitList::First));
  Use(static_cast<int (orv::AngularUnitList::*)() const>(&orv::AngularUnitList::Last));
  Use(static_cast<int (orv::AngularUnitList::*)() const>(&orv::AngularUnitList::Count));
  Use(static_cast<bool (orv::AngularUnitList::*)(int, AngularUnitInfo&) const>(&orv::AngularUnitList::Enum));
  Use(static_cast<const char* (orv::AngularUnitList::*)(int) const>(&orv::AngularUnitList::EnumToken));
  Use(static_cast<const char* (orv::AngularUnitList::*)(int) const>(&orv::AngularUnitList::EnumName));
  Use(static_cast<const char* (orv::AngularUnitList::*)(int) const>(&orv::AngularUnitList::EnumNamePlural));
  Use(static_cast<double (orv::AngularUnitList::*)(int) const>(&orv::AngularUnitList::EnumMultiplier));
  Use(static_cast<double (orv::AngularUnitList::*)(int) const>(&orv::AngularUnitList::EnumDivider));
  Use(static_cast<int (orv::AngularUnitList::*)(int) const>(&orv::AngularUnitList::EnumPOSC));
  Use(static_cast<int (orv::AngularUnitList::*)(const char*) const>(&orv::AngularUnitList::FindByToken));
  Use(static_cast<int (orv::AngularUnitList::*)(const char*) const>(&orv::AngularUnitList::FindByName));
  Use(static_cast<int (orv::AngularUnitList::*)(int) const>(&orv::AngularUnitList::FindByPOSCNumber));
  Use(static_cast<int (orv::AngularUnitList::*)(double) const>(&orv::AngularUnitList::FindByMultiplier));
  Use(static_cast<int (orv::AngularUnitList::*)(double) const>(&orv::AngularUnitList::FindByDivider));
  Use(static_cast<int (orv::AngularUnitList::*)(const AngularUnitInfo&)>(&orv::AngularUnitList::Add));
  Use(static_cast<bool (orv::AngularUnitList::*)(int, const AngularUnitInfo&)>(
      &orv::AngularUnitList::Replace));
  Use(static_cast<bool (orv::AngularUnitList::*)(int)>(&orv::AngularUnitList::Remove));
  Use(static_cast<void (orv::AngularUnitList::*)()>(&orv::AngularUnitList::Flush));
  Use(static_cast<bool (orv::AngularUnitList::*)(const char*, bool)>(&orv::AngularUnitList::Load));
  Use(static_cast<bool (orv::AngularUnitList::*)(const char*) const>(&orv::AngularUnitList::Save));
  Use(static_cast<double (*)(double, int, int)>(&orv::ORVConvertLinearUnit));
  Use(static_cast<double (*)(double, int, int)>(&orv::ORVConvertAngularUnit));
  Use(static_cast<int (orv::MeridianList::*)() const>(&orv::MeridianList::First));
  Use(static_cast<int (orv::MeridianList::*)() const>(&orv::MeridianList::Last));
  Use(static_cast<int (orv::MeridianList::*)() const>(&orv::MeridianList::Count));
  Use(static_cast<bool (orv::MeridianList::*)(int, MeridianInfo&) const>(&orv::MeridianList::Enum));
  Use(static_cast<const char* (orv::MeridianList::*)(int) const>(&orv::MeridianList::EnumToken));
  Use(static_cast<const char* (orv::MeridianList::*)(int) const>(&orv::MeridianList::EnumName));
  Use(static_cast<double (orv::MeridianList::*)(int) const>(&orv::MeridianList::EnumLongitude));
  Use(static_cast<int (orv::MeridianList::*)(int) const>(&orv::MeridianList::EnumPOSC));
  Use(static_cast<int (orv::MeridianList::*)(const char*) const>(&orv::MeridianList::FindByToken));
  Use(static_cast<int (orv::MeridianList::*)(const char*) const>(&orv::MeridianList::FindByName));
  Use(static_cast<int (orv::MeridianList::*)(int) const>(&orv::MeridianList::FindByPOSCNumber));
  Use(static_cast<int (orv::MeridianList::*)(double) const>(&orv::MeridianList::FindByLongitude));
  Use(static_cast<int (orv::MeridianList::*)(const MeridianInfo&)>(&orv::MeridianList::Add));
  Use(static_cast<bool (orv::MeridianList::*)(int, const MeridianInfo&)>(&orv::MeridianList::Replace));
  Use(static_cast<bool (orv::MeridianList::*)(int)>(&orv::MeridianList::Remove));
  Use(static_cast<void (orv::MeridianList::*)()>(&orv::MeridianList::Flush));
  Use(static_cast<bool (orv::MeridianList::*)(const char*, bool)>(&orv::MeridianList::Load));
  Use(static_cast<bool (orv::MeridianList::*)(const char*) const>(&orv::MeridianList::Save));
  Use(static_cast<void (orv::EllipsoidDef::*)()>(&orv::EllipsoidDef::Flush));
  Use(static_cast<const char* (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::GetToken));
  Use(static_cast<const char* (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::GetName));
  Use(static_cast<const char* (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::GetComment));
  Use(static_cast<void (orv::EllipsoidDef::*)(const char*)>(&orv::EllipsoidDef::SetToken));
  Use(static_cast<void (orv::EllipsoidDef::*)(const char*)>(&orv::EllipsoidDef::SetName));
  Use(static_cast<void (orv::EllipsoidDef::*)(const char*)>(&orv::EllipsoidDef::SetComment));
  Use(static_cast<int (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::GetPOSCNumber));
  Use(static_cast<void (orv::EllipsoidDef::*)(int)>(&orv::EllipsoidDef::SetPOSCNumber));
  Use(static_cast<double (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::GetMajorRadius));
  Use(static_cast<double (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::GetMinorRadius));
  Use(static_cast<double (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::GetFlattening));
  Use(static_cast<void (orv::EllipsoidDef::*)(double)>(&orv::EllipsoidDef::SetMajorRadius));
  Use(static_cast<void (orv::EllipsoidDef::*)(double)>(&orv::EllipsoidDef::SetFlattening));
  Use(static_cast<bool (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::IsUnknown));
  Use(static_cast<bool (orv::EllipsoidDef::*)() const>(&orv::EllipsoidDef::CheckParameters));
  Use(static_cast<bool (orv::EllipsoidDef::*)(std::string&) const>(&orv::EllipsoidDef::CheckParameters));
  Use(static_cast<bool (orv::EllipsoidDef::*)(const EllipsoidDef*, bool) const>(
      &orv::EllipsoidDef::CompareParameters));
  Use(static_cast<void (orv::EllipsoidDef::*)(std::string&) const>(&orv::EllipsoidDef::EncodeToText));
  Use(static_cast<void (orv::EllipsoidDef::*)(const std::string&, size_t*)>(
      &orv::EllipsoidDef::DecodeFromText));
  Use(static_cast<void (orv::EllipsoidDef::*)(std::string&, size_t) const>(&orv::EllipsoidDef::DebugDump));
  Use(static_cast<int (orv::EllipsoidList::*)() const>(&orv::EllipsoidList::First));
  Use(static_cast<int (orv::EllipsoidList::*)() const>(&orv::EllipsoidList::Last));
  Use(static_cast<int (orv::EllipsoidList::*)() const>(&orv::EllipsoidList::Count));
  Use(static_cast<const EllipsoidDef* (orv::EllipsoidList::*)(int) const>(&orv::EllipsoidList::Enum));
  Use(static_cast<bool (orv::EllipsoidList::*)(int, EllipsoidDef&) const>(&orv::EllipsoidList::Enum));
  Use(static_cast<const char* (orv::EllipsoidList::*)(int) const>(&orv::EllipsoidList::EnumToken));
  Use(static_cast<bool (orv::EllipsoidList::*)(int, std::string&) const>(&orv::EllipsoidList::EnumToken));
  Use(static_cast<const char* (orv::EllipsoidList::*)(int) const>(&orv::EllipsoidList::EnumName));
  Use(static_cast<bool (orv::EllipsoidList::*)(int, std::string&) const>(&orv::EllipsoidList::EnumName));
  Use(static_cast<double (orv::EllipsoidList::*)(int) const>(&orv::EllipsoidList::EnumRadius));
  Use(static_cast<double (orv::EllipsoidList::*)(int) const>(&orv::EllipsoidList::EnumFlattening));
  Use(static_cast<int (orv::EllipsoidList::*)(int) const>(&orv::EllipsoidList::EnumPOSCNumber));
  Use(static_cast<int (orv::EllipsoidList::*)(const char*, EllipsoidDef*) const>(
      &orv::EllipsoidList::FindByName));
  Use(static_cast<int (orv::EllipsoidList::*)(const char*, EllipsoidDef*) const>(
      &orv::EllipsoidList::FindByToken));
  Use(static_cast<int (orv::EllipsoidList::*)(int) const>(&orv::EllipsoidList::FindByPOSCNumber));
  Use(static_cast<int (orv::EllipsoidList::*)(const EllipsoidDef&) const>(
      &orv::EllipsoidList::FindEllipsoid));
  Use(static_cast<int (orv::EllipsoidList::*)(double, double) const>(&orv::EllipsoidList::FindByDimensions));
  Use(static_cast<int (orv::EllipsoidList::*)(const EllipsoidDef&)>(&orv::EllipsoidList::Add));
  Use(static_cast<bool (orv::EllipsoidList::*)(int, const EllipsoidDef&)>(&orv::EllipsoidList::Replace));
  Use(static_cast<bool (orv::EllipsoidList::*)(int)>(&orv::EllipsoidList::Remove));
  Use(static_cast<void (orv::EllipsoidList::*)()>(&orv::EllipsoidList::Flush));
  Use(static_cast<void (orv::EllipsoidList::*)(const EllipsoidList&)>(&orv::EllipsoidList::CopyAll));
  Use(static_cast<bool (orv::EllipsoidList::*)(const char*, bool)>(&orv::EllipsoidList::Load));
  Use(static_cast<bool (orv::EllipsoidList::*)(const char*) const>(&orv::EllipsoidList::Save));
  Use(static_cast<void (orv::EllipsoidList::*)(std::string&, size_t) const>(&orv::EllipsoidList::DebugDump));
  Use(static_cast<bool (*)(char*, double, int, char, char, char)>(&orv::DegreesToLatLon));
  Use(static_cast<bool (*)(const char*, double*, char)>(&orv::LatLonToDegrees));
  Use(static_cast<void (orv::DatumParameters::*)()>(&orv::DatumParameters::Flush));
  Use(static_cast<const char* (*)(DatumMethod)>(&orv::DatumDef::MethodToName));
  Use(static_cast<bool (*)(DatumMethod, std::string&)>(&orv::DatumDef::MethodToName));
  Use(static_cast<DatumMethod (*)(const char*)>(&orv::DatumDef::NameToMethod));
  Use(static_cast<const char* (*)(DatumTarget)>(&orv::DatumDef::TargetToName));
  Use(static_cast<bool (*)(DatumTarget, std::string&)>(&orv::DatumDef::TargetToName));
  Use(static_cast<DatumTarget (*)(const char*)>(&orv::DatumDef::NameToTarget));
  Use(static_cast<const char* (*)(DatumMREType)>(&orv::DatumDef::MRETypeToName));
  Use(static_cast<bool (*)(DatumMREType, std::string&)>(&orv::DatumDef::MRETypeToName));
  Use(static_cast<DatumMREType (*)(const char*)>(&orv::DatumDef::NameToMREType));
  Use(static_cast<const char* (*)(DatumParameterID)>(&orv::DatumDef::ParameterName));
  Use(static_cast<bool (*)(DatumParameterID, std::string&)>(&orv::DatumDef::ParameterName));
  Use(static_cast<ORVDataTypeID (*)(DatumParameterID)>(&orv::DatumDef::ParameterDataType));
  Use(static_cast<bool (*)(DatumMethod, DatumParameterID)>(&orv::DatumDef::UsesParameter));
  Use(static_cast<size_t (*)(DatumMethod)>(&orv::DatumDef::NumParameters));
  Use(static_cast<DatumParameterID (*)(DatumMethod, size_t)>(&orv::DatumDef::EnumParameter));
  Use(static_cast<bool (orv::DatumDef::*)(DatumParameterID) const>(&orv::DatumDef::UsesParameter));
  Use(static_cast<size_t (orv::DatumDef::*)() const>(&orv::DatumDef::NumParameters));
  Use(static_cast<DatumParameterID (orv::DatumDef::*)(size_t) const>(&orv::DatumDef::EnumParameter));
  Use(static_cast<bool (*)(const DatumParameters*, const DatumParameters*)>(
      &orv::DatumDef::CompareParameters));
  Use(static_cast<bool (orv::DatumDef::*)(const DatumDef*) const>(&orv::DatumDef::CompareParameters));
  Use(static_cast<bool (orv::DatumDef::*)(const DatumParameters*) const>(&orv::DatumDef::CompareParameters));
  Use(static_cast<const char* (orv::DatumDef::*)() const>(&orv::DatumDef::GetToken));
  Use(static_cast<const char* (orv::DatumDef::*)() const>(&orv::DatumDef::GetName));
  Use(static_cast<const char* (orv::DatumDef::*)() const>(&orv::DatumDef::GetComment));
  Use(static_cast<void (orv::DatumDef::*)(const char*)>(&orv::DatumDef::SetToken));
  Use(static_cast<void (orv::DatumDef::*)(std::string&)>(&orv::DatumDef::SetToken));
  Use(static_cast<void (orv::DatumDef::*)(const char*)>(&orv::DatumDef::SetName));
  Use(static_cast<void (orv::DatumDef::*)(std::string&)>(&orv::DatumDef::SetName));
  Use(static_cast<void (orv::DatumDef::*)(const char*)>(&orv::DatumDef::SetComment));
  Use(static_cast<void (orv::DatumDef::*)(std::string&)>(&orv::DatumDef::SetComment));
  Use(static_cast<int (orv::DatumDef::*)() const>(&orv::DatumDef::GetPOSCNumber));
  Use(static_cast<void (orv::DatumDef::*)(int)>(&orv::DatumDef::SetPOSCNumber));
  Use(static_cast<DatumTarget (orv::DatumDef::*)() const>(&orv::DatumDef::GetSpecial));
  Use(static_cast<void (orv::DatumDef::*)(DatumTarget)>(&orv::DatumDef::SetSpecial));
  Use(static_cast<DatumMethod (orv::DatumDef::*)() const>(&orv::DatumDef::GetMethod));
  Use(static_cast<DatumTarget (orv::DatumDef::*)() const>(&orv::DatumDef::GetTarget));
  Use(static_cast<DatumTarget (orv::DatumDef::*)() const>(&orv::DatumDef::GetConversionTarget));
  Use(static_cast<const EllipsoidDef* (orv::DatumDef::*)() const>(&orv::DatumDef::GetEllipsoid));
  Use(static_cast<void (orv::DatumDef::*)(DatumMethod, bool)>(&orv::DatumDef::SetMethod));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameters&) const>(&orv::DatumDef::GetParameters));
  Use(static_cast<void (orv::DatumDef::*)(const DatumParameters*)>(&orv::DatumDef::SetParameters));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, double)>(&orv::DatumDef::SetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, int)>(&orv::DatumDef::SetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, const EllipsoidDef&)>(
      &orv::DatumDef::SetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, double&) const>(&orv::DatumDef::GetParameter));
  Use(static_cast<double (orv::DatumDef::*)(DatumParameterID) const>(&orv::DatumDef::GetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, int&) const>(&orv::DatumDef::GetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, bool&) const>(&orv::DatumDef::GetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, DatumTarget&) const>(
      &orv::DatumDef::GetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, DatumMREType&) const>(
      &orv::DatumDef::GetParameter));
  Use(static_cast<void (orv::DatumDef::*)(DatumParameterID, EllipsoidDef&) const>(
      &orv::DatumDef::GetParameter));
  Use(static_cast<DatumParameterID (orv::DatumDef::*)(std::string&) const>(&orv::DatumDef::CheckParameters));
  Use(static_cast<DatumParameterID (orv::DatumDef::*)() const>(&orv::DatumDef::CheckParameters));
  Use(static_cast<bool (orv::DatumDef::*)() const>(&orv::DatumDef::IsUnknown));
  Use(static_cast<void (orv::DatumDef::*)()>(&orv::DatumDef::Flush));
  Use(static_cast<void (orv::DatumDef::*)(std::string&) const>(&orv::DatumDef::EncodeToText));
  Use(static_cast<void (orv::DatumDef::*)(const std::string&, size_t*)>(&orv::DatumDef::DecodeFromText));
  Use(static_cast<void (orv::DatumDef::*)(std::string&, size_t) const>(&orv::DatumDef::DebugDump));
  Use(static_cast<void (*)(const DatumParameters*, std::string&, size_t)>(
      &orv::DatumDef::DebugDumpParameters));
  Use(static_cast<void (orv::DatumList::*)(const DatumList&)>(&orv::DatumList::CopyAll));
  Use(static_cast<void (orv::DatumList::*)()>(&orv::DatumList::Flush));
  Use(static_cast<int (orv::DatumList::*)() const>(&orv::DatumList::Count));
  Use(static_cast<int (orv::DatumList::*)() const>(&orv::DatumList::First));
  Use(static_cast<int (orv::DatumList::*)() const>(&orv::DatumList::Last));
  Use(static_cast<const DatumDef* (orv::DatumList::*)(int) const>(&orv::DatumList::Enum));
  Use(static_cast<bool (orv::DatumList::*)(int, DatumDef&) const>(&orv::DatumList::Enum));
  Use(static_cast<const char* (orv::DatumList::*)(int) const>(&orv::DatumList::EnumName));
  Use(static_cast<bool (orv::DatumList::*)(int, std::string&) const>(&orv::DatumList::EnumName));
  Use(static_cast<const char* (orv::DatumList::*)(int) const>(&orv::DatumList::EnumToken));
  Use(static_cast<bool (orv::DatumList::*)(int, std::string&) const>(&orv::DatumList::EnumToken));
  Use(static_cast<int (orv::DatumList::*)(int) const>(&orv::DatumList::EnumPOSCNumber));
  Use(static_cast<unsigned long (orv::DatumList::*)(int) const>(&orv::DatumList::EnumFlags));
  Use(static_cast<bool (orv::DatumList::*)(int, DatumParameters&) const>(&orv::DatumList::EnumParameters));
  Use(static_cast<int (orv::DatumList::*)(const DatumDef&) const>(&orv::DatumList::FindDatum));
  Use(static_cast<int (orv::DatumList::*)(DatumTarget, int) const>(&orv::DatumList::FindSpecial));
  Use(static_cast<int (orv::DatumList::*)(const char*, DatumDef*) const>(&orv::DatumList::FindByName));
  Use(static_cast<int (orv::DatumList::*)(const char*, DatumDef*) const>(&orv::DatumList::FindByToken));
  Use(static_cast<int (orv::DatumList::*)(int, DatumDef*, int) const>(&orv::DatumList::FindByPOSCNumber));
  Use(static_cast<int (orv::DatumList::*)(int, DatumMethod, DatumDef*, int) const>(
      &orv::DatumList::FindByPOSCNumberAndMethod));
  Use(static_cast<int (orv::DatumList::*)(const DatumDef&, unsigned long)>(&orv::DatumList::Add));
  Use(static_cast<bool (orv::DatumList::*)(int, const DatumDef&, unsigned long)>(&orv::DatumList::Replace));
  Use(static_cast<bool (orv::DatumList::*)(int)>(&orv::DatumList::Remove));
  Use(static_cast<bool (orv::DatumList::*)(const char*, bool)>(&orv::DatumList::Load));
  Use(static_cast<bool (orv::DatumList::*)(const char*) const>(&orv::DatumList::Save));
  Use(static_cast<void (orv::DatumList::*)(std::string&, size_t) const>(&orv::DatumList::DebugDump));
  Use(static_cast<void (orv::DatumConverter::*)(const DatumDef*)>(&orv::DatumConverter::SetSourceDatum));
  Use(static_cast<void (orv::DatumConverter::*)(const DatumDef*)>(&orv::DatumConverter::SetDestDatum));
  Use(static_cast<void (orv::DatumConverter::*)(DatumDef&) const>(&orv::DatumConverter::GetSourceDatum));
  Use(static_cast<void (orv::DatumConverter::*)(DatumDef&) const>(&orv::DatumConverter::GetDestDatum));
  Use(static_cast<void (orv::DatumConverter::*)()>(&orv::DatumConverter::Initialize));
  Use(static_cast<void (orv::DatumConverter::*)(const std::vector<DatumMethod>&)>(
      &orv::DatumConverter::Initialize));
  Use(static_cast<void (orv::DatumConverter::*)(shr::Vec2d*, size_t)>(&orv::DatumConverter::Convert));
  Use(static_cast<void (orv::DatumConverter::*)(std::vector<shr::Vec2d>&)>(&orv::DatumConverter::Convert));
  Use(static_cast<bool (orv::DatumConverter::*)() const>(&orv::DatumConverter::CheckUnplottableResult));
  Use(static_cast<void (orv::DatumConverter::*)()>(&orv::DatumConverter::Flush));
  Use(static_cast<void (orv::DatumConverter::*)(std::string&, size_t) const>(
      &orv::DatumConverter::DebugDump));
  Use(static_cast<void (orv::ProjectionParameters::*)()>(&orv::ProjectionParameters::Flush));
  Use(static_cast<unsigned int (*)(ProjectionMethod)>(&orv::ProjectionDef::Flags));
  Use(static_cast<const char* (*)(ProjectionMethod)>(&orv::ProjectionDef::MethodToName));
  Use(static_cast<ProjectionMethod (*)(const char*)>(&orv::ProjectionDef::NameToMethod));
  Use(static_cast<ORVDataTypeID (*)(ProjectionParameterID)>(&orv::ProjectionDef::ParameterDataType));
  Use(static_cast<ProjectionParameterID (*)(const char*)>(&orv::ProjectionDef::NameToParameter));
  Use(static_cast<const char* (*)(ProjectionParameterID)>(&orv::ProjectionDef::ParameterShortName));
  Use(static_cast<const char* (*)(ProjectionParameterID)>(&orv::ProjectionDef::ParameterName));
  Use(static_cast<void (*)(ProjectionParameterID, std::string&)>(&orv::ProjectionDef::ParameterName));
  Use(static_cast<bool (*)(ProjectionMethod, ProjectionParameterID)>(&orv::ProjectionDef::UsesParameter));
  Use(static_cast<ProjectionParameterID (*)(ProjectionMethod, size_t)>(&orv::ProjectionDef::EnumParameter));
  Use(static_cast<size_t (*)(ProjectionMethod)>(&orv::ProjectionDef::NumParameters));
  Use(static_cast<void (orv::ProjectionDef::*)()>(&orv::ProjectionDef::Flush));
  Use(static_cast<ProjectionMethod (orv::ProjectionDef::*)() const>(&orv::ProjectionDef::GetMethod));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionMethod)>(&orv::ProjectionDef::SetMethod));
  Use(static_cast<bool (orv::ProjectionDef::*)(ProjectionParameterID) const>(
      &orv::ProjectionDef::UsesParameter));
  Use(static_cast<ProjectionParameterID (orv::ProjectionDef::*)(size_t) const>(
      &orv::ProjectionDef::EnumParameter));
  Use(static_cast<size_t (orv::ProjectionDef::*)() const>(&orv::ProjectionDef::NumParameters));
  Use(static_cast<const ProjectionParameters* (orv::ProjectionDef::*)() const>(
      &orv::ProjectionDef::GetParameters));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameters&) const>(
      &orv::ProjectionDef::GetParameters));
  Use(static_cast<void (orv::ProjectionDef::*)(const ProjectionParameters*)>(
      &orv::ProjectionDef::SetParameters));
  Use(static_cast<const EllipsoidDef* (orv::ProjectionDef::*)() const>(&orv::ProjectionDef::GetEllipsoid));
  Use(static_cast<bool (orv::ProjectionDef::*)(bool) const>(&orv::ProjectionDef::IsUnknown));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionMethod)>(&orv::ProjectionDef::SetDefaultParameters));
  Use(static_cast<ProjectionParameterID (orv::ProjectionDef::*)(std::string&) const>(
      &orv::ProjectionDef::CheckParameters));
  Use(static_cast<ProjectionParameterID (orv::ProjectionDef::*)() const>(
      &orv::ProjectionDef::CheckParameters));
  Use(static_cast<bool (orv::ProjectionDef::*)(const ProjectionDef&, ProjectionParameterID*) const>(
      &orv::ProjectionDef::Compare));
  Use(static_cast<bool (*)(const ProjectionParameters&, const ProjectionParameters&, ProjectionParameterID*)>(
      &orv::ProjectionDef::CompareParameters));
  Use(static_cast<void (orv::ProjectionDef::*)(std::string&) const>(&orv::ProjectionDef::EncodeToText));
  Use(static_cast<void (orv::ProjectionDef::*)(const std::string&, size_t*)>(
      &orv::ProjectionDef::DecodeFromText));
  Use(static_cast<void (orv::ProjectionDef::*)(std::string&, size_t) const>(&orv::ProjectionDef::DebugDump));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, double)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, int)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, bool)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, const EllipsoidDef&)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, double&) const>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, int&) const>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, bool&) const>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (orv::ProjectionDef::*)(ProjectionParameterID, EllipsoidDef&) const>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<double (orv::ProjectionDef::*)(ProjectionParameterID) const>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (*)(ProjectionParameters&, ProjectionParameterID, double)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (*)(ProjectionParameters&, ProjectionParameterID, int)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (*)(ProjectionParameters&, ProjectionParameterID, bool)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (*)(ProjectionParameters&, ProjectionParameterID, const EllipsoidDef&)>(
      &orv::ProjectionDef::SetParameter));
  Use(static_cast<void (*)(const ProjectionParameters&, ProjectionParameterID, double&)>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (*)(const ProjectionParameters&, ProjectionParameterID, int&)>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (*)(const ProjectionParameters&, ProjectionParameterID, bool&)>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (*)(const ProjectionParameters&, ProjectionParameterID, EllipsoidDef&)>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<double (*)(const ProjectionParameters&, ProjectionParameterID)>(
      &orv::ProjectionDef::GetParameter));
  Use(static_cast<void (orv::Projector::*)(const ProjectionDef*)>(&orv::Projector::SetSystem));
  Use(static_cast<void (orv::Projector::*)(ProjectionDef&) const>(&orv::Projector::GetSystem));
  Use(static_cast<void (orv::Projector::*)(shr::Vec2d*, size_t)>(&orv::Projector::TransformForward));
  Use(static_cast<void (orv::Projector::*)(std::vector<shr::Vec2d>&)>(&orv::Projector::TransformForward));
  Use(static_cast<void (orv::Projector::*)(shr::Vec2d*, size_t)>(&orv::Projector::TransformInverse));
  Use(static_cast<void (orv::Projector::*)(std::vector<shr::Vec2d>&)>(&orv::Projector::TransformInverse));
  Use(static_cast<bool (orv::Projector::*)() const>(&orv::Projector::CheckUnplottableResult));
  Use(static_cast<bool (orv::Projector::*)(const shr::Vec2d&) const>(&orv::Projector::LatLonInProjection));
  Use(static_cast<bool (orv::Projector::*)(const shr::Vec2d*) const>(&orv::Projector::LatLonInProjection));
  Use(static_cast<bool (orv::Projector::*)(const shr::Vec2d*, size_t, double*, double*)>(
      &orv::Projector::OffsetSplitObject));
  Use(static_cast<void (orv::Projector::*)(void*, size_t, const shr::Vec2d*,
                                           bool (*)(void*, size_t, const shr::Vec2d*))>(
      &orv::Projector::PreclipPolyline));
  Use(static_cast<void (orv::Projector::*)(void*, size_t, const size_t*, const shr::Vec2d*,
                                           bool (*)(void*, size_t, const size_t*, const shr::Vec2d*),
                                           bool (*)(void*, size_t, const shr::Vec2d*))>(
      &orv::Projector::PreclipPolygon));
  Use(static_cast<void (orv::Projector::*)()>(&orv::Projector::Flush));
  Use(static_cast<void (orv::Projector::*)(std::string&, size_t) const>(&orv::Projector::DebugDump));
  Use(static_cast<const char* (*)(WarpMethod)>(&orv::WarpDef::MethodName));
  Use(static_cast<WarpMethod (*)(const char*)>(&orv::WarpDef::NameToMethod));
  Use(static_cast<WarpMethod (*)(std::string&)>(&orv::WarpDef::NameToMethod));
  Use(static_cast<size_t (*)(WarpMethod)>(&orv::WarpDef::RequiredControls));
  Use(static_cast<WarpMethod (orv::WarpDef::*)() const>(&orv::WarpDef::GetMethod));
  Use(static_cast<const char* (orv::WarpDef::*)() const>(&orv::WarpDef::MethodName));
  Use(static_cast<void (orv::WarpDef::*)(WarpMethod)>(&orv::WarpDef::SetMethod));
  Use(static_cast<void (orv::WarpDef::*)(double&, double&, double&, double&, double&, double&) const>(
      &orv::WarpDef::GetCoefficients));
  Use(static_cast<void (orv::WarpDef::*)(double*) const>(&orv::WarpDef::GetCoefficients));
  Use(static_cast<void (orv::WarpDef::*)(double, double, double, double, double, double)>(
      &orv::WarpDef::SetCoefficients));
  Use(static_cast<void (orv::WarpDef::*)(double*)>(&orv::WarpDef::SetCoefficients));
  Use(static_cast<void (orv::WarpDef::*)(const shr::Vec2d&)>(&orv::WarpDef::AddSourcePoint));
  Use(static_cast<void (orv::WarpDef::*)(double, double)>(&orv::WarpDef::AddSourcePoint));
  Use(static_cast<void (orv::WarpDef::*)(const shr::Vec2d&)>(&orv::WarpDef::AddDestinationPoint));
  Use(static_cast<void (orv::WarpDef::*)(double, double)>(&orv::WarpDef::AddDestinationPoint));
  Use(static_cast<void (orv::WarpDef::*)(size_t)>(&orv::WarpDef::SetNumControlPoints));
  Use(static_cast<size_t (orv::WarpDef::*)(bool) const>(&orv::WarpDef::NumControlPoints));
  Use(static_cast<int (orv::WarpDef::*)(shr::Vec2d&) const>(&orv::WarpDef::FindSourcePoint));
  Use(static_cast<int (orv::WarpDef::*)(double, double) const>(&orv::WarpDef::FindSourcePoint));
  Use(static_cast<int (orv::WarpDef::*)(shr::Vec2d&) const>(&orv::WarpDef::FindDestinationPoint));
  Use(static_cast<int (orv::WarpDef::*)(double, double) const>(&orv::WarpDef::FindDestinationPoint));
  Use(static_cast<const shr::Vec2d* (orv::WarpDef::*)(size_t) const>(&orv::WarpDef::EnumSourcePoint));
  Use(static_cast<const shr::Vec2d* (orv::WarpDef::*)(size_t) const>(&orv::WarpDef::EnumDestinationPoint));
  Use(static_cast<bool (orv::WarpDef::*)(size_t, shr::Vec2d&) const>(&orv::WarpDef::EnumSourcePoint));
  Use(static_cast<bool (orv::WarpDef::*)(size_t, shr::Vec2d&) const>(&orv::WarpDef::EnumDestinationPoint));
  Use(static_cast<bool (orv::WarpDef::*)(size_t, shr::Vec2d&)>(&orv::WarpDef::ReplaceSourcePoint));
  Use(static_cast<bool (orv::WarpDef::*)(size_t, double, double)>(&orv::WarpDef::ReplaceSourcePoint));
  Use(static_cast<bool (orv::WarpDef::*)(size_t, shr::Vec2d&)>(&orv::WarpDef::ReplaceDestinationPoint));
  Use(static_cast<bool (orv::WarpDef::*)(size_t, double, double)>(&orv::WarpDef::ReplaceDestinationPoint));
  Use(static_cast<void (orv::WarpDef::*)()>(&orv::WarpDef::Flush));
  Use(static_cast<bool (orv::WarpDef::*)(const WarpDef&) const>(&orv::WarpDef::Compare));
  Use(static_cast<bool (orv::WarpDef::*)() const>(&orv::WarpDef::Validate));
  Use(static_cast<bool (orv::WarpDef::*)(std::string&) const>(&orv::WarpDef::Validate));
  Use(static_cast<void (orv::WarpDef::*)(int, int)>(&orv::WarpDef::CoefficientsToControls));
  Use(static_cast<void (orv::WarpDef::*)()>(&orv::WarpDef::ControlsToCoefficients));
  Use(static_cast<void (orv::WarpDef::*)(int, int, int, int)>(&orv::WarpDef::Resize));
  Use(static_cast<void (orv::WarpDef::*)(std::string&) const>(&orv::WarpDef::EncodeToText));
  Use(static_cast<void (orv::WarpDef::*)(const std::string&, size_t*)>(&orv::WarpDef::DecodeFromText));
  Use(static_cast<void (orv::WarpDef::*)(std::string&, size_t) const>(&orv::WarpDef::DebugDump));
  Use(static_cast<void (orv::WarpTransformer::*)(const WarpDef*)>(&orv::WarpTransformer::SetSystem));
  Use(static_cast<void (orv::WarpTransformer::*)(WarpDef&) const>(&orv::WarpTransformer::GetSystem));
  Use(static_cast<void (orv::WarpTransformer::*)(shr::Vec2d*, size_t)>(
      &orv::WarpTransformer::TransformForward));
  Use(static_cast<void (orv::WarpTransformer::*)(std::vector<shr::Vec2d>&)>(
      &orv::WarpTransformer::TransformForward));
  Use(static_cast<void (orv::WarpTransformer::*)(double&, std::vector<double>&)>(
      &orv::WarpTransformer::ComputeError));
  Use(static_cast<void (orv::WarpTransformer::*)(double*, double*, size_t)>(
      &orv::WarpTransformer::ComputeError));
  Use(static_cast<void (orv::WarpTransformer::*)(std::string&, size_t) const>(
      &orv::WarpTransformer::DebugDump));
  Use(static_cast<void (orv::CSDef::*)(const std::string&, size_t*)>(&orv::CSDef::DecodeFromText));
  Use(static_cast<CSDef* (orv::CSDef::*)() const>(&orv::CSDef::Clone));
  Use(static_cast<void (orv::CSDef::*)(const char*)>(&orv::CSDef::SetName));
  Use(static_cast<void (orv::CSDef::*)(const char*)>(&orv::CSDef::SetToken));
  Use(static_cast<void (orv::CSDef::*)(const char*)>(&orv::CSDef::SetComment));
  Use(static_cast<bool (orv::CSDef::*)() const>(&orv::CSDef::Check));
  Use(static_cast<bool (orv::CSDef::*)(std::string&) const>(&orv::CSDef::Check));
  Use(static_cast<bool (orv::CSDef::*)(const CSDef&, bool, std::string*) const>(&orv::CSDef::Compare));
  Use(static_cast<const char* (orv::CSDef::*)() const>(&orv::CSDef::GetName));
  Use(static_cast<const char* (orv::CSDef::*)() const>(&orv::CSDef::GetToken));
  Use(static_cast<const char* (orv::CSDef::*)() const>(&orv::CSDef::GetComment));
  Use(static_cast<void (orv::CSDef::*)(const WarpDef*)>(&orv::CSDef::SetWarp));
  Use(static_cast<const WarpDef* (orv::CSDef::*)() const>(&orv::CSDef::GetWarp));
  Use(static_cast<bool (orv::CSDef::*)() const>(&orv::CSDef::HasWarp));
  Use(static_cast<void (orv::CSDef::*)(std::string&) const>(&orv::CSDef::EncodeToText));
  Use(static_cast<void (orv::CSDef::*)(shr::ISerialize&)>(&orv::CSDef::Serialize));
  Use(static_cast<void (orv::CSDef::*)(std::string&, size_t) const>(&orv::CSDef::DebugDump));
  Use(static_cast<CSType (orv::CSDef::*)() const>(&orv::CSDef::Type));
  Use(static_cast<std::string (orv::CSDef::*)() const>(&orv::CSDef::GetShortName));
  Use(static_cast<CSDef* (*)(const std::string&, size_t*)>(&orv::CSDef::BuildFromEncodedText));
  Use(static_cast<void (orv::ORVDef::*)(const std::string&, size_t*)>(&orv::ORVDef::DecodeFromText));
  Use(static_cast<ORVDef* (orv::ORVDef::*)() const>(&orv::ORVDef::Clone));
  Use(static_cast<bool (orv::ORVDef::*)() const>(&orv::ORVDef::Check));
  Use(static_cast<bool (orv::ORVDef::*)(std::string&) const>(&orv::ORVDef::Check));
  Use(static_cast<bool (orv::ORVDef::*)(const CSDef&, bool, std::string*) const>(&orv::ORVDef::Compare));
  Use(static_cast<void (orv::ORVDef::*)(const WarpDef*)>(&orv::ORVDef::SetWarp));
  Use(static_cast<const WarpDef* (orv::ORVDef::*)() const>(&orv::ORVDef::GetWarp));
  Use(static_cast<bool (orv::ORVDef::*)() const>(&orv::ORVDef::HasWarp));
  Use(static_cast<void (orv::ORVDef::*)(std::string&) const>(&orv::ORVDef::EncodeToText));
  Use(static_cast<void (orv::ORVDef::*)(shr::ISerialize&)>(&orv::ORVDef::Serialize));
  Use(static_cast<void (orv::ORVDef::*)(std::string&, size_t) const>(&orv::ORVDef::DebugDump));
  Use(static_cast<const DatumDef* (orv::ORVDef::*)() const>(&orv::ORVDef::GetDatum));
  Use(static_cast<const ProjectionDef* (orv::ORVDef::*)() const>(&orv::ORVDef::GetProjection));
  Use(static_cast<void (orv::ORVDef::*)(const DatumDef*)>(&orv::ORVDef::SetDatum));
  Use(static_cast<void (orv::ORVDef::*)(const ProjectionDef*)>(&orv::ORVDef::SetProjection));
  Use(static_cast<bool (orv::ORVDef::*)(bool) const>(&orv::ORVDef::HasDatum));
  Use(static_cast<bool (orv::ORVDef::*)(bool, bool) const>(&orv::ORVDef::HasProjection));
  Use(static_cast<int (orv::ORVDef::*)() const>(&orv::ORVDef::GetPOSC));
  Use(static_cast<void (orv::ORVDef::*)(int)>(&orv::ORVDef::SetPOSC));
  Use(static_cast<int (orv::ORVDef::*)() const>(&orv::ORVDef::GetUSGS));
  Use(static_cast<void (orv::ORVDef::*)(int)>(&orv::ORVDef::SetUSGS));
  Use(static_cast<const char* (orv::ORVDef::*)() const>(&orv::ORVDef::GetLegacyName));
  Use(static_cast<void (orv::ORVDef::*)(const char*)>(&orv::ORVDef::SetLegacyName));
  Use(static_cast<void (orv::ORVDef::*)()>(&orv::ORVDef::Flush));
  Use(static_cast<void (orv::ORVDef::*)(const ORVDef&)>(&orv::ORVDef::CopyAll));
  Use(static_cast<void (orv::UCSDef::*)(const std::string&, size_t*)>(&orv::UCSDef::DecodeFromText));
  Use(static_cast<UCSDef* (orv::UCSDef::*)() const>(&orv::UCSDef::Clone));
  Use(static_cast<bool (orv::UCSDef::*)() const>(&orv::UCSDef::Check));
  Use(static_cast<bool (orv::UCSDef::*)(std::string&) const>(&orv::UCSDef::Check));
  Use(static_cast<bool (orv::UCSDef::*)(const CSDef&, bool, std::string*) const>(&orv::UCSDef::Compare));
  Use(static_cast<void (orv::UCSDef::*)(const WarpDef*)>(&orv::UCSDef::SetWarp));
  Use(static_cast<const WarpDef* (orv::UCSDef::*)() const>(&orv::UCSDef::GetWarp));
  Use(static_cast<bool (orv::UCSDef::*)() const>(&orv::UCSDef::HasWarp));
  Use(static_cast<void (orv::UCSDef::*)(std::string&) const>(&orv::UCSDef::EncodeToText));
  Use(static_cast<void (orv::UCSDef::*)(shr::ISerialize&)>(&orv::UCSDef::Serialize));
  Use(static_cast<void (orv::UCSDef::*)(std::string&, size_t) const>(&orv::UCSDef::DebugDump));
  Use(static_cast<double (orv::UCSDef::*)() const>(&orv::UCSDef::GetScale));
  Use(static_cast<void (orv::UCSDef::*)(double)>(&orv::UCSDef::SetScale));
  Use(static_cast<void (orv::UCSDef::*)(double&, double&) const>(&orv::UCSDef::GetOrigin));
  Use(static_cast<void (orv::UCSDef::*)(shr::Vec2d&) const>(&orv::UCSDef::GetOrigin));
  Use(static_cast<void (orv::UCSDef::*)(double, double)>(&orv::UCSDef::SetOrigin));
  Use(static_cast<void (orv::UCSDef::*)(const shr::Vec2d&)>(&orv::UCSDef::SetOrigin));
  Use(static_cast<void (orv::UCSDef::*)()>(&orv::UCSDef::Flush));
  Use(static_cast<void (orv::UCSDef::*)(const UCSDef&)>(&orv::UCSDef::CopyAll));
  Use(static_cast<void (orv::CSTransformer::*)(const CSDef*, bool)>(&orv::CSTransformer::SetSource));
  Use(static_cast<void (orv::CSTransformer::*)(const CSDef*, bool)>(&orv::CSTransformer::SetDest));
  Use(static_cast<const CSDef* (orv::CSTransformer::*)() const>(&orv::CSTransformer::GetSource));
  Use(static_cast<const CSDef* (orv::CSTransformer::*)() const>(&orv::CSTransformer::GetDest));
  Use(static_cast<bool (orv::CSTransformer::*)() const>(&orv::CSTransformer::GetSourceWarpEnabled));
  Use(static_cast<bool (orv::CSTransformer::*)() const>(&orv::CSTransformer::GetDestWarpEnabled));
  Use(static_cast<bool (orv::CSTransformer::*)() const>(&orv::CSTransformer::IsInitialized));
  Use(static_cast<bool (orv::CSTransformer::*)() const>(&orv::CSTransformer::CheckUnplottableResult));
  Use(static_cast<void (orv::CSTransformer::*)()>(&orv::CSTransformer::Initialize));
  Use(static_cast<void (orv::CSTransformer::*)(const shr::Vec2d*, shr::Vec2d*, size_t) const>(
      &orv::CSTransformer::Transform));
  Use(static_cast<void (orv::CSTransformer::*)(const std::vector<shr::Vec2d>&, std::vector<shr::Vec2d>&)
                      const>(&orv::CSTransformer::Transform));
  Use(static_cast<void (orv::CSTransformer::*)()>(&orv::CSTransformer::Flush));
  Use(static_cast<void (orv::CSTransformer::*)(const CSTransformer&)>(&orv::CSTransformer::Dup));
  Use(static_cast<void (orv::CSTransformer::*)(std::string&, size_t) const>(&orv::CSTransformer::DebugDump));
  return g_Used;
}
