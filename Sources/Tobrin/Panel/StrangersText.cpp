#include "Panel/StrangersText.h"

namespace tobrin {

QString strangersText(const std::optional<std::string>& utf8) {
  if (!utf8) return {};
  QString line = QString::fromStdString(*utf8).simplified();
  line.removeIf([](QChar each) {
    return each.category() == QChar::Other_Control || (each >= u'\u202a' && each <= u'\u202e') ||
           (each >= u'\u2066' && each <= u'\u2069');
  });
  return line;
}

}  // namespace tobrin
