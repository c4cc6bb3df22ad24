// The manual page and the completion for bash, made from what the commands
// declare, as the help is.
#include "PagesCommand.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "OutputOptions.h"
#include "SessionOptions.h"
#include "Version.h"

namespace {

constexpr const char* kDescription =
    "Prints the manual page (man) or the completion for bash (bash). Both are installed with\n"
    "the program; a shell without them reads: source <(qorql pages bash)";

using Options = std::vector<const CLI::Option*>;

// Names as they are typed: -o, --output.
std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() != 0; }
bool isPositional(const CLI::Option& option) { return !option.nonpositional(); }

// --- the manual page ----------------------------------------------------------------

std::string roff(const std::string& text) {
  std::string result;
  bool isLineStart = true;
  for (const char c : text) {
    if (isLineStart && (c == '.' || c == '\'')) result += "\\&";
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
    isLineStart = c == '\n';
  }
  return result;
}

std::string synopsis(const CLI::App& app) {
  std::string text = ".B " + roff(app.get_name()) + "\n[OPTIONS]";
  for (const CLI::Option* option : app.get_options()) {
    if (!isPositional(*option)) continue;
    const bool isRepeatable = option->get_expected_max() == CLI::detail::expected_max_vector_size;
    const std::string name = option->get_name(true) + (isRepeatable ? "..." : "");
    text += option->get_required() ? " " + name : " [" + name + "]";
  }
  return text + "\n";
}

void printOption(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : namesOf(option)) names += (names.empty() ? "" : ", ") + ("\\fB" + roff(name) + "\\fR");
  if (isPositional(option)) names = "\\fI" + option.get_name(true) + "\\fR";
  if (takesValue(option) && !isPositional(option)) names += " \\fI" + roff(option.get_type_name()) + "\\fR";
  std::cout << ".TP\n" << names << '\n' << roff(option.get_description()) << '\n';
}

// The options that most commands have alike, declared apart from them.
class SessionPart {
 public:
  SessionPart() { declareSessionOptions(_app, _options); }
  const CLI::App& app() const noexcept { return _app; }
  bool has(const CLI::Option& option) const {
    const std::vector<std::string> names = namesOf(option);
    return !names.empty() && _app.get_option_no_throw(names.back()) != nullptr;
  }

 private:
  CLI::App _app;
  SessionOptions _options;
};

void printCommand(const Command& command, const SessionPart& session) {
  const DeclaredCommand declared = declareCommand(command);
  const CLI::App& app = *declared.app;
  std::cout << ".SS " << roff(app.get_name()) << '\n' << synopsis(app);
  std::cout << ".PP\n" << roff(app.get_description()) << '\n';
  for (const CLI::Option* option : app.get_options()) {
    if (option != app.get_help_ptr() && !session.has(*option)) printOption(*option);
  }
  std::cout << ".PP\n.nf\n" << roff(app.get_footer()) << "\n.fi\n";
}

constexpr const char* kFiles =
    ".SH FILES\n"
    ".TP\n\\fI$XDG_CACHE_HOME/qorql/\\fR, else \\fI~/.cache/qorql/\\fR\n"
    "What large MOF files declare; may be deleted at any time.\n"
    ".TP\n\\fI$XDG_STATE_HOME/qorql/history\\fR, else \\fI~/.local/state/qorql/history\\fR\n"
    "The statements of the shell.\n"
    ".TP\n\\fI~/.editrc\\fR\n"
    "The keys of the shell, see\n.BR editrc (5).\n";

void printManual() {
  const SessionPart session;
  const DeclaredCommand first = declareCommand(allCommands().front());
  std::cout << ".TH QORQL 1 \"\" \"qorql " << roff(versionText()) << "\" \"User Commands\"\n"
            << ".SH NAME\nqorql \\- query CIM instances\n.SH SYNOPSIS\n"
            << synopsis(*first.app) << ".br\n.B qorql\n\\fICOMMAND\\fR [OPTIONS] ...\n"
            << ".SH OPTIONS\nEvery command but pages takes these; the others stand with their command.\n";
  for (const CLI::Option* option : session.app().get_options()) {
    if (option != session.app().get_help_ptr()) printOption(*option);
  }
  printOption(*first.app->get_help_ptr());
  std::cout << ".SH COMMANDS\nWithout a command the first one runs.\n";
  for (const Command& command : allCommands()) printCommand(command, session);
  std::cout << kFiles;
}

// --- completion for bash ----------------------------------------------------------------

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// What may stand for an option's value; empty: anything.
std::string valuesOf(const CLI::Option& option) {
  const std::string& type = option.get_type_name();
  std::vector<std::string> words;
  if (type == "FORM") {
    for (const auto& form : outputForms()) words.push_back(form.first);
  }
  if (type == "LEVEL") words = logLevelNames();
  return joined(words);
}

bool namesClass(const CLI::App& app) {
  const Options options = app.get_options();
  return std::any_of(options.begin(), options.end(), [](const CLI::Option* option) {
    return isPositional(*option) && (option->get_name(true) == "NAME" || option->get_name(true) == "CLASS");
  });
}

// The case branches of one command: what follows an option, and the options.
void printBranches(const Command& command) {
  const DeclaredCommand declared = declareCommand(command);
  std::vector<std::string> all;
  std::cout << "    " << command.name << ")\n      case \"$previous\" in\n";
  for (const CLI::Option* option : declared.app->get_options()) {
    const std::vector<std::string> names = namesOf(*option);
    all.insert(all.end(), names.begin(), names.end());
    if (names.empty() || !takesValue(*option)) continue;
    std::string pattern = joined(names);
    std::replace(pattern.begin(), pattern.end(), ' ', '|');
    const std::string& type = option->get_type_name();
    const std::string values = valuesOf(*option);
    std::cout << "        " << pattern << ") ";
    if (type == "FILE" || type == "PATH") {
      std::cout << "COMPREPLY=($(compgen -f -- \"$current\")); compopt -o filenames";
    } else if (!values.empty()) {
      std::cout << "COMPREPLY=($(compgen -W '" << values << "' -- \"$current\"))";
    } else {
      std::cout << "COMPREPLY=()";
    }
    std::cout << "; return ;;\n";
  }
  std::cout << "      esac\n      words='" << joined(all) << "'";
  if (namesClass(*declared.app)) std::cout << "\n      needsClass=1";
  std::cout << " ;;\n";
}

void printCompletion() {
  std::vector<std::string> names;
  for (const Command& command : allCommands()) names.emplace_back(command.name);
  std::cout << "# Completion of qorql for bash, made by: qorql pages bash\n"
               "_qorql() {\n"
               "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
               "  local words= word named= needsClass=\n"
               "  local commands='"
            << joined(names) << "' command=" << names.front()
            << "\n"
               "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
               "    if [[ $word && \" $commands \" == *\" $word \"* ]]; then command=$word named=1; break; fi\n"
               "  done\n"
               "  case \"$command\" in\n";
  for (const Command& command : allCommands()) printBranches(command);
  std::cout << "  esac\n"
               "  [ \"$named\" ] || words=\"$words $commands\"\n"
               "  if [[ $needsClass && $current != -* ]]; then\n"
               "    words=\"$words $(\"${COMP_WORDS[0]}\" classes --quiet 2>/dev/null)\"\n"
               "  fi\n"
               "  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
               "  [ ${#COMPREPLY[@]} -gt 0 ] || COMPREPLY=($(compgen -f -- \"$current\"))\n"
               "}\n"
               "complete -F _qorql qorql\n";
}

}  // namespace

CommandAction declarePagesCommand(CLI::App& app) {
  static const std::map<std::string, void (*)()> pages = {{"bash", printCompletion}, {"man", printManual}};
  const auto which = std::make_shared<std::string>();
  describeCommand(app, kDescription, "Exit status: 0 done; 2 wrong usage.");
  declareValue(app, {.names = "PAGE",
                     .description = "man or bash",
                     .take = keepIn(*which),
                     .check = oneOf(pages),
                     .isRequired = true});
  return [which] {
    pages.at (*which)();
    return kExitDone;
  };
}
