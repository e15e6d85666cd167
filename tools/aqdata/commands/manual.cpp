#include <fmt/format.h>

#include <sstream>

#include "tools/aqdata/program.h"

namespace aqdata {
namespace {

/// `text` escaped for roff, so that it is printed as it is and does not start a request.
std::string roff(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '\\')
      result += "\\e";
    else if (c == '-')
      result += "\\-";
    else
      result += c;
  }
  return result.starts_with('.') || result.starts_with('\'') ? "\\&" + result : result;
}

std::string literal(const std::string& text) {
  std::istringstream lines(text);
  std::string result = ".PP\n.nf\n";
  for (std::string line; std::getline(lines, line);) result += roff(line) + '\n';
  return result + ".fi\n";
}

std::string optionText(const CLI::Option& option) {
  std::string names = option.get_name(false, true);
  const std::string& form = option.get_option_text();
  if (!option.get_lnames().empty() && !form.empty()) names += ' ' + form;
  return fmt::format(".TP\n\\fB{}\\fR\n{}\n", roff(names), roff(option.get_description()));
}

std::string commandText(const CLI::App& command) {
  std::string arguments;
  std::string options;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_name(true).empty()) {
      options += optionText(*option);
    } else {
      arguments += ' ' + option->get_name(true);
    }
  }
  return fmt::format(".SS \"aqdata {}{} [OPTIONS]\"\n{}.\n{}{}", command.get_name(),
                     roff(arguments), roff(command.get_description()), options,
                     literal(command.get_footer()));
}

std::string manual(CLI::App& program) {
  std::string commands;
  for (const CLI::App* command : commandsOf(program)) commands += commandText(*command);
  return fmt::format(
      ".TH AQDATA 1 \"\" \"aqdata {}\"\n"
      ".SH NAME\naqdata \\- {}\n"
      ".SH SYNOPSIS\n\\fBaqdata\\fR COMMAND ...\n"
      ".SH DESCRIPTION\n{}\n{}"
      ".SH COMMANDS\n{}"
      ".SH JSON\nWith \\-\\-json, each result is a JSON document on one line. The keys are listed "
      "in\n"
      ".IR {}/aqdata.md .\n"
      ".SH FILES\n.TP\n.I {}\nThe documentation: a page for each file format, and one for this "
      "program.\n"
      ".SH ENVIRONMENT\n.TP\nNO_COLOR\nIf not empty, no colours are printed unless "
      "\\-\\-color always is given.\n.TP\nAQ_PYTHON\n"
      "The Python interpreter that draws images and converts to and from netCDF.\n",
      AQDATA_VERSION, "inspect, check and convert files of aircraft noise measurements",
      program.get_description(), literal(program.get_footer()), commands, roff(AQDATA_DOCUMENTS),
      roff(AQDATA_DOCUMENTS));
}

}  // namespace

void addManual(CLI::App& program, Session& session) {
  CLI::App* const command = addCommand(program, session, "manual", "Print the manual page", "",
                                       [&program, &session] { session.print(manual(program)); });
  command->group("");  // hidden: for the build, which installs the page
}

}  // namespace aqdata
