// Setter values in, a fresh load out: whatever the store's setters can hold,
// the file a save writes loads back as exactly those values, or no file is
// written at all. The input is up to six texts separated by 0xFF bytes
// (0xFF never occurs in UTF-8, yet a text may still hold other invalid
// bytes); a text that starts with 0xFE is absent.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/CredentialStore.h"

namespace {

std::optional<std::string> field(const std::vector<std::string_view>& parts, std::size_t i) {
  if (i >= parts.size() || (!parts[i].empty() && parts[i][0] == '\xFE')) return std::nullopt;
  return std::string(parts[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string_view> parts;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  for (std::size_t cut; (cut = rest.find('\xFF')) != std::string_view::npos;) {
    parts.push_back(rest.substr(0, cut));
    rest.remove_prefix(cut + 1);
  }
  parts.push_back(rest);

  tavuro::detail::CredentialFields saved{field(parts, 0), field(parts, 1), field(parts, 2),
                                         tavuro::Endpoints::newInstance()};
  saved.endpoints->setFrmEndpoint(field(parts, 3));
  saved.endpoints->setIdEndpoint(field(parts, 4));
  saved.endpoints->setHealthInsuranceEndpoint(field(parts, 5));

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
