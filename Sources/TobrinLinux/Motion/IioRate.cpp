#include "Motion/IioRate.h"

#include <algorithm>
#include <sstream>

namespace tobrin {
namespace {

constexpr double wantedRate = 1000;  // Hz

struct Rate {
  double hz = 0;
  std::string text;
};

std::vector<Rate> listedRates(std::string_view available) {
  std::vector<Rate> rates;
  std::istringstream words{std::string(available)};
  for (std::string word; words >> word;)
    if (const auto hz = sysfs::parseNumber(word); hz && *hz > 0) rates.push_back({*hz, word});
  return rates;
}

// "[lowest step highest]": any value between, so the wanted one or the highest.
std::vector<std::string> ratesOfRange(std::string_view range) {
  const std::vector<Rate> bounds = listedRates(range.substr(1, range.find(']') - 1));
  std::vector<std::string> texts = {"1000"};
  if (!bounds.empty() && bounds.back().hz < wantedRate) texts = {bounds.back().text};
  return texts;
}

}  // namespace

std::vector<std::string> ratesToTry(std::string_view available) {
  if (available.starts_with("[")) return ratesOfRange(available);
  std::vector<Rate> rates = listedRates(available);
  if (rates.empty()) return {"1000", "800", "500", "400", "250", "200", "125", "100"};
  // The nearest above what is wanted comes first, then everything below in falling order.
  std::sort(rates.begin(), rates.end(), [](const Rate& a, const Rate& b) { return a.hz > b.hz; });
  const auto firstBelow =
      std::find_if(rates.begin(), rates.end(), [](const Rate& r) { return r.hz < wantedRate; });
  if (firstBelow != rates.begin()) rates.erase(rates.begin(), firstBelow - 1);
  std::vector<std::string> texts;
  texts.reserve(rates.size());
  for (const Rate& rate : rates)
    texts.push_back(rate.text);
  return texts;
}

std::optional<double> chooseRate(const IioDevice& device, AttributeChanges& changes) {
  const auto file = device.rateFile();
  if (!file) return std::nullopt;
  const std::string list = file->string() + "_available";
  const std::string before = sysfs::read(*file).value_or("");
  for (const std::string& text : ratesToTry(sysfs::read(list).value_or(""))) {
    if (changes.set(*file, text) != 0) continue;
    const double kept = sysfs::readNumber(*file).value_or(0);
    if (kept > 0) return kept;
  }
  // A device that stands still now would send nothing.
  if (sysfs::readNumber(*file).value_or(0) <= 0 && !before.empty())
    (void)sysfs::write(*file, before);
  return std::nullopt;
}

}  // namespace tobrin
