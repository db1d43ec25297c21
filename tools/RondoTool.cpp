#include "tools/RondoTool.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <set>
#include <string>

#include "foundation/RaiseError.h"
#include "foundation/UtlExcept.h"
#include "registry/RondoRegistry.h"
#include "tools/DumpCommand.h"
#include "tools/InfoCommand.h"
#include "tools/PlotCommand.h"
#include "tools/ProjectCommands.h"
#include "tools/ToolArguments.h"
#include "tools/ToolMessages.h"
#include "tools/ToolOutput.h"

namespace {

char const* const kUsage =
    "usage: rondo COMMAND [ARGUMENTS] [--help]\n"
    "\n"
    "Looks at any store the data-access layer can open: SEG-Y and the other\n"
    "file formats, in-memory stores, stores served by a data server.\n"
    "\n"
    "commands:\n";

void printHelp(FILE* to) {
  std::fputs(kUsage, to);
  for (ToolCommand const& c : RondoTool::commands()) std::fprintf(to, "  %-9s %s\n", c.name, c.summary);
  std::fputs("\nexample:\n  rondo info line1.sgy\n  rondo dump --help\n", to);
}

std::set<std::string> words(char const* text) {
  std::set<std::string> out;
  std::string word;
  for (char const* p = text;; ++p) {
    if (*p == ' ' || *p == 0) {
      if (!word.empty()) out.insert(word);
      word.clear();
      if (*p == 0) return out;
    } else {
      word.push_back(*p);
    }
  }
}

int runCommand(ToolCommand const& command, int argc, char** argv) {
  std::string subject;
  try {
    ToolArguments arguments(command.name, argc, argv, words(command.valueOptions));
    if (arguments.flag("help")) {
      std::fputs(command.help, stdout);
      return 0;
    }
    try {
      return command.run(arguments);
    } catch (...) {
      subject = arguments.subject();
      throw;
    }
  } catch (ToolUsageError const& e) {
    ToolMessages::setSubject(command.name);
    std::fputs(ToolMessages::line(e.text).c_str(), stderr);
    if (!e.brief) std::fputs(command.help, stderr);
    return 2;
  } catch (ToolPipeClosed const&) {
    return 0;
  } catch (UtlExcept const& e) {
    ToolMessages::setSubject(subject);
    std::fputs(ToolMessages::line(e.getReason().c_str()).c_str(), stderr);
    return 1;
  } catch (std::bad_alloc const&) {
    ToolMessages::setSubject(subject);
    std::fputs(ToolMessages::line("Out of memory.").c_str(), stderr);
    return 1;
  } catch (std::exception const& e) {
    ToolMessages::setSubject(subject);
    std::fputs(ToolMessages::line(e.what()).c_str(), stderr);
    return 1;
  }
}

}  // namespace

std::vector<ToolCommand> const& RondoTool::commands() {
  static std::vector<ToolCommand> const table = {InfoCommand::command(), DumpCommand::command(),
                                                 PlotCommand::command(), ProjectCommands::projects(),
                                                 ProjectCommands::ls()};
  return table;
}

int RondoTool::run(int argc, char** argv) {
  // A closed output pipe shows as EPIPE on the write, where the dump can
  // stop cleanly, rather than as a signal in the middle of it.
  std::signal(SIGPIPE, SIG_IGN);
  // Standard output is the command's data only (the tool writes it to the
  // descriptor itself): what the layers below tell on std::cout, such as
  // the start of a data server, goes to standard error.
  std::cout.rdbuf(std::cerr.rdbuf());
  // Installed for the life of the process: messages can come until exit.
  RaiseError::getInstance()->install(new ToolMessages());
  registerRondoClasses();

  if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h") || !std::strcmp(argv[1], "help")) {
    printHelp(argc < 2 ? stderr : stdout);
    return argc < 2 ? 2 : 0;
  }
  for (ToolCommand const& command : commands())
    if (!std::strcmp(argv[1], command.name)) return runCommand(command, argc - 2, argv + 2);
  std::fprintf(stderr, "rondo: unknown command '%s'\n", argv[1]);
  printHelp(stderr);
  return 2;
}
