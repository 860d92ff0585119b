/// All words of a command line, whatever the parsing library makes of them.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace tobrin::testing {

inline std::string textsOf(const CLI::App& app) {
  std::string text;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    text += command->get_name() + ": " + command->get_description() + "\n";
    for (const CLI::Option* option : command->get_options())
      if (option != command->get_help_ptr())
        text += "  " + option->get_name(true, true) + (option->get_required() ? "!" : "") + " [" +
                option->get_default_str() + "]: " + option->get_description() + "\n";
    text += command->get_footer();
  }
  return text;
}

}  // namespace tobrin::testing
