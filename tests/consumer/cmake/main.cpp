#include <cstdio>
#include <cstring>

#include <TavuroCommon/TavuroCommon.h>

int main() {
  const auto error = tavuro::TavuroError::newInstance();
  error->setErrorCode(tavuro::TavuroErrorCodes::ERROR_InvalidJson);
  error->setErrorDescription(tavuro::TavuroErrorDescriptions::ERROR_DESC_InvalidJson);
  const bool ok = error->errorCode() == -6 &&
                  tavuro::Utils::SDK_VERSION_CODE() == tavuro::kVersion;
  std::printf("consumer: %s\n", ok ? "linked and working" : "WRONG RESULTS");
  return ok ? 0 : 1;
}
