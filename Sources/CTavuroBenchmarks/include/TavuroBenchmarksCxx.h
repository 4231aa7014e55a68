/* The C++ side of the Swift benchmarks: each function times one call of the
 * C++ interface in a loop and returns the best nanoseconds per call of
 * `rounds` rounds of `iterations` calls. */
#ifndef TAVURO_BENCHMARKS_CXX_H_
#define TAVURO_BENCHMARKS_CXX_H_

#include <stddef.h> /* NOLINT(modernize-deprecated-headers): also read as C */

#ifdef __cplusplus
extern "C" {
#endif

/** tavuro::Credential::getTavuroAuthHeader(). */
double tavuro_bench_cxx_getTavuroAuthHeader(size_t iterations, size_t rounds);

/** tavuro::Utils::getIntValue on the dictionary of `json` (an object text). */
double tavuro_bench_cxx_getIntValue(const char* json, const char* key, size_t iterations,
                                    size_t rounds);

#ifdef __cplusplus
}
#endif

#endif /* TAVURO_BENCHMARKS_CXX_H_ */
