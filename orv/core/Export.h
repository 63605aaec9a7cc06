// Export.h: what the shared module shows to its host.
//
// Everything is hidden unless it carries ORV_API.  ORV_BUILDING is set while the module itself is compiled,
// ORV_STATIC by those who link the objects directly.
#pragma once

#if defined(ORV_STATIC)
#define ORV_API
#elif defined(_WIN32)
#if defined(ORV_BUILDING)
#define ORV_API __declspec(dllexport)
#else
#define ORV_API __declspec(dllimport)
#endif
#else
#define ORV_API __attribute__((visibility("default")))
#endif
