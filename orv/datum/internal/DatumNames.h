// DatumNames.h: the spellings of methods, targets and regression regions, for the texts and the files of
// datums.
#pragma once

#include "orv/core/internal/NameTable.h"
#include "orv/datum/DatumParameters.h"

namespace orv::internal {

inline constexpr NameRow<DatumMethod> kMethodNames[] = {
    {DatumMethodUnknown, "Unknown"},
    {DatumMethodNone, "None"},
    {DatumMethodMolodensky, "Molodensky"},
    {DatumMethodMolodensky, "Molodenski"},
    {DatumMethodMolodensky, "Mol"},
    {DatumMethodBursaWolf, "Bursa-Wolf"},
    {DatumMethodBursaWolf, "Bursa-Wolfe"},
    {DatumMethodBursaWolf, "Bursa"},
    {DatumMethodNADCON, "NADCON"},
    {DatumMethodNTV2, "NTV2"},
    {DatumMethodNTV2, "NTV-2"},
    {DatumMethodMRE, "MRE"},
};

inline constexpr NameRow<DatumTarget> kTargetNames[] = {
    {DatumTargetNone, "NONE"},
    {DatumTargetWGS84, "WGS84"},
    {DatumTargetNAD27, "NAD27"},
    {DatumTargetNAD27, "NAD27-CONUS"},
    {DatumTargetNAD83, "NAD83"},
    {DatumTargetNAD83, "NAD83-CONUS"},
    {DatumTargetNAD27Canada, "NAD27-CANADA"},
    {DatumTargetNAD83Canada, "NAD83-CANADA"},
};

/// DatumMRETypeNone has no name.
inline constexpr NameRow<DatumMREType> kMRETypeNames[] = {
    {DatumMRETypeAGD1966, "AGD1966"},
    {DatumMRETypeAGD1984, "AGD1984"},
    {DatumMRETypeCampo, "CAMPO"},
    {DatumMRETypeCorrego, "CORREGO"},
    {DatumMRETypeED50, "ED50"},
    {DatumMRETypeNAD27Canada, "NAD27CANADA"},
    {DatumMRETypeNAD27Conus, "NAD27CONUS"},
    {DatumMRETypeNAD27Conus, "NAD27"},
    {DatumMRETypeSA69, "SA69"},
};

}  // namespace orv::internal
