/* A C host of the installed library, compiled and linked by the C driver
 * alone: through this directory's CMake project, and with nothing but
 * pkg-config (cc main.c $(pkg-config --cflags --libs [--static] TavuroCommon)).
 * Against the static library the link needs the C++ runtime, which the C
 * driver does not add by itself. */
#include <TavuroCommon/TavuroCommon_c.h>

#include <stdio.h>
#include <string.h>

int main(void) {
  tavuro_TavuroError* error = tavuro_TavuroError_initWithErrorCode_errorDescription(
      tavuro_TavuroErrorCodes_ERROR_InvalidJson(),
      tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidJson());
  char* description = tavuro_TavuroError_errorDescription(error);
  char* version = tavuro_Utils_SDK_VERSION_CODE();
  const int ok = tavuro_TavuroError_errorCode(error) == -6 &&
                 strcmp(description, "Invalid Json response") == 0 &&
                 strcmp(version, "11.4.10") == 0;
  tavuro_string_free(version);
  tavuro_string_free(description);
  tavuro_TavuroError_release(error);
  printf("C consumer: %s\n", ok ? "linked and working" : "WRONG RESULTS");
  return ok ? 0 : 1;
}
