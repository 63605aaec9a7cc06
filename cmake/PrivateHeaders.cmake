# Headers beside public ones that are the library's own: engines, methods and other parts that no host includes.
file(GLOB ORV_PRIVATE_HEADERS CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} orv/projection/Proj[A-Z]*.h)
list(FILTER ORV_PRIVATE_HEADERS EXCLUDE REGEX "Project")
list(APPEND ORV_PRIVATE_HEADERS
     orv/projection/Azimuthal.h orv/projection/Cone.h orv/projection/ConformalLatitude.h
     orv/projection/InverseLimits.h orv/projection/MeridianArc.h orv/projection/NewtonSteps.h
     orv/projection/RobinsonTables.h
     orv/datum/BursaWolf.h orv/datum/DatumMethods.h orv/datum/GenericReader.h orv/datum/GridShift.h
     orv/datum/Molodensky.h orv/datum/NTv2Grid.h orv/datum/NadconGrid.h orv/datum/NadconUtility.h
     orv/datum/Regression.h orv/datum/RegressionTables.h orv/datum/ZipReader.h)
