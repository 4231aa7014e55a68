/* TavuroExport.h: the symbol-visibility macro shared by TavuroCommon.h and
 * TavuroCommon_c.h. Hosts never need to include it themselves. */
#ifndef TAVUROCOMMON_TAVUROEXPORT_H_
#define TAVUROCOMMON_TAVUROEXPORT_H_

#if defined(_WIN32) && defined(TAVURO_SHARED_LIBRARY)
#if defined(TAVURO_BUILDING_LIBRARY)
#define TAVURO_EXPORT __declspec(dllexport)
#else
#define TAVURO_EXPORT __declspec(dllimport)
#endif
#elif defined(__GNUC__) || defined(__clang__)
#define TAVURO_EXPORT __attribute__((visibility("default")))
#else
#define TAVURO_EXPORT
#endif

#endif /* TAVUROCOMMON_TAVUROEXPORT_H_ */
