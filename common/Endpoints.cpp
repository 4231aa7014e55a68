#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

Endpoints::~Endpoints() = default;

std::shared_ptr<Endpoints> Endpoints::newInstance() {
  return std::make_shared<Endpoints>();
}

std::optional<std::string> Endpoints::frmEndpoint() const {
  return frmEndpoint_;
}
void Endpoints::setFrmEndpoint(std::optional<std::string> endpoint) {
  frmEndpoint_ = std::move(endpoint);
}

std::optional<std::string> Endpoints::idEndpoint() const {
  return idEndpoint_;
}
void Endpoints::setIdEndpoint(std::optional<std::string> endpoint) {
  idEndpoint_ = std::move(endpoint);
}

std::optional<std::string> Endpoints::passiveLivenessEndpoint() const {
  return passiveLivenessEndpoint_;
}
void Endpoints::setPassiveLivenessEndpoint(std::optional<std::string> endpoint) {
  passiveLivenessEndpoint_ = std::move(endpoint);
}

std::optional<std::string> Endpoints::healthInsuranceEndpoint() const {
  return healthInsuranceEndpoint_;
}
void Endpoints::setHealthInsuranceEndpoint(std::optional<std::string> endpoint) {
  healthInsuranceEndpoint_ = std::move(endpoint);
}

std::optional<std::string> Endpoints::kelmoEndpoint() const {
  return kelmoEndpoint_;
}
void Endpoints::setKelmoEndpoint(std::optional<std::string> endpoint) {
  kelmoEndpoint_ = std::move(endpoint);
}

}  // namespace tavuro
