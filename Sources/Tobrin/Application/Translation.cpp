#include "Application/Translation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>
#include <memory>

namespace tobrin {
namespace {

constexpr const char* sentences = "sentences";  // the context of texts that no class of Qt has

}  // namespace

void installTranslation() {
  auto translator = std::make_unique<QTranslator>(QCoreApplication::instance());
  if (!translator->load(QLocale(), "tobrin", "_", ":/Translations")) return;
  QCoreApplication::installTranslator(translator.release());  // owned by the application
}

std::string translated(std::string_view english) {
  const std::string text(english);
  return QCoreApplication::translate(sentences, text.c_str()).toStdString();
}

}  // namespace tobrin
