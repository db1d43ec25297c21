#include "tools/ProjectCommands.h"

#include "foundation/vUtl.h"
#include "project/ProjectCatalogFactory.h"
#include "project/ProjectFactory.h"
#include "project/ProjectList.h"
#include "project/StoreDetails.h"
#include "tools/ToolArguments.h"
#include "tools/ToolOutput.h"

ToolCommand const& ProjectCommands::projects() {
  static ToolCommand const c = {"projects", "the projects of a data server",
                                "usage: rondo projects [HOST]\n"
                                "\n"
                                "Lists the projects of the data server on HOST, one name a line. The\n"
                                "server is started as the Java host starts it when none runs yet: on\n"
                                "this machine when HOST is left out, localhost or this machine's\n"
                                "name, else through the remote shell.\n"
                                "\n"
                                "example:\n"
                                "  rondo projects $(hostname)\n",
                                "", &ProjectCommands::runProjects};
  return c;
}

ToolCommand const& ProjectCommands::ls() {
  static ToolCommand const c = {"ls", "the stores of a project",
                                "usage: rondo ls [HOST:]PROJECT [CLASS]\n"
                                "\n"
                                "Lists the stores of a project on the data server of HOST (this host\n"
                                "when not given), of one class or of all: one line per store with its\n"
                                "name.version, class, subclass and number of instances, separated by\n"
                                "tabs, as the project lists them. A directory of files lists each\n"
                                "store without opening it: its subclass is blank and its count 0;\n"
                                "`rondo info rondo:::PROJECT:STORE` opens it.\n"
                                "\n"
                                "example:\n"
                                "  rondo ls survey seismic\n",
                                "", &ProjectCommands::runLs};
  return c;
}

namespace {

// "localhost" (and this host's name in any case) is this host: its server
// is started here, not through the remote shell, which would wait for a
// remote shell daemon that this machine need not run.
std::string hostOf(std::string const& host) { return vUtl::isThisHost(vString(host.c_str())) ? "" : host; }

}  // namespace

int ProjectCommands::runProjects(ToolArguments& arguments) {
  arguments.finish(0, 1);
  std::string const host = hostOf(arguments.positional().empty() ? std::string() : arguments.positional()[0]);
  arguments.setSubject(host);
  vHandle<ProjectCatalog> catalog =
      ProjectCatalogFactory::create(vString(host.c_str()), ProjectType::RONDO, vString(host.c_str()));
  vHandle<ProjectList> list = catalog->getProjectList();
  ToolOutput out;
  for (ProjectListEntry const& entry : *list) {
    out.put(entry.getName().c_str());
    out.put('\n');
  }
  out.flush();
  return 0;
}

int ProjectCommands::runLs(ToolArguments& arguments) {
  arguments.finish(1, 2);
  std::string const text = arguments.positional()[0];
  std::string const storeClass = arguments.positional().size() > 1 ? arguments.positional()[1] : "";
  arguments.setSubject(text);
  std::size_t const colon = text.rfind(':');
  std::string const host = colon == std::string::npos ? std::string() : hostOf(text.substr(0, colon));
  std::string const name = colon == std::string::npos ? text : text.substr(colon + 1);
  vHandle<Project> project = ProjectFactory::openProject(ProjectType::RONDO, vString(host.c_str()),
                                                         vString(host.c_str()), vLCString(name.c_str()));
  vHandle<Project::StoreDetailsList> list = project->getStoreDetailsList(vLCString(storeClass.c_str()), vLCString(""));
  ToolOutput out;
  for (StoreDetails const& d : *list)
    out.put(std::string(d.getName().c_str()) + "." + std::to_string(d.getVersion()) + "\t" + d.getClass().c_str() +
            "\t" + d.getSubClass().c_str() + "\t" + std::to_string(d.getNInstances()) + "\n");
  out.flush();
  return 0;
}
