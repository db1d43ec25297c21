#include "foundation/PrintErrorHandler.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "foundation/vDate.h"
#include "foundation/vUtl.h"

PrintErrorHandler::PrintErrorHandler(ErrorHandler* next) : ErrorHandler(next) {}
PrintErrorHandler::~PrintErrorHandler() {}

void PrintErrorHandler::doFatal(char const* label, int code, char const* text) { myPrint("FATAL", '*', label, code, text); }
void PrintErrorHandler::doError(char const* label, int code, char const* text) { myPrint("ERROR", '+', label, code, text); }
void PrintErrorHandler::doInfo(char const* label, int code, char const* text) { myPrint("INFO", '.', label, code, text); }

void PrintErrorHandler::myPrint(char const* word, char fill, char const* label, int code, char const* text) {
  std::cout.flush();
  std::cerr.flush();
  std::fflush(stdout);
  std::fflush(stderr);

  char const* program = program_invocation_name ? program_invocation_name : "";
  char const* slash = std::strrchr(program, '/');
  if (slash) program = slash + 1;

  std::string const rule(60, fill);
  std::string report;
  report += rule;
  report += "\n(Next ";
  report += word;
  report += " from ";
  report += program;
  report += " running on ";
  report += vUtl::gethostname().c_str();
  report += " at ";
  report += vDate::getNowFormatted().c_str();
  report += ")\n";
  report += label ? label : "";
  if (code != 0) {
    report += " (code ";
    report += std::to_string(code);
    report += ")";
  }
  report += ":\n";
  report += text ? text : "";
  if (report.empty() || report.back() != '\n') report += '\n';
  report += rule;
  report += '\n';
  std::fputs(report.c_str(), stderr);
  std::fflush(stderr);
}
