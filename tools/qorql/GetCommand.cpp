// One instance, stored or live, by its path or by as many of its keys as tell it from others.
// SPDX-License-Identifier: Apache-2.0
#include "GetCommand.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "InstancePath.h"
#include "JsonValue.h"
#include "OptionDeclarations.h"
#include "Session.h"
#include "SessionOptions.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr const char* kGetDescription =
    "Prints the instance that a path names, as MOF text or JSON. Keys may be left out as\n"
    "long as the others identify the instance.";
constexpr const char* kGetFooter =
    "Exit status: 0 done; 1 there is no such instance, or more than one; 2 wrong usage; 3 MOF,\n"
    "configuration or provider failure.\n"
    "\n"
    "Examples:\n"
    "  qorql get 'Linux_Process.Handle=\"1\"'\n"
    "  qorql get -o json 'root/cimv2:Linux_User.Name=\"root\"'\n"
    "  qorql get --server array1 '//array1/root/cimv2:CIM_StoragePool.InstanceID=\"1\"'";

enum class InstanceForm { Mof, Json };
const std::map<std::string, InstanceForm> kInstanceForms = {{"mof", InstanceForm::Mof}, {"json", InstanceForm::Json}};

struct GetOptions {
  SessionOptions session;
  std::string path;
  InstanceForm form = InstanceForm::Mof;
};

int refuseMany(const std::vector<QORSmrPtr<IQoriInstanceName>>& found) {
  constexpr std::size_t kShown = 10;
  const int status = reportRefusal(std::to_string(found.size()) + " instances have these keys; give more of them:");
  for (std::size_t i = 0; i < found.size() && i < kShown; ++i) {
    std::cerr << "  " << printableText(found[i]->toString().view()) << '\n';
  }
  if (found.size() > kShown) std::cerr << "  and " << found.size() - kShown << " more\n";
  return status;
}

void print(const QORSmrPtr<IQoriObject>& instance, InstanceForm form) {
  if (form == InstanceForm::Mof) {
    std::cout << EmbeddedObjectManager::instanceMof(*instance);
    return;
  }
  std::string text;
  const CQoriValue held(instance);
  appendJson(text, &held, JsonObjects::WithClass);
  std::cout << text << '\n';
}

int printInstance(const GetOptions& options, const InstancePath& path) {
  const std::vector<QORSmrPtr<IQoriInstanceName>> found = instancesAt(path);
  if (found.size() > 1) return refuseMany(found);
  CIMApi api;
  const QORSmrPtr<IQoriObject> instance =
      found.empty()
          ? QORSmrPtr<IQoriObject>()
          : api.getInstance(path.nameSpace, found.front(), {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr);
  if (instance.IsNull()) return reportRefusal("there is no instance " + options.path);
  print(instance, options.form);
  return kExitDone;
}

// The path with quotes around the values of its keys, or of those that are no numbers.
std::string withQuotes(std::string_view path, bool areNumbersToo) {
  std::string quoted;
  while (!path.empty()) {
    const std::size_t value = std::min(path.find('='), path.size() - 1) + 1;
    const std::size_t end = std::min(path.find(',', value), path.size());
    const std::string_view text = path.substr(value, end - value);
    const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    const char* const quote = isNumber && !areNumbersToo ? "" : "\"";
    quoted.append(path.substr(0, value)).append(quote).append(text).append(quote);
    quoted.append(path.substr(end, 1));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return quoted;
}

std::vector<std::string> serversOf(Session& session) {
  return session.servers() == nullptr ? std::vector<std::string>() : session.servers()->serverNames();
}

// A shell takes double quotes away that no single ones enclose: what the path is with them, where it is one then.
std::string meantPath(Session& session, const GetOptions& options) {
  const bool mayLackQuotes = options.path.find('"') == std::string::npos && options.path.find('=') != std::string::npos;
  for (const bool areNumbersToo : {false, true}) {
    if (!mayLackQuotes) break;
    try {
      const std::string quoted = withQuotes(options.path, areNumbersToo);
      readInstancePath(session.manager(), quoted, options.session.nameSpace, serversOf(session));
      return quoted;
    } catch (const std::runtime_error&) {
      continue;
    }
  }
  return {};
}

int refusePath(Session& session, const GetOptions& options, const std::runtime_error& refusal) {
  const int status = reportRefusal(refusal.what());
  const std::string meant = options.session.isQuiet ? "" : meantPath(session, options);
  if (!meant.empty()) {
    printHint({"", "texts stand in double quotes, which a shell leaves within single ones: qorql get '" + meant + "'"},
              "");
  }
  return status;
}

int get(const GetOptions& options) {
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  InstancePath path;
  try {
    path = readInstancePath(session.manager(), options.path, options.session.nameSpace, serversOf(session));
    if (!path.server.empty()) session.servers()->askOnly(path.className, {path.server});
  } catch (const std::runtime_error& refusal) {
    return refusePath(session, options, refusal);
  } catch (const QoriBaseException&) {
    return reportFailure({});
  }
  int status = kExitDone;
  try {
    status = printInstance(options, path);
  } catch (...) {
    session.dropWarnings();
    std::cout.flush();
    return reportFailure({});
  }
  session.printWarnings();
  return session.settle(status);
}

}  // namespace

CommandAction declareGetCommand(CLI::App& app) {
  const auto options = std::make_shared<GetOptions>();
  options->session.needsDescriptions = false;
  describeCommand(app, kGetDescription, kGetFooter);
  declareSessionOptions(app, options->session);
  declareValue(app, {.names = "-o,--output",
                     .type = "mof|json",
                     .description = "Form of the instance (default: mof)",
                     .take = [options](const std::string& name) { options->form = kInstanceForms.at(name); },
                     .check = oneOf(kInstanceForms)});
  declareValue(app, {.names = "INSTANCE",
                     .description = "Its path: Class.Key=\"value\",...",
                     .take = keepIn(options->path),
                     .isRequired = true});
  return [options] { return get(*options); };
}
