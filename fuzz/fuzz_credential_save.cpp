// Setter values in, a fresh load out: whatever the store's setters can hold,
// the file a save writes loads back as exactly those values, or no file is
// written at all. The input is up to six texts separated by 0xFF bytes
// (0xFF never occurs in UTF-8, yet a text may still hold other invalid
// bytes); a text that starts with 0xFE is absent.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/CredentialStore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  std::optional<std::string> texts[6];  // absent when the input runs out before
  for (std::size_t i = 0, cut = 0; i < 6 && cut != std::string_view::npos; ++i) {
    cut = rest.find('\xFF');
    const std::string_view part = rest.substr(0, cut);
    if (part.empty() || part[0] != '\xFE') texts[i] = std::string(part);
    rest.remove_prefix(cut == std::string_view::npos ? rest.size() : cut + 1);
  }
  tavuro::detail::CredentialFields saved{texts[0], texts[1], texts[2],
                                         tavuro::Endpoints::newInstance()};
  saved.endpoints->setFrmEndpoint(texts[3]);
  saved.endpoints->setIdEndpoint(texts[4]);
  saved.endpoints->setHealthInsuranceEndpoint(texts[5]);

  const std::optional<std::string> file = tavuro::detail::credentialFileBytes(saved);
  if (!file) return 0;  // the save fails and the old file stays
  const tavuro::detail::CredentialFields loaded = tavuro::detail::credentialFieldsFrom(*file);
  if (!loaded.endpoints || loaded.username != saved.username || loaded.password != saved.password ||
      loaded.subscription != saved.subscription ||
      loaded.endpoints->frmEndpoint() != saved.endpoints->frmEndpoint() ||
      loaded.endpoints->idEndpoint() != saved.endpoints->idEndpoint() ||
      loaded.endpoints->healthInsuranceEndpoint() != saved.endpoints->healthInsuranceEndpoint()) {
    __builtin_trap();
  }
  return 0;
}
