#include "project/ProjectType.h"

#include <cctype>
#include <istream>
#include <ostream>
#include <string>

#include "foundation/Message.h"
#include "project/CapiProject.h"

namespace {

struct Spelling {
  char const* text;
  ProjectType::PROJECT_TYPE type;
};

// Accepted spellings; the empty text stands for NoType.
Spelling const kSpellings[] = {
    {"", ProjectType::NOTYPE},         {"notype", ProjectType::NOTYPE},
    {"rondo", ProjectType::RONDO},     {"r", ProjectType::RONDO},
    {"rondo3", ProjectType::RONDO},    {"kelp", ProjectType::KELP},
    {"k", ProjectType::KELP},          {"dorn", ProjectType::DORN},
    {"d", ProjectType::DORN},          {"rondov", ProjectType::DORN},
    {"unittest", ProjectType::UNITTEST}, {"flat_file", ProjectType::FLATFILE},
    {"f", ProjectType::FLATFILE},      {"flatfile", ProjectType::FLATFILE},
    {"flat file", ProjectType::FLATFILE}, {"memory", ProjectType::MEMORY},
    {"m", ProjectType::MEMORY},        {"inmemory", ProjectType::INMEMORY},
    {"i", ProjectType::INMEMORY},      {"zon", ProjectType::ZONMESH},
    {"z", ProjectType::ZONMESH},       {"zonmesh", ProjectType::ZONMESH},
};

char const* const kNames[] = {"NoType",   "Rondo",  "Kelp",     "Dorn",   "UnitTest",
                              "FlatFile", "Memory", "InMemory", "Zonmesh"};

}  // namespace

bool ProjectType::isValidProjectType(int type) { return type >= NOTYPE && type <= ZONMESH; }

vString ProjectType::getProjectTypeName(int type) {
  if (!isValidProjectType(type)) Message::fatal("ProjectType::getProjectTypeName", 0, "Unknown PROJECT_TYPE %d.", type);
  return vString(kNames[type]);
}

vString ProjectType::getProjectTypeName(PROJECT_TYPE type) { return getProjectTypeName(static_cast<int>(type)); }

bool ProjectType::isValidProjectType(vString const& text, PROJECT_TYPE& type) {
  for (Spelling const& s : kSpellings) {
    if (text.stricmp(s.text) == 0) {
      type = s.type;
      return true;
    }
  }
  type = NOTYPE;
  return false;
}

ProjectType::PROJECT_TYPE ProjectType::getProjectType(vString const& text) {
  PROJECT_TYPE type;
  if (!isValidProjectType(text, type))
    Message::fatal("ProjectType::getProjectType", 0, "Unknown PROJECT_TYPE name %s.", text.c_str());
  return type;
}

ProjectType::PROJECT_TYPE ProjectType::getProjectType(char const* text) { return getProjectType(vString(text)); }

void ProjectType::enter(PROJECT_TYPE& type, std::istream& in, std::ostream& out) {
  vString prompt("type of project Rondo, Kelp");
  if (Capi::haveCapiZon()) prompt += ", Zon";
  vString current = isValidProjectType(type) ? getProjectTypeName(type) : vString();

  for (;;) {
    out << prompt << " [" << current << "]: " << std::flush;
    std::string line;
    if (!std::getline(in, line))
      Message::fatal("ProjectType::enter", 0, "No answer to the question for the type of project.");
    vString answer(line.c_str());
    answer.strip();
    if (answer.isEmpty()) answer = current;

    char c = answer.isEmpty() ? '\0' : static_cast<char>(std::tolower(static_cast<unsigned char>(answer[0])));
    switch (c) {
      case 'r': type = RONDO; return;
      case 'k': type = KELP; return;
      case 'f': type = FLATFILE; return;
      case 'm': type = MEMORY; return;
      case 'i': type = INMEMORY; return;
      case 'z': type = ZONMESH; return;
      default:
        out << "Unknown project Type:" << answer << "\n"
            << "Choose rondo or kelp.\n"
            << "    or f for flatfile\n";
        break;
    }
  }
}
