#include "Model/Comforts.h"

#include <nlohmann/json.hpp>

namespace tobrin {

namespace {

using Json = nlohmann::json;

void read(const Json& document, const char* key, bool& value) {
  const auto found = document.find(key);
  if (found != document.end() && found->is_boolean()) value = found->get<bool>();
}

}  // namespace

Comforts Comforts::fromJson(std::string_view text) {
  Comforts comforts;
  const Json document = Json::parse(text, nullptr, false);
  if (!document.is_object()) return comforts;
  read(document, "maskWhileRecorded", comforts.maskWhileRecorded);
  read(document, "quietWhileLocked", comforts.quietWhileLocked);
  read(document, "keepsWideKeyAccess", comforts.keepsWideKeyAccess);
  return comforts;
}

std::string Comforts::toJson() const {
  return Json{{"maskWhileRecorded", maskWhileRecorded},
              {"quietWhileLocked", quietWhileLocked},
              {"keepsWideKeyAccess", keepsWideKeyAccess}}
      .dump();
}

}  // namespace tobrin
