#ifndef DATABASE_ZON_VKVSACTIVATE_H
#define DATABASE_ZON_VKVSACTIVATE_H

// vKvsActivate: the Kvs library serves one project at a time, process-wide.
// project() makes the given one current: it shuts the library down and
// starts it again on that project's server folder, unless the project is
// current already, so switching costs only when projects alternate. No
// lock: the database layer is used from one thread.

class vKvsProject;

class vKvsActivate {
 public:
  static void project(vKvsProject& project);
  // The activation number of the current project; -1 when none is.
  static int getCurrent() { return s_current; }
  // The number of times the library was started for a project.
  static int getCounter() { return s_counter; }
  // Shuts the library down; no project is current afterwards.
  static void deactivate();

 private:
  static bool s_first;
  static int s_current;
  static int s_counter;
};

#endif
